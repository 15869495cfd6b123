#include "platform/text/path_string.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
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
        {"//", "/", "/", "", "/"},
        {"a", "a", "", "", "a"},
        {"/a", "a", "/", "", "/a"},
        {"//a", "a", "/", "", "//a"},
        {"/a/b/c/", "c", "/a/b", "", "/a/b/c"},
        {"a//b", "b", "a", "", "a//b"},
        {"/a/b.txt", "b.txt", "/a", "txt", "/a/b"},
        {"/a/b.txt/", "b.txt", "/a", "txt", "/a/b"},
        {"/a.d/b", "b", "/a.d", "", "/a.d/b"},
        {"/a.d/.profile", ".profile", "/a.d", "", "/a.d/.profile"},
        {".a.txt", ".a.txt", "", "txt", ".a"},
        {"/a/b.", "b.", "/a", "", "/a/b"},
        {"/a/b.tar.gz", "b.tar.gz", "/a", "gz", "/a/b.tar"},
        {"..txt", "..txt", "", "txt", "."},
        {"/a/.", ".", "/a", "", "/a/."},
        {"/a/..", "..", "/a", "", "/a/.."},
        {"/\x93\xFA.t\xFF", "\x93\xFA.t\xFF", "/", "t\xFF", "/\x93\xFA"},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(lastPathComponent(testCase.path), testCase.last) << testCase.path;
        EXPECT_EQ(deletingLastPathComponent(testCase.path), testCase.folder) << testCase.path;
        EXPECT_EQ(pathExtension(testCase.path), testCase.extension) << testCase.path;
        EXPECT_EQ(deletingPathExtension(testCase.path), testCase.withoutExtension) << testCase.path;
    }
}

TEST(PathString, Appending) {
    EXPECT_EQ(appendingPathExtension("/a/b", "txt"), "/a/b.txt");
    EXPECT_EQ(appendingPathExtension("/a/b/", "txt"), "/a/b.txt");
    EXPECT_EQ(appendingPathExtension("/a/b", ""), "/a/b");
    const struct {
        const char* path;
        const char* component;
        const char* expected;
    } cases[] = {
        {"", "a", "a"},       {"/", "a", "/a"},     {"/a", "b", "/a/b"},
        {"/a/", "b", "/a/b"}, {"/a", "/b", "/a/b"}, {"a", "b/c", "a/b/c"},
        {"/a", "", "/a"},     {"", "", ""},         {"", "/a", "/a"},
    };
    for (const auto& testCase : cases)
        EXPECT_EQ(appendingPathComponent(testCase.path, testCase.component), testCase.expected)
            << testCase.path << " + " << testCase.component;
}

/// Gives HOME a value, or none, for one scope.
class HomeScope {
  public:
    explicit HomeScope(const char* value) {
        if (const char* home = std::getenv("HOME"))
            _saved = home;
        set(value);
    }
    ~HomeScope() { set(_saved ? _saved->c_str() : nullptr); }

  private:
    static void set(const char* value) {
        if (value != nullptr)
            setenv("HOME", value, 1);
        else
            unsetenv("HOME");
    }

    std::optional<std::string> _saved;
};

TEST(PathString, TildeIsTheHomeFolder) {
    {
        const HomeScope home("/home/z/");
        EXPECT_EQ(expandingTilde("~"), "/home/z");
        EXPECT_EQ(expandingTilde("~/a/b"), "/home/z/a/b");
        EXPECT_EQ(expandingTilde("/a/~"), "/a/~");
        EXPECT_EQ(expandingTilde(""), "");
        EXPECT_EQ(expandingTilde("~no such user/a"), "~no such user/a");
    }
    const passwd* const self = getpwuid(getuid());
    ASSERT_NE(self, nullptr);
    const std::string folder = appendingPathComponent(self->pw_dir, "");
    EXPECT_EQ(expandingTilde(std::string("~") + self->pw_name + "/a"),
              appendingPathComponent(folder, "a"));
    for (const char* absent : {static_cast<const char*>(nullptr), ""}) {
        const HomeScope home(absent);
        EXPECT_EQ(expandingTilde("~"), folder);
    }
}

TEST(PathString, AbsolutePathsStandOnTheWorkingFolder) {
    const std::string folder = std::filesystem::current_path();
    EXPECT_EQ(absolutePath("/a/../b"), "/a/../b");
    EXPECT_EQ(absolutePath("a/../b"), appendingPathComponent(folder, "a/../b"));
    EXPECT_EQ(absolutePath(""), folder);
}

TEST(PathString, OnlyASCIILettersLoseTheirCase) {
    EXPECT_TRUE(equalsIgnoringASCIICase("TxT", "tXt"));
    EXPECT_TRUE(equalsIgnoringASCIICase("", ""));
    EXPECT_FALSE(equalsIgnoringASCIICase("txt", "txt2"));
    EXPECT_FALSE(equalsIgnoringASCIICase("é", "É"));
    EXPECT_FALSE(equalsIgnoringASCIICase("[", "{"));
    EXPECT_FALSE(equalsIgnoringASCIICase("@", "`"));
}

} // namespace
} // namespace zelmora::platform
