// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"

namespace quillet {

// SpringBoard's own classes, which a host may lack. A reference is to the class or to an instance,
// whichever the function that made it says; both may be sent messages. An instance is the host's,
// and shared.

/// Shows the indicator of the ringer's state on the screen.
class SBRingerHUDController : public Object {
public:
    using Object::Object;

    /// The class, looked up by its name in the host; nil when the host has none.
    static SBRingerHUDController classInHost();

    /// Sent to the class: its one instance, or nil.
    SBRingerHUDController sharedInstance() const;

    /// Shows the indicator: `state` 1 for ringer on, 0 for silent. Some hosts answer it at the
    /// class, others at the instance. To the class it is sent as it is, so it must be known to
    /// answer: if it does not, the platform ends the process. An instance need not be asked: one
    /// whose class has no such method is not sent the message.
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

    /// Mutes the ringer (YES) or unmutes it (NO). Not every system's controller answers it, so it
    /// must be asked before. The message is sent as it is: a receiver that does not answer it, as a
    /// second `sharedInstance` might be, has the platform end the process.
    void setRingerMuted(BOOL muted) const;
};

}  // namespace quillet
