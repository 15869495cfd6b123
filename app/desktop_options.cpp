#include "app/desktop_options.h"

#include "app/command_line.h"
#include "platform/text/utf8.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zelmora {

namespace {

constexpr std::string_view programName = "zelmora";
constexpr int usageStatus = 2; // nothing was touched

int printAnswer(std::string_view text) {
    return writeToStandardOutput(text) && std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

void say(std::string_view text) {
    std::fprintf(stderr, "%s: %s\n", programName.data(), platform::terminalPath(text).c_str());
}

} // namespace

std::variant<DesktopOptions, int> readDesktopOptions(std::span<const char* const> arguments,
                                                     const platform::LocalizedStrings& strings) {
    DesktopOptions options;
    bool wantsHelp = false;
    bool wantsVersion = false;
    CLI::App parser;
    parser.set_help_flag();
    parser.allow_extras();
    // Other programs of the desktop start services by this name of the option.
    for (const auto& [name, value] :
         {std::pair("--help", &wantsHelp), std::pair("--version", &wantsVersion),
          std::pair("--gapplication-service", &options.isService)})
        parser.add_flag(name, *value)->disable_flag_override();

    auto failure =
        parseCommandLine(parser, {arguments.rbegin(), arguments.rend()}, options.paths, strings);
    // As an unset variable leaves one in a script: it is not the working folder that was meant.
    if (!failure &&
        std::find(options.paths.begin(), options.paths.end(), "") != options.paths.end())
        failure = UsageError{strings.stringForKey("ConsoleNoPath")};
    if (failure) {
        say(failure->message);
        say(strings.format("ConsoleTryHelp", {programName}));
        return usageStatus;
    }
    if (wantsHelp)
        return printAnswer(strings.stringForKey("DesktopHelp"));
    if (wantsVersion)
        return printAnswer(versionText(programName, strings));
    return options;
}

} // namespace zelmora
