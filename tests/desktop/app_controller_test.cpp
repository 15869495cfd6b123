// Launch, files handed over, the end, and the manual.

#include "desktop_fixture.h"
#include "engine/settings.h"
#include "platform/events/notification_center.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

namespace zelmora::test {
namespace {

TEST_F(DesktopTest, ConvertsWhatItWasStartedWithAndEndsByItself) {
    folder.writeFile("a.txt", "\x82\xa0\r\n");
    folder.writeFile("sub/\x82\xa0.txt", "\x82\xa2\r\n");
    defaults.setBool(true, settings::autoQuit);
    defaults.setInteger(1, settings::lineBreakCode);
    ZelAppController controller(services());
    application.setDelegate(controller);
    int notices = 0;
    auto& center = platform::NotificationCenter::defaultCenter();
    const auto observer =
        center.addObserver(platform::applicationWillTerminateNotification, [&] { ++notices; });
    EXPECT_EQ(application.run({folder / "a.txt", folder / "sub"}), 0);
    center.removeObserver(observer);
    EXPECT_EQ(notices, 1);
    EXPECT_FALSE(controller.hasAbandonedWorker());
    EXPECT_EQ(readFile(folder / "a.txt"), "あ\n");
    EXPECT_EQ(readFile(folder / "sub/\x82\xa0.txt"), "い\n");
    // Nothing is there to take it any more, and nothing breaks.
    EXPECT_TRUE(controller.applicationOpenFile(folder / "a.txt"));
}

TEST_F(DesktopTest, AFailureIsReadBeforeTheApplicationEndsByItself) {
    folder.writeFile("good.txt", "\x82\xa0\n");
    defaults.setBool(true, settings::autoQuit);
    ZelAppController controller(services());
    application.setDelegate(controller);
    answerBoxes("OK");
    EXPECT_EQ(application.run({folder / "missing.txt", folder / "good.txt"}), 0);
    EXPECT_EQ(boxTexts, (std::vector<std::string>{strings.stringForKey("FailedConvert")}));
    EXPECT_EQ(readFile(folder / "good.txt"), "あ\n");
}

TEST_F(DesktopTest, LostCharactersAreListedOnceAtTheEndOfTheBatch) {
    const auto first = folder.writeFile("a.txt", "あ\n🐱é葛\U000E0100\n");
    const auto many = folder.writeFile(
        "b.txt", std::string(2000, '\n') + [] {
            std::string cats;
            for (int i = 0; i < 1200; ++i)
                cats += "🐱";
            return cats;
        }());
    defaults.setBool(true, settings::autoQuit);
    defaults.setInteger(1, settings::encodingCode);
    ZelAppController controller(services());
    application.setDelegate(controller);
    std::vector<QStringList> lists;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
        auto* list = dynamic_cast<platform::MessageListWindow*>(QApplication::activeModalWidget());
        if (!list)
            return;
        lists.push_back(list->text().split('\n', Qt::SkipEmptyParts));
        list->accept();
    });
    user.start(5);
    EXPECT_EQ(application.run({first, many}), 0);
    ASSERT_EQ(lists.size(), 1U);
    ASSERT_EQ(lists[0].size(), 1 + 1000 + 1); // a heading, what is listed, how many are not
    EXPECT_EQ(lists[0][0].toStdString(), strings.stringForKey("LostCharacters"));
    const auto line = [&](int index) { return lists[0][index].trimmed().toStdString(); };
    EXPECT_EQ(line(1), first + ", line 2, column 1: 🐱 (U+1F431) became ?");
    EXPECT_EQ(line(2), first + ", line 2, column 2: é (U+00E9) became e");
    EXPECT_EQ(line(3), first + ", line 2, column 4: \U000E0100 (U+E0100) was left out");
    EXPECT_EQ(line(4), many + ", line 2001, column 1: 🐱 (U+1F431) became ?");
    EXPECT_EQ(line(1001), "And 203 more.");
}

