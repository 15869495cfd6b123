#include "files_test_case.h"

#include <climits>
#include <sys/resource.h>

namespace zelmora::platform {
namespace {

using LongPaths = FilesTestCase;

TEST_F(LongPaths, HundredsOfLevelsNeedFewDescriptors) {
    constexpr int kDepth = 700; // far more than descriptors, and beyond PATH_MAX
    std::string path = _folder / "deep";
    for (int i = 1; i < kDepth; ++i)
        path += "/a level";
    EXPECT_TRUE(passesInChild([&] {
        const rlimit limit = {128, 128};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        ASSERT_EQ(codeOf(_files.createDirectoryAtPath(path)), 0);
        ASSERT_EQ(codeOf(_files.createFileAtPath(path + "/file", bytesOf("deep"))), 0);
        EXPECT_EQ(codeOf(_files.appendToFileAtPath(path + "/file", bytesOf("er"))), 0);
        EXPECT_EQ(codeOf(_files.moveItemAtPath(path + "/file", path + "/moved")), 0);
        EXPECT_EQ(codeOf(_files.replaceFileAtPath(path + "/file", bytesOf("new"))), 0);
        EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "deep", _folder / "copy")), 0);
        path.replace(path.find("/deep"), 5, "/copy");
        EXPECT_EQ(contentsOf(_files, path + "/file"), "new");
        EXPECT_EQ(contentsOf(_files, path + "/moved"), "deeper");
        int count = 0;
        EXPECT_EQ(codeOf(_files.enumerateAtPath(
                      _folder.path(), [&](const std::string&, FileType) { return ++count, true; })),
                  0);
        EXPECT_EQ(count, 2 * (kDepth + 2));
    }));
    for (const char* name : {"deep", "copy"})
        EXPECT_EQ(codeOf(_files.removeItemAtPath(_folder / name)), 0) << name;
    EXPECT_EQ(_folder.items(), Items());

    // Names may be as long as the file system allows: none is lengthened for a while.
    const std::string name = _folder / std::string(NAME_MAX, 'n');
    EXPECT_EQ(codeOf(_files.createFileAtPath(name, bytesOf("one"))), 0);
    EXPECT_EQ(codeOf(_files.replaceFileAtPath(name, bytesOf("two"))), 0);
    EXPECT_EQ(codeOf(_files.copyItemAtPath(name, _folder / std::string(NAME_MAX, 'c'))), 0);
}

} // namespace
} // namespace zelmora::platform
