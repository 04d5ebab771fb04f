// SPDX-License-Identifier: MIT
#include "platform/standin/device/vibration_settings.h"

#include "platform/standin/plist/readings.h"
#include "platform/standin/runtime/dictionary_file.h"

namespace quillet::standin {

const char* flagWord(const Dictionary& dictionary, std::string_view key) {
    const auto value = dictionary.find(key);
    if (!value) return "absent";
    const auto flag = boolValue(*value);
    return !flag ? "odd" : *flag ? "true" : "false";
}

VibrationSettings VibrationSettings::in(const Dictionary& settings) {
    return {flagWord(settings, ringKey), flagWord(settings, silentKey)};
}

VibrationSettings VibrationSettings::in(const std::filesystem::path& place) {
    const auto settings = readDictionary(place);
    return settings ? in(*settings) : VibrationSettings{};
}

}  // namespace quillet::standin
