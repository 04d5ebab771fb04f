// SPDX-License-Identifier: MIT
#include "platform/standin/device/clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>

namespace quillet::test {
namespace {

using standin::Clock;

TEST(VirtualClock, BeginsAtZeroAndStandsStill) {
    const Clock clock{Clock::Kind::virtualTime};
    EXPECT_TRUE(clock.isVirtual());
    EXPECT_EQ(clock.now(), 0.0);
    std::this_thread::sleep_for(std::chrono::milliseconds{5});
    EXPECT_EQ(clock.now(), 0.0);
}

TEST(VirtualClock, MovesForwardExactlyAndNeverBack) {
    Clock clock{Clock::Kind::virtualTime};
    clock.advanceTo(0.1);
    EXPECT_EQ(clock.now(), 0.1);
    clock.advanceTo(0.05);
    EXPECT_EQ(clock.now(), 0.1);
    clock.advanceTo(-1);
    EXPECT_EQ(clock.now(), 0.1);
    clock.advanceTo(std::numeric_limits<double>::max());
    EXPECT_EQ(clock.now(), std::numeric_limits<double>::max());
}

TEST(RealClock, BeginsNearZeroAndGoesOnByItself) {
    const Clock clock{Clock::Kind::real};
    EXPECT_FALSE(clock.isVirtual());
    const double first = clock.now();
    EXPECT_GE(first, 0.0);
    EXPECT_LT(first, 10.0);
    std::this_thread::sleep_for(std::chrono::milliseconds{5});
    EXPECT_GE(clock.now() - first, 0.005);
}

TEST(RealClock, AdvancesByWaitingAtLeastThatLong) {
    Clock clock{Clock::Kind::real};
    for (int i = 0; i < 20; ++i) {
        const double time = clock.now() + 0.001;
        clock.advanceTo(time);
        EXPECT_GE(clock.now(), time);
    }
}

TEST(RealClock, DoesNotWaitForTimesPast) {
    Clock clock{Clock::Kind::real};
    const double start = clock.now();
    clock.advanceTo(start - 60);
    clock.advanceTo(-1e6);
    EXPECT_LT(clock.now() - start, 10.0);
}

}  // namespace
}  // namespace quillet::test
