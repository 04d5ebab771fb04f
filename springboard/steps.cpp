// SPDX-License-Identifier: MIT
#include "springboard/steps.h"

#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "springboard/json.h"

namespace quillet {

using standin::TraceRecord;
using standin::TraceValue;

namespace {

constexpr char preferencesFile[] = "com.velk.switch.ringer.plist";
constexpr char settingsFile[] = "com.apple.springboard.plist";
constexpr char ringerStateName[] = "com.apple.springboard.ringerstate";
constexpr char lastAnnouncedKey[] = "silent-vibrate";

const TraceValue& argument(const TraceRecord& record, std::size_t place) {
    static const TraceValue nothing;
    return place < record.arguments.size() ? record.arguments[place] : nothing;
}

std::string textIn(const TraceValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

bool isNothing(const std::optional<TraceValue>& value) {
    return !value || std::holds_alternative<std::monostate>(*value);
}

/// Whether a number or a flag is other than 0.
bool isSet(const TraceValue& value) {
    return std::visit(
        [](const auto& plain) {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(plain)>>) return plain != 0;
            return false;
        },
        value);
}

std::string numberText(const TraceValue& value) {
    const auto write = [](const auto& plain) -> std::string {
        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(plain)>>) return toLine(plain);
        return "nothing";
    };
    return std::visit(write, value);
}

const char* onOrOffWord(std::optional<bool> value) { return value.value_or(true) ? "on" : "off"; }

/// What a preference, as it was read, has the switch do.
std::string effectOf(const std::string& key, std::optional<bool> value) {
    const std::string word = !value ? "absent" : *value ? "yes" : "no";
    if (key == "ios-vibrate-pattern") {
        return word + (value.value_or(true) ? ": vibration is left to the system"
                                            : ": the switch vibrates in SpringBoard's place");
    }
    if (key == "vibrate-when-off") {
        return word +
               (value.value_or(true) ? ": it buzzes when muted" : ": it does not buzz when muted");
    }
    if (!value) return word + ": as before when unmuted, and it buzzes when muted";
    return word + (*value ? ": it buzzes when unmuted" : ": it does not buzz when unmuted");
}

bool isPreference(const std::string& key) {
    return key == "ios-vibrate-pattern" || key == "vibrate-when-off" || key == "vibrate-when-on";
}

}  // namespace

std::optional<bool>* StepReader::Settings::find(const std::string& key) {
    if (key == "ring-vibrate") return &ring;
    return key == lastAnnouncedKey ? &silent : nullptr;
}

StepReader::Handler StepReader::handlerOf(const std::string& operation) {
    static constexpr std::array<std::pair<const char*, Handler>, 16> handlers = {{
        {"dictionaryWithContentsOfFile:", &StepReader::openFile},
        {"objectForKey:", &StepReader::lookUp},
        {"boolValue", &StepReader::readFlag},
        {"setValue:forKey:", &StepReader::changeSetting},
        {"setObject:forKey:", &StepReader::keepVolume},
        {"writeToFile:atomically:", &StepReader::writeFile},
        {"GSSendAppPreferencesChanged", &StepReader::announce},
        {"runUntilDate:", &StepReader::wait},
        {"sleepForTimeInterval:", &StepReader::wait},
        {"notify_register_check", &StepReader::takeToken},
        {"notify_set_state", &StepReader::storeState},
        {"notify_get_state", &StepReader::readState},
        {"notify_post", &StepReader::post},
        {"activate:", &StepReader::showIndicator},
        {"setRingerMuted:", &StepReader::mute},
        {"setVolumeTo:forCategory:", &StepReader::setVolume},
    }};
    for (const auto& [name, handler] : handlers) {
        if (operation == name) return handler;
    }
    return operation == "AudioServicesPlaySystemSound" ? &StepReader::playSound : nullptr;
}

std::vector<Step> StepReader::begin(const Record& record) {
    const Handler handler = handlerOf(record.operation);
    if (handler != nullptr) (this->*handler)(record);
    return std::exchange(steps_, {});
}

std::vector<Step> StepReader::end(const Record& record, double duration) {
    if (record.operation == "stateDidChangeForSwitchIdentifier:") {
        add(record, "refresh",
            "the post comes back: the panel asks, and is told " +
                std::string{answered_.value_or(false) ? "\"on\"" : "\"off\""});
    } else {
        add(record, "", "");
        steps_.back().kind = Step::Kind::waitEnds;
        steps_.back().time += duration;
    }
    return std::exchange(steps_, {});
}

void StepReader::add(const Record& record, std::string label, std::string text) {
    steps_.push_back(
        {Step::Kind::deed, record.time, record.depth, std::move(label), std::move(text)});
}