TEST_F(DesktopTest, WhatComesBeforeItHasEndedByItselfIsConverted) {
    const std::string first = folder.writeFile("a.txt", "\x82\xa0\n");
    std::vector<std::string> late;
    for (int i = 0; i < 100; ++i)
        late.push_back(folder.writeFile("late" + std::to_string(i) + ".txt", "\x82\xa2\n"));
    defaults.setBool(true, settings::autoQuit);
    ZelAppController controller(services());
    application.setDelegate(controller);
    // A question keeps the application from ending, but not others from handing over.
    application.runLoop().mainQueue().async([&] {
        userInterface.runQuestion({"?", "", {"OK"}}, nullptr);
    });
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
        if (readFile(first) != "あ\n")
            return;
        user.stop();
        // By then the worker has asked for the end.
        QTimer::singleShot(200, [&] {
            controller.applicationOpenFiles(late);
            answerBoxes("OK");
        });
    });
    user.start(5);
    EXPECT_EQ(application.run({first}), 0);
    for (const auto& path : late)
        EXPECT_EQ(readFile(path), "い\n") << path;
}

TEST_F(DesktopTest, ConvertsWhatIsChosenInThePanel) {
    folder.writeFile("a.txt", "\x82\xa0\n");
    folder.writeFile("sub/\x82\xa0.txt", "\x82\xa2\n");
    setenv("HOME", folder.path().c_str(), 1); // where the panel begins
    ZelAppController controller(services());
    controller.applicationWillFinishLaunching();
    for (const auto button : {QDialogButtonBox::Cancel, QDialogButtonBox::Open}) {
        QTimer::singleShot(0, [&] {
            auto* panel = QApplication::activeModalWidget();
            panel->findChild<QListWidget*>()->selectAll();
            panel->findChild<QDialogButtonBox*>()->button(button)->click();
        });
        controller.doConvert();
        const bool isCancelled = button == QDialogButtonBox::Cancel;
        // Folders stand first in the panel, so the file is the last.
        const auto isDone = [&] { return readFile(folder / "a.txt") == "あ\n"; };
        EXPECT_EQ(!isCancelled && runUntil(isDone), !isCancelled);
        EXPECT_EQ(readFile(folder / "sub/\x82\xa0.txt"), isCancelled ? "\x82\xa2\n" : "い\n");
    }
    EXPECT_EQ(controller.applicationShouldTerminate(), platform::TerminateReply::now);
}

TEST_F(DesktopTest, QuittingIdleEndsAtOnce) {
    ZelAppController controller(services());
    application.setDelegate(controller);
    QTimer::singleShot(0, [&] { userInterface.terminate(); });
    EXPECT_EQ(application.run({}), 0);
}

/// The name of the manual's resource in the language of this run.
std::string manualName() {
    return platform::preferredLanguage() + ".lproj/Manual.pdf";
}

TEST_F(DesktopTest, AsksAboutTheManualOnce) {
    TemporaryDirectory resources;
    const auto manual = resources.writeFile(manualName(), "%PDF");
    const platform::Bundle withManual(resources.path());
    const AppServices all{services().engine, userInterface, workspace, withManual, {}, nullptr};
    ZelAppController controller(all);
    const struct {
        const char* button;
        std::vector<std::string> opened;
    } cases[] = {{"Yes", {manual}}, {"No", {}}};
    for (const auto& [button, opened] : cases) {
        SCOPED_TRACE(button);
        defaults.setBool(false, settings::displayManualAlert);
        workspace.opened.clear();
        boxTexts.clear();
        answerBoxes(button);
        controller.showManualAlert();
        controller.showManualAlert();
        EXPECT_EQ(boxTexts, (std::vector<std::string>{strings.stringForKey("AskOpenManual")}));
        EXPECT_TRUE(defaults.boolForKey(settings::displayManualAlert));
        EXPECT_EQ(workspace.opened, opened);
    }
}

TEST_F(DesktopTest, SaysWhenTheManualCannotBeOpened) {
    for (const bool hasManual : {false, true}) {
        TemporaryDirectory resources;
        if (hasManual)
            resources.writeFile(manualName(), "%PDF");
        const platform::Bundle withManual(resources.path());
        workspace.answer = false;
        const AppServices all{services().engine, userInterface, workspace, withManual, {}, nullptr};
        ZelAppController controller(all);
        answerBoxes("OK");
        boxTexts.clear();
        controller.openManual();
        runUntil([&] { return !boxTexts.empty(); });
        EXPECT_EQ(boxTexts, (std::vector<std::string>{strings.stringForKey("InvalidPackage")}))
            << (hasManual ? "no program took it" : "there is none");
    }
}

} // namespace
} // namespace zelmora::test
