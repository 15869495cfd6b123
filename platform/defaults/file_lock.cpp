#include "platform/defaults/file_lock.h"

#include <chrono>
#include <sys/file.h>
#include <thread>

namespace zelmora::platform {

Result<FileLock> FileLock::acquire(const std::string& path) {
    using namespace std::chrono_literals;
    constexpr auto kPatience = 5s;
    constexpr auto kPause = 5ms;

    // Open for writing: network file systems grant an exclusive lock on nothing less.
    FileDescriptor file =
        openAt(AT_FDCWD, path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (!file.isOpen())
        return Error::fromErrno(errno, path, "open");
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (resumed([&] { return flock(file.get(), LOCK_EX | LOCK_NB); }) != 0) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() > deadline)
            return Error::fromErrno(errno, path, "lock");
        std::this_thread::sleep_for(kPause);
    }
    return FileLock(std::move(file));
}

} // namespace zelmora::platform
