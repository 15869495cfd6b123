// The one walk through everything beneath a folder; visiting, deleting and copying are built on it.
#pragma once

#include "platform/files/file_manager.h"
#include "platform/files/folder_stack.h"

#include <string>
#include <vector>

namespace zelmora::platform {

/// Goes depth-first through a folder tree of any depth, without recursion and with few
/// descriptors. A folder's names are read whole before the first of them is answered, so the
/// caller may delete or add items there meanwhile. Links are never followed.
///
/// The caller opens the walk and calls next() until it answers `end` or `failed`. At an `entry`
/// that is a folder it may call enter(); next() then goes through what the folder holds.
class TreeWalk {
  public:
    enum class Step {
        entry,   ///< the next item of folder() is name()
        leaving, ///< everything in folder() has been answered; the walk is about to leave it
        left,    ///< the walk has just left the folder name() and is back in folder() around it
        end,     ///< the outermost folder has been left
        failed,  ///< the way back up is gone: error() tells why
    };

    /// Begins in the folder `name` of the folder `in`. Answers 0 or an errno.
    int open(int in, const char* name);

    Step next();

    /// Descends into the folder that is the current entry. Answers 0, or an errno when it cannot
    /// be opened or read; the walk then goes on behind it.
    int enter();

    /// The descriptor of the folder that the walk is in; valid until the next step.
    [[nodiscard]] int folder() const { return _folders.top(); }
    /// The current item's name in folder(); valid until the next step.
    [[nodiscard]] const char* name() const { return _relativePath.c_str() + _nameStart; }
    /// The current entry's type.
    [[nodiscard]] FileType type() const { return _type; }
    /// The path from the outermost folder to the current item, or at `leaving` to the folder being
    /// left; empty for the outermost one.
    [[nodiscard]] const std::string& relativePath() const { return _relativePath; }
    [[nodiscard]] int error() const { return _error; }

  private:
    /// A folder's names still to be answered, packed: type, name, NUL; type, name, NUL; ...
    struct Listing {
        std::string entries;
        size_t position = 0;
        size_t pathLength = 0; ///< of the folder's relative path
    };

    int descend(FileDescriptor folder);
    int readEntries(int folder, std::string& entries);
    Step goUp();

    FolderStack _folders;
    std::vector<Listing> _listings; ///< one for each folder of _folders
    std::vector<char> _buffer;      ///< what the kernel fills
    std::string _relativePath;
    size_t _nameStart = 0;
    FileType _type = FileType::other;
    bool _leaving = false;
    int _error = 0;
};

/// The type told by st_mode.
[[nodiscard]] FileType fileTypeOfMode(mode_t mode);

/// Deletes the item `name` of the folder `in`, whatever it is, with everything in it. What cannot
/// be deleted is left and the rest goes; the first failure is answered as an errno, and
/// `failedAt`, if given, receives its path relative to the item. With `unlocking`, folders that
/// forbid changes are made to allow them first.
int removeTree(int in, const char* name, bool unlocking, std::string* failedAt = nullptr);

} // namespace zelmora::platform
