#include "engine/file_list.h"

#include <utility>

namespace zelmora {

void FileList::addPath(QueuedFile file) {
    const platform::MutexLock lock(_lockArray);
    _array.push_back(std::move(file));
}

std::optional<QueuedFile> FileList::fetchPath() {
    const platform::MutexLock lock(_lockArray);
    if (_array.size() <= _currentIndex) {
        _currentIndex = 0;
        _array = {}; // gives the memory of a large batch back
        return std::nullopt;
    }
    // Only the number of files handed out is of use later, so the path itself can move out.
    return std::move(_array[_currentIndex++]);
}

uint64_t FileList::count() const {
    const platform::MutexLock lock(_lockArray);
    return _array.size();
}

uint32_t FileList::currentIndex() const {
    const platform::MutexLock lock(_lockArray);
    return _currentIndex;
}

void FileList::removeAllPaths() {
    const platform::MutexLock lock(_lockArray);
    _array = {};
    _currentIndex = 0;
}

} // namespace zelmora
