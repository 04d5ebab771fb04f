// SPDX-License-Identifier: MIT
#pragma once

#include "platform/flipswitch.h"
#include "platform/object.h"
#include "platform/string.h"

namespace quillet {

/// The switch: ringer on, or muted.
///
/// It keeps no state of its own. The truth is the state word that the notification service keeps
/// under "com.apple.springboard.ringerstate": exactly 1 means on, anything else silent. Everything
/// runs on the host's main thread.
class RingerSwitch {
public:
    /// Runs once, when the bundle is loaded: creates the shared preferences and observes the
    /// ringer's state. The observer is never removed.
    static void load();

    /// This class as the platform's runtime knows it. Defined once for each platform.
    static Class classObject();

    /// FSSwitchStateOn or FSSwitchStateOff, read afresh; off when the word cannot be read. The
    /// identifier is ignored.
    static FSSwitchState stateForSwitchIdentifier(NSString identifier);

    /// Turns the ringer off (FSSwitchStateOff) or on (any other value but
    /// FSSwitchStateIndeterminate, which asks for nothing). Only 0 and 1 are stored as the new
    /// state. Without a token for the word only the preferences are reloaded. Blocks for about
    /// 1.25 s at the longest, and for what the run loop runs besides; the switch may be asked for
    /// its state meanwhile. The identifier is ignored.
    static void applyState(FSSwitchState state, NSString forSwitchIdentifier);
};

}  // namespace quillet
