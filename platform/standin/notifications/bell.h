// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace quillet::standin {

/// Wakes those who wait for posts, in memory shared between processes. Any bytes there are a bell.
/// For any thread.
///
/// It makes waits shorter, and nothing stands on it: who waits looks again after longestWait,
/// whatever is here and whoever has died. Who makes a post counts it before looking whether
/// somebody waits, and who waits says so before looking at the counts; one of the two sees the
/// other.
struct Bell {
    class Wait;

    /// How long anybody sleeps at most without looking for posts.
    static constexpr std::chrono::milliseconds longestWait{90};

    /// Until when somebody waits, in nanoseconds of the system's monotonic clock; 0 when nobody is
    /// known to. Waits put it off; who rings and finds it past takes it back, and likewise what no
    /// wait can have set: what a machine left that was started again, or a damage.
    std::atomic<std::int64_t> until;
    /// A futex, which changes when the bell is rung. See futex(2).
    std::atomic<std::uint32_t> rings;
    std::uint32_t unused;

    /// To be called after a post. Makes no system call when nobody waits.
    void ring() {
        if (until.load() != 0) ringForWaits();
    }

private:
    void ringForWaits();
};

/// A wait, which begins when it is made. Posts from then on end its sleep; those before are to be
/// looked for in between.
class Bell::Wait {
public:
    /// Lasts for `time`, or for longestWait if that is shorter. The bell must outlive it.
    Wait(Bell& bell, std::chrono::nanoseconds time);

    /// Blocks until the bell has rung, a signal has been handled or the wait is over, the first of
    /// them. It may end without any.
    void sleep() const;

private:
    Bell& bell_;
    std::chrono::steady_clock::time_point end_;
    /// As many as there were when it began.
    std::uint32_t rings_;
};

}  // namespace quillet::standin
