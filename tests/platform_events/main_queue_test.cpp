#include "platform/events/main_queue.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace zelmora::platform {
namespace {

TEST(MainQueue, RunsBlocksInOrderAndThoseTheyScheduleToo) {
    int wakeUps = 0;
    int laterWakeUps = 0;
    MainQueue queue([&] { ++wakeUps; }, [&] { ++laterWakeUps; });
    std::vector<int> ran;
    queue.async([&] {
        ran.push_back(1);
        queue.async([&] { ran.push_back(3); });
    });
    queue.asyncLater([&] { ran.push_back(2); });

    EXPECT_TRUE(ran.empty()) << "a block ran when it was scheduled";
    EXPECT_TRUE(queue.drain());
    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
    EXPECT_EQ(wakeUps, 2);
    EXPECT_EQ(laterWakeUps, 1);
    EXPECT_FALSE(queue.drain());
}

TEST(MainQueue, CanBeDrainedWithinABlock) {
    MainQueue queue([] {}, [] {});
    std::vector<int> ran;
    queue.async([&] {
        EXPECT_TRUE(queue.drain()); // as a modal alert does
        ran.push_back(1);
    });
    queue.async([&] { ran.push_back(2); });
    queue.drain();
    EXPECT_EQ(ran, (std::vector{2, 1}));
}

TEST(MainQueue, LosesAndReordersNothingThatOtherThreadsSchedule) {
    constexpr int threadCount = 4;
    constexpr int blockCount = 2000;
    std::atomic<int> wakeUps = 0;
    MainQueue queue([&] { ++wakeUps; }, [] {});
    std::vector<std::vector<int>> ran(threadCount);
    std::vector<std::thread> threads;
    for (size_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < blockCount; ++i)
                queue.async([&ran, thread, i] { ran[thread].push_back(i); });
        });
    }
    while (wakeUps < threadCount * blockCount)
        queue.drain();
    queue.drain();
    for (auto& thread : threads)
        thread.join();
    for (const auto& each : ran) {
        EXPECT_EQ(each.size(), blockCount);
        EXPECT_TRUE(std::ranges::is_sorted(each));
    }
}

} // namespace
} // namespace zelmora::platform
