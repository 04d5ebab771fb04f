// SPDX-License-Identifier: MIT
#include "platform/run_loop.h"

#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::DateInstance;
using standin::Device;
using standin::Instance;

NSDate NSDate::dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    Device& device = Device::current();
    const double time = device.clock.now() + seconds;
    device.trace.message("NSDate", "dateWithTimeIntervalSinceNow:", seconds, Answer{time});
    return standin::adopt<NSDate>(new DateInstance{time});
}

NSRunLoop NSRunLoop::currentRunLoop() {
    Device& device = Device::current();
    Instance& loop = *device.shared.runLoop;
    device.trace.message("NSRunLoop", "currentRunLoop", Answer{loop});
    return standin::share<NSRunLoop>(&loop);
}

void NSRunLoop::runUntilDate(NSDate limit) const {
    standin::send(*this, [&](const Instance& loop) {
        const double time =
            standin::send<DateInstance>(limit, [](const DateInstance& date) { return date.time; });
        Device& device = Device::current();
        const auto wait = device.trace.lastingMessage(loop, "runUntilDate:", time);
        device.eventLoop.runUntil(time);
    });
}

void NSThread::sleepForTimeInterval(NSTimeInterval seconds) {
    Device& device = Device::current();
    const auto sleep = device.trace.lastingMessage("NSThread", "sleepForTimeInterval:", seconds);
    device.clock.advanceTo(device.clock.now() + seconds);
}

}  // namespace quillet
