// Copies of what the user hands over, made before anything is converted.
#pragma once

#include "engine/progress_window.h"
#include "engine/services.h"

#include <memory>
#include <optional>
#include <string>

namespace zelmora {

/// Copies a path, a folder with everything in it, into the backup folder. Main thread only. Behind
/// a progress window of its own, in whose modal session the files are worked on: events are handled
/// meanwhile, but for the user's input to other windows.
class BackupManager {
  public:
    explicit BackupManager(const EngineServices& services) : _services(services) {}

    /// YES when `path` may be converted: it is backed up, or needs no backup. NO after a failure,
    /// which the user has been told. REQUIRES: no backup is running (see ModalSession::run).
    bool backupPath(const std::string& path);

    /// The path that the copy of `srcPath` is to take in `dstDirectory`; nullopt when its name is
    /// taken and the settings say to make no copy then. With the setting to replace, the item that
    /// has the name is deleted here, unless it is, or holds, the source itself.
    [[nodiscard]] std::optional<std::string> dstPathForSrcPath(const std::string& srcPath,
                                                               const std::string& dstDirectory);

    /// A progress window, shown and set up for a backup.
    [[nodiscard]] std::unique_ptr<ProgressWindow> allocProgressWindow();

  private:
    struct Backup {
        std::optional<std::string> dstPath; ///< none: there was nothing to copy, or nowhere to
        platform::Status status;
    };

    /// Any thread; does not throw.
    [[nodiscard]] Backup makeBackup(const std::string& path);
    [[nodiscard]] platform::Status copy(const std::string& srcPath, const std::string& dstPath,
                                        const std::string& dstDirectory);
    [[nodiscard]] std::string numberedPath(const std::string& srcPath,
                                           const std::string& dstDirectory);
    void alertFailure(const std::string& path, const platform::Error& error);

    EngineServices _services;
    std::unique_ptr<platform::ModalSession> _modalSession; ///< set only while a backup runs
};

} // namespace zelmora
