// A new file on the real file system, written while its contents are being made.
#pragma once

#include "platform/files/file_manager.h"
#include "platform/files/new_item.h"

#include <string>

namespace zelmora::platform {

/// Has no name until it is finished or, where the file system has no such files, a scratch name.
class PosixNewFile final : public NewFile {
  public:
    /// Opens the file in the folder that holds `path`; `mode` less what the process withholds is
    /// its permissions.
    PosixNewFile(const std::string& path, mode_t mode);

    void write(Bytes& bytes) override;
    Status finishAtPath(const std::string& path) override;

  private:
    int open();
    int complete();
    int takeName(const Location& name);
    int makeScratchCopy();

    const std::string _path;
    const Location _sibling;
    const mode_t _mode;
    ScratchItem _scratch;
    bool _isUnnamed = false;
    bool _isComplete = false;
    FileDescriptor _file;
    size_t _size = 0;     ///< bytes written so far
    size_t _heldBack = 0; ///< of these, bytes that the disk has not been told of
    int _code = 0;        ///< the first failure
};

} // namespace zelmora::platform
