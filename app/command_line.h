// What the command lines of both programs have in common.
#pragma once

#include "platform/defaults/localized_strings.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace zelmora {

/// Why a command line cannot be used, for the user.
struct UsageError {
    std::string message;
};

/// Runs `parser` over `stack`, the arguments without the program's name, raw bytes, the last one
/// first, and adds to `paths` what is no option, in the order given. "--" ends the options; "-"
/// alone is a path. The parser must allow extras and know no positional ones.
[[nodiscard]] std::optional<UsageError> parseCommandLine(CLI::App& parser,
                                                         std::vector<std::string> stack,
                                                         std::vector<std::string>& paths,
                                                         const platform::LocalizedStrings& strings);

/// The text for --version.
[[nodiscard]] std::string versionText(std::string_view programName,
                                      const platform::LocalizedStrings& strings);

/// Answers whether all of it was written, as far as can be told before the stream is flushed; a
/// failure stays in the stream's error flag.
bool writeToStandardOutput(std::string_view text);

} // namespace zelmora
