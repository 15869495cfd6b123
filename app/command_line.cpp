#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace zelmora {

namespace {

std::string usageMessage(const CLI::ParseError& failure,
                         const platform::LocalizedStrings& strings) {
    const std::string_view words = failure.what(); // the name of an option first, if it has one
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&failure) == nullptr)
        return strings.format("ConsoleBadUsage", {words});
    const std::string name(words.substr(0, words.find_first_of(": ")));
    return name.starts_with("--") ? strings.format("ConsoleMissingValue", {name})
                                  : strings.format("ConsoleUnwantedValue", {"--" + name});
}

/// Takes the paths out of `rest`, which is what the parser knows no option for. The parser must not
/// take them itself: it would make two of "[a,b]". Answers the first that is an option
/// nevertheless.
std::optional<std::string> readPaths(const std::vector<std::string>& rest,
                                     std::vector<std::string>& paths) {
    bool isBehindMark = false;
    for (const auto& each : rest) {
        if (isBehindMark || each.size() < 2 || !each.starts_with('-'))
            paths.push_back(each);
        else if (each == "--")
            isBehindMark = true;
        else
            return each;
    }
    return std::nullopt;
}

} // namespace

std::optional<UsageError> parseCommandLine(CLI::App& parser, std::vector<std::string> stack,
                                           std::vector<std::string>& paths,
                                           const platform::LocalizedStrings& strings) {
    try {
        parser.parse(stack);
    } catch (const CLI::ParseError& failure) {
        return UsageError{usageMessage(failure, strings)};
    }
    if (const auto unknown = readPaths(parser.remaining(), paths))
        return UsageError{strings.format("ConsoleUnknownOption", {*unknown})};
    return std::nullopt;
}

std::string versionText(std::string_view programName, const platform::LocalizedStrings& strings) {
    return strings.format("ConsoleVersion", {programName, ZELMORA_VERSION});
}

bool writeToStandardOutput(std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

} // namespace zelmora
