// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"

namespace quillet {

// The volume of the audio category "Ringtone", which is zeroed while an iPod is muted and kept in
// the bundle's preferences file meanwhile. The caller runs on the host's main thread.

extern "C" {

/// YES when the device's model name contains "iPod".
[[gnu::visibility("default")]] BOOL isiPod();

/// Keeps the volume in the preferences file, which is created when there is none, and sets the
/// volume to 0.0. A file that is there but cannot be read as a dictionary is left as it is, and
/// the volume is then lost.
[[gnu::visibility("default")]] void turnRingerVolumeOff();

/// Sets the volume to the one kept in the preferences file, which stays there: to 0.0 when the file
/// keeps none, and to 1.0 when there is no file that can be read.
[[gnu::visibility("default")]] void restoreRingerVolume();

}  // extern "C"

}  // namespace quillet
