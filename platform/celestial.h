// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"
#include "platform/string.h"

namespace quillet {

/// The device's volumes, one for each audio category. A volume is a fraction from 0.0 (silent) to
/// 1.0 (full). No message here calls back before it answers.
class AVSystemController : public Object {
public:
    using Object::Object;

    /// The system's one controller, shared with it; nil on a system that lacks the class.
    static AVSystemController sharedAVSystemController();

    /// Puts the volume of `forCategory` (for example "Ringtone") into `*volume`, which must not be
    /// null. NO when there is no such category, or when it cannot be found out; `*volume` is then
    /// left as it was.
    BOOL getVolume(float* volume, NSString forCategory) const;

    /// Sets the volume of `forCategory`, brought into the range; it lasts until the next one who
    /// sets it. NO when there is no such category, or when it cannot be set; nothing has changed
    /// then.
    BOOL setVolumeTo(float volume, NSString forCategory) const;
};

}  // namespace quillet
