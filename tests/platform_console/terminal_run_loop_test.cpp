#include "platform/console/terminal_run_loop.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zelmora::platform {
namespace {

TEST(TerminalRunLoop, RunsWhatOtherThreadsScheduleUntilItIsStopped) {
    TerminalRunLoop loop;
    std::vector<uint32_t> activities;
    std::atomic<bool> hasWaited = false;
    loop.addObserver(RunLoop::beforeWaiting, [&](RunLoop::Activity) { hasWaited = true; });
    loop.addObserver(RunLoop::exit, [&](RunLoop::Activity each) { activities.push_back(each); });
    std::thread::id ranOn;
    std::thread other([&] {
        for (int i = 0; i < 2000 && !hasWaited; ++i) // on a busy machine too, it is to wait first
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        loop.mainQueue().async([&] {
            ranOn = std::this_thread::get_id();
            loop.stop(7);
        });
    });
    EXPECT_EQ(loop.run(), 7);
    other.join();
    EXPECT_TRUE(hasWaited);
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_EQ(activities, (std::vector<uint32_t>{RunLoop::exit}));

    loop.stop(0); // before it runs again
    EXPECT_EQ(loop.run(), 0);
}

TEST(TerminalRunLoop, RunsWhatIsScheduledForLaterWhileItWaits) {
    TerminalRunLoop loop;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        loop.mainQueue().asyncLater([&] { loop.stop(7); });
    });
    EXPECT_EQ(loop.run(), 7);
    other.join();
}

TEST(TerminalRunLoop, DeliversSignalsInsteadOfDying) {
    TerminalRunLoop loop;
    std::vector<int> received;
    loop.setSignalHandler([&](int signal) {
        received.push_back(signal);
        if (received.size() == 3)
            loop.stop(0);
    });
    for (const int signal : {SIGINT, SIGTERM})
        kill(getpid(), signal);
    EXPECT_TRUE(received.empty()) << "in the middle of other work";
    loop.deliverSignals();
    EXPECT_EQ(received, (std::vector{SIGINT, SIGTERM}));
    std::thread other([] { kill(getpid(), SIGHUP); }); // blocked in later threads too
    loop.run();
    other.join();
    EXPECT_EQ(received, (std::vector{SIGINT, SIGTERM, SIGHUP}));
}

TEST(TerminalRunLoop, GivesObserversAnotherTurnWhileNothingHappens) {
    TerminalRunLoop loop;
    int turns = 0;
    loop.addObserver(RunLoop::beforeWaiting, [&](RunLoop::Activity) {
        if (++turns == 3)
            loop.stop(0);
    });
    const auto start = std::chrono::steady_clock::now();
    loop.run();
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, std::chrono::milliseconds(80)) << "the loop does not wait";
}

} // namespace
} // namespace zelmora::platform
