// SPDX-License-Identifier: MIT
#pragma once

namespace quillet::test {

inline constexpr char switchIdentifier[] = "com.velk.switch.ringer";
inline constexpr char ringerStateName[] = "com.apple.springboard.ringerstate";
/// The user's choices, of which the switch reads its own and writes the volume.
inline constexpr char preferencesPath[] =
    "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";
inline constexpr char springBoardPreferencesPath[] =
    "/var/mobile/Library/Preferences/com.apple.springboard.plist";

}  // namespace quillet::test
