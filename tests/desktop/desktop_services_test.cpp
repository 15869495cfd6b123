// What the desktop gives the program besides windows: sleep, other programs, the session's end.

#include "desktop_fixture.h"
#include "platform/desktop/desktop_workspace.h"
#include "platform/desktop/end_requests.h"

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

TEST_F(DesktopTest, SleepsWhileThereIsNothingToDo) {
    ZelAppController controller(services());
    application.setDelegate(controller);
    auto& loop = application.runLoop();
    int turns = 0;
    platform::RunLoop::ObserverID observer = 0;
    QTimer::singleShot(300, [&] { // all that a launch brings is done
        observer = loop.addObserver(platform::RunLoop::beforeWaiting,
                                    [&](platform::RunLoop::Activity) { ++turns; });
        QTimer::singleShot(500, [&] { userInterface.terminate(); });
    });
    EXPECT_EQ(application.run({}), 0);
    loop.removeObserver(observer);
    EXPECT_GE(turns, 1);
    EXPECT_LE(turns, 10) << "in half a second of idleness";
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

TEST_F(DesktopTest, SaysWhenAPageCannotBeOpened) {
    ZelAppController controller(services());
    const auto failed = strings.stringForKey("FailedOpenPage");
    for (const bool isTaken : {true, false}) {
        workspace.answer = isTaken;
        answerBoxes("OK");
        controller.openSupportSite();
        EXPECT_TRUE(isTaken || runUntil([&] { return boxTexts.size() == 1; }));
        controller.openContactPage();
        EXPECT_TRUE(isTaken || runUntil([&] { return boxTexts.size() == 2; }));
    }
    EXPECT_EQ(boxTexts, (std::vector<std::string>{failed, failed}));
    EXPECT_EQ(workspace.opened.back(), workspace.opened.front() + "/contact.php");
}

TEST_F(DesktopTest, EndsWithTheSession) {
    ZelAppController controller(services());
    application.setDelegate(controller);
    platform::EndRequests requests([&] { userInterface.terminate(); });
    auto* session = qApp->findChild<QSessionManager*>();
    ASSERT_NE(session, nullptr);
    QTimer::singleShot(0, [&] { emit qApp->commitDataRequest(*session); });
    EXPECT_EQ(application.run({}), 0);
    EXPECT_EQ(session->restartHint(), QSessionManager::RestartNever);
}

} // namespace
} // namespace zelmora::test

#include "desktop_services_test.moc"
