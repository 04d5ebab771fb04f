// SPDX-License-Identifier: MIT
#include "springboard/phone_now.h"

#include <nlohmann/json.hpp>

#include "platform/standin/device/vibration_settings.h"
#include "platform/standin/plist/readings.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "springboard/json.h"
#include "springboard/preferences.h"

namespace quillet {

using standin::Dictionary;
using standin::Value;
using standin::VibrationSettings;

namespace {

/// The value of `key` as `reading` takes it; nothing where there is none.
template <class Reading>
auto valueOf(const std::optional<Dictionary>& dictionary, const char* key, Reading reading) {
    const std::optional<Value> value = dictionary ? dictionary->find(key) : std::nullopt;
    return value ? reading(*value) : std::nullopt;
}

std::string wordFor(std::optional<bool> setting) {
    if (!setting) return "absent";
    return *setting ? "on" : "off";
}

std::string wordFor(std::optional<float> volume) { return volume ? toLine(*volume) : "absent"; }

template <class Setting>
void addChange(std::string& changes, const char* key, const Setting& before, const Setting& after) {
    if (before == after) return;
    changes += (changes.empty() ? "" : ", ") + std::string{key} + ' ' + wordFor(after) + " (was " +
               wordFor(before) + ')';
}

}  // namespace

PhoneNow lookAt(const standin::Device& device) {
    const auto settings = standin::readDictionary(device.below(VibrationSettings::path));
    const auto preferences = standin::readDictionary(device.below(preferencesPath));
    return {.isMuted = device.hardware.isRingerMuted(),
            .volume = device.hardware.volume("Ringtone"),
            .ring = valueOf(settings, VibrationSettings::ringKey, standin::boolValue),
            .silent = valueOf(settings, VibrationSettings::silentKey, standin::boolValue),
            .keptVolume = valueOf(preferences, volumeKey, standin::floatValue)};
}

std::string inWords(const PhoneNow& phone) {
    return std::string{"ringer "} + (phone.isMuted ? "muted" : "not muted") + ", volume " +
           wordFor(phone.volume) + ", vibration: ring " + wordFor(phone.ring) + ", silent " +
           wordFor(phone.silent);
}

std::string leftBehind(const PhoneNow& before, const PhoneNow& after) {
    std::string changes;
    addChange(changes, VibrationSettings::ringKey, before.ring, after.ring);
    addChange(changes, VibrationSettings::silentKey, before.silent, after.silent);
    addChange(changes, volumeKey, before.keptVolume, after.keptVolume);
    return changes.empty() ? "nothing" : changes;
}

}  // namespace quillet
