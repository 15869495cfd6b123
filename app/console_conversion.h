// One batch of zelmora-convert: paths in, converted files and a tally out.
#pragma once

#include "app/loss_report.h"
#include "engine/services.h"
#include "platform/console/terminal_run_loop.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zelmora {

class ZelDocumentController;

/// Hands paths to the document controller as the desktop does, and stays until its worker has
/// converted them. SIGINT, SIGTERM and SIGHUP act as Cancel: the file in hand is finished, the
/// rest are left. Main thread. Everything given is borrowed.
class ConsoleConversion {
  public:
    /// `report` hears of lost characters; null: none is wanted.
    ConsoleConversion(const EngineServices& services, platform::TerminalRunLoop& runLoop,
                      LossReport* report)
        : _services(services), _runLoop(runLoop), _report(report) {}

    struct Tally {
        uint64_t converted = 0;
        uint64_t failed =
            0;             ///< conversions, backups, searches, paths that are not there, the report
        uint64_t lost = 0; ///< characters that were not kept, in all files
        int signal = 0;    ///< the first signal that asked to stop, 0 for none
    };

    /// Converts what is under `paths`, in their order.
    Tally run(const std::vector<std::string>& paths);

  private:
    void open(ZelDocumentController& controller, const std::string& argument);
    void convertQueued(ZelDocumentController& controller);
    void noteLostCharacters(const LostCharacters& lost);
    void failReport(const platform::Error& error);

    EngineServices _services;
    platform::TerminalRunLoop& _runLoop;
    LossReport* _report;
    Tally _tally;
};

} // namespace zelmora
