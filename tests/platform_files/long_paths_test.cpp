#include "files_test_case.h"

#include <climits>
#include <sys/resource.h>

namespace zelmora::platform {
namespace {

using LongPaths = FilesTestCase;

TEST_F(LongPaths, EveryOperationGoesBeyondPathMax) {
    // Both sides of the limit, then far beyond it, with slashes in plenty wherever a path is cut.
    constexpr size_t kLimit = PATH_MAX;
    for (const size_t length : {kLimit - 70, kLimit - 1, kLimit, 3 * kLimit}) {
        std::string folder = _folder / "long";
        while (folder.size() + 201 <= length)
            folder += std::string(100, '/') + std::string(100, 'd');
        folder += "/" + std::string(length - folder.size(), 'e');
        const std::string file = folder + "/file";
        const std::string copy = folder + "/copy";
        SCOPED_TRACE(length);
        ASSERT_EQ(codeOf(_files.createDirectoryAtPath(folder)), 0);
        EXPECT_TRUE(_files.isDirectoryAtPath(folder));
        EXPECT_EQ(codeOf(_files.createFileAtPath(file, bytesOf("one"))), 0);
        EXPECT_EQ(codeOf(_files.createFileAtPath(file, bytesOf("no"))), EEXIST);
        EXPECT_EQ(codeOf(_files.appendToFileAtPath(file, bytesOf("two"))), 0);
        EXPECT_EQ(codeOf(_files.setHFSCodes({1, 2}, file)), 0);
        EXPECT_EQ(codeOf(_files.copyItemAtPath(file, copy)), 0);
        EXPECT_EQ(codeOf(_files.replaceFileAtPath(file, bytesOf("three"))), 0);
        EXPECT_EQ(contentsOf(_files, file), "three");
        EXPECT_EQ(codeOf(_files.removeFileAtPath(file)), 0);
        EXPECT_FALSE(_files.fileExistsAtPath(file));
        EXPECT_EQ(codeOf(_files.moveItemAtPath(copy, file)), 0);
        EXPECT_EQ(contentsOf(_files, file), "onetwo");
        EXPECT_EQ(_files.hfsCodesOfItemAtPath(file).value(), (HFSCodes{1, 2}));
        EXPECT_EQ(_files.typeOfItemAtPath(file).value(), FileType::regular);
        Items visited;
        const auto visit = [&](const std::string& path, FileType) {
            visited.push_back(path);
            return true;
        };
        EXPECT_EQ(codeOf(_files.enumerateAtPath(folder, visit)), 0);
        EXPECT_EQ(visited, Items({"file"}));
        EXPECT_EQ(codeOf(_files.removeItemAtPath(_folder / "long")), 0);
        EXPECT_EQ(_folder.items(), Items());
    }
    // Names may be as long as the file system allows: none is lengthened for a while.
    const std::string path = _folder / std::string(NAME_MAX, 'n');
    EXPECT_EQ(codeOf(_files.createFileAtPath(path, bytesOf("one"))), 0);
    EXPECT_EQ(codeOf(_files.replaceFileAtPath(path, bytesOf("two"))), 0);
    EXPECT_EQ(codeOf(_files.copyItemAtPath(path, _folder / std::string(NAME_MAX, 'c'))), 0);
    EXPECT_EQ(_folder.items().size(), 2U);
}

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
        EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "deep", _folder / "copy")), 0);
        path.replace(path.find("/deep"), 5, "/copy");
        EXPECT_EQ(contentsOf(_files, path + "/file"), "deep");
        int count = 0;
        EXPECT_EQ(codeOf(_files.enumerateAtPath(
                      _folder.path(), [&](const std::string&, FileType) { return ++count, true; })),
                  0);
        EXPECT_EQ(count, 2 * (kDepth + 1));
    }));
    for (const char* name : {"deep", "copy"})
        EXPECT_EQ(codeOf(_files.removeItemAtPath(_folder / name)), 0) << name;
    EXPECT_EQ(_folder.items(), Items());
}

} // namespace
} // namespace zelmora::platform
