// SPDX-License-Identifier: MIT
#pragma once

#include <stdint.h>

#include "platform/object.h"
#include "platform/string.h"

namespace quillet {

/// The state of a switch. Any 32-bit value may arrive, not only the named ones.
enum FSSwitchState : int32_t {
    FSSwitchStateOff = 0,
    FSSwitchStateOn = 1,
    FSSwitchStateIndeterminate = -1,
};

/// The switch framework's one panel, which shows every switch.
class FSSwitchPanel : public Object {
public:
    using Object::Object;

    /// The framework's one panel, shared with it; never nil in a host that the framework runs in.
    static FSSwitchPanel sharedPanel();

    /// Has the panel ask the switch `identifier` for its state and draw it anew. The question comes
    /// back into the bundle, during this call or after it. An identifier that no switch has, or
    /// nil, is ignored.
    void stateDidChangeForSwitchIdentifier(NSString identifier) const;
};

}  // namespace quillet
