// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "platform/standin/device/complaints.h"
#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "platform/standin/device/vibration_settings.h"

namespace quillet {

/// The user's choices as a file has them: each "true", "false", "absent" or "odd".
struct Choices {
    const char* pattern = "absent";
    const char* whenOff = "absent";
    const char* whenOn = "absent";
    /// The volume that is kept, if one is.
    std::optional<float> volume = {};
};

/// How a phone stands: what a flip may change, and what decides.
struct PhoneNow {
    /// Nothing when the hardware's file cannot be read, or has none.
    std::optional<bool> isMuted;
    std::optional<float> volume;
    Choices choices;
    standin::VibrationSettings vibration;
};

/// `hardware` is that of the device at `root`. `complaints` hears of files that hold no property
/// list.
PhoneNow lookAt(const standin::DeviceRoot& root, const standin::Hardware& hardware,
                standin::Complaints& complaints);

/// "ringer muted, volume 0.75, vibration: ring on, silent on"
std::string inWords(const PhoneNow& phone);

/// What a flip that found the phone as `before` has left in its settings: "ring-vibrate off (was
/// on)", or "nothing".
std::string leftBehind(const PhoneNow& before, const PhoneNow& after);

}  // namespace quillet
