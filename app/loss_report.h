// What `zelmora-convert --report` writes.
#pragma once

#include "engine/lost_characters.h"
#include "platform/files/file_manager.h"

#include <string>

namespace zelmora {

/// A new file that lists lost characters, one a line, tab-separated: the file's path (escaped as
/// for a terminal), line, column, "U+" and the code point in hexadecimal, what was written instead
/// (UTF-8, nothing if it was left out). Where a file lost more characters than are listed, a line
/// of that path, "-", "-", "+" and their number, and nothing follows. Lines are added as the files
/// are converted, so that a broken-off run leaves those of its files.
class LossReport {
  public:
    /// `files` is borrowed.
    LossReport(platform::FileManager& files, std::string path)
        : _files(files), _path(std::move(path)) {}

    /// Fails when something is at the path: a report never overwrites anything.
    platform::Status create();
    platform::Status add(const LostCharacters& lost);

  private:
    platform::FileManager& _files;
    std::string _path;
};

} // namespace zelmora
