// Where a path of any length leads: the pair that the *at system calls take.
#pragma once

#include "platform/files/file_descriptor.h"

#include <string>
#include <string_view>
#include <sys/stat.h>

namespace zelmora::platform {

/// A folder and a name in it, short enough for a system call. For all but the longest paths that
/// is the working folder and the path itself, at no cost; for those beyond PATH_MAX the folder
/// that holds the item is opened, several components at a time.
class Location {
  public:
    /// REQUIRES: `path` outlives the Location and is not changed meanwhile.
    explicit Location(const std::string& path);
    explicit Location(std::string&&) = delete;

    /// 0, or an errno: a folder on the way cannot be opened, or the path holds a NUL (EINVAL).
    /// REQUIRES of all functions below: error() is 0.
    [[nodiscard]] int error() const { return _error; }

    [[nodiscard]] int folder() const { return _folder.isOpen() ? _folder.get() : AT_FDCWD; }
    [[nodiscard]] const char* name() const { return _name; }

    /// The folder that holds the item, as a path relative to folder().
    [[nodiscard]] std::string parent() const;
    /// `name` in that folder, as a path relative to folder().
    [[nodiscard]] std::string sibling(std::string_view name) const;
    /// A path for the system calls that take no folder. Needs /proc when the path is too long.
    [[nodiscard]] std::string pathForCall() const;

    /// fstatat with AT_SYMLINK_NOFOLLOW or 0; answers 0 or an errno.
    int status(struct stat& result, int flags) const;

    /// Waits until the names given and taken away in the item's folder so far are on disk, so that
    /// they outlive a power cut. Answers 0 or an errno.
    int syncParent() const;

  private:
    int openFolder(const std::string& path);

    FileDescriptor _folder;
    const char* _name; ///< a tail of the path
    int _error = 0;
};

/// fstatat at `path`; answers 0 or an errno.
int statusAtPath(const std::string& path, struct stat& result, int flags);

} // namespace zelmora::platform
