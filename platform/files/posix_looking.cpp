#include "platform/files/posix_file_manager.h"
#include "platform/files/tree_walk.h"
#include "platform/text/path_string.h"

#include <linux/openat2.h>
#include <sys/syscall.h>

namespace zelmora::platform {

namespace {

/// Whether a folder is there and no link on the whole way to it, told by a single call. Older
/// kernels cannot tell: NO.
bool isReachedWithoutLinks(const std::string& folder) {
    open_how how = {};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS;
    return FileDescriptor(
               static_cast<int>(::syscall(SYS_openat2, AT_FDCWD, folder.c_str(), &how, sizeof how)))
        .isOpen();
}

int checkWay(const std::string& path, size_t folderLength) {
    size_t begin = path.find_first_not_of('/', folderLength);
    size_t slash = path.find('/', begin);
    if (slash == std::string::npos)
        return 0; // nothing in between
    if (isReachedWithoutLinks(path.substr(0, path.rfind('/'))))
        return 0;
    const std::string start = folderLength == 0 ? "/" : path.substr(0, folderLength);
    const Location at(start);
    FileDescriptor folder;
    if (at.error() != 0)
        return at.error();
    folder = openAt(at.folder(), at.name(), O_PATH | O_DIRECTORY);
    while (folder.isOpen() && slash != std::string::npos) {
        const std::string name = path.substr(begin, slash - begin);
        folder = openAt(folder.get(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW);
        begin = path.find_first_not_of('/', slash);
        slash = path.find('/', begin);
    }
    return folder.isOpen() ? 0 : errno;
}

} // namespace

FileManager& FileManager::defaultManager() {
    static PosixFileManager manager;
    return manager;
}

std::string pathInTree(const std::string& path, const std::string& relativePath) {
    return relativePath.empty() ? path : appendingPathComponent(path, relativePath);
}

bool PosixFileManager::fileExistsAtPath(const std::string& path) {
    struct stat status = {};
    return statusAtPath(path, status, AT_SYMLINK_NOFOLLOW) == 0;
}

Result<FileType> PosixFileManager::typeOfItemAtPath(const std::string& path) {
    struct stat status = {};
    if (const int code = statusAtPath(path, status, AT_SYMLINK_NOFOLLOW))
        return Error::fromErrno(code, path, "look");
    return fileTypeOfMode(status.st_mode);
}

bool PosixFileManager::isDirectoryAtPath(const std::string& path) {
    struct stat status = {};
    return statusAtPath(path, status, 0) == 0 && S_ISDIR(status.st_mode);
}

Status PosixFileManager::checkWayToItemAtPath(const std::string& path, size_t folderLength) {
    return statusOf(checkWay(path, folderLength), path, "look");
}

Status PosixFileManager::enumerateAtPath(const std::string& path,
                                         const EnumerationVisitor& visitor) {
    constexpr std::string_view kOperation = "read folder";
    TreeWalk walk;
    const Status opened = performAt(
        path, kOperation, [&](const Location& at) { return walk.open(at.folder(), at.name()); });
    if (!opened)
        return opened;
    Status result;
    const auto note = [&](int code) {
        if (code != 0 && result.ok())
            result = Error::fromErrno(code, pathInTree(path, walk.relativePath()), kOperation);
    };
    for (;;) {
        switch (walk.next()) {
        case TreeWalk::Step::entry:
            if (!visitor(walk.relativePath(), walk.type()))
                return result;
            if (walk.type() == FileType::directory)
                note(walk.enter());
            break;
        case TreeWalk::Step::leaving:
        case TreeWalk::Step::left:
            break;
        case TreeWalk::Step::end:
            return result;
        case TreeWalk::Step::failed:
            note(walk.error());
            return result;
        }
    }
}

} // namespace zelmora::platform
