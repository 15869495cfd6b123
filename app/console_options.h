// The command line of zelmora-convert.
#pragma once

#include "app/command_line.h"
#include "platform/defaults/localized_strings.h"
#include "platform/defaults/property_list.h"

#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zelmora {

/// What the command line asks for.
struct ConsoleOptions {
    bool help = false;
    bool version = false;
    bool detect = false;    ///< report what the files are, change nothing
    bool save = false;      ///< write `settings` to the saved settings
    bool quiet = false;     ///< no closing line
    std::string reportPath; ///< where to list lost characters, absolute; empty: nowhere
    /// Settings for this run by key, in the order given.
    std::vector<std::pair<std::string, platform::PropertyListValue>> settings;
    std::vector<std::string> paths; ///< as given, raw bytes
};

/// Reads the arguments (without the program's name), raw bytes. Touches nothing.
[[nodiscard]] std::variant<ConsoleOptions, UsageError>
parseConsoleOptions(std::span<const char* const> arguments,
                    const platform::LocalizedStrings& strings);

} // namespace zelmora
