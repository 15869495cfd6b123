#include "platform/files/new_item.h"
#include "platform/files/posix_file_manager.h"
#include "platform/files/posix_new_file.h"
#include "platform/text/path_string.h"

#include <array>
#include <climits>
#include <utility>
#include <vector>

namespace zelmora::platform {

namespace {

constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kNewFolderMode = 0777;
constexpr mode_t kAllPermissions = 07777;

FileFiller writer(ByteView contents) {
    return [contents](int file) {
        const int code = writeAll(file, contents.data(), contents.size());
        return code != 0 ? code : errnoUnless(resumed([&] { return ::fdatasync(file); }));
    };
}

/// Replaces `path` by the one it leads to when it is a symbolic link, also to nothing yet.
int followLinks(std::string& path) {
    constexpr int kMostLinks = 40; // as many as the kernel follows
    for (int i = 0; i < kMostLinks; ++i) {
        const Location at(path);
        if (at.error() != 0)
            return at.error();
        std::array<char, PATH_MAX> target = {};
        const auto length = ::readlinkat(at.folder(), at.name(), target.data(), target.size());
        if (length < 0)
            return errno == EINVAL || errno == ENOENT ? 0 : errno;
        const std::string_view link(target.data(), static_cast<size_t>(length));
        path = link.starts_with('/')
                   ? std::string(link)
                   : appendingPathComponent(deletingLastPathComponent(path), link);
    }
    return ELOOP;
}

int replaceFile(const Location& at, ByteView contents) {
    struct stat old = {};
    const int lookCode = at.status(old, AT_SYMLINK_NOFOLLOW);
    if (lookCode != 0 && lookCode != ENOENT)
        return lookCode;
    const bool exists = lookCode == 0;
    if (exists && !S_ISREG(old.st_mode))
        return S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
    ScratchItem scratch(at);
    const auto fill = [&](int file) {
        if (exists) {
            // Settings saved by the superuser stay the user's; nobody else may give files away.
            if (::fchown(file, old.st_uid, old.st_gid) != 0 && errno != EPERM)
                return errno;
            if (::fchmod(file, old.st_mode & kAllPermissions) != 0)
                return errno;
        }
        return writer(contents)(file);
    };
    // What few may read is not shown to others on the way.
    const int code = makeScratchFile(scratch, exists ? S_IRUSR | S_IWUSR : kNewFileMode, fill);
    return code != 0 ? code : scratch.replaceTarget();
}

int appendToFile(const Location& at, ByteView contents) {
    FileDescriptor file;
    struct stat status = {};
    if (const int code = openRegularFile(at, O_WRONLY | O_APPEND, file, status))
        return code;
    const auto written =
        resumed([&] { return ::write(file.get(), contents.data(), contents.size()); });
    if (written < 0)
        return errno;
    // The rest would have to follow in a second append, perhaps behind another one's line.
    return static_cast<size_t>(written) < contents.size() ? ENOSPC : file.close();
}

/// Makes one folder; whatever is in the way of that is fine as long as there is one.
int makeFolder(const std::string& path) {
    const Location at(path);
    if (at.error() != 0)
        return at.error();
    const int code = errnoUnless(::mkdirat(at.folder(), at.name(), kNewFolderMode));
    if (code == 0)
        return at.syncParent();
    struct stat status = {};
    return at.status(status, 0) == 0 && S_ISDIR(status.st_mode) ? 0 : code;
}

} // namespace

Status PosixFileManager::createFileAtPath(const std::string& path, ByteView contents) {
    return performAt(path, "create", [&](const Location& at) {
        return createFile(at, kNewFileMode, writer(contents));
    });
}

std::unique_ptr<NewFile> PosixFileManager::newFileBesidePath(const std::string& path) {
    return std::make_unique<PosixNewFile>(path, kNewFileMode);
}

Status PosixFileManager::replaceFileAtPath(const std::string& path, ByteView contents) {
    std::string file = path;
    if (const int code = followLinks(file))
        return Error::fromErrno(code, path, "replace");
    return performAt(file, "replace",
                     [&](const Location& at) { return replaceFile(at, contents); });
}

Status PosixFileManager::appendToFileAtPath(const std::string& path, ByteView contents) {
    return performAt(path, "append",
                     [&](const Location& at) { return appendToFile(at, contents); });
}

Status PosixFileManager::createDirectoryAtPath(const std::string& path) {
    // Up to the first folder that can be made or is there, then down again, where every step has
    // to succeed: some file systems say ENOENT to any new folder.
    std::vector<std::string> missing;
    std::string folder = path;
    int code = makeFolder(folder);
    while (code == ENOENT) {
        std::string parent = deletingLastPathComponent(folder);
        if (parent.empty() || parent == folder)
            break;
        missing.push_back(std::exchange(folder, std::move(parent)));
        code = makeFolder(folder);
    }
    while (code == 0 && !missing.empty()) {
        folder = std::move(missing.back());
        missing.pop_back();
        code = makeFolder(folder);
    }
    return statusOf(code, folder, "make folder");
}

} // namespace zelmora::platform
