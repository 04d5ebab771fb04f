// SPDX-License-Identifier: MIT
#include "platform/standin/device/event_loop.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillet::standin {

void EventLoop::at(double time, Work work) {
    timers_.emplace(std::pair{time, added_++}, std::move(work));
}

EventLoop::Work EventLoop::takeDue(double now, std::uint64_t end) {
    for (auto timer = timers_.begin(); timer != timers_.end(); ++timer) {
        const auto [time, number] = timer->first;
        if (time > now) break;
        if (number < end) return std::move(timers_.extract(timer).mapped());
    }
    return {};
}

void EventLoop::turn() {
    const double now = clock_.now();
    const std::uint64_t end = added_;
    while (const Work work = takeDue(now, end)) work();
    observers_.deliver();
}

double EventLoop::nextTime(double limit) const {
    return timers_.empty() ? limit : std::min(limit, timers_.begin()->first.first);
}

void EventLoop::runUntil(double limit) {
    ++depth_;
    turn();
    while (!isEnding() && clock_.now() < limit) {
        waitUntil(nextTime(limit));
        if (std::isinf(limit) && !isServed()) break;
        turn();
    }
    if (--depth_ == 0) isStopped_ = false;
}

bool EventLoop::isServed() {
    const bool isTime = ++looks_ % looksAtPlace == 0;
    return isTime ? table_.isInPlace() : !table_.isLost();
}

void EventLoop::waitUntil(double time) {
    if (clock_.isVirtual()) {
        if (!observers_.isPending()) clock_.advanceTo(time);
        return;
    }
    const std::chrono::duration<double> left{std::clamp(time - clock_.now(), 0.0, betweenLooks)};
    // Rounded up, so that no wait is shorter than was asked for.
    const Bell::Wait wait{table_.bell(), std::chrono::ceil<std::chrono::nanoseconds>(left)};
    if (!observers_.isPending()) wait.sleep();
}

}  // namespace quillet::standin
