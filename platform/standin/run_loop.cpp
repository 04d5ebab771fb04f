// SPDX-License-Identifier: MIT
#include "platform/standin/device/event_loop.h"

#include <algorithm>
#include <utility>

#include "platform/run_loop.h"
#include "platform/standin/device/device.h"
#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

void RunLoop::at(double time, Work work) { timers_.emplace(time, std::move(work)); }

void RunLoop::turn() {
    const double now = clock_.now();
    while (!timers_.empty() && timers_.begin()->first <= now) {
        const Work work = std::move(timers_.begin()->second);
        timers_.erase(timers_.begin());
        work();
    }
    center_.deliver();
}

void RunLoop::runUntil(double limit) {
    turn();
    while (!isStopped_ && clock_.now() < limit) {
        waitUntil(timers_.empty() ? limit : std::min(limit, timers_.begin()->first));
        turn();
    }
    isStopped_ = false;
}

void RunLoop::waitUntil(double time) {
    if (clock_.isVirtual()) {
        clock_.advanceTo(time);
    } else {
        table_.waitForPost(time - clock_.now(), [this] { return center_.isPending(); });
    }
}

namespace {

class DateInstance final : public Instance {
public:
    explicit DateInstance(double time) : time{time} {}
    std::string description() const override { return "<NSDate>"; }

    const double time;
};

}  // namespace

}  // namespace quillet::standin

namespace quillet {

using standin::Device;

NSDate NSDate::dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    Device& device = Device::current();
    const double time = device.clock.now() + seconds;
    device.trace.answer(time, "NSDate", "dateWithTimeIntervalSinceNow:", seconds);
    return standin::adopt<NSDate>(new standin::DateInstance{time});
}

NSRunLoop NSRunLoop::currentRunLoop() {
    static standin::SharedInstance loop{"<NSRunLoop>"};
    Device::current().trace.answer(loop.description(), "NSRunLoop", "currentRunLoop");
    return standin::share<NSRunLoop>(&loop);
}

void NSRunLoop::runUntilDate(NSDate limit) const {
    standin::send(*this, [&](const standin::Instance& loop) {
        const double time = standin::send<standin::DateInstance>(
            limit, [](const standin::DateInstance& date) { return date.time; });
        Device& device = Device::current();
        device.trace.call(loop.description(), "runUntilDate:", time);
        device.runLoop.runUntil(time);
    });
}

void NSThread::sleepForTimeInterval(NSTimeInterval seconds) {
    Device& device = Device::current();
    device.trace.call("NSThread", "sleepForTimeInterval:", seconds);
    device.clock.advanceTo(device.clock.now() + seconds);
}

}  // namespace quillet
