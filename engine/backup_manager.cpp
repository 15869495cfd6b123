#include "engine/backup_manager.h"

#include "engine/conversion_log.h"
#include "engine/settings.h"
#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

#include <cerrno>
#include <new>

namespace zelmora {

namespace {

// The values of actionForDupBackupFiles that mean something; with any other the name is used as
// it is, and the copy fails because it is taken.
constexpr int64_t skipBackup = 0;
constexpr int64_t replaceOldCopy = 1;
constexpr int64_t numberNewCopy = 2;

} // namespace

bool BackupManager::backupPath(const std::string& path) {
    const auto& defaults = _services.defaults;
    if (!defaults.boolForKey(settings::autoBackup))
        return true;

    auto progressWindow = allocProgressWindow();
    _modalSession = _services.userInterface.beginModalSessionForWindow(progressWindow->window());
    Backup backup;
    _modalSession->run([&] { backup = makeBackup(path); });
    const auto& [dstPath, status] = backup;
    _modalSession.reset();
    progressWindow->close();
    progressWindow.reset();

    if (dstPath && defaults.boolForKey(settings::createLogFile))
        ZelLog::sharedLog(_services)->logBackupActionWithResult(status.ok(), path, *dstPath);
    if (!status.ok())
        alertFailure(path, status.error());
    return status.ok();
}

BackupManager::Backup BackupManager::makeBackup(const std::string& path) {
    const auto folder = platform::expandingTilde(
        _services.defaults.stringForKey(settings::backupDataDir).value_or(""));
    if (folder.empty())
        return {std::nullopt, platform::Error::fromErrno(ENOENT, folder, "backup folder")};
    Backup backup;
    try {
        backup.dstPath = dstPathForSrcPath(path, folder);
        if (backup.dstPath)
            backup.status = copy(path, *backup.dstPath, folder);
    } catch (const std::bad_alloc&) {
        backup.status = platform::Error::fromErrno(ENOMEM, path, "backup");
    }
    return backup;
}

std::optional<std::string> BackupManager::dstPathForSrcPath(const std::string& srcPath,
                                                            const std::string& dstDirectory) {
    auto& files = _services.files;
    auto candidate =
        platform::appendingPathComponent(dstDirectory, platform::lastPathComponent(srcPath));
    if (!files.fileExistsAtPath(candidate))
        return candidate;
    switch (_services.defaults.integerForKey(settings::actionForDupBackupFiles)) {
    case skipBackup:
        return std::nullopt;
    case replaceOldCopy:
        // Something handed over from the backup folder itself must not be deleted as its own old
        // copy. If the deletion fails, the copy fails in its turn: the name is still taken.
        if (!files.itemAtPathContainsItemAtPath(candidate, srcPath))
            static_cast<void>(files.removeItemAtPath(candidate).ok());
        return candidate;
    case numberNewCopy:
        return numberedPath(srcPath, dstDirectory);
    default:
        return candidate;
    }
}

std::string BackupManager::numberedPath(const std::string& srcPath,
                                        const std::string& dstDirectory) {
    auto& files = _services.files;
    const auto type = files.typeOfItemAtPath(srcPath);
    const bool isFolder = type.ok() && *type == platform::FileType::directory;
    const auto name = platform::lastPathComponent(srcPath);
    const auto extension = isFolder ? std::string() : platform::pathExtension(name);
    const auto base = isFolder ? name : platform::deletingPathExtension(name);
    for (uint32_t n = 1;; ++n) {
        auto candidate = platform::appendingPathComponent(
            dstDirectory, platform::appendingPathExtension(base + std::to_string(n), extension));
        if (!files.fileExistsAtPath(candidate))
            return candidate;
    }
}

platform::Status BackupManager::copy(const std::string& srcPath, const std::string& dstPath,
                                     const std::string& dstDirectory) {
    if (!MakeDirectoryPath(_services.files, dstDirectory)) {
        // Asked again for the reason alone; a name that something else has is the common one.
        auto made = _services.files.createDirectoryAtPath(dstDirectory);
        if (!made.ok() && made.error().code == EEXIST)
            return platform::Error::fromErrno(ENOTDIR, dstDirectory, "backup folder");
        if (!made.ok())
            return made;
    }
    return _services.files.copyItemAtPath(srcPath, dstPath);
}

std::unique_ptr<ProgressWindow> BackupManager::allocProgressWindow() {
    auto progressWindow = std::make_unique<ProgressWindow>(_services.userInterface);
    progressWindow->showWindow();
    progressWindow->window().center();
    progressWindow->cancelButton().setEnabled(false);
    progressWindow->labelStaticText().setStringValue(_services.strings.stringForKey("RunBackup"));
    auto& bar = progressWindow->progressBar();
    bar.setIndeterminate(true);
    bar.setUsesThreadedAnimation(true);
    bar.startAnimation();
    return progressWindow;
}

void BackupManager::alertFailure(const std::string& path, const platform::Error& error) {
    const auto& strings = _services.strings;
    _services.userInterface.runModal(
        {strings.stringForKey("FailedBackup"),
         strings.format("FailedBackupInfo", {platform::displayPath(path)}) + " " +
             strings.format("ReasonBackup", {error.message})});
}

} // namespace zelmora
