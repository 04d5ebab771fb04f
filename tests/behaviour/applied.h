// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/phone.h"

namespace quillet::test {

// What the world outside the bundle sees of a flip.

inline const std::vector<std::string> outward = {
    "notify_register_check",
    "notify_set_state",
    "notify_post",
    "notify_cancel",
    "activate:",
    "setRingerMuted:",
    "runUntilDate:",
    "AudioServicesPlaySystemSound",
    "sleepForTimeInterval:",
    "getVolume:forCategory:",
    "setVolumeTo:forCategory:",
    "GSSendAppPreferencesChanged",
};

inline const std::string taken =
    R"(notify_register_check("com.apple.springboard.ringerstate", t1) = 0)";
inline const std::string posted = R"(notify_post("com.apple.springboard.ringerstate") = 0)";
inline const std::string indicatorOn = "SBRingerHUDController activate:(1)";
inline const std::string indicatorOff = "SBRingerHUDController activate:(0)";
inline const std::string unmuted = "<SBMediaController> setRingerMuted:(false)";
inline const std::string muted = "<SBMediaController> setRingerMuted:(true)";
inline const std::string vibrated = "AudioServicesPlaySystemSound(4095)";
inline const std::string given = "notify_cancel(t1) = 0";

inline std::string stored(int word) {
    return "notify_set_state(t1, " + std::to_string(word) + ") = 0";
}

inline std::string volumeSet(const std::string& volume) {
    return "<AVSystemController> setVolumeTo:forCategory:(" + volume + ", \"Ringtone\") = true";
}

/// What the world sees of applying `state`.
inline Calls applied(Phone& phone, std::int32_t state) {
    phone.log().clear();
    phone.apply(state);
    return only(phone.calls(), outward);
}

inline std::size_t vibrations(const Phone& phone) {
    return only(phone.calls(), {"AudioServicesPlaySystemSound"}).size();
}

/// The preferences of who vibrates by the switch's own means.
inline standin::Dictionary ownVibration(bool whenOff, bool whenOn) {
    return {
        {"ios-vibrate-pattern", false}, {"vibrate-when-off", whenOff}, {"vibrate-when-on", whenOn}};
}

}  // namespace quillet::test
