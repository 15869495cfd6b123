#include "platform/files/new_item.h"
#include "platform/files/posix_file_manager.h"
#include "platform/files/tree_walk.h"
#include "platform/text/utf8.h"

namespace zelmora::platform {

Status PosixFileManager::removeFileAtPath(const std::string& path) {
    return performAt(path, "delete", [](const Location& at) {
        return errnoUnless(::unlinkat(at.folder(), at.name(), 0));
    });
}

Status PosixFileManager::removeItemAtPath(const std::string& path) {
    std::string failedAt;
    int code = 0;
    const Status status = performAt(path, "delete", [&](const Location& at) {
        return code = removeTree(at.folder(), at.name(), false, &failedAt);
    });
    return failedAt.empty() ? status : statusOf(code, pathInTree(path, failedAt), "delete");
}

Status PosixFileManager::moveItemAtPath(const std::string& path, const std::string& toPath) {
    const Location from(path);
    const Location to(toPath);
    int code = from.error() != 0 ? from.error() : to.error();
    if (code == 0)
        code = renameWithoutReplacing(from.folder(), from.name(), to.folder(), to.name());
    return code == 0 ? Status() : Error::fromErrno(code, path, "move to " + terminalPath(toPath));
}

} // namespace zelmora::platform
