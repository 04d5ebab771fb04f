// SPDX-License-Identifier: MIT
#include "platform/run_loop.h"

#include "platform/ios/references.h"

namespace quillet {

NSDate NSDate::dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    return sharing<NSDate>([::NSDate dateWithTimeIntervalSinceNow:seconds]);
}

NSRunLoop NSRunLoop::currentRunLoop() { return sharing<NSRunLoop>([::NSRunLoop currentRunLoop]); }

void NSRunLoop::runUntilDate(NSDate limit) const { [object(*this) runUntilDate:object(limit)]; }

void NSThread::sleepForTimeInterval(NSTimeInterval seconds) {
    [::NSThread sleepForTimeInterval:seconds];
}

}  // namespace quillet
