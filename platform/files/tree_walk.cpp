#include "platform/files/tree_walk.h"

#include <dirent.h>

namespace zelmora::platform {

namespace {

constexpr size_t kBufferSize = 64 * 1024; // about 2,000 names for each call
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;

bool isDotOrDotDot(std::string_view name) {
    return name == "." || name == "..";
}

FileType typeOfEntry(int folder, const char* name, char kind) {
    switch (kind) {
    case DT_REG:
        return FileType::regular;
    case DT_DIR:
        return FileType::directory;
    case DT_LNK:
        return FileType::symbolicLink;
    case DT_UNKNOWN: {
        struct stat status = {};
        return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0
                   ? fileTypeOfMode(status.st_mode)
                   : FileType::other;
    }
    default:
        return FileType::other;
    }
}

} // namespace

FileType fileTypeOfMode(mode_t mode) {
    return S_ISREG(mode)   ? FileType::regular
           : S_ISDIR(mode) ? FileType::directory
           : S_ISLNK(mode) ? FileType::symbolicLink
                           : FileType::other;
}

int TreeWalk::open(int in, const char* name) {
    return descend(openAt(in, name, kFolderFlags));
}

int TreeWalk::enter() {
    return descend(openAt(folder(), name(), kFolderFlags));
}

int TreeWalk::descend(FileDescriptor folder) {
    if (!folder.isOpen())
        return errno;
    Listing listing;
    if (const int code = readEntries(folder.get(), listing.entries))
        return code;
    listing.pathLength = _relativePath.size();
    _listings.push_back(std::move(listing));
    _folders.push(std::move(folder));
    return 0;
}

int TreeWalk::readEntries(int folder, std::string& entries) {
    _buffer.resize(kBufferSize);
    for (;;) {
        const auto count =
            resumed([&] { return ::getdents64(folder, _buffer.data(), _buffer.size()); });
        if (count <= 0)
            return count == 0 ? 0 : errno;
        for (size_t offset = 0; offset < static_cast<size_t>(count);) {
            const auto* record = reinterpret_cast<const dirent64*>(_buffer.data() + offset);
            offset += record->d_reclen;
            const std::string_view name = record->d_name;
            if (!isDotOrDotDot(name)) {
                entries += static_cast<char>(record->d_type);
                entries.append(name).push_back('\0');
            }
        }
    }
}

TreeWalk::Step TreeWalk::next() {
    if (_leaving)
        return goUp();
    Listing& listing = _listings.back();
    _relativePath.resize(listing.pathLength);
    if (listing.position == listing.entries.size()) {
        _leaving = true;
        return Step::leaving;
    }
    if (listing.pathLength != 0)
        _relativePath += '/';
    _nameStart = _relativePath.size();
    const char kind = listing.entries[listing.position];
    const std::string_view entry = listing.entries.c_str() + listing.position + 1;
    listing.position += entry.size() + 2;
    _relativePath += entry;
    _type = typeOfEntry(folder(), name(), kind);
    return Step::entry;
}

TreeWalk::Step TreeWalk::goUp() {
    _leaving = false;
    _listings.pop_back();
    _error = _folders.pop();
    if (_listings.empty())
        return Step::end;
    _nameStart = _relativePath.rfind('/') + 1; // npos + 1 is 0
    return _error == 0 ? Step::left : Step::failed;
}

int removeTree(int in, const char* name, bool unlocking, std::string* failedAt) {
    if (::unlinkat(in, name, 0) == 0)
        return 0;
    if (errno != EISDIR)
        return errno;
    const auto unlock = [unlocking](int folder, const char* item) {
        if (unlocking)
            ::fchmodat(folder, item, S_IRWXU, 0);
    };
    TreeWalk walk;
    unlock(in, name);
    if (const int code = walk.open(in, name))
        return code;
    int firstCode = 0;
    const auto note = [&](int code) {
        // What somebody else deleted first is deleted.
        if (code != 0 && code != ENOENT && firstCode == 0) {
            firstCode = code;
            if (failedAt != nullptr)
                *failedAt = walk.relativePath();
        }
    };
    for (;;) {
        switch (walk.next()) {
        case TreeWalk::Step::entry:
            if (walk.type() == FileType::directory) {
                unlock(walk.folder(), walk.name());
                const int code = walk.enter();
                // One that cannot be read goes all the same if it is empty.
                if (code != 0 && ::unlinkat(walk.folder(), walk.name(), AT_REMOVEDIR) != 0)
                    note(code);
            } else {
                note(errnoUnless(::unlinkat(walk.folder(), walk.name(), 0)));
            }
            break;
        case TreeWalk::Step::leaving:
            break;
        case TreeWalk::Step::left:
            note(errnoUnless(::unlinkat(walk.folder(), walk.name(), AT_REMOVEDIR)));
            break;
        case TreeWalk::Step::end:
            note(errnoUnless(::unlinkat(in, name, AT_REMOVEDIR)));
            return firstCode;
        case TreeWalk::Step::failed:
            return firstCode != 0 ? firstCode : walk.error();
        }
    }
}

} // namespace zelmora::platform
