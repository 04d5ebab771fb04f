// SPDX-License-Identifier: MIT
#include "platform/standin/device/process_birth.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>

#include "tests/support/child.h"

namespace quillet::test {
namespace {

using standin::birthOf;

/// Since the machine was started, in the kernel's ticks.
long ticksNow() {
    double seconds = 0;
    std::ifstream{"/proc/uptime"} >> seconds;
    return std::lround(seconds * static_cast<double>(sysconf(_SC_CLK_TCK)));
}

TEST(BirthOfAProcess, IsWhenItBeganSinceTheMachineWasStarted) {
    const long before = ticksNow();
    const Child child{[] { return pause(); }};
    const long birth = std::stol(birthOf(child.number()));
    EXPECT_GE(birth, before - 1) << "the one is rounded, the other cut";
    EXPECT_LE(birth, ticksNow() + 1);
}

TEST(BirthOfAProcess, DoesNotDependOnItsName) {
    const auto look = [] {
        const std::string birth = birthOf(getpid());
        prctl(PR_SET_NAME, "a) b (c");
        return !birth.empty() && birthOf(getpid()) == birth ? 0 : 1;
    };
    EXPECT_EQ(Child{look}.wait(), 0);
}

TEST(BirthOfAProcess, IsUnknownOfNone) {
    EXPECT_EQ(birthOf(std::numeric_limits<pid_t>::max()), "");
}

}  // namespace
}  // namespace quillet::test
