#include "files_test_case.h"

#include <atomic>
#include <chrono>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
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
    for (size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>(i * 7 + i / 256);
    return text;
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

TEST_F(ReadingWriting, ContentsComeBackExactlyWholeAndMadeOfPieces) {
    const std::pair<size_t, size_t> cases[] = {
        {0, 1}, {4096, 4096}, {4097, 700}, {3000000, 99999}, {9000001, 5000000}};
    for (const auto& [size, pieceSize] : cases) {
        SCOPED_TRACE(size);
        const std::string text = sample(size);
        EXPECT_EQ(codeOf(_files.createFileAtPath(_folder / "whole", bytesOf(text))), 0);
        EXPECT_TRUE(contentsOf(_files, _folder / "whole") == text);
        EXPECT_EQ(createInPieces(_files, _folder / "pieces", text, pieceSize), 0);
        EXPECT_EQ(createInPieces(_files, _folder / "pieces", "other", 2), EEXIST);
        for (const char* name : {"whole", "pieces"}) {
            EXPECT_TRUE(readFile(_folder / name) == text) << name;
            EXPECT_EQ(codeOf(_files.removeFileAtPath(_folder / name)), 0);
        }
    }
    for (const size_t count : {1UL, 300UL}) { // a file that is not finished is nothing
        const auto file = _files.newFileBesidePath(_folder / "file");
        for (size_t i = 0; i < count; ++i) {
            Bytes bytes(10000, std::byte{'x'});
            file->write(bytes);
        }
    }
    EXPECT_EQ(_folder.items(), Items());
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
    ASSERT_EQ(::symlink("self", (_folder / "self").c_str()), 0);
    const Items before = _folder.items();
    const std::pair<const char*, int> cases[] = {
        {"fifo", EINVAL}, {"way", EINVAL}, {"device", EINVAL}, {".", EISDIR}, {"self", ELOOP}};
    ::alarm(20); // a blocked open must not hang the tests
    for (const auto& [name, code] : cases) {
        const std::string path = _folder / name;
        EXPECT_EQ(codeOf(_files.contentsAtPath(path)), code) << name;
        EXPECT_EQ(codeOf(_files.appendToFileAtPath(path, bytesOf("x"))), code) << name;
        EXPECT_EQ(codeOf(_files.replaceFileAtPath(path, bytesOf("x"))), code) << name;
    }
    ::alarm(0);
    EXPECT_EQ(_folder.items(), before);
}

TEST_F(ReadingWriting, AFileRewrittenWhileItIsReadIsNoticed) {
    const std::string path = _folder.writeFile("file", sample(9000000));
    std::atomic<bool> done = false;
    std::thread writer([&] {
        const int file = ::open(path.c_str(), O_WRONLY);
        for (off_t at = 0; !done; at = (at + 4096) % 9000000)
            EXPECT_EQ(::pwrite(file, "torn", 4, at), 4);
        ::close(file);
    });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int code = 0;
    while (code == 0 && std::chrono::steady_clock::now() < deadline)
        code = codeOf(_files.contentsAtPath(path));
    done = true;
    writer.join();
    EXPECT_EQ(code, EAGAIN);
    // As if it grew: the kernel's own files state a length that is not theirs.
    EXPECT_EQ(codeOf(_files.contentsAtPath("/proc/self/status")), EAGAIN);
}

TEST_F(ReadingWriting, ReplacingAndAppendingKeepPermissionsAndLinks) {
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
    EXPECT_EQ(codeOf(_files.appendToFileAtPath(file, bytesOf("er"))), 0);
    EXPECT_EQ(codeOf(_files.appendToFileAtPath(_folder / "way", bytesOf("and newest"))), 0);
    EXPECT_EQ(codeOf(_files.appendToFileAtPath(file, {})), 0);
    EXPECT_EQ(readFile(file), "newerand newest");
    const Items after = {"dangling@",         "dotfiles/", "dotfiles/new",
                         "dotfiles/settings", "link@",     "way@"};
    EXPECT_EQ(_folder.items(), after);
}

TEST_F(ReadingWriting, HundredsOfLevelsNeedFewDescriptors) {
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
        for (const size_t size : {600UL, 2000000UL})
            EXPECT_EQ(createInPieces(_files, _folder / "new", large, size), EFBIG) << size;
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
            for (int i = 0;; ++i)
                (void)_files.createFileAtPath(_folder / std::to_string(i), bytesOf(text));
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
