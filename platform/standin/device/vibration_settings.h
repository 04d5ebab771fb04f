// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// SpringBoard's two vibration settings: each "true", "false", "absent" or, of a kind that is no
/// flag, "odd".
struct VibrationSettings {
    /// Of the device.
    static constexpr char path[] = "/var/mobile/Library/Preferences/com.apple.springboard.plist";
    static constexpr char ringKey[] = "ring-vibrate";
    static constexpr char silentKey[] = "silent-vibrate";

    const char* ring = "absent";
    const char* silent = "absent";

    static VibrationSettings in(const Dictionary& settings);
    /// Both absent when the file at `place`, of this machine, cannot be read.
    static VibrationSettings in(const std::filesystem::path& place);
};

/// How an entry reads as a flag, in one of those four words.
const char* flagWord(const Dictionary& dictionary, std::string_view key);

}  // namespace quillet::standin
