#include "child_process.h"
#include "files_test_case.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace zelmora::platform {
namespace {

using ReadingWriting = FilesTestCase;
using test::readFile;

mode_t permissionsOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

/// What every byte is, and bytes that are no text.
std::string sample(size_t size) {
    std::string text(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>(i * 7 + i / 256);
    }
    return text;
}

TEST_F(ReadingWriting, CreatedContentsComeBackExactly) {
    for (const size_t size : {0UL, 1UL, 4095UL, 4096UL, 4097UL, 3000000UL, 9000001UL}) {
        const std::string path = _folder / ("file" + std::to_string(size));
        const std::string text = sample(size);
        EXPECT_EQ(codeOf(_files.createFileAtPath(path, bytesOf(text))), 0) << size;
        EXPECT_TRUE(contentsOf(_files, path) == text) << size;
        EXPECT_TRUE(readFile(path) == text) << size;
    }
    EXPECT_EQ(_folder.items().size(), 7U);
}

/// Makes a file out of pieces of this size; answers what finishing it does.
int createInPieces(FileManager& files, const std::string& path, std::string_view text,
                   size_t pieceSize) {
    const auto file = files.newFileBesidePath(path);
    for (; !text.empty(); text.remove_prefix(std::min(pieceSize, text.size()))) {
        const ByteView piece = bytesOf(text.substr(0, pieceSize));
        Bytes bytes(piece.begin(), piece.end());
        file->write(bytes);
        EXPECT_TRUE(bytes.empty());
    }
    return codeOf(file->finishAtPath(path));
}

TEST_F(ReadingWriting, PiecesMakeUpTheFile) {
    const struct {
        size_t size;
        size_t pieceSize;
    } cases[] = {{0, 1},          {1, 1},           {5000, 700},
                 {1 << 20, 4096}, {3000000, 99999}, {3000000, 5000000}};
    for (const auto& [size, pieceSize] : cases) {
        const std::string path = _folder / std::to_string(pieceSize);
        const std::string text = sample(size);
        EXPECT_EQ(createInPieces(_files, path, text, pieceSize), 0) << size;
        EXPECT_TRUE(readFile(path) == text) << size << " in pieces of " << pieceSize;
        EXPECT_EQ(createInPieces(_files, path, "other", 2), EEXIST) << size;
        EXPECT_TRUE(readFile(path) == text) << size;
        EXPECT_EQ(codeOf(_files.removeFileAtPath(path)), 0);
    }
}

TEST_F(ReadingWriting, ANewFileThatIsNotFinishedIsNothing) {
    for (const size_t count : {0UL, 1UL, 300UL}) {
        const auto file = _files.newFileBesidePath(_folder / "file");
        for (size_t i = 0; i < count; ++i) {
            Bytes bytes(10000, std::byte{'x'});
            file->write(bytes);
        }
    }
    EXPECT_EQ(_folder.items(), Items());
}

TEST_F(ReadingWriting, CreatingNeverReplacesAnything) {
    const std::string file = _folder.writeFile("file", "old");
    _folder.writeFile("folder/inner", "old");
    ASSERT_EQ(::symlink("nowhere", (_folder / "dangling").c_str()), 0);
    const Items before = _folder.items();
    const struct {
        std::string name;
        int code;
    } cases[] = {
        {"file", EEXIST},
        {"folder", EEXIST},
        {"dangling", EEXIST},
        {"file/below", ENOTDIR},
        {"absent/file", ENOENT},
        {std::string(256, 'n'), ENAMETOOLONG},
        {std::string("new\0x", 5), EINVAL},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(codeOf(_files.createFileAtPath(_folder / c.name, bytesOf("new"))), c.code)
            << c.name;
        EXPECT_EQ(createInPieces(_files, _folder / c.name, "new", 2), c.code) << c.name;
        EXPECT_EQ(_folder.items(), before) << c.name;
    }
    EXPECT_EQ(readFile(file), "old");
}

TEST_F(ReadingWriting, NamesMayBeAsLongAsTheFileSystemAllows) {
    const std::string path = _folder / std::string(255, 'n');
    EXPECT_EQ(codeOf(_files.createFileAtPath(path, bytesOf("one"))), 0);
    EXPECT_EQ(codeOf(_files.replaceFileAtPath(path, bytesOf("two"))), 0);
    EXPECT_EQ(contentsOf(_files, path), "two");
    EXPECT_EQ(codeOf(_files.copyItemAtPath(path, _folder / std::string(255, 'c'))), 0);
    EXPECT_EQ(_folder.items().size(), 2U);
}

TEST_F(ReadingWriting, NewItemsGetThePermissionsThatTheProcessGives) {
    const mode_t mask = ::umask(027);
    EXPECT_EQ(codeOf(_files.createFileAtPath(_folder / "file", bytesOf("x"))), 0);
    EXPECT_EQ(codeOf(_files.replaceFileAtPath(_folder / "settings", bytesOf("x"))), 0);
    EXPECT_EQ(codeOf(_files.createDirectoryAtPath(_folder / "folder/inner")), 0);
    ::umask(mask);
    EXPECT_EQ(permissionsOf(_folder / "file"), 0640U);
    EXPECT_EQ(permissionsOf(_folder / "settings"), 0640U);
    EXPECT_EQ(permissionsOf(_folder / "folder"), 0750U);
    EXPECT_EQ(permissionsOf(_folder / "folder/inner"), 0750U);
}

TEST_F(ReadingWriting, WhatIsNoRegularFileIsRefusedWithoutWaiting) {
    ASSERT_EQ(::mkfifo((_folder / "fifo").c_str(), 0600), 0);
    ASSERT_EQ(::symlink("fifo", (_folder / "way").c_str()), 0);
    ASSERT_EQ(::symlink("/dev/zero", (_folder / "device").c_str()), 0);
    ASSERT_EQ(::symlink("device", (_folder / "loop").c_str()), 0);
    ASSERT_EQ(::symlink("self", (_folder / "self").c_str()), 0);
    const Items before = _folder.items();
    const struct {
        const char* name;
        int code;
        int replaceCode;
    } cases[] = {
        {"fifo", EINVAL, EINVAL}, {"way", EINVAL, EINVAL}, {"device", EINVAL, EINVAL},
        {"loop", EINVAL, EINVAL}, {".", EISDIR, EISDIR},   {"self", ELOOP, ELOOP},
    };
    ::alarm(20); // a blocked open must not hang the tests
    for (const auto& c : cases) {
        const std::string path = _folder / c.name;
        EXPECT_EQ(codeOf(_files.contentsAtPath(path)), c.code) << c.name;
        EXPECT_EQ(codeOf(_files.appendToFileAtPath(path, bytesOf("x"))), c.code) << c.name;
        EXPECT_EQ(codeOf(_files.replaceFileAtPath(path, bytesOf("x"))), c.replaceCode) << c.name;
    }
    ::alarm(0);
    EXPECT_EQ(codeOf(_files.contentsAtPath(_folder / "absent")), ENOENT);
    EXPECT_EQ(codeOf(_files.appendToFileAtPath(_folder / "absent", bytesOf("x"))), ENOENT);
    EXPECT_EQ(_folder.items(), before);
}

TEST_F(ReadingWriting, LengthsThatAreNotTrueAreNoticed) {
    // The kernel's own files state a length that is not theirs: as if they grew or shrank.
    EXPECT_EQ(codeOf(_files.contentsAtPath("/proc/self/status")), EAGAIN) << "longer than stated";
    const char* shorter = "/sys/devices/system/cpu/online";
    if (_files.fileExistsAtPath(shorter)) {
        EXPECT_EQ(codeOf(_files.contentsAtPath(shorter)), EAGAIN) << "shorter than stated";
        EXPECT_EQ(codeOf(_files.copyItemAtPath(shorter, _folder / "copy")), EAGAIN);
        EXPECT_EQ(_folder.items(), Items());
    }
}

TEST_F(ReadingWriting, AFileRewrittenWhileItIsReadIsNoticed) {
    const std::string path = _folder.writeFile("file", sample(9000000));
    std::atomic<bool> done = false;
    std::thread writer([&] {
        const int file = ::open(path.c_str(), O_WRONLY);
        for (off_t at = 0; !done; at = (at + 4096) % 9000000) {
            EXPECT_EQ(::pwrite(file, "torn", 4, at), 4);
        }
        ::close(file);
    });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int code = 0;
    while (code == 0 && std::chrono::steady_clock::now() < deadline) {
        code = codeOf(_files.contentsAtPath(path));
    }
    done = true;
    writer.join();
    EXPECT_EQ(code, EAGAIN);
}

TEST_F(ReadingWriting, ReplacingKeepsPermissionsAndLinks) {
    const std::string file = _folder.writeFile("dotfiles/settings", "old");
    ASSERT_EQ(::chmod(file.c_str(), 0604), 0);
    ASSERT_EQ(::symlink("dotfiles/settings", (_folder / "link").c_str()), 0);
    ASSERT_EQ(::symlink((_folder / "link").c_str(), (_folder / "way").c_str()), 0);
    ASSERT_EQ(::symlink("dotfiles/new", (_folder / "dangling").c_str()), 0);
    EXPECT_EQ(codeOf(_files.replaceFileAtPath(_folder / "way", bytesOf("new"))), 0);
    EXPECT_EQ(readFile(file), "new");
    EXPECT_EQ(permissionsOf(file), 0604U);
    EXPECT_EQ(codeOf(_files.replaceFileAtPath(_folder / "dangling", bytesOf("first"))), 0);
    EXPECT_EQ(readFile(_folder / "dotfiles/new"), "first");
    const Items after = {"dangling@",         "dotfiles/", "dotfiles/new",
                         "dotfiles/settings", "link@",     "way@"};
    EXPECT_EQ(_folder.items(), after);
}

TEST_F(ReadingWriting, AppendingTouchesNothingThatWasThere) {
    const std::string file = _folder.writeFile("log", "one\n");
    ASSERT_EQ(::symlink("log", (_folder / "link").c_str()), 0);
    EXPECT_EQ(codeOf(_files.appendToFileAtPath(file, bytesOf("two\n"))), 0);
    EXPECT_EQ(codeOf(_files.appendToFileAtPath(_folder / "link", bytesOf("three\n"))), 0);
    EXPECT_EQ(codeOf(_files.appendToFileAtPath(file, {})), 0);
    EXPECT_EQ(readFile(file), "one\ntwo\nthree\n");
}

TEST_F(ReadingWriting, FoldersAreMadeWithTheOnesAboveThem) {
    _folder.writeFile("file", "");
    ASSERT_EQ(::mkdir((_folder / "real").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("real", (_folder / "way").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", (_folder / "dangling").c_str()), 0);
    const struct {
        const char* name;
        int code;
    } cases[] = {
        {"a/b/c", 0},        {"a/b/c", 0},         {"a//d/", 0},
        {"way", 0},          {"way/in", 0},        {"file", EEXIST},
        {"file/x", ENOTDIR}, {"dangling", EEXIST}, {"dangling/x", EEXIST},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(codeOf(_files.createDirectoryAtPath(_folder / c.name)), c.code) << c.name;
    }
    const Items after = {"a/",   "a/b/",  "a/b/c/",   "a/d/", "dangling@",
                         "file", "real/", "real/in/", "way@"};
    EXPECT_EQ(_folder.items(), after);
    EXPECT_EQ(codeOf(_files.createDirectoryAtPath("")), ENOENT);
    EXPECT_EQ(codeOf(_files.createDirectoryAtPath("/proc/a/b")), ENOENT) << "never made there";
}

TEST_F(ReadingWriting, AFullDiskLeavesEverythingAsItWas) {
    // A limit on the size of files stands in for the full disk: the first bytes fit, the rest do
    // not.
    const std::string large = sample(4000000);
    const std::string source = _folder.writeFile("source", sample(5000));
    const std::string old = _folder.writeFile("old", "old");
    const std::string log = _folder.writeFile("log", "line\n");
    EXPECT_TRUE(passesInChild([&] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {1000, 1000};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        const std::string text = sample(5000);
        EXPECT_EQ(codeOf(_files.createFileAtPath(_folder / "new", bytesOf(text))), EFBIG);
        for (const size_t pieceSize : {600UL, 1000UL, 100000UL, 2000000UL}) {
            EXPECT_EQ(createInPieces(_files, _folder / "new", large, pieceSize), EFBIG)
                << pieceSize;
        }
        EXPECT_EQ(codeOf(_files.replaceFileAtPath(old, bytesOf(text))), EFBIG);
        EXPECT_EQ(codeOf(_files.copyItemAtPath(source, _folder / "copy")), EFBIG);
        EXPECT_EQ(codeOf(_files.appendToFileAtPath(log, bytesOf(text))), ENOSPC);
    }));
    EXPECT_EQ(_folder.items(), Items({"log", "old", "source"}));
    EXPECT_EQ(readFile(old), "old");
    EXPECT_TRUE(readFile(log).starts_with("line\n"));
}

TEST_F(ReadingWriting, AKilledProcessLeavesWholeFilesOnly) {
    const std::string text = sample(400000);
    for (int round = 0; round < 20; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int i = 0;; ++i) {
                (void)_files.createFileAtPath(_folder / std::to_string(i), bytesOf(text));
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3 + round));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        for (const std::string& name : _folder.items()) {
            EXPECT_TRUE(std::isdigit(name[0])) << "stray " << name;
            EXPECT_TRUE(readFile(_folder / name) == text) << name;
            EXPECT_EQ(codeOf(_files.removeFileAtPath(_folder / name)), 0);
        }
    }
}

} // namespace
} // namespace zelmora::platform
