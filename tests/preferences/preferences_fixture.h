// The real preferences window, off screen, over settings in a folder of the test's own.
#pragma once

#include "app/pref_wnd_controller.h"
#include "platform/defaults/bundle.h"
#include "platform/desktop/qt_interface.h"
#include "tests/support/faulty_file_manager.h"
#include "tests/support/temporary_directory.h"

#include <QWidget>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelmora::test {

/// Answers every panel with `answer` (nullopt: cancelled) and remembers what was asked for.
class AnsweringPanels final : public platform::Panels {
  public:
    std::vector<std::string> runOpenPanel(const platform::OpenPanel& panel,
                                          platform::Window* sheetParent) override;
    std::optional<std::string> runSavePanel(const platform::SavePanel& panel,
                                            platform::Window* sheetParent) override;
    size_t runQuestion(const platform::Question&, platform::Window*) override { return 0; }

    std::optional<std::string> answer;
    platform::OpenPanel lastOpenPanel;
    platform::SavePanel lastSavePanel;
    platform::Window* lastSheetParent = nullptr;
};

/// Remembers the alerts; has no other face.
class AlertRecorder final : public platform::UserInterface {
  public:
    void runModal(const platform::Alert& alert) override { alerts.push_back(alert); }
    std::unique_ptr<platform::LoadedInterface> loadInterface(std::string_view) override {
        return nullptr;
    }
    std::unique_ptr<platform::ModalSession> beginModalSessionForWindow(platform::Window&) override {
        return nullptr;
    }
    void terminate() override {}

    std::vector<platform::Alert> alerts;
};

class PreferencesTest : public ::testing::Test {
  protected:
    PreferencesTest();

    /// Makes the window anew, as when the application starts; each test begins with one.
    void open();
    void close() { controller.reset(); }
    std::unique_ptr<platform::LoadedForm> loadForm(std::string_view name);
    /// The settings as another process would read them now.
    [[nodiscard]] std::unique_ptr<platform::UserDefaults> savedDefaults();

    template<typename Widget>
    Widget& find(const char* name) {
        return platform::outlet<Widget>(*window, name);
    }
    [[nodiscard]] bool isEnabled(const char* name) { return find<QWidget>(name).isEnabled(); }
    /// Types into the line edit `name` and leaves it.
    void type(const char* name, const QString& text);

    TemporaryDirectory folder;
    FaultyFileManager files{platform::FileManager::defaultManager()};
    platform::UserDefaults defaults;
    platform::LocalizedStrings strings;
    AnsweringPanels panels;
    AlertRecorder userInterface;
    QWidget* window = nullptr;
    std::unique_ptr<ZelPrefWndController> controller;
};

} // namespace zelmora::test
