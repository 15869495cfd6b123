#include "platform/text/file_url.h"

#include <gtest/gtest.h>

namespace zelmora::platform {
namespace {

TEST(FileURLTest, OnlyFilesOfThisMachineHaveAPath) {
    const struct {
        std::string url;
        std::optional<std::string> path;
    } cases[] = {
        {"file:///a/b.txt", "/a/b.txt"},
        {"file:/a", "/a"},
        {"file://localhost/a", "/a"},
        {"file:///a%20%E3%81%82%ff?query#fragment", "/a \xe3\x81\x82\xff"},
        {"file:///a%2fb", "/a/b"},
        {"file:///", "/"},
        {"file://otherhost/a", std::nullopt},
        {"file://localhost.example/a", std::nullopt},
        {"file:a", std::nullopt},
        {"file://", std::nullopt},
        {"file:///a%", std::nullopt},
        {"file:///a%2", std::nullopt},
        {"file:///a%gg", std::nullopt},
        {"file:///a%00b", std::nullopt},
        {std::string("file:///a\0b", 11), std::nullopt},
        {"http:///a", std::nullopt},
        {"/a", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& each : cases)
        EXPECT_EQ(pathFromFileURL(each.url), each.path) << each.url;
}

TEST(FileURLTest, EveryPathHasAURLOfPlainASCII) {
    EXPECT_EQ(fileURLFromPath("/a-b_c.~/\x95\\ %#?"), "file:///a-b_c.~/%95%5C%20%25%23%3F");
    for (int byte = 1; byte < 256; ++byte) {
        const std::string path{'/', static_cast<char>(byte)};
        EXPECT_EQ(pathFromFileURL(fileURLFromPath(path)), path) << byte;
    }
}

} // namespace
} // namespace zelmora::platform
