#include "files_test_case.h"

#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <sys/xattr.h>

namespace zelmora::platform {
namespace {

using Copying = FilesTestCase;
using test::readFile;

/// All that a copy is to keep of an item, in one comparable line.
std::string portraitOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    std::ostringstream portrait;
    portrait << "mode " << status.st_mode << " owner " << status.st_uid << " changed "
             << status.st_mtim.tv_sec << "." << status.st_mtim.tv_nsec;
    for (const char* attribute : {"user.note", "user.other"}) {
        char value[100] = {};
        const auto size = ::lgetxattr(path.c_str(), attribute, value, sizeof value);
        portrait << " " << attribute << (size < 0 ? " none" : " = ") << value;
    }
    if (S_ISLNK(status.st_mode))
        portrait << " to " << std::filesystem::read_symlink(path);
    else if (S_ISREG(status.st_mode))
        portrait << " holds " << readFile(path);
    return portrait.str();
}

void setChanged(const std::string& path, time_t seconds) {
    const timespec times[] = {{seconds, 1}, {seconds, 123456789}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

TEST_F(Copying, ATreeIsCopiedWithAllThatBelongsToIt) {
    const std::vector<std::string> names = {"",          "/a.txt",   "/\x93\xFA\xFF",
                                            "/sub",      "/sub/.b",  "/sub/empty",
                                            "/sub/link", "/sub/big", "/sub/fifo"};
    const std::string tree = _folder / "tree";
    _folder.writeFile("tree/a.txt", "a");
    _folder.writeFile("tree/\x93\xFA\xFF", "not UTF-8");
    _folder.writeFile("tree/sub/.b", "");
    _folder.writeFile("tree/sub/big", std::string(1000000, 'b'));
    ASSERT_EQ(::mkdir((tree + "/sub/empty").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("../nowhere", (tree + "/sub/link").c_str()), 0);
    ASSERT_EQ(::mkfifo((tree + "/sub/fifo").c_str(), 0666), 0);
    ASSERT_EQ(::setxattr((tree + "/a.txt").c_str(), "user.note", "kept", 4, 0), 0);
    ASSERT_EQ(::setxattr((tree + "/a.txt").c_str(), "user.other", "as well", 7, 0), 0);
    ASSERT_EQ(::setxattr((tree + "/sub").c_str(), "user.note", "too", 3, 0), 0);
    ASSERT_EQ(::chmod((tree + "/a.txt").c_str(), 0444), 0);
    ASSERT_EQ(::chmod((tree + "/sub").c_str(), 0555), 0);
    if (::getuid() == 0) {
        ASSERT_EQ(::lchown((tree + "/sub/link").c_str(), 1234, 1234), 0);
        ASSERT_EQ(::lchown((tree + "/sub/big").c_str(), 1234, 1234), 0);
    }
    for (size_t i = names.size(); i-- > 0;)
        setChanged(tree + names[i], 1000000000 + time_t(i));
    ASSERT_EQ(codeOf(_files.copyItemAtPath(tree, _folder / "copy/")), 0);
    for (const std::string& name : names)
        EXPECT_EQ(portraitOf(_folder / "copy" + name), portraitOf(tree + name)) << name;
    EXPECT_EQ(_folder.items().size(), 2 * names.size());

    EXPECT_EQ(codeOf(_files.copyItemAtPath(tree + "/a.txt", _folder / "single")), 0);
    EXPECT_EQ(portraitOf(_folder / "single"), portraitOf(tree + "/a.txt"));
}

TEST_F(Copying, AFailureLeavesNothing) {
    _folder.writeFile("tree/file", "text");
    _folder.writeFile("tree/sub/file", "text");
    _folder.writeFile("plain", "");
    ASSERT_EQ(::symlink("tree/sub", (_folder / "way").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", (_folder / "dangling").c_str()), 0);
    const Items before = _folder.items();
    const std::tuple<const char*, const char*, int> cases[] = {
        {"tree", "plain", EEXIST},    {"tree", "dangling", EEXIST},      {"plain", "tree", EEXIST},
        {"absent", "copy", ENOENT},   {"tree", "absent/copy", ENOENT},   {"tree", "tree/", EEXIST},
        {"tree", "way/copy", EINVAL}, {"tree", "tree/sub/copy", EINVAL},
    };
    for (const auto& [from, to, code] : cases) {
        EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / from, _folder / to)), code) << from << to;
        EXPECT_EQ(_folder.items(), before) << from << to;
    }
    { // an attribute that is lost
        EXPECT_EQ(::setxattr((_folder / "tree/file").c_str(), "user.note", "kept", 4, 0), 0);
        const RefusedCalls refused({{"fsetxattr", 0, ENOSPC}});
        for (const char* name : {"tree", "tree/file"})
            EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / name, _folder / "copy")), ENOSPC);
        EXPECT_EQ(_folder.items(), before);
    }
    // A folder may be copied beside itself or out of another.
    EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "tree", _folder / "tree2")), 0);
    EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "tree/sub", _folder / "tree/sub2")), 0);
    EXPECT_EQ(readFile(_folder / "tree/sub2/file"), "text");
}

TEST_F(Copying, HFSCodesAreReadAndSetInTheFirstEightBytes) {
    const char* attribute = "user.com.apple.FinderInfo";
    const std::string file = _folder.writeFile("file", "");
    const HFSCodes codes = {0x54455854, 0x616220FF};
    const auto raw = [&] {
        char value[64] = {};
        const auto size = ::getxattr(file.c_str(), attribute, value, sizeof value);
        return size < 0 ? "none" : std::string(value, size_t(size));
    };
    EXPECT_EQ(codeOf(_files.setHFSCodes(codes, file)), 0);
    EXPECT_EQ(raw(), "TEXTab \xFF" + std::string(24, '\0'));
    EXPECT_EQ(_files.hfsCodesOfItemAtPath(file).value(), codes);

    const std::string before = "12345678abcdefghijklmnopqrstuvwx";
    ASSERT_EQ(::setxattr(file.c_str(), attribute, before.data(), before.size(), 0), 0);
    EXPECT_EQ(codeOf(_files.setHFSCodes({}, file)), 0);
    EXPECT_EQ(raw(), std::string(8, '\0') + before.substr(8));
}

} // namespace
} // namespace zelmora::platform
