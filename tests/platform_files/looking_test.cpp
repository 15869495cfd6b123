#include "files_test_case.h"

#include <map>
#include <set>

namespace zelmora::platform {
namespace {

using Looking = FilesTestCase;

TEST_F(Looking, AnswersForEveryKindOfItem) {
    _folder.writeFile("folder/file", "text");
    ASSERT_EQ(::symlink("file", (_folder / "folder/link").c_str()), 0);
    ASSERT_EQ(::symlink("folder", (_folder / "way").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", (_folder / "dangling").c_str()), 0);
    ASSERT_EQ(::mkfifo((_folder / "fifo").c_str(), 0600), 0);
    _folder.writeFile("\x93\xFA\x96\x7B", "not UTF-8");
    using enum FileType;
    const std::tuple<std::string, FileType, bool> items[] = {
        // and whether it leads to a folder
        {"folder", directory, true},          {"folder/link", symbolicLink, false},
        {"way", symbolicLink, true},          {"way/file", regular, false},
        {"dangling", symbolicLink, false},    {"fifo", other, false},
        {"\x93\xFA\x96\x7B", regular, false},
    };
    for (const auto& [name, type, isDirectory] : items) {
        EXPECT_EQ(_files.typeOfItemAtPath(_folder / name).value(), type) << name;
        EXPECT_TRUE(_files.fileExistsAtPath(_folder / name)) << name;
        EXPECT_EQ(_files.isDirectoryAtPath(_folder / name), isDirectory) << name;
    }
    const std::pair<std::string, int> none[] = {{"absent", ENOENT},
                                                {"folder/file/below", ENOTDIR},
                                                {std::string("folder/file\0x", 13), EINVAL}};
    for (const auto& [name, code] : none) {
        EXPECT_EQ(codeOf(_files.typeOfItemAtPath(_folder / name)), code) << name;
        EXPECT_FALSE(_files.fileExistsAtPath(_folder / name)) << name;
        EXPECT_FALSE(_files.isDirectoryAtPath(_folder / name)) << name;
    }
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
    const std::pair<const char*, int> cases[] = {
        {"folder", 0}, {"way", ENOTDIR}, {"folder/1", ENOTDIR}, {"absent", ENOENT}};
    for (const auto& [name, code] : cases)
        EXPECT_EQ(codeOf(_files.enumerateAtPath(_folder / name, stop)), code) << name;
    EXPECT_EQ(visits, 1);
}

TEST_F(Looking, EnumerationReadsManyNamesAndGoesOnBehindAFolderThatIsGone) {
    constexpr int kCount = 5000;
    _folder.writeFile("a/file", "");
    _folder.writeFile("b/file", "");
    for (int i = 0; i < kCount; ++i)
        ASSERT_EQ(::mknod((_folder / (std::string(100, 'n') + std::to_string(i))).c_str(),
                          S_IFREG | 0600, 0),
                  0);
    std::set<std::string> seen;
    bool isGone = false;
    const auto visit = [&](const std::string& path, FileType type) {
        EXPECT_TRUE(seen.insert(path).second) << path;
        if (type == FileType::directory && !isGone) // the first of the two
            isGone = _files.removeItemAtPath(_folder / path).ok();
        return true;
    };
    EXPECT_EQ(codeOf(_files.enumerateAtPath(_folder.path(), visit)), ENOENT);
    EXPECT_EQ(seen.size(), kCount + 3U) << "two folders, the file of one, and the many";
}

} // namespace
} // namespace zelmora::platform
