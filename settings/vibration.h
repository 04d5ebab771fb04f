// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"
#include "platform/string.h"

namespace quillet {

// SpringBoard's two vibration settings, "ring-vibrate" (while the ringer is on) and
// "silent-vibrate" (while it is muted), held off during a change of the ringer and put back. They
// live in SpringBoard's own preferences file, which is read and rewritten whole; an absent key
// counts as YES. The caller runs on the host's main thread.

extern "C" {

/// The settings as the last turnSpringBoardVibrationOff found them; NO when the bundle is loaded.
[[gnu::visibility("default")]] extern BOOL GLOBAL_vibrateWhenRinging;
[[gnu::visibility("default")]] extern BOOL GLOBAL_vibrateWhenSilent;

/// Keeps both settings in the two globals, writes both off, announces the change to SpringBoard
/// and runs the run loop for 0.5 s. Without a readable file the globals become YES and no file is
/// written, but the announcements and the wait are the same.
[[gnu::visibility("default")]] void turnSpringBoardVibrationOff();

/// Writes the two globals back as the settings, announces the change to SpringBoard and runs the
/// run loop for 0.5 s. Without a readable file nothing is written, but the announcements and the
/// wait are the same.
[[gnu::visibility("default")]] void restoreSpringBoardVibration();

/// Tells SpringBoard that its preference `key` has changed, through GraphicsServices loaded at
/// run time. Without that library it does nothing.
[[gnu::visibility("default")]] void updatePref(CFStringRef key);

/// Posts `name` at the notification centre between processes, on SpringBoard's behalf.
[[gnu::visibility("default")]] void notifyDarwinCenter(CFStringRef name);

}  // extern "C"

}  // namespace quillet
