// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>

#include "platform/standin/device/clock.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/notifications/observers.h"

namespace quillet::standin {

/// The event loop of the main thread: timers, and the observers of the notification centre.
class RunLoop {
public:
    using Work = std::function<void()>;

    RunLoop(Clock& clock, NotificationTable& table, NotificationCenter& center)
        : clock_{clock}, table_{table}, center_{center} {}

    /// Runs `work` once, in the first turn at or after `time`. Work for the same time runs in the
    /// order in which it was added.
    void at(double time, Work work);

    /// Runs what is due now, each piece once, and does not wait.
    void turn();

    /// Turns until `limit`, waiting in between for the next timer or post.
    void runUntil(double limit);

    /// Has the innermost runUntil that is under way return when its turn is over.
    void stop() { isStopped_ = true; }

private:
    void waitUntil(double time);

    Clock& clock_;
    NotificationTable& table_;
    NotificationCenter& center_;
    std::multimap<double, Work> timers_;
    bool isStopped_ = false;
};

}  // namespace quillet::standin
