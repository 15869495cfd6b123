// What every test of the desktop stands on: Qt without a screen, the real windows, the English
// strings, settings of its own and a folder.
#pragma once

#include "app/app_controller.h"
#include "engine/settings.h"
#include "platform/desktop/desktop_user_interface.h"
#include "tests/support/temporary_directory.h"

#include <QMessageBox>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zelmora::test {

/// The process's one application object.
platform::DesktopApplication& desktopApplication();

/// Opens nothing.
class NoWorkspace final : public platform::Workspace {
  public:
    bool openFile(const std::string&) override { return false; }
    bool openURL(const std::string&) override { return false; }
};

class DesktopTest : public ::testing::Test {
  protected:
    DesktopTest();

    [[nodiscard]] AppServices services();
    /// Runs events until `condition` holds; NO when it still does not after 20 seconds.
    static bool runUntil(const std::function<bool()>& condition);
    /// From now on answers questions and alerts with the button titled `title` as they come, and
    /// notes the first line of each in `boxTexts`, all of an alert in `lastList`.
    void answerBoxes(const std::string& title);

    TemporaryDirectory folder;
    platform::FileManager& files = platform::FileManager::defaultManager();
    platform::Bundle bundle{ZELMORA_RESOURCES};
    platform::UserDefaults defaults{settings::allKeys()};
    platform::LocalizedStrings strings;
    platform::DesktopApplication& application = desktopApplication();
    platform::DesktopUserInterface userInterface{{bundle, files, defaults, application}};
    NoWorkspace workspace;
    std::vector<std::string> boxTexts;
    QString lastList;

  private:
    void answerShownBox();

    QTimer _answers;
    std::string _answer;
};

} // namespace zelmora::test
