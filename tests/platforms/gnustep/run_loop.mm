// SPDX-License-Identifier: MIT
#include "tests/platforms/gnustep/messages.h"

using quillet::standin::Device;

/// Foundation's loop serves what is due on the device, every hundredth of a second.
@interface QuilletDeviceTurns : NSObject
- (void)turn:(NSTimer*)timer;
@end

@implementation QuilletDeviceTurns

- (void)turn:(NSTimer*)__attribute__((unused))timer {
    Device::current().eventLoop.turn();
}

@end

namespace quillet::gnustep {

namespace {

constexpr double turnInterval = 0.01;

// While the device's clock is virtual, a date says the device's time: its zero is Foundation's.

::NSDate* dateOf(double time) {
    const standin::Clock& clock = Device::current().clock;
    return clock.isVirtual() ? [::NSDate dateWithTimeIntervalSinceReferenceDate:time]
                             : [::NSDate dateWithTimeIntervalSinceNow:time - clock.now()];
}

double timeOf(::NSDate* date) {
    const standin::Clock& clock = Device::current().clock;
    return clock.isVirtual() ? [date timeIntervalSinceReferenceDate]
                             : clock.now() + [date timeIntervalSinceNow];
}

id dateWithTimeIntervalSinceNow(id self, SEL selector, double seconds) {
    const double time = Device::current().clock.now() + seconds;
    answered(time, receiver(self), selector, seconds);
    return dateOf(time);
}

id currentRunLoop(id self, SEL selector) {
    const id answer = [self currentRunLoop];
    answered(traced(answer), receiver(self), selector);
    return answer;
}

void runForReal(::NSRunLoop* loop, ::NSDate* limit) {
    Device::current().eventLoop.turn();
    QuilletDeviceTurns* const turns = [[QuilletDeviceTurns alloc] init];
    NSTimer* const timer = [NSTimer scheduledTimerWithTimeInterval:turnInterval
                                                            target:turns
                                                          selector:@selector(turn:)
                                                          userInfo:nil
                                                           repeats:YES];
    [loop runUntilDate:limit];
    [timer invalidate];
    [turns release];
}

void runUntilDate(id self, SEL selector, ::NSDate* limit) {
    Device& device = Device::current();
    const double time = timeOf(limit);
    device.trace.message(receiver(self), sel_getName(selector), time);
    if (device.clock.isVirtual()) {
        device.eventLoop.runUntil(time);
    } else {
        runForReal(self, limit);
    }
}

void sleepForTimeInterval(id self, SEL selector, double seconds) {
    Device& device = Device::current();
    device.trace.message(receiver(self), sel_getName(selector), seconds);
    if (device.clock.isVirtual()) {
        device.clock.advanceTo(device.clock.now() + seconds);
    } else {
        [self sleepForTimeInterval:seconds];
    }
}

}  // namespace

std::vector<Observed> runLoopMessages() {
    return {
        {"dateWithTimeIntervalSinceNow:", method(dateWithTimeIntervalSinceNow)},
        {"currentRunLoop", method(currentRunLoop)},
        {"runUntilDate:", method(runUntilDate)},
        {"sleepForTimeInterval:", method(sleepForTimeInterval)},
    };
}

}  // namespace quillet::gnustep
