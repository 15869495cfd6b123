// zelmora-convert: the engine on a terminal.
#pragma once

#include "engine/services.h"
#include "platform/console/terminal_run_loop.h"
#include "platform/console/terminal_user_interface.h"
#include "platform/defaults/bundle.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora {

struct ConsoleOptions;

/// Exit statuses of zelmora-convert.
enum ConsoleStatus : int {
    consoleSuccess = 0, ///< every target was converted, also when there was none
    consoleFailure = 1, ///< a backup or a conversion failed
    consoleUsage = 2,   ///< nothing was touched
    consoleSignal = 128 ///< plus the signal's number: asked to stop, and stopped between files
};

/// Runs one command line, from the settings to the exit status. Main thread. Make it before any
/// thread is started. `files` is borrowed.
class ConsoleApplication {
  public:
    explicit ConsoleApplication(platform::FileManager& files);

    /// `arguments` without the program's name, raw bytes. Answers the exit status.
    int run(std::span<const char* const> arguments);

  private:
    void loadSettings();
    int saveSettings();
    int convert(const ConsoleOptions& options);
    int detect(const std::vector<std::string>& paths);
    void say(std::string_view text);

    platform::FileManager& _files;
    platform::Bundle _bundle;
    platform::LocalizedStrings _strings;
    platform::UserDefaults _defaults;
    platform::TerminalRunLoop _runLoop;
    platform::TerminalUserInterface _userInterface;
};

} // namespace zelmora
