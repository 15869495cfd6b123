// What every test of the file manager starts with, and how to run part of one in a process of its
// own, where it may meet limits.
#pragma once

#include "platform/files/file_manager.h"
#include "tests/support/system_calls.h"
#include "tests/support/temporary_directory.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>
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

/// Refuses calls as a file system would that does not know them, for as long as it lives.
class RefusedCalls final : test::SystemCallObserver {
  public:
    struct Call {
        std::string_view function;
        int flags; ///< one of these, or 0
        int code;
    };

    explicit RefusedCalls(std::vector<Call> calls) : _calls(std::move(calls)) {}

  private:
    int before(test::SystemCall& call) override {
        for (const auto& [function, flags, code] : _calls)
            if (call.function == function && (flags == 0 || (call.flags & flags) != 0))
                return code;
        return 0;
    }

    const std::vector<Call> _calls;
    const test::ObservedSystemCalls _observed{*this};
};

} // namespace zelmora::platform
