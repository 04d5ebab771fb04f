// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"

namespace quillet {

// SpringBoard's own classes, which a host may lack. A reference is to the class or to an instance,
// whichever the function that made it says; both may be sent messages.

/// Shows the indicator of the ringer's state on the screen.
class SBRingerHUDController : public Object {
public:
    using Object::Object;

    /// The class, looked up by its name in the host; nil when the host has none.
    static SBRingerHUDController classInHost();

    /// Sent to the class: its one instance, or nil.
    SBRingerHUDController sharedInstance() const;

    /// Shows the indicator: `state` 1 for ringer on, 0 for silent. Some hosts answer it at the
    /// class, others at the instance.
    void activate(int state) const;
};

/// Mutes and unmutes what SpringBoard plays.
class SBMediaController : public Object {
public:
    using Object::Object;

    /// The class, looked up by its name in the host; nil when the host has none.
    static SBMediaController classInHost();

    /// Sent to the class: its one instance, or nil.
    SBMediaController sharedInstance() const;

    /// Mutes the ringer (YES) or unmutes it (NO). Not every system's controller answers it.
    void setRingerMuted(BOOL muted) const;
};

}  // namespace quillet
