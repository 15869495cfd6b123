// The queue, the worker thread, progress, cancel, automatic quit and the end, with real threads.

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>
#include <semaphore>
#include <thread>

namespace zelmora::test {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace std::chrono_literals;

const std::string before = "\x95\x5c\r\n";
const std::string after = "\xe8\xa1\xa8\r\n";

/// Holds the worker at the reading of each of these files until it is let go.
class Pause {
  public:
    Pause(FaultyFileManager& files, Items names) {
        files.setHook([this, names = std::move(names)](const FaultyFileManager::Operation& each) {
            if (each.name != "openFileAtPath" ||
                std::find(names.begin(), names.end(), each.path.substr(each.path.rfind('/') + 1)) ==
                    names.end())
                return;
            ++_stops;
            _mayGoOn.acquire();
        });
    }
    [[nodiscard]] int stops() const { return _stops; }
    void end() { _mayGoOn.release(); }

  private:
    std::atomic<int> _stops = 0;
    std::counting_semaphore<> _mayGoOn{0};
};

class JobTest : public EngineTest {
  protected:
    ~JobTest() override { controller.reset(); }

    void start() {
        controller = std::make_unique<ZelDocumentController>(services());
        controller->setBatchFinishedHandler([this] { ++finishedBatches; });
    }
    void open(const std::string& name) {
        controller->openDocumentWithContentsOfFile(folder / name);
    }
    /// Makes files n.txt for n from `first` to `last`, hands them over and wakes the worker up.
    void addBatch(int first, int last) {
        for (int n = first; n <= last; ++n) {
            folder.writeFile(std::to_string(n) + ".txt", before);
            open(std::to_string(n) + ".txt");
        }
        EXPECT_TRUE(controller->wakeupThreadIfNeed());
    }
    /// Runs until the worker is held for the time of this number.
    void runUntilReached(const Pause& pause, int stop = 1) {
        ASSERT_TRUE(mainLoop.runUntil([&] { return pause.stops() == stop; }));
        mainLoop.mainQueue().drain();
    }
    bool runUntilFinished(int batches) {
        return mainLoop.runUntil([&] { return finishedBatches >= batches; });
    }
    /// The numbers of those that are converted, of 1.txt to 10.txt.
    [[nodiscard]] std::vector<int> converted() const {
        std::vector<int> numbers;
        for (int n = 1; n <= 10; ++n) {
            if (readFile(folder / (std::to_string(n) + ".txt")) == after)
                numbers.push_back(n);
        }
        return numbers;
    }

    std::unique_ptr<ZelDocumentController> controller;
    int finishedBatches = 0;
};

TEST_F(JobTest, BatchIsConvertedOnceItIsCompleteAndASecondFollowsWithoutIdling) {
    Pause pause(files, {"2.txt", "3.txt"});
    start();
    folder.writeFile("1.txt", before);
    open("1.txt");
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(converted(), std::vector<int>()) << "before the wake-up";
    addBatch(2, 3);
    runUntilReached(pause);
    userInterface.events.clear();
    addBatch(4, 6);
    pause.end();
    runUntilReached(pause, 2);
    EXPECT_THAT(userInterface.events, Contains("1 label Files remaining: 3"));
    pause.end();
    ASSERT_TRUE(runUntilFinished(1));
    EXPECT_EQ(converted(), (std::vector{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(alertTexts(), Items());
    const auto& events = userInterface.events;
    EXPECT_LT(std::find(events.begin(), events.end(), "1 label Files remaining: 0"),
              std::find(events.begin(), events.end(), "1 close"));
}

TEST_F(JobTest, AFolderThatCannotBeSearchedIsTold) {
    start();
    folder.writeFile("sub/1.txt", before);
    files.failEvery("enumerateAtPath", EACCES);
    open("sub");
    mainLoop.mainQueue().drain();
    EXPECT_THAT(alertTexts(), ElementsAre(AllOf(HasSubstr("A folder could not be searched."),
                                                HasSubstr(folder / "sub"))));
}

TEST_F(JobTest, CancelFinishesTheFileInHandAndLeavesTheRest) {
    Pause pause(files, {"3.txt"});
    start();
    addBatch(1, 8);
    runUntilReached(pause);
    userInterface.cancelActions.front()();
    EXPECT_EQ(userInterface.events.back(), "1 close");
    pause.end();
    ASSERT_TRUE(runUntilFinished(1));
    EXPECT_EQ(converted(), (std::vector{1, 2, 3}));
    addBatch(9, 10);
    ASSERT_TRUE(runUntilFinished(2));
    EXPECT_EQ(converted(), (std::vector{1, 2, 3, 9, 10}));
}

TEST_F(JobTest, EndIsAtOnceWhileIdleAndWaitsTenSecondsForAFileInHand) {
    start();
    EXPECT_TRUE(controller->releaseContents());
    EXPECT_TRUE(controller->releaseContents());
    Pause pause(files, {"1.txt"});
    start();
    addBatch(1, 2);
    runUntilReached(pause);
    const auto begin = std::chrono::steady_clock::now();
    std::thread letGo([&pause] {
        std::this_thread::sleep_for(10'500ms);
        pause.end();
    });
    EXPECT_FALSE(controller->releaseContents());
    EXPECT_GT(std::chrono::steady_clock::now() - begin, 9'900ms);
    letGo.join();
    EXPECT_TRUE(controller->releaseContents());
    mainLoop.mainQueue().drain(); // blocks left behind find nothing and do nothing
    EXPECT_EQ(converted(), std::vector{1});
    EXPECT_EQ(finishedBatches, 0);
}

TEST_F(JobTest, AutomaticQuitNeedsAConvertedFile) {
    defaults.setBool(true, settings::autoQuit);
    start();
    folder.writeFile("none/README", before);
    open("none");
    controller->wakeupThreadIfNeed();
    mainLoop.mainQueue().drain();
    EXPECT_FALSE(userInterface.mayTerminate);
    addBatch(1, 2);
    const auto wantsToQuit = [&] {
        return userInterface.mayTerminate && userInterface.mayTerminate();
    };
    ASSERT_TRUE(mainLoop.runUntil(wantsToQuit));
    EXPECT_EQ(controller->convertedCount(), 2U);
    // The user interface may come to it late, and what is handed over until then is not lost.
    addBatch(3, 3);
    EXPECT_FALSE(wantsToQuit());
    ASSERT_TRUE(mainLoop.runUntil(wantsToQuit));
    EXPECT_EQ(converted(), (std::vector{1, 2, 3}));
    EXPECT_TRUE(controller->releaseContents());
}

TEST_F(JobTest, NoWakeUpAndNoEndIsLostInTenThousandRounds) {
    // Nothing under this path is there: a conversion is one failed look, and the rounds are fast.
    start();
    for (int round = 1; round <= 10'000; ++round) {
        open("none.txt");
        ASSERT_TRUE(controller->wakeupThreadIfNeed());
        ASSERT_TRUE(runUntilFinished(round)) << round;
        userInterface.events.clear();
    }
    EXPECT_EQ(controller->failedCount(), 10'000U);
    for (int round = 0; round < 10'000; ++round) {
        start();
        if (round % 2 == 0) {
            open("none.txt");
            controller->wakeupThreadIfNeed();
        }
        ASSERT_TRUE(controller->releaseContents()) << round;
        mainLoop.mainQueue().drain();
        userInterface.events.clear();
        userInterface.cancelActions.clear();
    }
}

} // namespace
} // namespace zelmora::test
