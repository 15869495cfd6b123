// The application's delegate: launch, files handed over, the menus' actions, the end.
#pragma once

#include "engine/document_controller.h"
#include "engine/services.h"
#include "platform/defaults/bundle.h"
#include "platform/ui/application_delegate.h"
#include "platform/ui/panels.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora {

/// What the controller works with; all borrowed but the function.
struct AppServices {
    EngineServices engine;
    platform::Panels& panels;
    platform::Workspace& workspace;
    const platform::Bundle& bundle;
    std::function<void()> showPreferences;
    /// The window that panels are sheets of; null: panels stand by themselves.
    platform::Window* mainWindow = nullptr;
};

/// Owns the document controller between launch and termination, and starts and ends the foundation
/// library around it. Files that come outside that time are ignored. Main thread only; nothing here
/// waits but the handshake with the worker at the end, at most 10 seconds.
class ZelAppController : public platform::ApplicationDelegate {
  public:
    /// Installs the registered defaults.
    explicit ZelAppController(AppServices services);

    /// Where the web pages are; "/contact.php" under it is the contact page.
    static constexpr std::string_view supportSite = ZELMORA_SUPPORT_SITE;

    static void setupDefaults(const AppServices& services);

    // The application object's calls.

    void applicationWillFinishLaunching() override;
    bool applicationOpenUntitledFile() override { return true; }
    bool applicationOpenFile(const std::string& path) override;
    void applicationOpenFiles(const std::vector<std::string>& paths) override;
    bool applicationOpenFileWithoutUI(const std::string& path) { return applicationOpenFile(path); }
    platform::TerminateReply applicationShouldTerminate() override;

    // The menus' actions.

    void doConvert();
    void showPreference() { _services.showPreferences(); }
    void openManual();
    void openSupportSite();
    void openContactPage();

    /// Whether the environment is fit to run in. Nothing is required.
    [[nodiscard]] bool systemCheck() const { return true; }
    /// Asks whether to open the manual, unless that has been asked before.
    void showManualAlert();

    /// After termination: the worker is still at its last file and uses what was handed to this
    /// controller. Nothing of it may be destroyed; the process has to end without destructors.
    [[nodiscard]] bool hasAbandonedWorker() const { return _hasAbandonedWorker; }

  private:
    void openBatch(const std::vector<std::string>& paths);
    void noteLostCharacters(const LostCharacters& lost);
    void showLostCharacters();
    void openPage(const std::string& url);
    void alert(std::string_view key, const std::string& information = {});

    AppServices _services;
    std::unique_ptr<ZelDocumentController> _documentController;
    std::deque<std::vector<std::string>> _batches; ///< the first one is in hand
    std::vector<std::string> _lostCharacters;      ///< what the list at the batch's end will say
    uint64_t _lostCharactersUnlisted = 0;          ///< that are too many for it
    bool _hasAbandonedWorker = false;
};

} // namespace zelmora
