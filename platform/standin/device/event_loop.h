// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>

#include "platform/standin/device/clock.h"
#include "platform/standin/notifications/bell.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/notifications/observers.h"

namespace quillet::standin {

/// The event loop of the main thread: timers, and the observers of notifications. What it runs may
/// run it again, as the bundle's waits do.
class EventLoop {
public:
    using Work = std::function<void()>;

    /// All three must outlive the loop.
    EventLoop(Clock& clock, NotificationTable& table, Observers& observers)
        : clock_{clock}, table_{table}, observers_{observers} {}

    /// Runs `work` once, in the first turn at or after `time`, in seconds of the clock. Work for
    /// the same time runs in the order in which it was added.
    void at(double time, Work work);

    /// Runs what was due when the turn began, each piece once, and does not wait. What becomes due
    /// meanwhile is left to the next turn.
    void turn();

    /// How long it sleeps at most without looking for posts, in seconds. Posts wake it, but whoever
    /// makes one may die at once, and those who wait see it all the same.
    static constexpr double betweenLooks = std::chrono::duration<double>{Bell::longestWait}.count();

    /// Turns until `limit`, at least once, waiting in between for the next timer or post. A wait
    /// without limit also ends when the table is in its place no more: no post would end it.
    void runUntil(double limit);

    /// Has the outermost runUntil that is under way, the host's own, return when those inside it
    /// have ended and its turn is over. Does nothing when none is.
    void stop() { isStopped_ = depth_ > 0; }

private:
    /// A piece that is due at `now` and was added before the one numbered `end`; empty when there
    /// is none.
    Work takeDue(double now, std::uint64_t end);
    double nextTime(double limit) const;
    bool isEnding() const { return isStopped_ && depth_ == 1; }
    /// Whether the table is in its place, for all that is known: looked up about once a second. One
    /// whose memory is lost, where counts are zeros, is noticed before observers are called.
    bool isServed();
    /// Until then, until the next look, or not at all while a post is pending.
    void waitUntil(double time);

    Clock& clock_;
    NotificationTable& table_;
    Observers& observers_;
    /// By time, and by the number of adding where that is the same.
    std::map<std::pair<double, std::uint64_t>, Work> timers_;
    std::uint64_t added_ = 0;
    static constexpr std::uint32_t looksAtPlace = 12;
    std::uint32_t looks_ = 0;
    /// How many runUntil are under way, each inside the one before.
    int depth_ = 0;
    bool isStopped_ = false;
};

}  // namespace quillet::standin
