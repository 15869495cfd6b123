#include "files_test_case.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace zelmora::platform {
namespace {

using Looking = FilesTestCase;

TEST(StatusMessage, ShowsThePathSafelyFirst) {
    const struct {
        int code;
        const char* path;
        const char* message;
    } cases[] = {
        {ENOENT, "/a/b", "/a/b: open: No such file or directory"},
        {ENOSPC, "/\x93\xFA\n", "/\\x93\\xFA\\n: open: No space left on device"},
        {99999, "a", "a: open: error 99999"},
    };
    for (const auto& c : cases) {
        const Error error = Error::fromErrno(c.code, c.path, "open");
        EXPECT_EQ(error.message, c.message);
        EXPECT_EQ(error.code, c.code);
    }
}

TEST_F(Looking, AnswersForEveryKindOfItem) {
    _folder.writeFile("folder/file", "text");
    ASSERT_EQ(::symlink("file", (_folder / "folder/link").c_str()), 0);
    ASSERT_EQ(::symlink("folder", (_folder / "way").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", (_folder / "dangling").c_str()), 0);
    ASSERT_EQ(::mkfifo((_folder / "fifo").c_str(), 0600), 0);
    _folder.writeFile("\x93\xFA\x96\x7B", "not UTF-8");
    constexpr int kNone = -1;
    const struct {
        std::string name;
        bool exists;
        int type; // or kNone with `code`
        int code;
        bool directory;
    } cases[] = {
        {"folder", true, int(FileType::directory), 0, true},
        {"folder/file", true, int(FileType::regular), 0, false},
        {"folder/link", true, int(FileType::symbolicLink), 0, false},
        {"way", true, int(FileType::symbolicLink), 0, true},
        {"way/file", true, int(FileType::regular), 0, false},
        {"dangling", true, int(FileType::symbolicLink), 0, false},
        {"fifo", true, int(FileType::other), 0, false},
        {"\x93\xFA\x96\x7B", true, int(FileType::regular), 0, false},
        {"absent", false, kNone, ENOENT, false},
        {"folder/file/below", false, kNone, ENOTDIR, false},
        {std::string(256, 'n'), false, kNone, ENAMETOOLONG, false},
        {std::string("folder/file\0x", 13), false, kNone, EINVAL, false},
    };
    for (const auto& c : cases) {
        const std::string path = _folder / c.name;
        EXPECT_EQ(_files.fileExistsAtPath(path), c.exists) << c.name;
        const auto type = _files.typeOfItemAtPath(path);
        EXPECT_EQ(type.ok() ? int(type.value()) : kNone, c.type) << c.name;
        EXPECT_EQ(codeOf(type), c.code) << c.name;
        EXPECT_EQ(_files.isDirectoryAtPath(path), c.directory) << c.name;
    }
    EXPECT_EQ(codeOf(_files.typeOfItemAtPath("")), ENOENT);
}

TEST_F(Looking, EnumerationVisitsEverythingOnceAndFollowsNoLink) {
    for (const char* name : {"a.txt", ".hidden/b.txt", "sub/.c", "sub/deeper/d", "\xFF\xFE"}) {
        _folder.writeFile(name, "");
    }
    ASSERT_EQ(::symlink("..", (_folder / "sub/up").c_str()), 0);
    ASSERT_EQ(::mkdir((_folder / "empty").c_str(), 0700), 0);
    std::map<std::string, FileType> found;
    const Status status =
        _files.enumerateAtPath(_folder.path(), [&](const std::string& path, FileType type) {
            const size_t slash = path.rfind('/');
            EXPECT_TRUE(slash == std::string::npos || found.contains(path.substr(0, slash)))
                << path << " came before its folder";
            EXPECT_TRUE(found.emplace(path, type).second) << path << " came twice";
            return true;
        });
    EXPECT_EQ(codeOf(status), 0);
    using enum FileType;
    const std::map<std::string, FileType> expected = {
        {"a.txt", regular},        {".hidden", directory},   {".hidden/b.txt", regular},
        {"sub", directory},        {"sub/.c", regular},      {"sub/deeper", directory},
        {"sub/deeper/d", regular}, {"sub/up", symbolicLink}, {"\xFF\xFE", regular},
        {"empty", directory}};
    EXPECT_EQ(found, expected);
}

TEST_F(Looking, EnumerationStopsWhenToldAndOpensOnlyFolders) {
    _folder.writeFile("folder/1", "");
    _folder.writeFile("folder/2", "");
    ASSERT_EQ(::symlink("folder", (_folder / "way").c_str()), 0);
    int visits = 0;
    const auto stop = [&](const std::string&, FileType) { return ++visits, false; };
    EXPECT_EQ(codeOf(_files.enumerateAtPath(_folder / "folder", stop)), 0);
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(codeOf(_files.enumerateAtPath(_folder / "way", stop)), ENOTDIR);
    EXPECT_EQ(codeOf(_files.enumerateAtPath(_folder / "folder/1", stop)), ENOTDIR);
    EXPECT_EQ(codeOf(_files.enumerateAtPath(_folder / "absent", stop)), ENOENT);
    EXPECT_EQ(visits, 1);
}

TEST_F(Looking, EnumerationGoesOnBehindAFolderThatIsGone) {
    _folder.writeFile("a/file", "");
    _folder.writeFile("b/file", "");
    int files = 0;
    const Status status =
        _files.enumerateAtPath(_folder.path(), [&](const std::string& path, FileType type) {
            files += type == FileType::regular;
            if (files == 0 && type == FileType::directory) { // the first of the two
                EXPECT_EQ(codeOf(_files.removeItemAtPath(_folder / path)), 0);
                files = 100;
            }
            return true;
        });
    EXPECT_EQ(codeOf(status), ENOENT);
    EXPECT_EQ(files, 101);
}

TEST_F(Looking, EnumerationReadsFoldersOfManyNames) {
    constexpr int kCount = 5000;
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(::mknod((_folder / (std::string(100, 'n') + " " + std::to_string(i))).c_str(),
                          S_IFREG | 0600, 0),
                  0);
    }
    std::vector<bool> seen(kCount);
    const auto visit = [&](const std::string& path, FileType) {
        seen[std::stoul(path.substr(path.rfind(' ')))] = true;
        return true;
    };
    EXPECT_EQ(codeOf(_files.enumerateAtPath(_folder.path(), visit)), 0);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), true), kCount);
}

} // namespace
} // namespace zelmora::platform
