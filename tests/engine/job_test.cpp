// The queue, the worker thread, progress, cancel, automatic quit and the end, with real threads.

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <gmock/gmock.h>
#include <thread>

namespace zelmora::test {
namespace {

using Items = std::vector<std::string>;
using ::testing::Contains;
using ::testing::Not;

const std::string before = "\x95\x5c\r\n";
const std::string after = "\xe8\xa1\xa8\r\n";

/// Holds the worker at the reading of one file until it is let go.
class Pause {
  public:
    Pause(FaultyFileManager& files, std::string name) {
        files.setHook([this, name = std::move(name)](const FaultyFileManager::Operation& each) {
            if (each.name != "contentsAtPath" || !each.path.ends_with(name))
                return;
            _isReached = true;
            _mayGoOn.wait(false);
        });
    }
    [[nodiscard]] bool isReached() const { return _isReached; }
    void end() {
        _mayGoOn = true;
        _mayGoOn.notify_all();
    }

  private:
    std::atomic<bool> _isReached = false;
    std::atomic<bool> _mayGoOn = false;
};

class JobTest : public EngineTest {
  protected:
    ~JobTest() override { controller.reset(); }

    void start() {
        controller = std::make_unique<ZelDocumentController>(services());
        controller->setBatchFinishedHandler([this] { ++finishedBatches; });
    }
    /// Files n.txt for n from `first` to `last`, in a folder of their own, which is handed over.
    void addBatch(const std::string& name, int first, int last) {
        for (int n = first; n <= last; ++n)
            folder.writeFile(name + "/" + std::to_string(n) + ".txt", before);
        for (int n = first; n <= last; ++n)
            controller->openDocumentWithContentsOfFile(folder /
                                                       (name + "/" + std::to_string(n) + ".txt"));
        controller->wakeupThreadIfNeed();
    }
    bool runUntilFinished(int batches) {
        return mainLoop.runUntil([&] { return finishedBatches >= batches; });
    }
    [[nodiscard]] bool isConverted(const std::string& name) const {
        return readFile(folder / name) == after;
    }

