// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/bell.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/futex.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

#include "platform/standin/device/device.h"
#include "tests/support/child.h"
#include "tests/support/machine.h"
#include "tests/support/program.h"
#include "tests/support/traced.h"

namespace quillet::test {
namespace {

using namespace std::chrono_literals;
using standin::Bell;
using standin::Device;

std::int64_t now() {
    return std::chrono::nanoseconds{std::chrono::steady_clock::now().time_since_epoch()}.count();
}

/// The bell of a device of real time that observes "a.name".
class Bells : public testing::Test {
protected:
    Bells() {
        device().observers.add("a.name", [this] { device().eventLoop.stop(); });
    }

    Device& device() { return machine_.device(); }
    Bell& bell() { return device().notifications.bell(); }
    void post() { device().notifications.post("a.name"); }
    /// Turns until the observer is called.
    void hear() { device().eventLoop.runUntil(std::numeric_limits<double>::infinity()); }

private:
    Machine machine_{{.clock = standin::Clock::Kind::real}};
};

/// Goes on to the next wait on a futex. False when there is none.
bool goToWait(Traced& process) {
    while (process.nextCall()) {
        const bool isWait = process.call() == SYS_futex && process.argument(1) == FUTEX_WAIT;
        if (isWait) return true;
    }
    return false;
}

/// Has all that this process asks of futexes fail so from now on. See seccomp(2).
void failFutexes(int error) {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_futex, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog filter = {std::size(program), program};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
}

TEST_F(Bells, AreSilentWhenNobodyWaits) {
    EXPECT_EQ(systemCallsOf([this] { post(); }), std::vector<long>{});
    bell().ring();
    EXPECT_EQ(bell().rings.load(), 0U);
}

TEST_F(Bells, RingForWhomeverWaits) {
    // Each time anew, in case that the wait is over before the post.
    EXPECT_TRUE(becomesTrue([this] {
        const Bell::Wait wait{bell(), Bell::longestWait};
        return systemCallsOf([this] { post(); }) == std::vector<long>{SYS_futex};
    }));
    EXPECT_GE(bell().rings.load(), 1U);
}

TEST_F(Bells, AreSilentAgainWhenTheWaitsAreOver) {
    const Bell::Wait wait{bell(), 0ns};
    EXPECT_NE(bell().until.load(), 0);
    bell().ring();
    EXPECT_EQ(bell().until.load(), 0);
    EXPECT_EQ(bell().rings.load(), 0U);
}

TEST_F(Bells, AShorterWaitDoesNotCutALongerOneOff) {
    const Bell::Wait wait{bell(), Bell::longestWait};
    const std::int64_t until = bell().until;
    const Bell::Wait other{bell(), 0ns};
    EXPECT_EQ(bell().until.load(), until);
}

TEST_F(Bells, NobodyWaitsForLongerThanTheLongestWait) {
    const std::int64_t before = now();
    const Bell::Wait wait{bell(), 10min};
    EXPECT_GE(bell().until.load(), before);
    EXPECT_LE(bell().until.load(), now() + std::chrono::nanoseconds{Bell::longestWait}.count());
}

TEST_F(Bells, WhatNoWaitHasSetCostsOnePostAndIsTakenBack) {
    const std::int64_t hour = std::chrono::nanoseconds{1h}.count();
    for (const std::int64_t until :
         {std::int64_t{1}, std::int64_t{-1}, now() - hour, now() + hour,
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        bell().until = until;
        EXPECT_EQ(systemCallsOf([this] { post(); }), std::vector<long>{}) << until;
        EXPECT_EQ(bell().until.load(), 0) << until;
        EXPECT_EQ(bell().rings.load(), 0U) << until;
    }
}

TEST_F(Bells, APostBetweenTheLookAndTheSleepIsNotSleptOver) {
    EXPECT_TRUE(becomesTrue([this] {
        Traced waiting = traced([this] { hear(); });
        if (!goToWait(waiting)) return false;
        post();
        waiting.next();
        return waiting.answer() == -EAGAIN && !goToWait(waiting);
    }));
}

TEST_F(Bells, APostWakesAllWhoSleep) {
    const auto waitOn = [this] {
        for (;;) Bell::Wait{bell(), Bell::longestWait}.sleep();
        return 1;
    };
    Child one{waitOn};
    Child other{waitOn};
    EXPECT_TRUE(becomesTrue([this] {
        Traced posting = traced([this] { post(); });
        if (!posting.nextCall() || posting.call() != SYS_futex) return false;
        posting.next();
        return posting.answer() == 2;
    }));
}

TEST_F(Bells, AFutexThatFailsDoesNotMakeAWaitBusy) {
    for (const int error : {ENOSYS, EACCES, EAGAIN, ETIMEDOUT}) {
        Traced waiting = traced([&] {
            failFutexes(error);
            device().eventLoop.runUntil(device().clock.now() + 0.2);
        });
        int waits = 0;
        while (goToWait(waiting)) ++waits;
        EXPECT_GT(waits, 0) << error;
        EXPECT_LE(waits, 4) << error;
    }
}

}  // namespace
}  // namespace quillet::test
