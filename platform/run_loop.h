// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"

namespace quillet {

/// A span of time in seconds.
using NSTimeInterval = double;

/// A point in time.
class NSDate : public Object {
public:
    using Object::Object;

    /// The time `seconds` from now; negative values lie in the past.
    static NSDate dateWithTimeIntervalSinceNow(NSTimeInterval seconds);
};

/// The event loop of a thread.
class NSRunLoop : public Object {
public:
    using Object::Object;

    /// The calling thread's loop, shared with the platform; never nil.
    static NSRunLoop currentRunLoop();

    /// Blocks until `limit`, and meanwhile runs whatever falls due on this thread: timers,
    /// callbacks of notification observers, the host's own input. What it runs may call back into
    /// the bundle, and may run the loop again. A limit that has passed, or nil, does not block;
    /// what is due may be run all the same.
    void runUntilDate(NSDate limit) const;
};

/// The calling thread.
class NSThread {
public:
    /// Blocks the thread for `seconds`, at least. Nothing runs on it meanwhile. Zero and less do
    /// not block.
    static void sleepForTimeInterval(NSTimeInterval seconds);
};

}  // namespace quillet
