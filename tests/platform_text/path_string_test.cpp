#include "platform/text/path_string.h"

#include "platform/text/file_url.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace zelmora::platform {
namespace {

TEST(PathString, ComponentsAndExtensions) {
    const struct {
        const char* path;
        const char* last;
        const char* folder;
        const char* extension;
        const char* withoutExtension;
    } cases[] = {
        {"", "", "", "", ""},
        {"/", "/", "/", "", "/"},
        {"//a", "a", "/", "", "//a"},
        {"/a/b/c/", "c", "/a/b", "", "/a/b/c"},
        {"/a/b.txt/", "b.txt", "/a", "txt", "/a/b"},
        {"/a.d/.profile", ".profile", "/a.d", "", "/a.d/.profile"},
        {"/a/b.", "b.", "/a", "", "/a/b"},
        {"/a/b.tar.gz", "b.tar.gz", "/a", "gz", "/a/b.tar"},
        {"/a/..", "..", "/a", "", "/a/.."},
        {"/\x93\xFA.t\xFF", "\x93\xFA.t\xFF", "/", "t\xFF", "/\x93\xFA"},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(lastPathComponent(testCase.path), testCase.last) << testCase.path;
        EXPECT_EQ(deletingLastPathComponent(testCase.path), testCase.folder) << testCase.path;
        EXPECT_EQ(pathExtension(testCase.path), testCase.extension) << testCase.path;
        EXPECT_EQ(deletingPathExtension(testCase.path), testCase.withoutExtension) << testCase.path;
    }
    EXPECT_EQ(appendingPathExtension("/a/b/", "txt"), "/a/b.txt");
    EXPECT_EQ(appendingPathExtension("/a/b", ""), "/a/b");
    const char* const appended[][3] = {
        {"", "a", "a"},       {"/", "a", "/a"},     {"/a", "b", "/a/b"},
        {"/a/", "b", "/a/b"}, {"/a", "/b", "/a/b"}, {"/a", "", "/a"},
    };
    for (const auto& [path, component, expected] : appended)
        EXPECT_EQ(appendingPathComponent(path, component), expected) << path << " " << component;
}

TEST(PathString, TildeIsTheHomeFolderAndRelativePathsStandOnTheWorkingOne) {
    const std::string home = appendingPathComponent(getpwuid(getuid())->pw_dir, "");
    unsetenv("HOME");
    EXPECT_EQ(expandingTilde("~"), home);
    setenv("HOME", "/home/z/", 1);
    EXPECT_EQ(expandingTilde("~"), "/home/z");
    EXPECT_EQ(expandingTilde("~/a/b"), "/home/z/a/b");
    EXPECT_EQ(expandingTilde("/a/~"), "/a/~");

    const std::string here = std::filesystem::current_path();
    EXPECT_EQ(absolutePath("/a/../b"), "/a/../b");
    EXPECT_EQ(absolutePath("a/../b"), appendingPathComponent(here, "a/../b"));
    EXPECT_EQ(absolutePath(""), here);
}

TEST(PathString, OnlyASCIILettersLoseTheirCase) {
    EXPECT_TRUE(equalsIgnoringASCIICase("TxT", "tXt"));
    EXPECT_FALSE(equalsIgnoringASCIICase("é", "É"));
    EXPECT_FALSE(equalsIgnoringASCIICase("[", "{"));
}

TEST(FileURL, OnlyFilesOfThisMachineHaveAPath) {
    const std::pair<std::string, std::string> paths[] = {
        {"file:/a", "/a"},
        {"file://localhost/a", "/a"},
        {"file:///a%20%E3%81%82%ff?query#fragment", "/a \xe3\x81\x82\xff"},
        {"file:///", "/"},
    };
    for (const auto& [url, path] : paths)
        EXPECT_EQ(pathFromFileURL(url), path) << url;
    for (const char* url : {"file://otherhost/a", "file:a", "file://", "file:///a%2",
                            "file:///a%gg", "file:///a%00b", "http:///a", "/a"})
        EXPECT_EQ(pathFromFileURL(url), std::nullopt) << url;
}

TEST(FileURL, EveryPathHasOneOfPlainASCII) {
    EXPECT_EQ(fileURLFromPath("/a-b_c.~/\x95\\ %#?"), "file:///a-b_c.~/%95%5C%20%25%23%3F");
    for (int byte = 1; byte < 256; ++byte) {
        const std::string path{'/', static_cast<char>(byte)};
        EXPECT_EQ(pathFromFileURL(fileURLFromPath(path)), path) << byte;
    }
}

} // namespace
} // namespace zelmora::platform
