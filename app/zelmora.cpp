// The desktop program's entry: puts the parts together.

#include "app/app_controller.h"
#include "app/desktop_options.h"
#include "app/path_argument.h"
#include "app/pref_wnd_controller.h"
#include "app/saved_settings_path.h"
#include "app/settings_summary.h"
#include "app/string_table.h"
#include "engine/settings.h"
#include "platform/desktop/application_bus.h"
#include "platform/desktop/desktop_user_interface.h"
#include "platform/desktop/desktop_workspace.h"
#include "platform/desktop/end_requests.h"
#include "platform/desktop/main_window.h"
#include "platform/files/process_setup.h"

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace zelmora {

namespace {

constexpr std::chrono::seconds kServicePatience{10};

/// Everything that lives as long as the desktop program. Each part stands behind those it borrows.
class DesktopProgram {
  public:
    DesktopProgram(platform::DesktopApplication& application, platform::ApplicationBus& bus,
                   const platform::Bundle& bundle, const platform::LocalizedStrings& strings);
    /// Converts `paths`, or as a service waits for others to say what to do. Answers the exit
    /// status.
    int run(const std::vector<std::string>& paths, bool isService);

  private:
    platform::MainWindowActions actions();
    AppServices services();
    void showPreferences();
    void showAbout();
    void serveBus();
    void waitForRequest();
    void askAboutManual();
    void loadSettings();
    void saveSettings();

    platform::DesktopApplication& _application;
    platform::ApplicationBus& _bus;
    platform::FileManager& _files = platform::FileManager::defaultManager();
    const platform::Bundle& _bundle;
    platform::UserDefaults _defaults{settings::allKeys()};
    const platform::LocalizedStrings& _strings;
    platform::DesktopUserInterface _userInterface{{_bundle, _files, _defaults, _application}};
    platform::DesktopWorkspace _workspace;
    platform::MainWindow _window{_strings, actions()};
    SettingsSummary _summary{_defaults, _strings, _application.runLoop(),
                             [this](const std::string& text) { _window.setSummary(text); }};
    ZelAppController _controller{services()};
    platform::EndRequests _endRequests{[this] { _userInterface.terminate(); }};
    bool _isWaiting = false; ///< as a service, for the first request
};

DesktopProgram::DesktopProgram(platform::DesktopApplication& application,
                               platform::ApplicationBus& bus, const platform::Bundle& bundle,
                               const platform::LocalizedStrings& strings)
    : _application(application), _bus(bus), _bundle(bundle), _strings(strings) {
    _application.installStrings(_strings, platform::preferredLanguage());
    _application.setDelegate(_controller);
    loadSettings();
}

platform::MainWindowActions DesktopProgram::actions() {
    return {.convert = [this] { _controller.doConvert(); },
            .showPreferences = [this] { _controller.showPreference(); },
            .quit = [this] { _userInterface.terminate(); },
            .openManual = [this] { _controller.openManual(); },
            .openSupportSite = [this] { _controller.openSupportSite(); },
            .openContactPage = [this] { _controller.openContactPage(); },
            .about = [this] { showAbout(); },
            .openFiles =
                [this](const std::vector<std::string>& paths) {
                    _controller.applicationOpenFiles(paths);
                }};
}

AppServices DesktopProgram::services() {
    return {.engine = {_defaults, _files, _strings, _application.runLoop(), _userInterface},
            .panels = _userInterface,
            .workspace = _workspace,
            .bundle = _bundle,
            .showPreferences = [this] { showPreferences(); },
            .mainWindow = &_window.asWindow()};
}

int DesktopProgram::run(const std::vector<std::string>& paths, bool isService) {
    _isWaiting = isService && paths.empty();
    if (!_isWaiting)
        _window.show();
    // Once launched: what comes over the bus finds the controller ready.
    _application.runLoop().mainQueue().async([this, hasPaths = !paths.empty()] {
        serveBus();
        if (_isWaiting)
            waitForRequest();
        else if (!hasPaths) // who comes with files wants them converted
            askAboutManual();
    });
    const int status = _application.run(paths);
    saveSettings();
    if (_controller.hasAbandonedWorker()) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}

void DesktopProgram::serveBus() {
    _bus.serve({.areTaken = [this] { return !_userInterface.isTerminating(); },
                .activate =
                    [this] {
                        _window.present();
                        if (std::exchange(_isWaiting, false))
                            askAboutManual();
                    },
                .open =
                    [this](const std::vector<std::string>& paths) {
                        _window.present();
                        _isWaiting = false;
                        _controller.applicationOpenFiles(paths);
                    }});
}

/// A service without a window that nobody wants anything of would stay unseen.
void DesktopProgram::waitForRequest() {
    QTimer::singleShot(kServicePatience, &_window, [this] {
        if (_isWaiting)
            _userInterface.terminate();
    });
}

void DesktopProgram::showPreferences() {
    ZelPrefWndController::sharedPrefWndController(
        {_defaults, _files, _strings, _userInterface, _userInterface,
         [this](std::string_view name) { return _userInterface.loadForm(name); }})
        .showWindow();
}

void DesktopProgram::showAbout() {
    _userInterface.runQuestion({_strings.format("AboutTitle", {ZELMORA_VERSION}),
                                _strings.stringForKey("AboutText"),
                                {_strings.stringForKey("OK")}},
                               &_window.asWindow());
}

/// Asks once, and only when there is a manual to open.
void DesktopProgram::askAboutManual() {
    const auto manual = _bundle.pathForResource("Manual", "pdf", platform::preferredLanguage());
    if (_files.fileExistsAtPath(manual))
        _controller.showManualAlert();
}

void DesktopProgram::loadSettings() {
    for (const auto& problem : _defaults.load(_files, savedSettingsPath()))
        _userInterface.runModal({_strings.stringForKey("FailedLoadSettings"), problem});
}

/// The preferences window saves each change by itself; this is for what is left.
void DesktopProgram::saveSettings() {
    const auto saved = _defaults.save(_files);
    if (!saved.ok())
        std::fprintf(stderr, "zelmora: %s\n", saved.error().message.c_str());
}

} // namespace

} // namespace zelmora

int main(int argc, char** argv) {
    using namespace zelmora;
    platform::setUpProcess();
    const auto bundle = platform::Bundle::mainBundle();
    const auto strings = loadStringTable(bundle, platform::FileManager::defaultManager());
    const std::span arguments(argv, static_cast<size_t>(argc));
    const auto options = readDesktopOptions(arguments.subspan(argc > 0 ? 1 : 0), strings);
    if (const auto* status = std::get_if<int>(&options))
        return *status;
    const auto& [isService, pathArguments] = std::get<DesktopOptions>(options);
    std::vector<std::string> paths;
    for (const auto& argument : pathArguments)
        paths.push_back(pathFromArgument(argument));
    // Qt sees no more than the program's name: it would take its own options from behind "--" too,
    // and without a display nothing could be said of the others.
    int argumentsForQt = std::min(argc, 1);
    platform::DesktopApplication application(argumentsForQt, argv);
    platform::ApplicationBus bus;
    if (bus.handOver(paths))
        return EXIT_SUCCESS;
    return DesktopProgram(application, bus, bundle, strings).run(paths, isService);
}
