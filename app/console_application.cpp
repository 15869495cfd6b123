#include "app/console_application.h"

#include "app/console_conversion.h"
#include "app/console_options.h"
#include "app/detect_report.h"
#include "app/path_argument.h"
#include "app/saved_settings_path.h"
#include "app/string_table.h"
#include "engine/settings.h"
#include "engine/target_files.h"
#include "platform/text/utf8.h"

#include <cstdio>
#include <unistd.h>
#include <utility>

namespace zelmora {

namespace {

constexpr std::string_view programName = "zelmora-convert";

} // namespace

ConsoleApplication::ConsoleApplication(platform::FileManager& files)
    : _files(files), _bundle(platform::Bundle::mainBundle()),
      _strings(loadStringTable(_bundle, files)), _defaults(settings::allKeys()),
      _userInterface(STDERR_FILENO, [this] { _runLoop.stop(consoleSuccess); }) {
    _runLoop.addObserver(platform::RunLoop::beforeWaiting,
                         [this](platform::RunLoop::Activity) { _userInterface.redraw(); });
}

int ConsoleApplication::run(std::span<const char* const> arguments) {
    const auto parsed = parseConsoleOptions(arguments, _strings);
    if (const auto* failure = std::get_if<UsageError>(&parsed)) {
        say(failure->message);
        say(_strings.format("ConsoleTryHelp", {programName}));
        return consoleUsage;
    }
    const auto& options = std::get<ConsoleOptions>(parsed);
    if (options.help || options.version) {
        const auto text = options.help ? _strings.stringForKey("ConsoleHelp")
                                       : versionText(programName, _strings);
        return writeToStandardOutput(text) && std::fflush(stdout) == 0 ? consoleSuccess
                                                                       : consoleFailure;
    }

    if (!options.reportPath.empty() && _files.fileExistsAtPath(options.reportPath)) {
        say(_strings.format("ConsoleReportExists", {platform::displayPath(options.reportPath)}));
        return consoleUsage;
    }
    loadSettings();
    for (const auto& [key, value] : options.settings) {
        if (options.save)
            _defaults.setObject(value, key);
        _defaults.setValueForThisRun(value, key);
    }
    if (options.save) {
        if (const int status = saveSettings(); status != consoleSuccess)
            return status;
    }
    if (options.paths.empty())
        return consoleSuccess;
    return options.detect ? detect(options.paths) : convert(options);
}

void ConsoleApplication::loadSettings() {
    settings::registerDefaults(_defaults, _files, _bundle);
    for (const auto& problem : _defaults.load(_files, savedSettingsPath()))
        say(problem);
}

int ConsoleApplication::saveSettings() {
    const auto saved = _defaults.save(_files);
    if (!saved.ok())
        say(saved.error().message);
    return saved.ok() ? consoleSuccess : consoleFailure;
}

int ConsoleApplication::convert(const ConsoleOptions& options) {
    LossReport report(_files, options.reportPath);
    ConsoleConversion conversion({_defaults, _files, _strings, _runLoop, _userInterface}, _runLoop,
                                 options.reportPath.empty() ? nullptr : &report);
    const auto tally = conversion.run(options.paths);
    if (!options.quiet)
        _userInterface.printLine(
            _strings.format(tally.lost == 0 ? "ConsoleSummary" : "ConsoleSummaryLost",
                            {std::to_string(tally.converted), std::to_string(tally.failed),
                             std::to_string(tally.lost)}));
    if (tally.signal != 0)
        return consoleSignal + tally.signal;
    return tally.failed == 0 ? consoleSuccess : consoleFailure;
}

int ConsoleApplication::detect(const std::vector<std::string>& paths) {
    int status = consoleSuccess;
    const auto fail = [&](const platform::Error& error) {
        say(error.message);
        status = consoleFailure;
    };
    const auto report = [&](const std::string& path) {
        const auto line = detectReportLine(_defaults, _files, path);
        if (line.ok())
            writeToStandardOutput(*line + "\n");
        else
            fail(line.error());
    };
    const TargetFiles targets(_defaults, _files);
    for (const auto& argument : paths) {
        const auto path = pathFromArgument(argument);
        if (const auto type = _files.typeOfItemAtPath(path); !type.ok())
            fail(type.error());
        else if (const auto scanned = targets.scan(path, report); !scanned.ok())
            fail(scanned.error());
    }
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? status : consoleFailure;
}

void ConsoleApplication::say(std::string_view text) {
    _userInterface.printLine(std::string(programName).append(": ").append(text));
}

} // namespace zelmora
