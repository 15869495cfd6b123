#include "platform/console/terminal_run_loop.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace zelmora::platform {
namespace {

TEST(TerminalRunLoop, RunsWhatOtherThreadsScheduleUntilItIsStopped) {
    TerminalRunLoop loop;
    std::atomic<int> turns = 0;
    int exits = 0;
    loop.addObserver(RunLoop::beforeWaiting, [&](RunLoop::Activity) { ++turns; });
    loop.addObserver(RunLoop::exit, [&](RunLoop::Activity) { ++exits; });
    std::thread::id ranOn;
    const auto start = std::chrono::steady_clock::now();
    std::thread other([&] {
        // It is to wait first, and gives observers turns while nothing happens.
        for (int i = 0; i < 10'000 && turns < 3; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(80))
            << "the loop does not wait";
        loop.mainQueue().async([&] {
            ranOn = std::this_thread::get_id();
            loop.stop(7);
        });
    });
    EXPECT_EQ(loop.run(), 7);
    other.join();
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_EQ(exits, 1);
}

} // namespace
} // namespace zelmora::platform
