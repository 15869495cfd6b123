// What `zelmora-convert --detect` tells of a file.
#pragma once

#include "platform/defaults/user_defaults.h"
#include "platform/files/file_manager.h"

#include <string>

namespace zelmora {

/// The line for the file at `path`, without its line feed: path (escaped as for a terminal),
/// encoding, byte order, mark and line break, tab-separated. An error when it cannot be read.
platform::Result<std::string> detectReportLine(const platform::UserDefaults& defaults,
                                               platform::FileManager& files,
                                               const std::string& path);

} // namespace zelmora
