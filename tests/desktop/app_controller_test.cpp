// Launch, files handed over, and the end.

#include "desktop_fixture.h"
#include "engine/settings.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

namespace zelmora::test {
namespace {

TEST_F(DesktopTest, ConvertsWhatItWasStartedWithAndEndsByItselfOnceFailuresAreRead) {
    folder.writeFile("a.txt", "\x82\xa0\r\n");
    folder.writeFile("sub/\x82\xa0.txt", "\x82\xa2\r\n");
    defaults.setBool(true, settings::autoQuit);
    defaults.setInteger(1, settings::lineBreakCode);
    ZelAppController controller(services());
    application.setDelegate(controller);
    answerBoxes("OK");
    EXPECT_EQ(application.run({folder / "a.txt", folder / "missing.txt", folder / "sub"}), 0);
    EXPECT_EQ(boxTexts, (std::vector<std::string>{strings.stringForKey("FailedConvert")}));
    EXPECT_FALSE(controller.hasAbandonedWorker());
    EXPECT_EQ(readFile(folder / "a.txt"), "あ\n");
    EXPECT_EQ(readFile(folder / "sub/\x82\xa0.txt"), "い\n");
    // Nothing is there to take it any more, and nothing breaks.
    EXPECT_TRUE(controller.applicationOpenFile(folder / "a.txt"));
}

TEST_F(DesktopTest, LostCharactersAreListedOnceAtTheEndOfTheBatch) {
    const auto first = folder.writeFile("a.txt", "あ\n🐱é葛\n");
    std::string cats(2000, '\n');
    for (int i = 0; i < 1200; ++i)
        cats += "🐱";
    const auto many = folder.writeFile("b.txt", cats);
    defaults.setBool(true, settings::autoQuit);
    defaults.setInteger(1, settings::encodingCode);
    ZelAppController controller(services());
    application.setDelegate(controller);
    answerBoxes("OK");
    EXPECT_EQ(application.run({first, many}), 0);
    EXPECT_EQ(boxTexts, (std::vector<std::string>{strings.stringForKey("LostCharacters")}));
    const auto lines = lastList.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 1 + 1000 + 1); // a heading, what is listed, how many are not
    EXPECT_EQ(lines[2].trimmed().toStdString(), first + ", line 2, column 2: é (U+00E9) became e");
    EXPECT_EQ(lines[1001].trimmed(), "And 202 more.");
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
    const auto path = folder.writeFile("\x82\xa0.txt", "\x82\xa2\n");
    setenv("HOME", folder.path().c_str(), 1); // where the panel begins
    ZelAppController controller(services());
    controller.applicationWillFinishLaunching();
    for (const auto button : {QDialogButtonBox::Cancel, QDialogButtonBox::Open}) {
        QTimer::singleShot(0, [&] {
            auto* panel = QApplication::activeModalWidget();
            panel->findChild<QListWidget*>()->selectAll();
            panel->findChild<QDialogButtonBox*>()->button(button)->click();
        });
        EXPECT_EQ(readFile(path), "\x82\xa2\n");
        controller.doConvert();
    }
    EXPECT_TRUE(runUntil([&] { return readFile(path) == "い\n"; }));
    EXPECT_EQ(controller.applicationShouldTerminate(), platform::TerminateReply::now);
}

} // namespace
} // namespace zelmora::test
