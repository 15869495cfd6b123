// Parts are each dealt out once and handed on in order, until they are stopped.

#include "platform/threads/turns.h"

#include <gtest/gtest.h>

#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zelmora::platform {
namespace {

TEST(Turns, EachPartIsHandedOnInItsTurnUntilTheyAreStopped) {
    for (const int stopAt : {500, 17, 0}) {
        Turns turns(0, 500);
        std::vector<int> handedOn; // in turns only
        workInTurns(turns, [&] {
            while (const auto part = turns.take()) {
                if (*part % 7 == 0) // some take longer, so that others have to wait
                    std::this_thread::sleep_for(std::chrono::microseconds(50));
                if (!turns.await(*part))
                    return;
                if (*part == stopAt)
                    turns.stop();
                else
                    handedOn.push_back(*part);
                turns.pass(*part);
            }
        });
        std::vector<int> expected(static_cast<size_t>(stopAt));
        std::iota(expected.begin(), expected.end(), 0);
        EXPECT_EQ(handedOn, expected);
        EXPECT_EQ(turns.take(), std::nullopt);
    }
}

// The others, who wait for the turn of the one that threw, must end too.
TEST(Turns, WhatOneThrowsEndsAll) {
    Turns turns(0, 1000);
    const auto work = [&] {
        while (const auto part = turns.take()) {
            if (*part == 20)
                throw std::runtime_error("20");
            if (!turns.await(*part))
                return;
            turns.pass(*part);
        }
    };
    EXPECT_THROW(workInTurns(turns, work), std::runtime_error);
    EXPECT_EQ(turns.take(), std::nullopt);
}

} // namespace
} // namespace zelmora::platform
