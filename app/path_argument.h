// Paths as the command line gives them.
#pragma once

#include <string>

namespace zelmora {

/// The path as the engine takes it: absolute, without "." components and doubled or trailing
/// slashes; with its links resolved when it holds "..", which only the disk can tell the end of.
/// Nothing stays nothing, not the working folder: it is what an unset variable leaves in a script.
[[nodiscard]] std::string pathFromArgument(const std::string& argument);

} // namespace zelmora
