// The desktop program's entry: puts the parts together.

#include "app/app_controller.h"
#include "app/path_argument.h"
#include "app/pref_wnd_controller.h"
#include "app/saved_settings_path.h"
#include "app/settings_summary.h"
#include "engine/settings.h"
#include "platform/desktop/desktop_user_interface.h"
#include "platform/desktop/desktop_workspace.h"
#include "platform/desktop/main_window.h"
#include "platform/files/process_setup.h"

#include <cstdio>
#include <cstdlib>

namespace zelmora {

namespace {

/// Everything that lives as long as the desktop program. Each part stands behind those it borrows.
class DesktopProgram {
  public:
    DesktopProgram(int& argumentCount, char** arguments);
    /// Answers the exit status.
    int run(const std::vector<std::string>& paths);

  private:
    platform::LocalizedStrings loadStrings();
    platform::MainWindowActions actions();
    AppServices services();
    void showPreferences();
    void showAbout();
    void showSummary();
    void askAboutManual();
    void loadSettings();
    void saveSettings();

    platform::DesktopApplication _application;
    platform::FileManager& _files = platform::FileManager::defaultManager();
    platform::Bundle _bundle = platform::Bundle::mainBundle();
    platform::UserDefaults _defaults{settings::allKeys()};
    platform::LocalizedStrings _strings = loadStrings();
    platform::DesktopUserInterface _userInterface{{_bundle, _files, _defaults, _application}};
    platform::DesktopWorkspace _workspace;
    platform::MainWindow _window{_strings, actions()};
    ZelAppController _controller{services()};
};

DesktopProgram::DesktopProgram(int& argumentCount, char** arguments)
    : _application(argumentCount, arguments) {
    _application.installStrings(_strings, platform::preferredLanguage());
    _application.setDelegate(_controller);
    loadSettings();
    for (const auto key : settingsSummaryKeys())
        _defaults.addObserver(key, [this](std::string_view) {
            _application.runLoop().mainQueue().async([this] { showSummary(); });
        });
    showSummary();
}

platform::LocalizedStrings DesktopProgram::loadStrings() {
    auto strings = _bundle.localizedStrings(_files, platform::preferredLanguage());
    if (strings.ok())
        return std::move(*strings);
    // Without its table the program speaks in keys; say why in the one language left.
    std::fprintf(stderr, "%s\n", strings.error().message.c_str());
    return {};
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

int DesktopProgram::run(const std::vector<std::string>& paths) {
    _window.show();
    _application.runLoop().mainQueue().async([this] { askAboutManual(); });
    const int status = _application.run(paths);
    saveSettings();
    if (_controller.hasAbandonedWorker()) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
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

void DesktopProgram::showSummary() {
    _window.setSummary(settingsSummary(_defaults, _strings));
}

/// Asks once, and only when there is a manual to open.
void DesktopProgram::askAboutManual() {
    if (_files.fileExistsAtPath(_bundle.pathForResource("Manual", "pdf")))
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
    zelmora::platform::setUpProcess();
    zelmora::DesktopProgram program(argc, argv);
    // What Qt has left of the arguments; from argv itself, for Qt's own list loses bytes.
    std::vector<std::string> paths;
    for (int i = 1; i < argc; ++i)
        paths.push_back(zelmora::pathFromArgument(argv[i]));
    return program.run(paths);
}
