// The desktop program's entry: puts the parts together.

#include "app/app_controller.h"
#include "app/desktop_options.h"
#include "app/path_argument.h"
#include "app/pref_wnd_controller.h"
#include "app/saved_settings_path.h"
#include "app/settings_summary.h"
#include "app/string_table.h"
#include "engine/settings.h"
#include "platform/desktop/desktop_user_interface.h"
#include "platform/desktop/desktop_workspace.h"
#include "platform/desktop/main_window.h"
#include "platform/files/process_setup.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zelmora {

namespace {

/// Everything that lives as long as the desktop program. Each part stands behind those it borrows.
class DesktopProgram {
  public:
    DesktopProgram(int& argumentCount, char** arguments, const platform::Bundle& bundle,
                   const platform::LocalizedStrings& strings);
    /// Answers the exit status.
    int run(const std::vector<std::string>& paths);

  private:
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
    const platform::Bundle& _bundle;
    platform::UserDefaults _defaults{settings::allKeys()};
    const platform::LocalizedStrings& _strings;
    platform::DesktopUserInterface _userInterface{{_bundle, _files, _defaults, _application}};
    platform::DesktopWorkspace _workspace;
    platform::MainWindow _window{_strings, actions()};
    ZelAppController _controller{services()};
};

DesktopProgram::DesktopProgram(int& argumentCount, char** arguments, const platform::Bundle& bundle,
                               const platform::LocalizedStrings& strings)
    : _application(argumentCount, arguments), _bundle(bundle), _strings(strings) {
    _application.installStrings(_strings, platform::preferredLanguage());
    _application.setDelegate(_controller);
    loadSettings();
    for (const auto key : settingsSummaryKeys())
        _defaults.addObserver(key, [this](std::string_view) {
            _application.runLoop().mainQueue().async([this] { showSummary(); });
        });
    showSummary();
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
    if (paths.empty()) // who comes with files wants them converted
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
    std::vector<std::string> paths;
    for (const auto& argument : std::get<DesktopOptions>(options).paths)
        paths.push_back(pathFromArgument(argument));
    // Qt sees no more than the program's name: it would take its own options from behind "--" too,
    // and without a display nothing could be said of the others.
    int argumentsForQt = std::min(argc, 1);
    DesktopProgram program(argumentsForQt, argv, bundle, strings);
    return program.run(paths);
}
