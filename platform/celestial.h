// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"
#include "platform/string.h"

namespace quillet {

/// The device's volumes, one for each audio category. A volume is a fraction from 0.0 (silent) to
/// 1.0 (full).
class AVSystemController : public Object {
public:
    using Object::Object;

    static AVSystemController sharedAVSystemController();

    /// Puts the volume of `forCategory` (for example "Ringtone") into `*volume`. NO when there is
    /// no such category; `*volume` is then left as it was.
    BOOL getVolume(float* volume, NSString forCategory) const;

    /// Sets the volume of `forCategory`, brought into the range. NO when there is no such
    /// category, or when it cannot be set.
    BOOL setVolumeTo(float volume, NSString forCategory) const;
};

}  // namespace quillet
