#include "platform/files/posix_new_file.h"

#include "platform/files/posix_file_manager.h"

#include <fcntl.h>
#include <utility>

namespace zelmora::platform {

namespace {

constexpr size_t kWrittenBackAtOnce = size_t{8} << 20; // bytes

int sync(int file) {
    return errnoUnless(resumed([&] { return ::fdatasync(file); }));
}

} // namespace

PosixNewFile::PosixNewFile(const std::string& path, mode_t mode)
    : _path(path), _sibling(_path), _mode(mode), _scratch(_sibling),
      _code(_sibling.error() != 0 ? _sibling.error() : open()) {}

int PosixNewFile::open() {
    _file = openUnnamedFile(_sibling, _mode);
    _isUnnamed = _file.isOpen();
    if (_isUnnamed)
        return 0;
    // Not every file system has unnamed files. If it was something else that failed, it fails
    // again.
    return _scratch.make([&](int folder, const char* name) {
        _file = openAt(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, _mode);
        return _file.isOpen() ? 0 : errno;
    });
}

void PosixNewFile::write(Bytes& bytes) {
    if (_code == 0)
        _code = writeAll(_file.get(), bytes.data(), bytes.size());
    _size += bytes.size();
    _heldBack += bytes.size();
    bytes.clear();
    if (_code == 0 && _heldBack >= kWrittenBackAtOnce) {
        // Only begun, for a shorter wait at the end; whether it worked is told there.
        ::sync_file_range(_file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
        _heldBack = 0;
    }
}

Status PosixNewFile::finishAtPath(const std::string& path) {
    if (_code == 0 && !std::exchange(_isComplete, true))
        _code = complete();
    if (_code != 0)
        return Error::fromErrno(_code, path, "create");
    return performAt(path, "create", [&](const Location& name) {
        const int code = takeName(name);
        return code != 0 ? code : keepName(name);
    });
}

int PosixNewFile::complete() {
    const int code = sync(_file.get());
    return code != 0 || _isUnnamed ? code : _file.close();
}

int PosixNewFile::takeName(const Location& name) {
    if (_isUnnamed) {
        const int code = nameUnnamedFile(_file.get(), name);
        if (code == 0 || code == EEXIST)
            return code;
        if (const int copyCode = makeScratchCopy())
            return copyCode;
        _isUnnamed = false;
    }
    return _scratch.takeName(name);
}

/// For a process that may not name an unnamed file.
int PosixNewFile::makeScratchCopy() {
    return makeScratchFile(_scratch, _mode, [&](int copy) {
        if (::lseek(_file.get(), 0, SEEK_SET) != 0)
            return errno;
        const int copyCode = copyBytes(_file.get(), copy, _size);
        return copyCode != 0 ? copyCode : sync(copy);
    });
}

} // namespace zelmora::platform
