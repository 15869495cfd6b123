#include "files_test_case.h"

#include <fcntl.h>

namespace zelmora::platform {
namespace {

using Moving = FilesTestCase;
using test::readFile;

TEST_F(Moving, OnlyWhatIsNamedIsDeletedAndNothingBehindLinks) {
    for (const char* name : {"kept/file", "tree/a/b/c", "tree/d", "tree/a/.e", "file", "file2"})
        _folder.writeFile(name, "");
    ASSERT_EQ(::symlink("../../kept", (_folder / "tree/a/way").c_str()), 0);
    ASSERT_EQ(::symlink("kept", (_folder / "way").c_str()), 0);
    ASSERT_EQ(::mkfifo((_folder / "tree/fifo").c_str(), 0600), 0);
    const std::pair<std::string, int> files[] = {
        {"kept", EISDIR}, {std::string("file\0x", 6), EINVAL}, {"file", 0}, {"file", ENOENT}};
    for (const auto& [name, code] : files)
        EXPECT_EQ(codeOf(_files.removeFileAtPath(_folder / name)), code) << name;
    for (const char* name : {"tree", "way", "file2"})
        EXPECT_EQ(codeOf(_files.removeItemAtPath(_folder / name)), 0) << name;
    EXPECT_EQ(_folder.items(), Items({"kept/", "kept/file"}));
}

/// Moves a file, a folder and a link, onto free names and onto taken ones, and makes new files
/// there.
void expectNothingIsReplaced(FileManager& files, const test::TemporaryDirectory& folder) {
    folder.writeFile("file", "text");
    folder.writeFile("folder/inner", "inner");
    folder.writeFile("other", "other");
    ASSERT_EQ(::mkdir((folder / "empty").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("nowhere", (folder / "dangling").c_str()), 0);
    for (const char* from : {"file", "folder", "dangling"}) {
        const std::string moved = std::string(from) + "-moved";
        for (const char* taken : {"other", "empty", "dangling", from}) {
            EXPECT_EQ(codeOf(files.moveItemAtPath(folder / from, folder / taken)), EEXIST)
                << from << " to " << taken;
        }
        EXPECT_EQ(codeOf(files.moveItemAtPath(folder / from, folder / moved)), 0) << from;
        EXPECT_EQ(codeOf(files.moveItemAtPath(folder / from, folder / moved)), ENOENT) << from;
        if (std::string_view(from) != "dangling") {
            ASSERT_TRUE(files.moveItemAtPath(folder / moved, folder / from).ok());
        }
    }
    EXPECT_EQ(codeOf(files.moveItemAtPath(folder / "file", folder / "absent/file")), ENOENT);
    EXPECT_EQ(codeOf(files.moveItemAtPath(folder / "folder", folder / "folder/below")), EINVAL);
    EXPECT_EQ(folder.items(), std::vector<std::string>({"dangling-moved@", "empty/", "file",
                                                        "folder/", "folder/inner", "other"}));
    EXPECT_EQ(readFile(folder / "file"), "text");
    EXPECT_EQ(readFile(folder / "other"), "other");

    const std::string big(700000, 'x');
    EXPECT_EQ(codeOf(files.createFileAtPath(folder / "new", bytesOf(big))), 0);
    for (const char* taken : {"new", "folder", "dangling-moved"})
        EXPECT_EQ(codeOf(files.createFileAtPath(folder / taken, bytesOf("2"))), EEXIST) << taken;
    const auto pieces = files.newFileBesidePath(folder / "new");
    for (int i = 0; i < 3; ++i) {
        Bytes piece(700000, std::byte{'x'});
        pieces->write(piece);
    }
    for (const char* taken : {"new", "folder", "dangling-moved"})
        EXPECT_EQ(codeOf(pieces->finishAtPath(folder / taken)), EEXIST) << taken;
    EXPECT_EQ(codeOf(pieces->finishAtPath(folder / "pieces")), 0);
    EXPECT_TRUE(readFile(folder / "pieces") == big + big + big);
    EXPECT_EQ(codeOf(files.removeFileAtPath(folder / "pieces")), 0);
    EXPECT_EQ(codeOf(files.copyItemAtPath(folder / "new", folder / "new copy")), 0);
    EXPECT_TRUE(readFile(folder / "new copy") == big);
    EXPECT_EQ(codeOf(files.copyItemAtPath(folder / "folder", folder / "folder copy")), 0);
    EXPECT_EQ(readFile(folder / "folder copy/inner"), "inner");
    EXPECT_EQ(folder.items().size(), 10U) << testing::PrintToString(folder.items());
}

TEST_F(Moving, ReplacesNothing) {
    expectNothingIsReplaced(_files, _folder);
}

TEST_F(Moving, FileSystemsThatKnowLessGetTheSameInMoreSteps) {
    using Call = RefusedCalls::Call;
    const Call noUnnamedFiles = {"openat", O_TMPFILE & ~O_DIRECTORY, EOPNOTSUPP};
    const Call noSafeRename = {"renameat2", 0, EINVAL}, noLinks = {"linkat", 0, EPERM};
    const Call noCloning = {"copy_file_range", 0, EXDEV};
    const std::vector<Call> cases[] = {
        {noUnnamedFiles},
        {noLinks},
        {noUnnamedFiles, noSafeRename, noCloning},
        {noUnnamedFiles, noSafeRename, noLinks},
    };
    for (const auto& calls : cases) {
        SCOPED_TRACE(&calls - cases);
        const test::TemporaryDirectory folder;
        const RefusedCalls refused(calls);
        expectNothingIsReplaced(_files, folder);
    }
}

} // namespace
} // namespace zelmora::platform