void StepReader::decide(const Record& record, const std::string& key, std::optional<bool> value) {
    add(record, key, effectOf(key, value));
    steps_.back().kind = Step::Kind::decision;
}

void StepReader::openFile(const Record& record) {
    const std::string path = textIn(argument(record, 0));
    const bool isThere = !isNothing(record.result);
    if (path.ends_with(settingsFile)) {
        (areSettingsOff_ ? written_ : before_) = {};
        (areSettingsOff_ ? written_ : before_).isFile = isThere;
    } else if (path.ends_with(preferencesFile) && !isThere) {
        add(record, "no preferences", "nothing to be read: vibration is left to the system");
        steps_.back().kind = Step::Kind::decision;
    }
}

void StepReader::lookUp(const Record& record) {
    key_ = textIn(argument(record, 0));
    if (isPreference(key_) && isNothing(record.result)) decide(record, key_, std::nullopt);
}

void StepReader::readFlag(const Record& record) {
    const bool value = record.result && isSet(*record.result);
    if (isPreference(key_)) decide(record, key_, value);
    if (std::optional<bool>* const setting = before_.find(key_)) *setting = value;
    key_.clear();
}

void StepReader::changeSetting(const Record& record) {
    std::optional<bool>* const setting = written_.find(textIn(argument(record, 1)));
    if (setting != nullptr) *setting = isSet(argument(record, 0));
}

void StepReader::keepVolume(const Record& record) { keptVolume_ = numberText(argument(record, 0)); }

void StepReader::writeFile(const Record& record) {
    const bool isWritten = record.result && isSet(*record.result);
    const std::string path = textIn(argument(record, 0));
    if (path.ends_with(settingsFile)) written_.isWritten = isWritten;
    if (!path.ends_with(preferencesFile)) return;
    add(record, "keep volume",
        isWritten ? "ringtone volume " + keptVolume_ + " kept in the preferences"
                  : "ringtone volume " + keptVolume_ + " could not be kept: no file written");
}

void StepReader::announce(const Record& record) {
    if (textIn(argument(record, 1)) != lastAnnouncedKey) return;
    const Settings& settings = areSettingsOff_ ? written_ : before_;
    const std::string values = std::string{"ring "} + onOrOffWord(settings.ring) + ", silent " +
                               onOrOffWord(settings.silent);
    std::string text = areSettingsOff_ ? "vibration settings back: " + values
                                       : "vibration settings off (before: " + values + ")";
    if (!written_.isWritten) {
        text = settings.isFile ? "vibration settings could not be written"
                               : "SpringBoard has no file of settings to change";
    }
    add(record, areSettingsOff_ ? "settings back" : "settings off", text + ", announced");
    areSettingsOff_ = !areSettingsOff_;
    written_.isWritten = false;
}

void StepReader::wait(const Record& record) {
    const bool isSleep = record.operation == "sleepForTimeInterval:";
    add(record, isSleep ? "sleep" : "wait",
        isSleep ? "sleeps before it sets the volume" : "waits for SpringBoard to take that over");
    steps_.back().kind = Step::Kind::waitBegins;
}

void StepReader::takeToken(const Record& record) {
    if (!record.result || !isSet(*record.result)) return;
    add(record, "no token", "the notification service gives no token: nothing can be done");
}

void StepReader::storeState(const Record& record) { stored_ = isSet(argument(record, 1)); }

void StepReader::readState(const Record& record) { answered_ = isSet(argument(record, 1)); }

void StepReader::post(const Record& record) {
    if (textIn(argument(record, 0)) != ringerStateName) return;
    if (stored_) {
        add(record, *stored_ ? "state on" : "state off",
            std::string{"state \""} + onOrOffWord(stored_) + "\" stored and posted");
    } else {
        add(record, "post", "posted, without a state stored");
    }
    stored_.reset();
}

void StepReader::showIndicator(const Record& record) {
    const bool rings = isSet(argument(record, 0));
    add(record, "indicator", rings ? "indicator shown: it rings" : "indicator shown: muted");
}

void StepReader::mute(const Record& record) {
    const bool isMuted = isSet(argument(record, 0));
    const std::string name = isMuted ? "mute" : "unmute";
    if (!record.isDone) return add(record, name, "the ringer could not be " + name + 'd');
    add(record, name, isMuted ? "ringer muted" : "ringer unmuted");
}

void StepReader::setVolume(const Record& record) {
    const std::string volume = numberText(argument(record, 0));
    const bool isSuccess = record.result && isSet(*record.result);
    add(record, "volume " + volume,
        "ringtone volume " + std::string{isSuccess ? "set to " : "could not be set to "} + volume);
}

void StepReader::playSound(const Record& record) { add(record, "buzz", "buzz"); }

}  // namespace quillet
