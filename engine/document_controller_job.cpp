// The job: paths in, the queue, the worker thread, progress, cancel and the end.

#include "engine/document_controller.h"

#include "engine/settings.h"
#include "foundation/orv_ptr.h"
#include "platform/text/file_url.h"

#include <thread>
#include <utility>

namespace zelmora {

namespace {
constexpr int64_t secondsToWaitForWorker = 10;
} // namespace

ZelDocumentController::ZelDocumentController(const EngineServices& services)
    : _services(services), _targets(services.defaults, services.files),
      _fileList(std::make_shared<FileList>()),
      _backupManager(std::make_unique<BackupManager>(services)),
      _progressWindow(std::make_shared<ProgressWindow>(services.userInterface)),
      _conversionThreadIsDead(std::make_unique<PThreadConditional>()),
      _wakeupConversionThread(std::make_unique<PThreadConditional>()),
      _batch(std::make_shared<Batch>()) {
    // The window is ours and goes before we do, so its reference to us need not own us.
    _progressWindow->setDelegate({std::shared_ptr<void>(), this});
    _progressWindow->window().center();
    std::thread([this] { conversionThreadProc(); }).detach();
}

ZelDocumentController::~ZelDocumentController() {
    while (!releaseContents()) {
    }
}

void ZelDocumentController::openDocumentWithContentsOfURL(std::string_view url) {
    if (const auto path = platform::pathFromFileURL(url))
        addPath(*path);
}

void ZelDocumentController::openDocumentWithContentsOfFile(const std::string& path) {
    addPath(path);
}

void ZelDocumentController::addPath(const std::string& path) {
    if (!_backupManager->backupPath(path)) {
        ++_failedCount;
        return;
    }
    if (!_progressWindow->window().isVisible()) {
        _progressWindow->labelStaticText().setStringValue("");
        _progressWindow->showWindow();
    }
    if (!scanFiles(path) && _fileList->count() == 0)
        _progressWindow->close();
}

bool ZelDocumentController::scanFiles(const std::string& path) {
    bool queuedAny = false;
    // Slashes at the end are not taken over by what is found beneath.
    const size_t folderLength = path.find_last_not_of('/') + 1;
    const auto status = _targets.scan(path, [&](std::string target) {
        const size_t givenLength = target.size() == path.size() ? path.size() : folderLength;
        _fileList->addPath({std::move(target), givenLength});
        queuedAny = true;
    });
    if (!status.ok()) {
        // What could not be looked into may hold targets: the user must not take it for converted.
        ++_failedCount;
        alert("FailedScan", path, status.error().message);
    }
    return queuedAny;
}

bool ZelDocumentController::checkIsTarget(const std::string& path) const {
    return _targets.isTarget(path);
}

bool ZelDocumentController::isHTMLFile(const std::string& path) const {
    return _targets.isHTMLFile(path);
}

bool ZelDocumentController::isXMLFile(const std::string& path) const {
    return _targets.isXMLFile(path);
}

bool ZelDocumentController::isCSSFile(const std::string& path) const {
    return _targets.isCSSFile(path);
}

bool ZelDocumentController::isExtensionInUserDefaults(std::string_view extension,
                                                      std::string_view key) const {
    return _targets.isExtensionInUserDefaults(extension, key);
}

bool ZelDocumentController::wakeupThreadIfNeed() {
    if (_fileList->count() == 0)
        return false;
    ++_batch->wakeups;
    _wakeupConversionThread->signal();
    return true;
}

void ZelDocumentController::cancel() {
    _progressWindow->onCancel();
}

bool ZelDocumentController::onCancelProgressWindow(ProgressWindow&) {
    _fileList->removeAllPaths();
    return true;
}

void ZelDocumentController::setBatchFinishedHandler(std::function<void()> handler) {
    _batch->finishedHandler = std::move(handler);
}

void ZelDocumentController::setLostCharactersHandler(
    std::function<void(const LostCharacters&)> handler) {
    _batch->lostCharactersHandler = std::move(handler);
}

bool ZelDocumentController::releaseContents() {
    if (!_wakeupConversionThread)
        return true;
    _shouldTerminateThread = true;
    _wakeupConversionThread->signal();
    if (!_conversionThreadIsDead->waitWithTimeoutSeconds(secondsToWaitForWorker, 0))
        return false;
    _wakeupConversionThread.reset();
    _conversionThreadIsDead.reset();
    _backupManager.reset();
    _fileList.reset();
    _progressWindow.reset();
    _batch.reset();
    return true;
}

void ZelDocumentController::conversionThreadProc() {
    {
        const OrvPtr<> threadPool(OrvTemporaryObjectsPoolCreate());
        if (!_shouldTerminateThread)
            convertQueuedFiles();
    }
    // The last touch: once this is signalled, the controller and its services may be gone.
    _conversionThreadIsDead->signal();
}

/// The worker's loop, until it is told to end.
void ZelDocumentController::convertQueuedFiles() {
    bool hasConverted = false;
    do {
        // Read before the queue is: a batch is over only when no wake-up came after this.
        const uint64_t wakeupsSeen = _batch->wakeups;
        // Nothing is taken before the first wake-up: the batch is still being put together.
        const auto file = wakeupsSeen != 0 ? _fileList->fetchPath() : std::nullopt;
        if (file) {
            const OrvPtr<> filePool(OrvTemporaryObjectsPoolCreate());
            updateProgressWindow();
            convertQueuedFile(*file);
            hasConverted = true;
        } else {
            finishBatch(wakeupsSeen);
            if (hasConverted && _services.defaults.boolForKey(settings::autoQuit))
                quitAutomatically(wakeupsSeen);
            _wakeupConversionThread->wait();
        }
    } while (!_shouldTerminateThread);
}

/// Asks for the application's end, which tells this thread to end, too. It sleeps meanwhile and
/// does not end at once, for more may be handed over before the main thread comes to it, which may
/// be long, with a panel open; that is then converted first.
void ZelDocumentController::quitAutomatically(uint64_t wakeupsSeen) const {
    const auto isStillWanted = [batch = std::weak_ptr(_batch), wakeupsSeen] {
        const auto current = batch.lock();
        return current && current->wakeups == wakeupsSeen;
    };
    _services.mainLoop.mainQueue().async([&userInterface = _services.userInterface, isStillWanted] {
        userInterface.terminateIf(isStillWanted);
    });
}

void ZelDocumentController::finishBatch(uint64_t wakeupsSeen) const {
    _services.mainLoop.mainQueue().async([window = std::weak_ptr(_progressWindow),
                                          list = std::weak_ptr(_fileList),
                                          batch = std::weak_ptr(_batch), wakeupsSeen] {
        const auto openWindow = window.lock();
        const auto fileList = list.lock();
        // With paths that were added meanwhile it is the window of the batch to come.
        if (openWindow && fileList && fileList->count() == 0)
            openWindow->close();
        const auto current = batch.lock();
        // Over, and not told yet: a worker that went round once more for nothing says it twice.
        if (!current || current->wakeups != wakeupsSeen || current->wakeupsFinished == wakeupsSeen)
            return;
        current->wakeupsFinished = wakeupsSeen;
        if (current->finishedHandler)
            current->finishedHandler();
    });
}

void ZelDocumentController::tellLostCharacters(LostCharacters lost) const {
    _services.mainLoop.mainQueue().async([batch = std::weak_ptr(_batch), lost = std::move(lost)] {
        const auto current = batch.lock();
        if (current && current->lostCharactersHandler)
            current->lostCharactersHandler(lost);
    });
}

void ZelDocumentController::updateProgressWindow() const {
    // A block shows what is so when it runs; a second one behind it would show the same.
    if (_batch->isProgressScheduled.exchange(true))
        return;
    _services.mainLoop.mainQueue().asyncLater(
        [window = std::weak_ptr(_progressWindow), list = std::weak_ptr(_fileList),
         current = std::weak_ptr(_batch), &strings = _services.strings] {
            const auto progressWindow = window.lock();
            const auto fileList = list.lock();
            const auto batch = current.lock();
            if (!progressWindow || !fileList || !batch)
                return;
            batch->isProgressScheduled = false; // first: what changes from now on needs a new block
            const uint32_t index = fileList->currentIndex();
            const uint64_t count = fileList->count();
            progressWindow->labelStaticText().setStringValue(
                strings.format("ConversionRemainItemCount", {std::to_string(count - index)}));
            if (count != 0) // emptied meanwhile: the window is about to close
                progressWindow->progressBar().setDoubleValue(
                    double{static_cast<float>(index) / static_cast<float>(count) * 100.0F});
        });
}

} // namespace zelmora
