// The program between its windows: sleep, the session's end, what it says of the settings.

#include "app/settings_summary.h"
#include "desktop_fixture.h"
#include "engine/settings.h"
#include "platform/desktop/end_requests.h"

#include <QSessionManager>

namespace zelmora::test {

namespace {

TEST_F(DesktopTest, SleepsWhileThereIsNothingToDoAndEndsWithTheSession) {
    ZelAppController controller(services());
    application.setDelegate(controller);
    platform::EndRequests requests([&] { userInterface.terminate(); });
    auto* session = qApp->findChild<QSessionManager*>();
    ASSERT_NE(session, nullptr);
    auto& loop = application.runLoop();
    int turns = 0;
    platform::RunLoop::ObserverID observer = 0;
    QTimer::singleShot(300, [&] { // all that a launch brings is done
        observer = loop.addObserver(platform::RunLoop::beforeWaiting,
                                    [&](platform::RunLoop::Activity) { ++turns; });
        QTimer::singleShot(500, [&] { emit qApp->commitDataRequest(*session); });
    });
    EXPECT_EQ(application.run({}), 0);
    loop.removeObserver(observer);
    EXPECT_GE(turns, 1);
    EXPECT_LE(turns, 10) << "in half a second of idleness";
    EXPECT_EQ(session->restartHint(), QSessionManager::RestartNever);
}

TEST_F(DesktopTest, TheSummaryFollowsTheSettings) {
    std::string shown;
    {
        const SettingsSummary summary(defaults, strings, application.runLoop(),
                                      [&](const std::string& text) { shown = text; });
        EXPECT_EQ(shown, "to UTF-8, line breaks kept, no backup");
        defaults.setInteger(1, settings::encodingCode);
        defaults.setInteger(3, settings::lineBreakCode);
        defaults.setBool(true, settings::autoBackup);
        QCoreApplication::processEvents();
        EXPECT_EQ(shown, "to Shift_JIS, CRLF, backup on");
        // The change is told to none that has gone before its turn comes.
        defaults.setInteger(2, settings::encodingCode);
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(shown, "to Shift_JIS, CRLF, backup on");
}

} // namespace
} // namespace zelmora::test
