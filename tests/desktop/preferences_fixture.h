// The real preferences window, off screen, over saved settings in the test's folder.
#pragma once

#include "app/pref_wnd_controller.h"
#include "desktop_fixture.h"
#include "engine/settings.h"
#include "platform/desktop/qt_interface.h"
#include "tests/support/faulty_file_manager.h"

#include <memory>
#include <optional>

namespace zelmora::test {

/// Answers every panel with `answer`; nullopt: cancelled.
class AnsweringPanels final : public platform::Panels {
  public:
    std::vector<std::string> runOpenPanel(const platform::OpenPanel&, platform::Window*) override {
        return answer ? std::vector{*answer} : std::vector<std::string>();
    }
    std::optional<std::string> runSavePanel(const platform::SavePanel&,
                                            platform::Window*) override {
        return answer;
    }
    size_t runQuestion(const platform::Question&, platform::Window*) override { return 0; }

    std::optional<std::string> answer;
};

class PreferencesTest : public DesktopTest {
  protected:
    PreferencesTest() {
        EXPECT_TRUE(defaults.load(files, folder / "saved.plist").empty());
        open();
    }

    /// Makes the window anew, as when the application starts; each test begins with one.
    void open() {
        close();
        controller = std::make_unique<ZelPrefWndController>(PreferencesServices{
            defaults, savingFiles, strings, userInterface, panels, [this](std::string_view name) {
                auto form = userInterface.loadForm(name);
                window = &dynamic_cast<platform::QtWindow&>(form->window()).widget();
                return form;
            }});
        controller->showWindow();
    }
    void close() { controller.reset(); }
    /// The settings as another process would read them now.
    [[nodiscard]] std::unique_ptr<platform::UserDefaults> savedDefaults() {
        auto other = std::make_unique<platform::UserDefaults>(settings::allKeys());
        EXPECT_TRUE(other->load(files, folder / "saved.plist").empty());
        return other;
    }

    template<typename Widget>
    Widget& find(const char* name) {
        return platform::outlet<Widget>(*window, name);
    }
    [[nodiscard]] bool isEnabled(const char* name) { return find<QWidget>(name).isEnabled(); }

    FaultyFileManager savingFiles{platform::FileManager::defaultManager()};
    AnsweringPanels panels;
    QWidget* window = nullptr;
    std::unique_ptr<ZelPrefWndController> controller;
};

} // namespace zelmora::test
