// What the desktop gives the program besides windows: sleep, other programs, the session's end.

#include "app/settings_summary.h"
#include "desktop_fixture.h"
#include "engine/settings.h"
#include "platform/desktop/desktop_workspace.h"
#include "platform/desktop/end_requests.h"
#include "platform/desktop/main_window.h"

#include <QDesktopServices>
#include <QSessionManager>
#include <QUrl>

namespace zelmora::test {

/// Takes URLs in the place of the user's programs.
class URLTaker : public QObject {
    Q_OBJECT
  public:
    std::string taken;
  public slots:
    void take(const QUrl& url) { taken = url.toEncoded().toStdString(); }
};

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

TEST_F(DesktopTest, FilesAndPagesGoToTheUsersPrograms) {
    URLTaker taker;
    for (const char* scheme : {"file", "https"})
        QDesktopServices::setUrlHandler(scheme, &taker, "take");
    platform::DesktopWorkspace desktop;
    EXPECT_TRUE(desktop.openFile("/tmp/\x95\x5c \xff#%.pdf"));
    EXPECT_EQ(taker.taken, "file:///tmp/%95%5C%20%FF%23%25.pdf");
    EXPECT_TRUE(desktop.openURL("https://zelmora.example/contact.php"));
    EXPECT_EQ(taker.taken, "https://zelmora.example/contact.php");
    for (const char* scheme : {"file", "https"})
        QDesktopServices::unsetUrlHandler(scheme);
    EXPECT_FALSE(desktop.openURL("https://zelmora.example/")) << "nobody takes it any more";
}

TEST_F(DesktopTest, TheSummaryFollowsTheSettings) {
    const struct {
        int encoding, lineBreak;
        bool isBackedUp;
        std::string english, japanese;
    } cases[] = {
        {0, 0, false, "encoding kept, line breaks kept, no backup",
         "文字コードはそのまま、改行はそのまま、バックアップなし"},
        {1, 1, true, "to Shift_JIS, LF, backup on", "Shift_JIS に変換、LF、バックアップあり"},
        {2, 2, true, "to ISO-2022-JP, CR, backup on", "ISO-2022-JP に変換、CR、バックアップあり"},
        {3, 3, false, "to EUC-JP, CRLF, no backup", "EUC-JP に変換、CRLF、バックアップなし"},
        {4, 4, true, "to UTF-8, LS, backup on", "UTF-8 に変換、LS、バックアップあり"},
        {7, 5, true, "encoding kept, line breaks kept, backup on", // what no one can choose
         "文字コードはそのまま、改行はそのまま、バックアップあり"},
    };
    for (const std::string language : {"en", "ja"}) {
        const auto words = bundle.localizedStrings(files, language).value();
        platform::MainWindow window(words, {});
        const SettingsSummary summary(defaults, words, application.runLoop(),
                                      [&](const std::string& text) { window.setSummary(text); });
        const auto* shown = window.findChild<QLabel*>("summary");
        EXPECT_FALSE(shown->text().isEmpty());
        for (const auto& each : cases) {
            defaults.setInteger(each.encoding, settings::encodingCode);
            defaults.setInteger(each.lineBreak, settings::lineBreakCode);
            defaults.setBool(each.isBackedUp, settings::autoBackup);
            QCoreApplication::processEvents();
            EXPECT_EQ(shown->text().toStdString(), language == "en" ? each.english : each.japanese);
        }
        // The change is told to none that has gone before its turn comes.
        defaults.setInteger(4, settings::encodingCode);
    }
    QCoreApplication::processEvents();
}

} // namespace
} // namespace zelmora::test

#include "desktop_services_test.moc"
