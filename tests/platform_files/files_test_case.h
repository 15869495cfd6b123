// What every test of the file manager starts with, and how to run part of one in a process of its
// own, where it may give up rights or be killed.
#pragma once

#include "platform/files/file_manager.h"
#include "tests/support/temporary_directory.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace zelmora::platform {

class FilesTestCase : public testing::Test {
  protected:
    using Items = std::vector<std::string>;

    test::TemporaryDirectory _folder;
    FileManager& _files = FileManager::defaultManager();
};

/// The errno of a Status or Result, 0 for success.
template<typename Answer>
int codeOf(const Answer& answer) {
    return answer.ok() ? 0 : answer.error().code;
}

/// The contents at `path` as chars, "<errno>" when they cannot be read.
inline std::string contentsOf(FileManager& files, const std::string& path) {
    const auto contents = files.contentsAtPath(path);
    return contents.ok() ? std::string(charsOf(contents.value()))
                         : "<" + std::to_string(contents.error().code) + ">";
}

/// Runs `body` in a child process; whether none of its expectations failed.
template<typename Body>
bool passesInChild(Body body) {
    const pid_t child = ::fork();
    if (child == 0) {
        body();
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// A system call that the kernel is to refuse, if this argument has one of these bits.
struct RefusedCall {
    long number;
    unsigned argument;
    uint32_t bits;
    int code;
};

/// Makes the kernel refuse `calls` to this process, for good; as a file system would that does
/// not know them.
inline void refuseCalls(const std::vector<RefusedCall>& calls) {
    std::vector<sock_filter> program;
    const auto load = [&](size_t offset) {
        program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<uint32_t>(offset)));
    };
    for (const RefusedCall& call : calls) {
        load(offsetof(seccomp_data, nr));
        program.push_back(
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<uint32_t>(call.number), 0, 3));
        load(offsetof(seccomp_data, args) + call.argument * sizeof(uint64_t));
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, call.bits, 0, 1));
        program.push_back(
            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<uint32_t>(call.code)));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    ASSERT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
}

} // namespace zelmora::platform
