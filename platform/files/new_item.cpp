#include "platform/files/new_item.h"

#include "platform/files/tree_walk.h"
#include "platform/text/bytes.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

namespace zelmora::platform {

namespace {

bool isUnsupported(int code) {
    return code == EINVAL || code == ENOSYS || code == EOPNOTSUPP;
}

/// Gives a file or a link its new name beside the old one, then takes the old one away. Killed
/// between the two, it has both: nothing is lost.
int renameByLinking(int fromFolder, const char* from, int toFolder, const char* to) {
    if (::linkat(fromFolder, from, toFolder, to, 0) != 0)
        return errno;
    const int code = errnoUnless(::unlinkat(fromFolder, from, 0));
    if (code != 0)
        ::unlinkat(toFolder, to, 0);
    return code;
}

/// Takes the new name with an empty item first, which the rename then replaces: the last resort
/// for folders, and for file systems without hard links.
int renameOntoPlaceholder(int fromFolder, const char* from, int toFolder, const char* to,
                          bool directory) {
    if (directory) {
        if (::mkdirat(toFolder, to, S_IRWXU) != 0)
            return errno;
    } else if (!openAt(toFolder, to, O_WRONLY | O_CREAT | O_EXCL, S_IRUSR).isOpen()) {
        return errno;
    }
    const int code = errnoUnless(::renameat(fromFolder, from, toFolder, to));
    if (code != 0)
        ::unlinkat(toFolder, to, directory ? AT_REMOVEDIR : 0);
    return code;
}

int createUnnamedFile(const Location& target, mode_t mode, const FileFiller& fill) {
    const FileDescriptor file = openUnnamedFile(target, mode);
    if (!file.isOpen())
        return errno;
    const int code = fill(file.get());
    return code != 0 ? code : nameUnnamedFile(file.get(), target);
}

/// Copies the next `count` bytes through memory. EAGAIN when the source has fewer.
int copyThroughMemory(int source, int copy, size_t count) {
    constexpr size_t kBufferSize = 256 * 1024;
    Bytes buffer(std::min(count, kBufferSize));
    while (count > 0) {
        const auto got =
            resumed([&] { return ::read(source, buffer.data(), std::min(count, buffer.size())); });
        if (got <= 0)
            return got == 0 ? EAGAIN : errno;
        const auto size = static_cast<size_t>(got);
        if (const int code = writeAll(copy, buffer.data(), size))
            return code;
        count -= size;
    }
    return 0;
}

} // namespace

int renameWithoutReplacing(int fromFolder, const char* from, int toFolder, const char* to) {
    const int code = errnoUnless(::renameat2(fromFolder, from, toFolder, to, RENAME_NOREPLACE));
    if (!isUnsupported(code))
        return code;
    struct stat status = {};
    if (::fstatat(fromFolder, from, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    const bool directory = S_ISDIR(status.st_mode);
    if (!directory) {
        const int linkCode = renameByLinking(fromFolder, from, toFolder, to);
        if (!isUnsupported(linkCode) && linkCode != EPERM) { // EPERM: has no hard links
            return linkCode;
        }
    }
    return renameOntoPlaceholder(fromFolder, from, toFolder, to, directory);
}

ScratchItem::~ScratchItem() {
    if (!_name.empty())
        removeTree(folder(), name(), true);
}

int ScratchItem::make(const std::function<int(int folder, const char* name)>& maker) {
    static std::atomic<unsigned> counter = 0;
    constexpr int kTries = 1000; // names left behind by killed processes with the same id
    const std::string prefix = _target.sibling(".zlm" + std::to_string(::getpid()) + "-");
    int code = EEXIST;
    for (int i = 0; i < kTries && code == EEXIST; ++i) {
        _name = prefix + std::to_string(counter++);
        code = maker(folder(), name());
    }
    if (code == EEXIST)
        _name.clear(); // somebody else's
    return code;
}

int ScratchItem::done(int code) {
    if (code == 0)
        _name.clear();
    return code;
}

int ScratchItem::takeName(const Location& to) {
    return done(renameWithoutReplacing(folder(), name(), to.folder(), to.name()));
}

int ScratchItem::replaceTarget() {
    return done(errnoUnless(::renameat(folder(), name(), folder(), _target.name())));
}

FileDescriptor openUnnamedFile(const Location& target, mode_t mode) {
    return openAt(target.folder(), target.parent().c_str(), O_TMPFILE | O_RDWR, mode);
}

int nameUnnamedFile(int file, const Location& target) {
    const int code = errnoUnless(::linkat(file, "", target.folder(), target.name(), AT_EMPTY_PATH));
    if (code != ENOENT)
        return code;
    // Kernels before 6.10 let only the superuser do that. The other way takes longer.
    const std::string itself = "/proc/self/fd/" + std::to_string(file);
    return errnoUnless(
        ::linkat(AT_FDCWD, itself.c_str(), target.folder(), target.name(), AT_SYMLINK_FOLLOW));
}

int createFile(const Location& target, mode_t mode, const FileFiller& fill) {
    int code = createUnnamedFile(target, mode, fill);
    if (code != 0 && code != EEXIST) {
        // Not every file system has unnamed files, and not every process may name them. If it was
        // something else that failed, it fails again.
        ScratchItem scratch(target);
        code = makeScratchFile(scratch, mode, fill);
        if (code == 0)
            code = scratch.takeTargetName();
    }
    return code != 0 ? code : keepName(target);
}

int keepName(const Location& target) {
    const int code = target.syncParent();
    if (code != 0)
        ::unlinkat(target.folder(), target.name(), 0); // ours, and of no use
    return code;
}

int makeScratchFile(ScratchItem& scratch, mode_t mode, const FileFiller& fill) {
    FileDescriptor file;
    const int code = scratch.make([&](int folder, const char* name) {
        file = openAt(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
        return file.isOpen() ? 0 : errno;
    });
    if (code != 0)
        return code;
    const int fillCode = fill(file.get());
    const int closeCode = file.close();
    return fillCode != 0 ? fillCode : closeCode;
}

int writeAll(int file, const std::byte* bytes, size_t count) {
    while (count > 0) {
        const auto written = resumed([&] { return ::write(file, bytes, count); });
        if (written <= 0)
            return written == 0 ? ENOSPC : errno;
        bytes += written;
        count -= static_cast<size_t>(written);
    }
    return 0;
}

int copyBytes(int source, int copy, size_t count) {
    while (count > 0) {
        const auto copied =
            resumed([&] { return ::copy_file_range(source, nullptr, copy, nullptr, count, 0); });
        if (copied <= 0) {
            // Whatever the reason, the plain way finds the same one or does not have it.
            return copyThroughMemory(source, copy, count);
        }
        count -= static_cast<size_t>(copied);
    }
    return 0;
}

} // namespace zelmora::platform
