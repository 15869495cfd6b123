// How a new item appears under its name: complete, or not at all, and never over another.
#pragma once

#include "platform/files/location.h"

#include <functional>
#include <string>

namespace zelmora::platform {

/// Renames an item; EEXIST when `to` is taken. File systems that cannot do this in one step get it
/// in two that replace nothing either. Answers 0 or an errno.
int renameWithoutReplacing(int fromFolder, const char* from, int toFolder, const char* to);

/// An item under construction beside `target`, under a short hidden name of its own. Unless it has
/// been given its target's name it is deleted, with everything in it, when the object goes.
class ScratchItem {
  public:
    /// REQUIRES: `target` outlives the object.
    explicit ScratchItem(const Location& target) : _target(target) {}
    ScratchItem(const ScratchItem&) = delete;
    ScratchItem& operator=(const ScratchItem&) = delete;
    ~ScratchItem();

    /// Makes the item by `maker`, which answers 0 or an errno; called with a folder and a name in
    /// it, again with another one while that answers EEXIST. What it made before it failed for
    /// another reason is deleted too.
    int make(const std::function<int(int folder, const char* name)>& maker);

    /// The item's folder and name, once it is made.
    [[nodiscard]] int folder() const { return _target.folder(); }
    [[nodiscard]] const char* name() const { return _name.c_str(); }

    /// Gives the item its target's name; EEXIST when that is taken.
    int takeTargetName() { return takeName(_target); }
    /// Gives the item another name in the same way.
    int takeName(const Location& to);
    /// Gives the item its target's name, in place of the file that has it.
    int replaceTarget();

  private:
    int done(int code);

    const Location& _target;
    std::string _name; ///< empty when there is nothing to delete
};

/// Writes a new file's bytes and attributes to the descriptor; answers 0 or an errno.
using FileFiller = std::function<int(int file)>;

/// Opens a new file in `target`'s folder that has no name yet, so that a killed process leaves
/// nothing behind. Not open where the file system has no such files, or for another reason (errno).
FileDescriptor openUnnamedFile(const Location& target, mode_t mode);

/// Gives the unnamed file its target's name. Answers 0 or an errno: EEXIST when it is taken.
int nameUnnamedFile(int file, const Location& target);

/// Brings the name that a new file has just got to the disk, so that it outlives a power cut, or
/// deletes the file. Answers 0 or an errno.
int keepName(const Location& target);

/// Makes the file `target` with the contents that `fill` writes and the permissions `mode`, less
/// those that the process withholds. EEXIST when the name is taken. `fill` may be called twice,
/// with an empty file each time.
int createFile(const Location& target, mode_t mode, const FileFiller& fill);

/// Makes a file as `scratch`, filled by `fill` and closed. Answers 0 or an errno.
int makeScratchFile(ScratchItem& scratch, mode_t mode, const FileFiller& fill);

/// Writes all of `bytes`. Answers 0 or an errno.
int writeAll(int file, const std::byte* bytes, size_t count);

/// Copies the next `count` bytes of one file to another, within the file system where it can do
/// that. Answers 0 or an errno: EAGAIN when the source has fewer.
int copyBytes(int source, int copy, size_t count);

} // namespace zelmora::platform
