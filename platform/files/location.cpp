#include "platform/files/location.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace zelmora::platform {

namespace {

/// What the name of a scratch item beside a path may add to its length.
constexpr size_t kSiblingRoom = 64;

/// Where the last component begins; slashes behind it belong to it.
size_t lastComponentStart(std::string_view path) {
    const size_t lastByte = path.find_last_not_of('/');
    if (lastByte == std::string_view::npos)
        return 0;
    return path.rfind('/', lastByte) + 1; // npos + 1 is 0
}

} // namespace

Location::Location(const std::string& path) : _name(path.c_str()) {
    if (std::strlen(_name) != path.size()) {
        _error = EINVAL; // a system call would see another, shorter path
    } else if (path.size() + kSiblingRoom >= PATH_MAX) {
        _error = openFolder(path);
    }
}

int Location::openFolder(const std::string& path) {
    const size_t end = lastComponentStart(path);
    size_t begin = 0;
    while (begin < end) {
        size_t cut = end;
        if (end - begin >= PATH_MAX) {
            cut = path.rfind('/', begin + PATH_MAX - 2) + 1;
            if (cut <= begin)
                return ENAMETOOLONG;
        }
        const std::string part = path.substr(begin, cut - begin);
        FileDescriptor next = openAt(folder(), part.c_str(), O_PATH | O_DIRECTORY);
        if (!next.isOpen())
            return errno;
        _folder = std::move(next);
        begin = path.find_first_not_of('/', cut); // a part must not look absolute
    }
    _name = path.c_str() + end;
    return 0;
}

std::string Location::parent() const {
    const std::string_view name = _name;
    const size_t start = lastComponentStart(name);
    return start == 0 ? "." : std::string(name.substr(0, start));
}

std::string Location::sibling(std::string_view name) const {
    const std::string_view own = _name;
    return std::string(own.substr(0, lastComponentStart(own))).append(name);
}

std::string Location::pathForCall() const {
    if (!_folder.isOpen())
        return _name;
    return "/proc/self/fd/" + std::to_string(_folder.get()) + "/" + _name;
}

int Location::status(struct stat& result, int flags) const {
    return errnoUnless(::fstatat(folder(), _name, &result, flags));
}

int Location::syncParent() const {
    const FileDescriptor parentFolder = openAt(folder(), parent().c_str(), O_RDONLY | O_DIRECTORY);
    if (!parentFolder.isOpen()) {
        if (errno != EACCES)
            return errno;
        ::sync(); // a folder that may be written but not read: rare, and the others' writes too
        return 0;
    }
    const int code = errnoUnless(resumed([&] { return ::fsync(parentFolder.get()); }));
    return code == EINVAL ? 0 : code; // not on this file system
}

int statusAtPath(const std::string& path, struct stat& result, int flags) {
    const Location at(path);
    return at.error() != 0 ? at.error() : at.status(result, flags);
}

} // namespace zelmora::platform
