// A file descriptor that closes itself, and the calls that every use of one repeats.
#pragma once

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace zelmora::platform {

/// Owns one file descriptor, or none. Move-only; used by one thread at a time.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : _descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : _descriptor(std::exchange(other._descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(_descriptor, other._descriptor);
        return *this;
    }
    ~FileDescriptor() { close(); }

    [[nodiscard]] bool isOpen() const { return _descriptor >= 0; }
    [[nodiscard]] int get() const { return _descriptor; }

    /// Closes it now. Answers 0 or an errno: for a file just written, a failing close can be the
    /// first news of lost bytes. Never repeated, the descriptor is gone in either case.
    int close() {
        const int descriptor = std::exchange(_descriptor, -1);
        return descriptor < 0 || ::close(descriptor) == 0 || errno == EINTR ? 0 : errno;
    }

  private:
    int _descriptor = -1;
};

/// Repeats a system call for as long as a signal interrupts it.
template<typename Call>
auto resumed(Call call) {
    for (;;) {
        const auto answer = call();
        if (answer != -1 || errno != EINTR)
            return answer;
    }
}

/// openat, resumed and closed in child processes; errno tells why the answer is not open.
inline FileDescriptor openAt(int folder, const char* name, int flags, mode_t mode = 0) {
    return FileDescriptor(resumed([&] { return ::openat(folder, name, flags | O_CLOEXEC, mode); }));
}

/// 0 when `answer`, of a system call just made, tells success, else why it failed.
inline int errnoUnless(int answer) {
    return answer == 0 ? 0 : errno;
}

} // namespace zelmora::platform
