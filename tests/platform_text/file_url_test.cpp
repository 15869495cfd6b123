#include "platform/text/file_url.h"

#include <gtest/gtest.h>

namespace zelmora::platform {
namespace {

TEST(FileURLTest, OnlyFilesOfThisMachineHaveAPath) {
    const struct {
        const char* url;
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
        {"http:///a", std::nullopt},
        {"/a", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& each : cases)
        EXPECT_EQ(pathFromFileURL(each.url), each.path) << each.url;
}

} // namespace
} // namespace zelmora::platform
