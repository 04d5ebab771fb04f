// SPDX-License-Identifier: MIT
#include "platform/run_loop.h"

#include "platform/ios/objc_classes.h"

namespace quillet {

NSDate NSDate::dateWithTimeIntervalSinceNow(NSTimeInterval seconds) {
    return NSDate([[::NSDate dateWithTimeIntervalSinceNow:seconds] retain]);
}

NSRunLoop NSRunLoop::currentRunLoop() { return NSRunLoop([[::NSRunLoop currentRunLoop] retain]); }

void NSRunLoop::runUntilDate(NSDate limit) const { [object(*this) runUntilDate:object(limit)]; }

void NSThread::sleepForTimeInterval(NSTimeInterval seconds) {
    [::NSThread sleepForTimeInterval:seconds];
}

}  // namespace quillet
