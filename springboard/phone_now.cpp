// SPDX-License-Identifier: MIT
#include "springboard/phone_now.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "platform/standin/plist/readings.h"
#include "springboard/json.h"
#include "springboard/preferences.h"

namespace quillet {

using standin::VibrationSettings;

namespace {

Choices choicesIn(const standin::Dictionary& file) {
    const auto kept = file.find(volumeKey);
    return {standin::flagWord(file, preferenceKeys[0]), standin::flagWord(file, preferenceKeys[1]),
            standin::flagWord(file, preferenceKeys[2]),
            kept ? standin::floatValue(*kept) : std::nullopt};
}

std::string wordFor(std::string_view setting) {
    if (setting == "true") return "on";
    return setting == "false" ? "off" : std::string{setting};
}

std::string wordFor(std::optional<float> volume) { return volume ? toLine(*volume) : "absent"; }

void addChange(std::string& changes, const char* key, const std::string& before,
               const std::string& after) {
    if (before == after) return;
    changes +=
        (changes.empty() ? "" : ", ") + std::string{key} + ' ' + after + " (was " + before + ')';
}

}  // namespace

PhoneNow lookAt(const standin::DeviceRoot& root, const standin::Hardware& hardware,
                standin::Complaints& complaints) {
    const auto dictionaryIn = [&](const char* path) {
        return standin::readDictionary(root.below(path), complaints)
            .value_or(standin::Dictionary{});
    };
    return {.isMuted = hardware.isRingerMuted(),
            .volume = hardware.volume("Ringtone"),
            .choices = choicesIn(dictionaryIn(preferencesPath)),
            .vibration = VibrationSettings::in(dictionaryIn(VibrationSettings::path))};
}

std::string inWords(const PhoneNow& phone) {
    return std::string{"ringer "} + (phone.isMuted.value_or(false) ? "muted" : "not muted") +
           ", volume " + wordFor(phone.volume) + ", vibration: ring " +
           wordFor(phone.vibration.ring) + ", silent " + wordFor(phone.vibration.silent);
}

std::string leftBehind(const PhoneNow& before, const PhoneNow& after) {
    std::string changes;
    addChange(changes, VibrationSettings::ringKey, wordFor(before.vibration.ring),
              wordFor(after.vibration.ring));
    addChange(changes, VibrationSettings::silentKey, wordFor(before.vibration.silent),
              wordFor(after.vibration.silent));
    addChange(changes, volumeKey, wordFor(before.choices.volume), wordFor(after.choices.volume));
    return changes.empty() ? "nothing" : changes;
}

}  // namespace quillet
