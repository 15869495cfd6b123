#include "platform/files/posix_file_manager.h"

#include <stdexcept>

namespace zelmora::platform {

namespace {

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

int readContents(const Location& at, Bytes& contents) {
    FileDescriptor file;
    struct stat before = {};
    if (const int code = openRegularFile(at, O_RDONLY, file, before)) {
        return code;
    }
    const auto size = static_cast<size_t>(before.st_size);
    contents.resize(size + 1); // room for one byte that must not be there
    if (const int code = readUpTo(file.get(), contents)) {
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
