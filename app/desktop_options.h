// The command line of zelmora.
#pragma once

#include "platform/defaults/localized_strings.h"

#include <span>
#include <string>
#include <variant>
#include <vector>

namespace zelmora {

/// What the desktop program is started for.
struct DesktopOptions {
    bool isService = false;         ///< started by the session bus: what to do comes later
    std::vector<std::string> paths; ///< as given, raw bytes
};

/// Reads the arguments (without the program's name), raw bytes, before any window or even a display
/// is there. Answers the exit status instead when the program is not to run: after --help and
/// --version, and after a usage error, each of which has then been written.
[[nodiscard]] std::variant<DesktopOptions, int>
readDesktopOptions(std::span<const char* const> arguments,
                   const platform::LocalizedStrings& strings);

} // namespace zelmora
