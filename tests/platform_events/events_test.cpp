#include "platform/events/main_queue.h"
#include "platform/events/notification_center.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace zelmora::platform {
namespace {

TEST(MainQueue, RunsBlocksInOrderAndThoseTheyScheduleToo) {
    int wakeUps = 0;
    int laterWakeUps = 0;
    MainQueue queue([&] { ++wakeUps; }, [&] { ++laterWakeUps; });
    std::string ran;
    queue.async([&] {
        ran += "1";
        queue.async([&] { ran += "3"; });
    });
    queue.asyncLater([&] { ran += "2"; });
    EXPECT_EQ(ran, "") << "a block ran when it was scheduled";
    EXPECT_TRUE(queue.drain());
    EXPECT_EQ(ran, "123");
    EXPECT_EQ(wakeUps, 2);
    EXPECT_EQ(laterWakeUps, 1);
    EXPECT_FALSE(queue.drain());

    queue.async([&] {
        EXPECT_TRUE(queue.drain()); // as a modal alert does
        ran += "5";
    });
    queue.async([&] { ran += "4"; });
    queue.drain();
    EXPECT_EQ(ran, "12345");
}

TEST(MainQueue, LosesAndReordersNothingThatOtherThreadsSchedule) {
    constexpr int blockCount = 2000;
    std::atomic<int> wakeUps = 0;
    MainQueue queue([&] { ++wakeUps; }, [] {});
    std::vector<std::vector<int>> ran(4);
    std::vector<std::thread> threads;
    for (std::vector<int>& own : ran) {
        threads.emplace_back([&] {
            for (int i = 0; i < blockCount; ++i)
                queue.async([&own, i] { own.push_back(i); });
        });
    }
    while (wakeUps < 4 * blockCount)
        queue.drain();
    queue.drain();
    for (auto& thread : threads)
        thread.join();
    for (const auto& own : ran) {
        EXPECT_EQ(own.size(), blockCount);
        EXPECT_TRUE(std::ranges::is_sorted(own));
    }
}

TEST(NotificationCenter, DeliversByNameInTheOrderOfRegistration) {
    NotificationCenter center;
    std::string heard;
    NotificationCenter::ObserverID first = 0;
    first = center.addObserver("end", [&] {
        heard += "1";
        center.removeObserver(first);
        center.addObserver("end", [&] { heard += "3"; });
    });
    center.addObserver("other", [&] { heard += "x"; });
    center.addObserver("end", [&] { heard += "2"; });
    center.post("end");
    center.post("nobody asked for this");
    EXPECT_EQ(heard, "12") << "3 was added while it was delivered";
    center.removeObserver(first);
    center.post("end");
    EXPECT_EQ(heard, "1223");
}

} // namespace
} // namespace zelmora::platform
