#include "app/console_conversion.h"

#include "app/path_argument.h"
#include "engine/document_controller.h"
#include "foundation/orv_base.h"
#include "platform/events/notification_center.h"
#include "platform/text/utf8.h"

#include <system_error>

namespace zelmora {

ConsoleConversion::Tally ConsoleConversion::run(const std::vector<std::string>& paths) {
    OrvFoundationInitialize();
    {
        ZelDocumentController controller(_services);
        controller.setBatchFinishedHandler([this] { _runLoop.stop(0); });
        controller.setLostCharactersHandler(
            [this](const LostCharacters& lost) { noteLostCharacters(lost); });
        _runLoop.setSignalHandler([this, &controller](int signal) {
            if (_tally.signal == 0)
                _tally.signal = signal;
            controller.cancel();
        });
        for (const auto& path : paths) {
            _runLoop.deliverSignals();
            if (_tally.signal == 0)
                open(controller, path);
        }
        _runLoop.deliverSignals();
        convertQueued(controller);
        _runLoop.mainQueue().drain();
        _tally.converted += controller.convertedCount();
        _tally.failed += controller.failedCount();
        _runLoop.setSignalHandler({});
        // The worker is idle by now, so the handshake does not run out of time.
        controller.releaseContents();
    }
    platform::NotificationCenter::defaultCenter().post(
        platform::applicationWillTerminateNotification);
    OrvFoundationTerminate();
    return _tally;
}

void ConsoleConversion::convertQueued(ZelDocumentController& controller) {
    // Made when all paths have been searched: the report is none of the files to be converted.
    if (_report != nullptr) {
        if (const auto created = _report->create(); !created.ok()) {
            failReport(created.error());
            return;
        }
    }
    if (controller.wakeupThreadIfNeed())
        _runLoop.run();
}

void ConsoleConversion::noteLostCharacters(const LostCharacters& lost) {
    _tally.lost += lost.count;
    if (_report == nullptr)
        return;
    if (const auto added = _report->add(lost); !added.ok())
        failReport(added.error());
}

/// Once it has failed, the report is given up: with lines behind a gap it would look whole.
void ConsoleConversion::failReport(const platform::Error& error) {
    ++_tally.failed;
    _report = nullptr;
    const auto& strings = _services.strings;
    _services.userInterface.runModal(
        {strings.stringForKey("FailedReport"), strings.format("ReasonReport", {error.message})});
}

void ConsoleConversion::open(ZelDocumentController& controller, const std::string& argument) {
    const auto path = pathFromArgument(argument);
    const auto type = _services.files.typeOfItemAtPath(path);
    if (type.ok() || controller.checkIsTarget(path)) {
        controller.openDocumentWithContentsOfFile(path);
        return;
    }
    // The engine passes over what is no target; a mistyped name must not go unnoticed.
    ++_tally.failed;
    const auto& strings = _services.strings;
    _services.userInterface.runModal(
        {strings.stringForKey("FailedConvert"),
         strings.format("FailedConvertInfo", {platform::displayPath(argument)}) + " " +
             strings.format("ReasonRead", {std::generic_category().message(type.error().code)})});
}

} // namespace zelmora
