// A new file on the real file system, written while its contents are being made.
#pragma once

#include "platform/files/background_writer.h"
#include "platform/files/file_manager.h"
#include "platform/files/new_item.h"

#include <optional>
#include <string>

namespace zelmora::platform {

/// Has no name until it is finished or, where the file system has no such files, a scratch name.
/// Small files are written as they come; a large one gets a thread of its own for that.
class PosixNewFile final : public NewFile {
  public:
    /// Opens the file in the folder that holds `path`; `mode` less what the process withholds is
    /// its permissions.
    PosixNewFile(const std::string& path, mode_t mode);

    void write(Bytes& bytes) override;
    Status finishAtPath(const std::string& path) override;

  private:
    int open();
    void startBackground();
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
    size_t _size = 0;                            ///< written or handed to the background so far
    int _code = 0;                               ///< the first failure
    std::optional<BackgroundWriter> _background; ///< goes first: it uses the file
};

} // namespace zelmora::platform
