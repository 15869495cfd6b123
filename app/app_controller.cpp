#include "app/app_controller.h"

#include "engine/settings.h"
#include "foundation/orv_base.h"
#include "platform/text/unicode_codecs.h"
#include "platform/text/utf8.h"

#include <array>
#include <utility>

namespace zelmora {

namespace {
constexpr size_t mostLinesListed = 1000; // more than anyone reads through

/// The character as itself, and its name for where no font has it.
std::string shownCharacter(char32_t codePoint) {
    std::array<char16_t, 2> units;
    char16_t* end = units.data();
    platform::writeUnits(codePoint, end);
    return platform::utf8FromUTF16({units.data(), end}) + " (" + codePointName(codePoint) + ")";
}
} // namespace

ZelAppController::ZelAppController(AppServices services) : _services(std::move(services)) {
    setupDefaults(_services);
}

void ZelAppController::setupDefaults(const AppServices& services) {
    settings::registerDefaults(services.engine.defaults, services.engine.files, services.bundle);
}

void ZelAppController::applicationWillFinishLaunching() {
    OrvFoundationInitialize();
    _documentController = std::make_unique<ZelDocumentController>(_services.engine);
    _documentController->setLostCharactersHandler(
        [this](const LostCharacters& lost) { noteLostCharacters(lost); });
    _documentController->setBatchFinishedHandler([this] { showLostCharacters(); });
    if (!systemCheck()) {
        alert("SystemError");
        _services.engine.userInterface.terminate();
    }
}

bool ZelAppController::applicationOpenFile(const std::string& path) {
    applicationOpenFiles({path});
    return true;
}

void ZelAppController::applicationOpenFiles(const std::vector<std::string>& paths) {
    if (!_documentController)
        return;
    _batches.push_back(paths);
    if (_batches.size() > 1) // come while the first is being backed up: its caller sees to it
        return;
    for (; !_batches.empty(); _batches.pop_front())
        openBatch(_batches.front());
}

void ZelAppController::openBatch(const std::vector<std::string>& paths) {
    // Who leaves during a long backup does not wait for those still to be made.
    const auto isLeaving = [this] { return _services.engine.userInterface.isTerminating(); };
    for (auto path = paths.begin(); path != paths.end() && !isLeaving(); ++path)
        _documentController->openDocumentWithContentsOfFile(*path);
    if (!isLeaving())
        _documentController->wakeupThreadIfNeed();
}

void ZelAppController::noteLostCharacters(const LostCharacters& lost) {
    const auto& strings = _services.engine.strings;
    const auto path = platform::displayPath(lost.path);
    uint64_t unlisted = lost.count;
    for (const auto& [line, column, codePoint, written] : lost.listed) {
        if (_lostCharacters.size() == mostLinesListed)
            break;
        _lostCharacters.push_back(
            strings.format(written.empty() ? "LostCharacterLeftOut" : "LostCharacterWritten",
                           {path, std::to_string(line), std::to_string(column),
                            shownCharacter(codePoint), written}));
        --unlisted;
    }
    _lostCharactersUnlisted += unlisted;
}

void ZelAppController::showLostCharacters() {
    const auto& strings = _services.engine.strings;
    if (_lostCharactersUnlisted != 0)
        _lostCharacters.push_back(
            strings.format("LostCharactersMore", {std::to_string(_lostCharactersUnlisted)}));
    for (const auto& each : _lostCharacters)
        alert("LostCharacters", each);
    _lostCharacters = {};
    _lostCharactersUnlisted = 0;
}

platform::TerminateReply ZelAppController::applicationShouldTerminate() {
    if (_documentController && !_documentController->releaseContents()) {
        // The worker still uses the controller and the foundation library: both stay.
        static_cast<void>(_documentController.release());
        _hasAbandonedWorker = true;
        return platform::TerminateReply::now;
    }
    _documentController.reset();
    OrvFoundationTerminate();
    return platform::TerminateReply::now;
}

void ZelAppController::doConvert() {
    platform::OpenPanel panel;
    panel.canChooseFiles = true;
    panel.canChooseDirectories = true;
    panel.allowsMultipleSelection = true;
    panel.title = _services.engine.strings.stringForKey("OpenPanelTitle");
    const auto paths = _services.panels.runOpenPanel(panel, _services.mainWindow);
    if (!paths.empty())
        applicationOpenFiles(paths);
}

void ZelAppController::openManual() {
    const auto path =
        _services.bundle.pathForResource("Manual", "pdf", platform::preferredLanguage());
    if (!_services.engine.files.fileExistsAtPath(path) || !_services.workspace.openFile(path))
        alert("InvalidPackage");
}

void ZelAppController::openSupportSite() {
    openPage(std::string(supportSite));
}

void ZelAppController::openContactPage() {
    openPage(std::string(supportSite) + "/contact.php");
}

void ZelAppController::openPage(const std::string& url) {
    if (!_services.workspace.openURL(url))
        alert("FailedOpenPage", url);
}

void ZelAppController::showManualAlert() {
    auto& defaults = _services.engine.defaults;
    if (defaults.boolForKey(settings::displayManualAlert))
        return;
    const auto& strings = _services.engine.strings;
    const auto answer =
        _services.panels.runQuestion({strings.stringForKey("AskOpenManual"),
                                      strings.stringForKey("HowToOpenManual"),
                                      {strings.stringForKey("Yes"), strings.stringForKey("No")}},
                                     _services.mainWindow);
    defaults.setBool(true, settings::displayManualAlert);
    if (answer == 0)
        openManual();
}

void ZelAppController::alert(std::string_view key, const std::string& information) {
    _services.engine.userInterface.runModal(
        {_services.engine.strings.stringForKey(key), information});
}

} // namespace zelmora
