// The folders between the top of a tree and the place a walk has reached.
#pragma once

#include "platform/files/file_descriptor.h"

#include <cstddef>
#include <sys/stat.h>
#include <vector>

namespace zelmora::platform {

/// Open folders, each inside the one below it in the stack. However deep it grows, only the
/// topmost few stay open: an older one is closed, and found again through ".." when the stack
/// comes back to it.
class FolderStack {
  public:
    void push(FileDescriptor folder);

    /// Closes the topmost folder and goes back to the one it is in. Answers 0, or why that one
    /// could not be opened again: ESTALE when the folder has been moved elsewhere meanwhile.
    /// REQUIRES: push has been called more often than pop.
    int pop();

    /// The topmost folder's descriptor; valid until the next push or pop.
    [[nodiscard]] int top() const { return _levels.back().folder.get(); }

  private:
    struct Level {
        FileDescriptor folder;
        struct stat identity = {}; ///< set while closed
    };
    std::vector<Level> _levels;
};

} // namespace zelmora::platform
