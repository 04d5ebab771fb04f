// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "platform/standin/plist/value.h"
#include "springboard/options.h"

namespace quillet {

// The switch's preferences, as a settings interface would show and write them.

/// Where they are on a device.
inline constexpr char preferencesPath[] =
    "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";

/// The key of the volume that an iPod goes back to.
inline constexpr char volumeKey[] = "ringtone-volume";
/// What the switch looks for: booleans, but for the volume.
inline constexpr std::array preferenceKeys = {"ios-vibrate-pattern", "vibrate-when-off",
                                              "vibrate-when-on", volumeKey};

/// What the file of the device holds: nothing when there is none. Throws std::runtime_error when it
/// cannot be read as a dictionary.
standin::Dictionary readPreferences(const Options& options);

/// Has `change` change them, in this process's turn with the device; see Turn. They are written, in
/// the form that the file has, when it answers true. A file that cannot be read stays as it is.
/// Throws std::runtime_error for one, or when it cannot be written.
void changePreferences(const Options& options,
                       const std::function<bool(standin::Dictionary&)>& change);

/// What the user's `word` is as a value of `key`: of the kind that the switch looks for there, if
/// it can be. "true", "false", "yes" and "no" are booleans, whatever their case, and numbers are
/// numbers; all else is a string. Throws UsageError for what is no UTF-8.
standin::Value preferenceIn(std::string_view key, std::string_view word);

/// What a user should know of a value under `key` that is not what the switch looks for, without
/// the line's end; empty for one that is.
std::string remarkOn(const std::string& key, const standin::Value& value);

}  // namespace quillet