    std::unique_ptr<ZelDocumentController> controller;
    int finishedBatches = 0;
};

TEST_F(JobTest, BatchIsConvertedAndProgressShown) {
    // At the last file, so that its progress is shown before the list is emptied.
    Pause pause(files, "4.txt");
    start();
    addBatch("in", 1, 4);
    ASSERT_TRUE(mainLoop.runUntil([&] { return pause.isReached(); }));
    mainLoop.mainQueue().drain();
    pause.end();
    ASSERT_TRUE(runUntilFinished(1));
    EXPECT_EQ(controller->convertedCount(), 4U);
    EXPECT_TRUE(isConverted("in/1.txt") && isConverted("in/4.txt"));
    const auto& events = userInterface.events;
    EXPECT_EQ(events.front(), "1 center");
    EXPECT_EQ(events.back(), "1 close");
    EXPECT_THAT(events, Contains("1 label Files remaining: 0"));
    EXPECT_THAT(events, Contains("1 bar 100.000000"));
    EXPECT_EQ(std::count(events.begin(), events.end(), "1 show"), 1);
    EXPECT_EQ(alertTexts(), Items());
}

TEST_F(JobTest, NothingIsConvertedBeforeTheWakeUp) {
    start();
    folder.writeFile("a.txt", before);
    controller->openDocumentWithContentsOfFile(folder / "a.txt");
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(readFile(folder / "a.txt"), before);
    EXPECT_TRUE(controller->wakeupThreadIfNeed());
    EXPECT_TRUE(runUntilFinished(1));
    EXPECT_TRUE(isConverted("a.txt"));
}

TEST_F(JobTest, WhatHoldsNoTargetOpensAndClosesTheWindow) {
    start();
    mainLoop.runUntil([&] { return userInterface.events.back() == "1 close"; }); // the first idling
    userInterface.events.clear();
    folder.writeFile("README", before);
    controller->openDocumentWithContentsOfURL("file://" + (folder / "README"));
    controller->openDocumentWithContentsOfURL("http://localhost/a.txt");
    EXPECT_EQ(userInterface.events, (Items{"1 label ", "1 show", "1 close"}));
    EXPECT_FALSE(controller->wakeupThreadIfNeed());
}

TEST_F(JobTest, SecondBatchWhileConvertingFollowsWithoutIdling) {
    Pause pause(files, "2.txt");
    start();
    addBatch("one", 1, 3);
    ASSERT_TRUE(mainLoop.runUntil([&] { return pause.isReached(); }));
    userInterface.events.clear();
    addBatch("two", 4, 6);
    pause.end();
    ASSERT_TRUE(runUntilFinished(1));
    EXPECT_EQ(controller->convertedCount(), 6U);
    const auto& events = userInterface.events;
    EXPECT_THAT(events, Contains("1 label Files remaining: 3"));
    EXPECT_LT(std::find(events.begin(), events.end(), "1 label Files remaining: 0"),
              std::find(events.begin(), events.end(), "1 close"));
}

TEST_F(JobTest, CancelFinishesTheFileInHandAndLeavesTheRest) {
    Pause pause(files, "3.txt");
    start();
    addBatch("in", 1, 10);
    ASSERT_TRUE(mainLoop.runUntil([&] { return pause.isReached(); }));
    userInterface.cancelActions.front()();
    EXPECT_EQ(userInterface.events.back(), "1 close");
    pause.end();
    ASSERT_TRUE(runUntilFinished(1));
    EXPECT_EQ(controller->convertedCount(), 3U);
    EXPECT_TRUE(isConverted("in/3.txt"));
    EXPECT_EQ(readFile(folder / "in/4.txt"), before);
    addBatch("later", 1, 2);
    ASSERT_TRUE(runUntilFinished(2));
    EXPECT_TRUE(isConverted("later/1.txt") && isConverted("later/2.txt"));
    EXPECT_EQ(readFile(folder / "in/4.txt"), before);
}

TEST_F(JobTest, VanishedSourceIsReportedAndTheRestConverted) {
    Pause pause(files, "1.txt");
    start();
    addBatch("in", 1, 3);
    ASSERT_TRUE(mainLoop.runUntil([&] { return pause.isReached(); }));
    std::remove((folder / "in/2.txt").c_str());
    pause.end();
    ASSERT_TRUE(runUntilFinished(1));
    EXPECT_EQ(controller->convertedCount(), 2U);
    ASSERT_EQ(userInterface.alerts.size(), 1U);
    EXPECT_NE(userInterface.alerts[0].informativeText.find(folder / "in/2.txt"), std::string::npos);
}

TEST_F(JobTest, EndWhileIdleIsAtOnceAndWhileConvertingWaitsForTheFile) {
    start();
    EXPECT_TRUE(controller->releaseContents());
    EXPECT_TRUE(controller->releaseContents());

    Pause pause(files, "1.txt");
    start();
    addBatch("in", 1, 2);
    ASSERT_TRUE(mainLoop.runUntil([&] { return pause.isReached(); }));
    std::thread letGo([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        pause.end();
    });
    EXPECT_TRUE(controller->releaseContents());
    letGo.join();
    EXPECT_TRUE(isConverted("in/1.txt"));
    EXPECT_EQ(readFile(folder / "in/2.txt"), before);
    mainLoop.mainQueue().drain(); // blocks left behind find nothing and do nothing
    EXPECT_EQ(finishedBatches, 0);
}

TEST_F(JobTest, WorkerThatDoesNotEndInTimeKeepsWhatItUses) {
    Pause pause(files, "1.txt");
    start();
    addBatch("in", 1, 1);
    ASSERT_TRUE(mainLoop.runUntil([&] { return pause.isReached(); }));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(controller->releaseContents());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(9900));
    pause.end();
    EXPECT_TRUE(controller->releaseContents());
    EXPECT_TRUE(isConverted("in/1.txt"));
}

TEST_F(JobTest, AutomaticQuitNeedsAConvertedFile) {
    defaults.setBool(true, settings::autoQuit);
    start();
    folder.writeFile("none/README", before);
    controller->openDocumentWithContentsOfFile(folder / "none");
    controller->wakeupThreadIfNeed();
    mainLoop.mainQueue().drain();
    EXPECT_FALSE(userInterface.mayTerminate);
    addBatch("in", 1, 2);
    const auto wantsToQuit = [&] {
        return userInterface.mayTerminate && userInterface.mayTerminate();
    };
    ASSERT_TRUE(mainLoop.runUntil(wantsToQuit));
    EXPECT_EQ(controller->convertedCount(), 2U);
    // The user interface may come to it late, and what is handed over until then is not lost.
    addBatch("late", 1, 1);
    EXPECT_FALSE(wantsToQuit());
    ASSERT_TRUE(mainLoop.runUntil(wantsToQuit));
    EXPECT_TRUE(isConverted("late/1.txt"));
    EXPECT_TRUE(controller->releaseContents());
    EXPECT_FALSE(wantsToQuit()) << "there is nothing left to end";
}

TEST_F(JobTest, NoWakeUpIsLostInTenThousandRounds) {
    // Nothing under these paths is there: a conversion is one failed look, and the rounds are fast.
    start();
    for (int round = 1; round <= 10'000; ++round) {
        controller->openDocumentWithContentsOfFile(folder / "none.txt");
        ASSERT_TRUE(controller->wakeupThreadIfNeed());
        ASSERT_TRUE(runUntilFinished(round)) << round;
        userInterface.events.clear();
    }
    EXPECT_EQ(controller->failedCount(), 10'000U);
}

TEST_F(JobTest, NoEndIsLostInTenThousandStarts) {
    for (int round = 0; round < 10'000; ++round) {
        start();
        if (round % 2 == 0) {
            controller->openDocumentWithContentsOfFile(folder / "none.txt");
            controller->wakeupThreadIfNeed();
        }
        ASSERT_TRUE(controller->releaseContents()) << round;
        mainLoop.mainQueue().drain();
        userInterface.events.clear();
        userInterface.cancelActions.clear();
    }
}

TEST(PThreadConditionalTest, SignalsAreKeptAndTimeRunsOut) {
    PThreadConditional condition;
    EXPECT_FALSE(condition.waitWithTimeoutSeconds(0, 1'000'000));
    condition.signal();
    condition.signal();
    EXPECT_TRUE(condition.waitWithTimeoutSeconds(0, 0));  // came before: taken at once
    EXPECT_FALSE(condition.waitWithTimeoutSeconds(0, 0)); // two count as one
    condition.broadcast();
    EXPECT_FALSE(condition.waitWithTimeoutSeconds(0, 0)); // for those who waited only

    std::atomic<int> woken = 0;
    std::thread first([&] { woken += condition.waitWithTimeoutSeconds(10, 999'999'999); });
    std::thread second([&] { woken += condition.waitWithTimeoutSeconds(10, 999'999'999); });
    while (woken < 2) {
        condition.broadcast();
        std::this_thread::yield();
    }
    first.join();
    second.join();
    EXPECT_EQ(woken, 2);
}

} // namespace
} // namespace zelmora::test
