// The queue of files to convert.
#pragma once

#include "platform/threads/mutex.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelmora {

/// A file to convert, and how it was come by.
struct QueuedFile {
    std::string path;
    /// How much of the path names what was handed over; the rest was found by searching that, and
    /// no link was followed there.
    size_t givenLength = 0;
};

/// The ordered list of paths added since it was last emptied, those already handed out included,
/// so that progress can be told from its count and index. Every operation is safe on any thread.
class FileList {
  public:
    void addPath(QueuedFile file);

    /// The next file, or nullopt when all have been handed out; the list is then emptied.
    std::optional<QueuedFile> fetchPath();

    [[nodiscard]] uint64_t count() const;
    /// The index of the next path to hand out; at most count().
    [[nodiscard]] uint32_t currentIndex() const;
    void removeAllPaths();

  private:
    mutable platform::Mutex _lockArray;
    std::vector<QueuedFile> _array GUARDED_BY(_lockArray);
    uint32_t _currentIndex GUARDED_BY(_lockArray) = 0;
};

} // namespace zelmora
