#include "platform/files/posix_file_manager.h"
#include "platform/threads/turns.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace zelmora::platform {

namespace {

int checkRegular(const struct stat& status) {
    if (S_ISREG(status.st_mode))
        return 0;
    return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
}

bool isUnchanged(const struct stat& before, const struct stat& after) {
    return before.st_size == after.st_size && before.st_mtim.tv_sec == after.st_mtim.tv_sec &&
           before.st_mtim.tv_nsec == after.st_mtim.tv_nsec;
}

class PosixReadableFile final : public ReadableFile {
  public:
    explicit PosixReadableFile(const std::string& path) : _path(path) {}

    /// Answers 0 or an errno, after which the file is of no use.
    int open() {
        const Location at(_path);
        return at.error() != 0 ? at.error() : openRegularFile(at, O_RDONLY, _file, _status);
    }

    [[nodiscard]] uint64_t size() const override { return static_cast<uint64_t>(_status.st_size); }

    Status read(uint64_t offset, std::span<std::byte> bytes) const override {
        while (!bytes.empty()) {
            const ssize_t got = readSome(offset, bytes);
            if (got <= 0)
                return failure(got == 0 ? EAGAIN : errno);
            offset += static_cast<uint64_t>(got);
            bytes = bytes.subspan(static_cast<size_t>(got));
        }
        return {};
    }

    Status checkUnchanged() const override {
        struct stat now = {};
        std::byte extra;
        if (::fstat(_file.get(), &now) != 0)
            return failure(errno);
        // Some file systems tell a size that is not the true one.
        const ssize_t more = readSome(size(), {&extra, 1});
        if (more < 0)
            return failure(errno);
        return more == 0 && isUnchanged(_status, now) ? Status() : failure(EAGAIN);
    }

  private:
    ssize_t readSome(uint64_t offset, std::span<std::byte> bytes) const {
        return resumed([&] {
            return ::pread(_file.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        });
    }

    Error failure(int code) const { return Error::fromErrno(code, _path, "read"); }

    const std::string _path;
    FileDescriptor _file;
    struct stat _status = {};
};

/// Reads all of a file; a large one on several threads. Copying from the system's cache and
/// touching memory for the first time are what takes time, not the disk, which sees one reading
/// that goes forward.
Status readAll(const ReadableFile& file, std::span<std::byte> bytes) {
    constexpr size_t kLargeSize = size_t{8}
                                  << 20;      // bytes; less is read sooner than a thread starts
    constexpr size_t kPart = size_t{1} << 20; // bytes
    if (bytes.size() < kLargeSize)
        return file.read(0, bytes);
    Turns turns(0, static_cast<int>((bytes.size() + kPart - 1) / kPart));
    Status status;
    workInTurns(turns, [&] {
        while (const auto part = turns.take()) {
            const size_t begin = static_cast<size_t>(*part) * kPart;
            const Status read =
                file.read(begin, bytes.subspan(begin, std::min(kPart, bytes.size() - begin)));
            if (!turns.await(*part))
                return;
            status = read;
            if (read.ok())
                turns.pass(*part);
            else
                turns.stop();
        }
    });
    return status;
}

} // namespace

int openRegularFile(const Location& at, int flags, FileDescriptor& file, struct stat& status) {
    if (const int code = at.status(status, 0))
        return code;
    if (const int code = checkRegular(status))
        return code;
    // O_NONBLOCK: what has the name may have become a FIFO since.
    file = openAt(at.folder(), at.name(), flags | O_NONBLOCK | O_NOCTTY);
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
        return errno;
    return checkRegular(status);
}

Result<std::unique_ptr<ReadableFile>> PosixFileManager::openFileAtPath(const std::string& path) {
    auto file = std::make_unique<PosixReadableFile>(path);
    if (const int code = file->open())
        return Error::fromErrno(code, path, "read");
    return std::unique_ptr<ReadableFile>(std::move(file));
}

Result<Bytes> PosixFileManager::contentsAtPath(const std::string& path) {
    PosixReadableFile file(path);
    if (const int code = file.open())
        return Error::fromErrno(code, path, "read");
    Bytes contents;
    try {
        contents.resize(file.size());
    } catch (const std::bad_alloc&) {
        return Error::fromErrno(ENOMEM, path, "read");
    } catch (const std::length_error&) {
        return Error::fromErrno(ENOMEM, path, "read");
    }
    Status status = readAll(file, contents);
    if (status.ok())
        status = file.checkUnchanged();
    if (!status.ok())
        return status.error();
    return contents;
}

} // namespace zelmora::platform
