// How the paths of a command line become those that the engine takes.

#include "app/path_argument.h"
#include "tests/support/temporary_directory.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace zelmora::test {
namespace {

TEST(PathFromArgument, IsAbsoluteAndCleanAndFollowsLinksOnlyForParents) {
    const TemporaryDirectory folder;
    folder.writeFile("real/deep/a.txt", "");
    std::filesystem::create_directory_symlink("real/deep", folder / "link");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const auto real = std::filesystem::current_path().string();

    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"///", "/"},
        {".", real},
        {"a.txt", real + "/a.txt"},
        {"real//./deep/.//", real + "/real/deep"},
        {"/x/../", "/x/../"}, // not there: nobody knows where it would lead
        {"..a/b..", real + "/..a/b.."},
        {"~", real + "/~"},
        {"\xff\x83\x5c", real + "/\xff\x83\x5c"},
        {"link/a.txt", real + "/link/a.txt"},
        {"link/../deep", real + "/real/deep"}, // the parent of what the link leads to
        {"real/..", real},
        {std::string(5000, 'n'), real + "/" + std::string(5000, 'n')},
    };
    for (const auto& [argument, path] : cases)
        EXPECT_EQ(pathFromArgument(argument), path) << argument;
    std::filesystem::current_path(before);
}

} // namespace
} // namespace zelmora::test
