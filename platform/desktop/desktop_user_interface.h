// Windows, alerts and panels on the desktop.
#pragma once

#include "platform/defaults/bundle.h"
#include "platform/defaults/user_defaults.h"
#include "platform/desktop/desktop_application.h"
#include "platform/desktop/message_list_window.h"
#include "platform/ui/controls.h"
#include "platform/ui/panels.h"
#include "platform/ui/user_interface.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelmora::platform {

/// The desktop's face. Main thread only.
///
/// Alerts gather in one window, which opens from the event loop as soon as no modal session is
/// open; runModal() keeps nobody waiting, for other work goes on behind it and brings more of them.
/// The application does not end while an alert, a question, a panel or a modal session is open:
/// terminate() then waits for its close.
class DesktopUserInterface final : public UserInterface, public Panels {
  public:
    /// What interfaces are loaded with and bound to, and what is to be ended; borrowed.
    struct Services {
        const Bundle& bundle;
        FileManager& files;
        UserDefaults& defaults;
        DesktopApplication& application;
    };
    explicit DesktopUserInterface(const Services& services) : _services(services) {}

    void runModal(const Alert& alert) override;
    /// An interface that cannot be loaded ends the program: the package is not whole.
    std::unique_ptr<LoadedInterface> loadInterface(std::string_view name) override;
    std::unique_ptr<LoadedForm> loadForm(std::string_view name);
    std::unique_ptr<ModalSession> beginModalSessionForWindow(Window& window) override;
    void terminate() override;
    void terminateIf(std::function<bool()> isStillWanted) override;
    [[nodiscard]] bool isTerminating() const override { return _shouldTerminate; }

    std::vector<std::string> runOpenPanel(const OpenPanel& panel, Window* sheetParent) override;
    std::optional<std::string> runSavePanel(const SavePanel& panel, Window* sheetParent) override;
    size_t runQuestion(const Question& question, Window* sheetParent) override;

  private:
    class Session;
    /// Alive while the user or the caller is in the middle of something.
    class Busy {
      public:
        explicit Busy(DesktopUserInterface& owner) : _owner(owner) { ++_owner._busyCount; }
        ~Busy() { _owner.endBusy(); }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

      private:
        DesktopUserInterface& _owner;
    };

    void endBusy();
    void terminateLater();
    void showAlertsLater();

    Services _services;
    int _busyCount = 0;
    int _sessionCount = 0;
    bool _shouldTerminate = false;              ///< as soon as nothing is open
    std::function<bool()> _mayTerminate;        ///< asked then, if it is there
    std::optional<Busy> _busyWithAlerts;        ///< from the first alert to their dismissal
    std::unique_ptr<MessageListWindow> _alerts; ///< null until there is one
};

} // namespace zelmora::platform
