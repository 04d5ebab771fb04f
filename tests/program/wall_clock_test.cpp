// SPDX-License-Identifier: MIT
#include "program/wall_clock.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <cstdint>

namespace quillet::test {
namespace {

constexpr std::int64_t night = 1795313720'056789;

TEST(WallClock, IsOneForAllAsAnISOTime) {
    EXPECT_EQ(isoTime(night), "2026-11-22T02:15:20.056789Z");
    EXPECT_EQ(isoTime(0), "1970-01-01T00:00:00.000000Z");
}

TEST(WallClock, IsInTheTimeZoneOfWhoeverReadsTimeAndDay) {
    setenv("TZ", "XYZ3", 1);
    tzset();
    EXPECT_EQ(dayOf(night) + ' ' + timeOfDay(night), "2026-11-21 23:15:20.056");
    unsetenv("TZ");
    tzset();
}

TEST(WallClock, GoesOn) {
    EXPECT_GT(timeNow(), night - std::int64_t{365} * 86400 * microsecondsPerSecond);
}

}  // namespace
}  // namespace quillet::test
