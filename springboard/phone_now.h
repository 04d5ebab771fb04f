// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "platform/standin/device/device.h"

namespace quillet {

/// What a flip may change on a phone, as it stands.
struct PhoneNow {
    bool isMuted = false;
    std::optional<float> volume;
    /// SpringBoard's vibration settings; nothing where there is none.
    std::optional<bool> ring;
    std::optional<bool> silent;
    /// What an iPod has in its preferences to come back to.
    std::optional<float> keptVolume;
};

PhoneNow lookAt(const standin::Device& device);

/// "ringer muted, volume 0.75, vibration: ring on, silent on"
std::string inWords(const PhoneNow& phone);

/// What a flip that found the phone as `before` has left in its settings: "ring-vibrate off (was
/// on)", or "nothing".
std::string leftBehind(const PhoneNow& before, const PhoneNow& after);

}  // namespace quillet
