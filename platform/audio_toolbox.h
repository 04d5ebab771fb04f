// SPDX-License-Identifier: MIT
#pragma once

#include <stdint.h>

namespace quillet {

using SystemSoundID = uint32_t;

/// The "sound" that vibrates the device once.
inline constexpr SystemSoundID kSystemSoundID_Vibrate = 0xFFF;

extern "C" {

/// Starts the system sound `sound` and returns without waiting for its end. Unknown sounds are
/// ignored.
void AudioServicesPlaySystemSound(SystemSoundID sound);

}  // extern "C"

}  // namespace quillet
