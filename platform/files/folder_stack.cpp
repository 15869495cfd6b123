#include "platform/files/folder_stack.h"

namespace zelmora::platform {

namespace {

/// Deeper than folders of documents are, far below any limit on descriptors (a copy has two
/// stacks).
constexpr size_t kOpenLevels = 48;

} // namespace

void FolderStack::push(FileDescriptor folder) {
    _levels.push_back({std::move(folder)});
    if (_levels.size() > kOpenLevels) {
        Level& oldest = _levels[_levels.size() - 1 - kOpenLevels];
        // One that cannot even be identified just stays open.
        if (oldest.folder.isOpen() && ::fstat(oldest.folder.get(), &oldest.identity) == 0)
            oldest.folder.close();
    }
}

int FolderStack::pop() {
    const FileDescriptor inner = std::move(_levels.back().folder);
    _levels.pop_back();
    if (_levels.empty() || _levels.back().folder.isOpen())
        return 0;
    Level& outer = _levels.back();
    FileDescriptor folder = openAt(inner.get(), "..", O_RDONLY | O_DIRECTORY);
    struct stat found = {};
    if (!folder.isOpen() || ::fstat(folder.get(), &found) != 0)
        return errno;
    if (found.st_dev != outer.identity.st_dev || found.st_ino != outer.identity.st_ino)
        return ESTALE;
    outer.folder = std::move(folder);
    return 0;
}

} // namespace zelmora::platform
