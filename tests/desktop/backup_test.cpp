// A backup that takes long: its window stays, and what comes meanwhile waits for its turn.

#include "desktop_fixture.h"
#include "engine/settings.h"
#include "tests/support/faulty_file_manager.h"

#include <QTimer>
#include <chrono>
#include <future>
#include <gmock/gmock.h>

namespace zelmora::test {
namespace {

using ::testing::ElementsAre;

/// The first copy waits in the middle of it, until `release` is called or five seconds are over.
class SlowBackupTest : public DesktopTest {
  protected:
    SlowBackupTest() {
        for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"})
            folder.writeFile(name, "\x82\xa0\n");
        defaults.setValueForThisRun(true, settings::autoBackup);
        defaults.setObject(folder / "backup", settings::backupDataDir);
        slowFiles.setHook([this](const FaultyFileManager::Operation& operation) {
            if (operation.name != "copyItemAtPath" || !std::exchange(isNextCopySlow, false))
                return;
            hasBegun = true;
            released.get_future().wait_for(std::chrono::seconds(5));
        });
        application.setDelegate(controller);
        QObject::connect(&during, &QTimer::timeout, [this] {
            if (hasBegun && whileCopying)
                std::exchange(whileCopying, nullptr)();
        });
        during.start(1);
    }
    void release() { released.set_value(); }
    void handOver(const std::vector<std::string>& names) {
        controller.applicationWillFinishLaunching();
        std::vector<std::string> paths;
        for (const auto& name : names)
            paths.push_back(folder / name);
        controller.applicationOpenFiles(paths);
    }
    bool runUntilConverted(const std::string& name) {
        return runUntil([&] { return readFile(folder / name) == "あ\n"; });
    }
    void end() {
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_EQ(controller.applicationShouldTerminate(), platform::TerminateReply::now);
    }
    /// The copies and conversions in their order: "copy a.txt", "read a.txt".
    [[nodiscard]] std::vector<std::string> steps() const {
        std::vector<std::string> steps;
        for (const auto& [name, path] : slowFiles.operations()) {
            const char* step = name == "copyItemAtPath"   ? "copy "
                               : name == "openFileAtPath" ? "read "
                                                          : nullptr;
            if (step != nullptr && path.starts_with(folder.path() + "/"))
                steps.push_back(step + path.substr(folder.path().size() + 1));
        }
        return steps;
    }

    FaultyFileManager slowFiles{platform::FileManager::defaultManager()};
    bool isNextCopySlow = true;
    std::atomic<bool> hasBegun = false;
    std::promise<void> released;
    std::function<void()> whileCopying; ///< called once, from a timer of the main loop
    QTimer during;
    ZelAppController controller{
        {{defaults, slowFiles, strings, application.runLoop(), userInterface},
         userInterface,
         workspace,
         bundle,
         {},
         nullptr}};
};

TEST_F(SlowBackupTest, WhatIsDroppedMeanwhileIsHandledAfterwardsInOrder) {
    whileCopying = [&] {
        auto* window = QApplication::activeModalWidget();
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->windowModality(), Qt::ApplicationModal);
        window->close(); // as a window manager may ask it to
        EXPECT_TRUE(window->isVisible());
        controller.applicationOpenFiles({folder / "c.txt"});
        controller.applicationOpenFile(folder / "d.txt");
        EXPECT_THAT(steps(), ElementsAre()) << "the copy in hand is noted at its end";
        release();
    };
    handOver({"a.txt", "b.txt"});
    EXPECT_TRUE(runUntilConverted("d.txt"));
    std::vector<std::string> copies;
    for (const auto& step : steps()) {
        if (step.starts_with("copy"))
            copies.push_back(step);
        else if (copies.size() < 2)
            ADD_FAILURE() << step << " before its whole batch was backed up";
    }
    EXPECT_EQ(steps().size(), 8U) << "each is copied and read once";
    EXPECT_THAT(copies, ElementsAre("copy a.txt", "copy b.txt", "copy c.txt", "copy d.txt"));
    end();
}

TEST_F(SlowBackupTest, QuittingWaitsForTheCopyInHandAndBeginsNoOther) {
    whileCopying = [&] {
        userInterface.terminate();
        controller.applicationOpenFiles({folder / "c.txt"});
        QTimer::singleShot(20, [this] { release(); });
    };
    EXPECT_EQ(application.run({folder / "a.txt", folder / "b.txt"}), 0);
    EXPECT_THAT(steps(), ElementsAre("copy a.txt"));
    EXPECT_EQ(readFile(folder / "backup/a.txt"), "\x82\xa0\n");
    EXPECT_EQ(readFile(folder / "a.txt"), "\x82\xa0\n");
}

} // namespace
} // namespace zelmora::test
