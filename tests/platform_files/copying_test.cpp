#include "files_test_case.h"

#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/syscall.h>
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

/// Makes the kernel refuse to make a FIFO, as it refuses devices to most users.
void refuseNodes() {
    refuseCalls({{SYS_mknodat, 2, S_IFIFO, EPERM}});
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

    for (const char* name : {"/a.txt", "/sub/link", "/sub/fifo"}) { // single items
        const std::string copy = _folder / "single";
        EXPECT_EQ(codeOf(_files.copyItemAtPath(tree + name, copy)), 0) << name;
        EXPECT_EQ(portraitOf(copy), portraitOf(tree + name)) << name;
        EXPECT_EQ(codeOf(_files.removeItemAtPath(copy)), 0) << name;
    }
}

TEST_F(Copying, AFailureLeavesNothing) {
    _folder.writeFile("tree/file", "text");
    _folder.writeFile("tree/sub/file", "text");
    _folder.writeFile("plain", "");
    _folder.writeFile("odd/sub/file", "text");
    ASSERT_EQ(::mkfifo((_folder / "odd/sub/fifo").c_str(), 0600), 0);
    ASSERT_EQ(::symlink("tree/sub", (_folder / "way").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", (_folder / "dangling").c_str()), 0);
    const Items before = _folder.items();
    const std::tuple<const char*, const char*, int> cases[] = {
        {"tree", "plain", EEXIST},        {"tree", "dangling", EEXIST},
        {"plain", "tree", EEXIST},        {"absent", "copy", ENOENT},
        {"plain", "plain/copy", ENOTDIR}, {"tree", "absent/copy", ENOENT},
        {"tree", "tree/copy", EINVAL},    {"tree", "tree/sub/copy", EINVAL},
        {"tree", "way/copy", EINVAL},     {"tree/sub", "way/../sub/copy", EINVAL},
        {"tree", "tree/", EEXIST},
    };
    for (const auto& [from, to, code] : cases) {
        EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / from, _folder / to)), code) << from << to;
        EXPECT_EQ(_folder.items(), before) << from << to;
    }
    EXPECT_TRUE(passesInChild([&] {
        refuseNodes();
        const Status status = _files.copyItemAtPath(_folder / "odd", _folder / "copy");
        EXPECT_TRUE(status.error().message.starts_with(_folder / "odd/sub/fifo: copy to "))
            << status.error().message;
        EXPECT_EQ(_folder.items(), before);
    }));
    EXPECT_TRUE(passesInChild([&] { // an attribute that is lost
        EXPECT_EQ(::setxattr((_folder / "tree/file").c_str(), "user.note", "kept", 4, 0), 0);
        refuseCalls({{SYS_fsetxattr, 3, ~0U, ENOSPC}});
        for (const char* name : {"tree", "tree/file"})
            EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / name, _folder / "copy")), ENOSPC);
        EXPECT_EQ(_folder.items(), before);
    }));
    // A folder may be copied beside itself or out of another.
    EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "tree", _folder / "tree2")), 0);
    EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "tree/sub", _folder / "tree/sub2")), 0);
    EXPECT_EQ(readFile(_folder / "tree/sub2/file"), "text");
    EXPECT_EQ(readFile(_folder / "tree2/sub/file"), "text");
}

TEST_F(Copying, AScratchCopyGoesEvenWhenItsFoldersForbidChanges) {
    // Wherever the folder lists what cannot be copied, a locked folder is most likely before it.
    for (int i = 0; i < 20; ++i) {
        const std::string locked = "tree/locked" + std::to_string(i);
        _folder.writeFile(locked + "/file", "text");
        ASSERT_EQ(::chmod((_folder / locked).c_str(), 0555), 0);
        ASSERT_TRUE(i != 10 || ::mkfifo((_folder / "tree/fifo").c_str(), 0600) == 0);
    }
    ASSERT_EQ(::mkdir((_folder / "to").c_str(), 0700), 0);
    ASSERT_EQ(::chmod((_folder / "to").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(_folder.path().c_str(), 0755), 0);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(::getuid() != 0 || ::setresuid(65534, 65534, 65534) == 0);
        refuseNodes();
        EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "tree", _folder / "to/copy")), EPERM);
        EXPECT_TRUE(std::filesystem::is_empty(_folder / "to"));
    }));
}

TEST_F(Copying, ACopyThatAMountBringsIntoItsSourceEnds) {
    _folder.writeFile("tree/mount/file", "text");
    ASSERT_EQ(::mkdir((_folder / "to").c_str(), 0700), 0);
    EXPECT_TRUE(passesInChild([&] {
        if (::unshare(CLONE_NEWNS) != 0 ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount((_folder / "to").c_str(), (_folder / "tree/mount").c_str(), nullptr, MS_BIND,
                    nullptr) != 0) {
            return; // only the superuser can try this
        }
        EXPECT_EQ(codeOf(_files.copyItemAtPath(_folder / "tree", _folder / "to/copy")), EINVAL);
        EXPECT_TRUE(std::filesystem::is_empty(_folder / "to"));
    }));
}

TEST_F(Copying, HFSCodesAreReadAndSetInTheFirstEightBytes) {
    const char* attribute = "user.com.apple.FinderInfo";
    const std::string file = _folder.writeFile("file", "");
    const HFSCodes codes = {0x54455854, 0x616220FF};
    const auto raw = [&](const std::string& path) {
        char value[64] = {};
        const auto size = ::getxattr(path.c_str(), attribute, value, sizeof value);
        return size < 0 ? "none" : std::string(value, size_t(size));
    };
    EXPECT_EQ(_files.hfsCodesOfItemAtPath(file).value(), HFSCodes());
    EXPECT_EQ(codeOf(_files.setHFSCodes({}, file)), 0);
    EXPECT_EQ(raw(file), "none");
    EXPECT_EQ(codeOf(_files.setHFSCodes(codes, file)), 0);
    EXPECT_EQ(raw(file), "TEXTab \xFF" + std::string(24, '\0'));
    EXPECT_EQ(_files.hfsCodesOfItemAtPath(file).value(), codes);

    const std::string before = "12345678abcdefghijklmnopqrstuvwx";
    ASSERT_EQ(::setxattr(file.c_str(), attribute, before.data(), before.size(), 0), 0);
    EXPECT_EQ(codeOf(_files.setHFSCodes({}, file)), 0);
    EXPECT_EQ(raw(file), std::string(8, '\0') + before.substr(8));

    ASSERT_EQ(::symlink("file", (_folder / "link").c_str()), 0);
    ASSERT_EQ(::setxattr(file.c_str(), attribute, "TEXT", 4, 0), 0);
    EXPECT_EQ(_files.hfsCodesOfItemAtPath(file).value(), (HFSCodes{0x54455854, 0}));
    EXPECT_EQ(_files.hfsCodesOfItemAtPath(_folder / "link").value(), HFSCodes());
    EXPECT_EQ(codeOf(_files.setHFSCodes(codes, _folder / "link")), EPERM);
    EXPECT_EQ(codeOf(_files.hfsCodesOfItemAtPath(_folder / "absent")), ENOENT);
    EXPECT_EQ(codeOf(_files.setHFSCodes({}, _folder / "absent")), ENOENT);
    EXPECT_NE(codeOf(_files.setHFSCodes(codes, "/proc/self/status")), 0) << "holds no codes";
    EXPECT_EQ(codeOf(_files.setHFSCodes({}, "/proc/self/status")), 0);
}

} // namespace
} // namespace zelmora::platform
