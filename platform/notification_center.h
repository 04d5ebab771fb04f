// SPDX-License-Identifier: MIT
#pragma once

#include <stdint.h>

#include "platform/string.h"

namespace quillet {

// CoreFoundation's notification centre for notifications between processes, which is the
// notification service of notify(3) seen from the run loop.

using CFNotificationCenterRef = struct CFNotificationCenter*;
using CFDictionaryRef = const struct CFDictionary*;
using CFIndex = intptr_t;
using Boolean = unsigned char;

/// What becomes of notifications while the process is suspended. The centre between processes
/// takes the value and makes nothing of it.
using CFNotificationSuspensionBehavior = CFIndex;
inline constexpr CFNotificationSuspensionBehavior CFNotificationSuspensionBehaviorCoalesce = 2;

/// Called on the main thread, from its run loop, after a post of `name`. The arguments are the
/// observer's own, valid during the call; `userInfo` is always null. It may post, also its own
/// name, of which the observers are told in a later call and not during this one; it may add
/// observers, which are told of later posts only; and it may run the run loop.
using CFNotificationCallback = void (*)(CFNotificationCenterRef center, void* observer,
                                        CFStringRef name, const void* object,
                                        CFDictionaryRef userInfo);

extern "C" {

/// The one centre between processes. It lives as long as the process.
CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter();

/// Has `callback` called after posts of `name`, whoever posts it; posts between two turns of the
/// run loop may come as one call. Posts made before are not told. `observer` is handed through and
/// identifies the registration; it and `object`, which this centre ignores, may be null. Adding the
/// same again may have it called once for each. When the service has no room for the name, nothing
/// is added and nobody is told. `name` is copied.
void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer,
                                     CFNotificationCallback callback, CFStringRef name,
                                     const void* object,
                                     CFNotificationSuspensionBehavior suspensionBehavior);

/// Posts `name` to every process, as notify_post does, and like it never calls an observer. This
/// centre ignores `object`, `userInfo` and `deliverImmediately`.
void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFStringRef name,
                                          const void* object, CFDictionaryRef userInfo,
                                          Boolean deliverImmediately);

}  // extern "C"

}  // namespace quillet
