#include "platform/files/posix_file_manager.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace zelmora::platform {

namespace {

constexpr size_t kLargeSize = size_t{8} << 20; // bytes; less is read sooner than a thread starts

int checkRegular(const struct stat& status) {
    if (S_ISREG(status.st_mode)) {
        return 0;
    }
    return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
}

bool isUnchanged(const struct stat& before, const struct stat& after) {
    return before.st_size == after.st_size && before.st_mtim.tv_sec == after.st_mtim.tv_sec &&
           before.st_mtim.tv_nsec == after.st_mtim.tv_nsec;
}

/// Reads up to `bytes.size()` bytes; `bytes` then has the size of what there was.
int readUpTo(int file, Bytes& bytes) {
    size_t count = 0;
    while (count < bytes.size()) {
        const auto got =
            resumed([&] { return ::read(file, bytes.data() + count, bytes.size() - count); });
        if (got < 0) {
            return errno;
        }
        // Less than asked for is the end of a regular file; at the expected size that is believed
        // at once, which saves a call for each file.
        count += static_cast<size_t>(got);
        if (got == 0 || count + 1 == bytes.size()) {
            break;
        }
    }
    bytes.resize(count);
    return 0;
}

/// Reads a large file on two threads. Copying from the system's cache and touching memory for the
/// first time are what takes time, not the disk, which sees one reading that goes forward.
class LargeReading {
  public:
    LargeReading(int file, Bytes& bytes) : _file(file), _bytes(bytes) {}

    /// Like readUpTo.
    int run() {
        std::thread other;
        try {
            other = std::thread([this] { readSteps(); });
        } catch (const std::system_error&) { // no more threads: one does it all
        }
        readSteps();
        if (other.joinable()) {
            other.join();
        }
        _bytes.resize(_count);
        return _code;
    }

  private:
    static constexpr size_t kStep = size_t{1} << 20; // bytes

    void readSteps() {
        for (size_t begin; (begin = _next.fetch_add(kStep)) < _bytes.size();) {
            readStep(begin, std::min(begin + kStep, _bytes.size()));
        }
    }

    void readStep(size_t begin, size_t end) {
        while (begin < end) {
            const auto got = resumed([&] {
                return ::pread(_file, _bytes.data() + begin, end - begin,
                               static_cast<off_t>(begin));
            });
            if (got < 0) {
                _code = errno;
            }
            if (got <= 0) {
                return;
            }
            begin += static_cast<size_t>(got);
            _count += static_cast<size_t>(got);
        }
    }

    const int _file;
    Bytes& _bytes;
    std::atomic<size_t> _next = 0;
    std::atomic<size_t> _count = 0; ///< bytes read
    std::atomic<int> _code = 0;
};

int readContents(const Location& at, Bytes& contents) {
    FileDescriptor file;
    struct stat before = {};
    if (const int code = openRegularFile(at, O_RDONLY, file, before)) {
        return code;
    }
    const auto size = static_cast<size_t>(before.st_size);
    contents.resize(size + 1); // room for one byte that must not be there
    const bool isLarge = size >= kLargeSize;
    if (const int code =
            isLarge ? LargeReading(file.get(), contents).run() : readUpTo(file.get(), contents)) {
        return code;
    }
    struct stat after = {};
    if (::fstat(file.get(), &after) != 0) {
        return errno;
    }
    return contents.size() == size && isUnchanged(before, after) ? 0 : EAGAIN;
}

} // namespace

int openRegularFile(const Location& at, int flags, FileDescriptor& file, struct stat& status) {
    if (const int code = at.status(status, 0)) {
        return code;
    }
    if (const int code = checkRegular(status)) {
        return code;
    }
    // O_NONBLOCK: what has the name may have become a FIFO since.
    file = openAt(at.folder(), at.name(), flags | O_NONBLOCK | O_NOCTTY);
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return errno;
    }
    return checkRegular(status);
}

Result<Bytes> PosixFileManager::contentsAtPath(const std::string& path) {
    Bytes contents;
    const Status status = performAt(path, "read", [&](const Location& at) {
        try {
            return readContents(at, contents);
        } catch (const std::bad_alloc&) {
            return ENOMEM;
        } catch (const std::length_error&) {
            return ENOMEM;
        }
    });
    if (!status) {
        return status.error();
    }
    return contents;
}

} // namespace zelmora::platform
