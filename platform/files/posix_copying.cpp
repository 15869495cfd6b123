// A copy is built as a scratch item beside its destination and takes the name when it is whole.
// Folders are copied on one walk through the source with a stack of open folders beside it for the
// copy; until everything in it is there, a folder of the copy is open to its owner only, then it
// gets the attributes of its source.
//
// The copy is a backup of what is about to be changed, so it is on disk before it takes its name:
// a single file by fdatasync, a folder by one syncfs, which costs less than a sync for each file.

#include "platform/files/item_attributes.h"
#include "platform/files/new_item.h"
#include "platform/files/posix_file_manager.h"
#include "platform/files/tree_walk.h"
#include "platform/text/utf8.h"

#include <algorithm>
#include <array>
#include <climits>

namespace zelmora::platform {

namespace {

bool isSameItem(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

/// Copies the regular file `name` into the open file `copy`. A file that grows meanwhile is copied
/// up to the length it had at first, which is what it held then (it may be our own log).
int copyRegularFile(int folder, const char* name, int copy) {
    const FileDescriptor source =
        openAt(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    struct stat status = {};
    if (!source.isOpen() || ::fstat(source.get(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    const int code = copyBytes(source.get(), copy, static_cast<size_t>(status.st_size));
    return code != 0 ? code : copyAttributes(source.get(), status, copy);
}

int copyFileInto(int folder, const char* name, int copyFolder) {
    FileDescriptor copy =
        openAt(copyFolder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (!copy.isOpen())
        return errno;
    const int code = copyRegularFile(folder, name, copy.get());
    const int closeCode = copy.close();
    return code != 0 ? code : closeCode;
}

int copyLink(int folder, const char* name, int copyFolder, const char* copyName) {
    std::array<char, PATH_MAX> target = {}; // always ends in a NUL
    const auto length = ::readlinkat(folder, name, target.data(), target.size());
    struct stat status = {};
    if (length < 0 || ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    if (static_cast<size_t>(length) == target.size())
        return ENAMETOOLONG;
    if (::symlinkat(target.data(), copyFolder, copyName) != 0)
        return errno;
    return copyLinkAttributes(status, copyFolder, copyName);
}

/// Makes a FIFO, socket or device like `name`: it holds nothing to read, and nothing is opened.
int copyNode(int folder, const char* name, int copyFolder, const char* copyName) {
    struct stat status = {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::mknodat(copyFolder, copyName, status.st_mode, status.st_rdev) != 0 ||
        ::fchmodat(copyFolder, copyName, status.st_mode & ~static_cast<mode_t>(S_IFMT), 0) != 0)
        return errno;
    return copyLinkAttributes(status, copyFolder, copyName);
}

int makeCopyFolder(int in, const char* name, FileDescriptor& folder) {
    if (::mkdirat(in, name, S_IRWXU) != 0)
        return errno;
    folder = openAt(in, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    return folder.isOpen() ? 0 : errno;
}

/// Copies everything beneath a folder, and its attributes.
class FolderCopy {
  public:
    /// Copies into the empty folder `copy`. Answers 0 or an errno.
    int run(const Location& source, FileDescriptor copy);

    /// The item that failed, relative to the source.
    [[nodiscard]] const std::string& position() const { return _walk.relativePath(); }

  private:
    int copyEntry();
    int enterFolder();
    int finishFolder();

    TreeWalk _walk;
    FolderStack _copies;
    struct stat _copyIdentity = {};
};

int FolderCopy::run(const Location& source, FileDescriptor copy) {
    if (::fstat(copy.get(), &_copyIdentity) != 0)
        return errno;
    _copies.push(std::move(copy));
    int code = _walk.open(source.folder(), source.name());
    while (code == 0) {
        switch (_walk.next()) {
        case TreeWalk::Step::entry:
            code = copyEntry();
            break;
        case TreeWalk::Step::leaving:
            code = finishFolder();
            break;
        case TreeWalk::Step::left:
            break;
        case TreeWalk::Step::end:
            return 0;
        case TreeWalk::Step::failed:
            code = _walk.error();
            break;
        }
    }
    return code;
}

int FolderCopy::copyEntry() {
    switch (_walk.type()) {
    case FileType::regular:
        return copyFileInto(_walk.folder(), _walk.name(), _copies.top());
    case FileType::symbolicLink:
        return copyLink(_walk.folder(), _walk.name(), _copies.top(), _walk.name());
    case FileType::directory:
        return enterFolder();
    case FileType::other:
        return copyNode(_walk.folder(), _walk.name(), _copies.top(), _walk.name());
    }
    return EINVAL;
}

int FolderCopy::enterFolder() {
    FileDescriptor copy;
    if (const int code = makeCopyFolder(_copies.top(), _walk.name(), copy))
        return code;
    _copies.push(std::move(copy));
    if (const int code = _walk.enter())
        return code;
    struct stat status = {};
    if (::fstat(_walk.folder(), &status) != 0)
        return errno;
    return isSameItem(status, _copyIdentity) ? EINVAL : 0; // by a mount, the copy is in the source
}

int FolderCopy::finishFolder() {
    struct stat status = {};
    if (::fstat(_walk.folder(), &status) != 0)
        return errno;
    if (const int code = copyAttributes(_walk.folder(), status, _copies.top()))
        return code;
    if (_walk.relativePath().empty() && ::syncfs(_copies.top()) != 0)
        return errno;
    return _copies.pop();
}

/// EINVAL when `target` lies inside the folder `source`, by whatever way its path goes; else 0, or
/// why that cannot be told.
int checkOutside(const struct stat& source, const Location& target) {
    FileDescriptor folder = openAt(target.folder(), target.parent().c_str(), O_PATH | O_DIRECTORY);
    struct stat status = {};
    if (!folder.isOpen() || ::fstat(folder.get(), &status) != 0)
        return errno;
    for (;;) {
        if (isSameItem(status, source))
            return EINVAL;
        FileDescriptor outer = openAt(folder.get(), "..", O_PATH | O_DIRECTORY);
        struct stat outerStatus = {};
        if (!outer.isOpen() || ::fstat(outer.get(), &outerStatus) != 0)
            return errno;
        if (isSameItem(outerStatus, status))
            return 0; // the root is in itself
        folder = std::move(outer);
        status = outerStatus;
    }
}

int copySingleFile(const Location& source, const Location& target) {
    return createFile(target, S_IRUSR | S_IWUSR, [&](int copy) {
        const int code = copyRegularFile(source.folder(), source.name(), copy);
        return code != 0 ? code : errnoUnless(resumed([&] { return ::fdatasync(copy); }));
    });
}

/// The copy is there and on disk; its name has to be too, before its source is changed.
int takeTargetNameForGood(ScratchItem& scratch, const Location& target) {
    const int code = scratch.takeTargetName();
    return code != 0 ? code : target.syncParent();
}

/// A link, or what copyNode copies.
int copySingleItem(decltype(copyLink) copy, const Location& source, const Location& target) {
    ScratchItem scratch(target);
    const int code = scratch.make([&](int folder, const char* name) {
        return copy(source.folder(), source.name(), folder, name);
    });
    return code != 0 ? code : takeTargetNameForGood(scratch, target);
}

int copyFolder(const struct stat& status, const Location& source, const Location& target,
               std::string& failedAt) {
    if (const int code = checkOutside(status, target))
        return code;
    ScratchItem scratch(target);
    FileDescriptor copy;
    if (const int code = scratch.make(
            [&](int folder, const char* name) { return makeCopyFolder(folder, name, copy); })) {
        return code;
    }
    FolderCopy folderCopy;
    if (const int code = folderCopy.run(source, std::move(copy))) {
        failedAt = folderCopy.position();
        return code;
    }
    return takeTargetNameForGood(scratch, target);
}

int copyItem(const Location& source, const Location& target, std::string& failedAt) {
    struct stat status = {};
    if (const int code = source.status(status, AT_SYMLINK_NOFOLLOW))
        return code;
    struct stat taken = {};
    if (target.status(taken, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST; // found at the end as well, but at what cost
    switch (fileTypeOfMode(status.st_mode)) {
    case FileType::regular:
        return copySingleFile(source, target);
    case FileType::symbolicLink:
        return copySingleItem(copyLink, source, target);
    case FileType::directory:
        return copyFolder(status, source, target, failedAt);
    case FileType::other:
        return copySingleItem(copyNode, source, target);
    }
    return EINVAL;
}

} // namespace

bool PosixFileManager::itemAtPathContainsItemAtPath(const std::string& path,
                                                    const std::string& otherPath) {
    const Location at(path);
    const Location other(otherPath);
    struct stat status = {};
    struct stat otherStatus = {};
    if (at.error() != 0 || other.error() != 0 || at.status(status, AT_SYMLINK_NOFOLLOW) != 0 ||
        other.status(otherStatus, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    return isSameItem(status, otherStatus) || checkOutside(status, other) == EINVAL;
}

Status PosixFileManager::copyItemAtPath(const std::string& path, const std::string& toPath) {
    const std::string targetPath = toPath.substr(0, toPath.find_last_not_of('/') + 1);
    const Location source(path);
    const Location target(targetPath);
    int code = source.error() != 0 ? source.error() : target.error();
    std::string failedAt;
    if (code == 0)
        code = copyItem(source, target, failedAt);
    return code == 0 ? Status()
                     : Error::fromErrno(code, pathInTree(path, failedAt),
                                        "copy to " + terminalPath(toPath));
}

} // namespace zelmora::platform
