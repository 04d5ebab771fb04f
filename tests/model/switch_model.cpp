// SPDX-License-Identifier: MIT
#include "tests/model/switch_model.h"

#include <utility>

namespace quillet::test {

using standin::TraceValue;

namespace {

const std::string springBoard = "com.apple.springboard";
const std::string stateName = "com.apple.springboard.ringerstate";
const std::string settingsFile = "/var/mobile/Library/Preferences/com.apple.springboard.plist";
const std::string choicesFile = "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";
const std::string volumeKey = "ringtone-volume";

TraceValue text(const std::string& value) { return value; }
TraceValue number(std::int64_t value) { return value; }

bool isNothing(const TraceValue& value) { return std::holds_alternative<std::monostate>(value); }
bool isYes(const TraceValue& value) { return value == TraceValue{true}; }

bool isZero(const TraceValue& value) {
    return value == number(0) || value == TraceValue{std::uint64_t{0}};
}
bool isOne(const TraceValue& value) {
    return value == number(1) || value == TraceValue{std::uint64_t{1}};
}

/// How the class of a value that has a reading is called.
std::string classOf(const TraceValue& value) {
    return std::holds_alternative<std::string>(value) ? "<NSString>" : "<NSNumber>";
}

}  // namespace

Reply SwitchModel::ask(const std::string& receiver, const std::string& operation,
                       Arguments arguments) {
    return world_.call({receiver, operation, std::move(arguments), true});
}

void SwitchModel::tell(const std::string& receiver, const std::string& operation,
                       Arguments arguments) {
    world_.call({receiver, operation, std::move(arguments), false});
}

void SwitchModel::load() {
    tell("<NSObject>", "init");
    const Reply center = ask("", "CFNotificationCenterGetDarwinNotifyCenter");
    const TraceValue coalesce = number(2);
    tell("", "CFNotificationCenterAddObserver",
         {center.answer, TraceValue{}, std::nullopt, text(stateName), TraceValue{}, coalesce});
}

bool SwitchModel::isOn() {
    TraceValue word = number(0);
    const Reply token = ask("", "notify_register_check", {text(stateName), std::nullopt});
    const bool registers = isZero(token.answer);
    const auto given = registers ? token.filledIn : std::nullopt;
    if (registers) {
        ask("", "notify_check", {given, std::nullopt});
        word = ask("", "notify_get_state", {given, std::nullopt}).filledIn.value_or(word);
    }
    ask("", "notify_cancel", {given});
    return isOne(word);
}

void SwitchModel::refresh() {
    const Reply panel = ask("FSSwitchPanel", "sharedPanel");
    const Reply bundle = ask("NSBundle", "bundleForClass:", {text("RingerSwitch")});
    const Reply identifier = ask(std::get<std::string>(bundle.answer), "bundleIdentifier");
    tell(std::get<std::string>(panel.answer),
         "stateDidChangeForSwitchIdentifier:", {identifier.answer});
    isOn();
}

void SwitchModel::apply(std::int32_t state) {
    if (state == -1) return;
    const bool turnsOff = state == 0;
    loadPreferences();
    const Reply token = ask("", "notify_register_check", {text(stateName), std::nullopt});
    if (!isZero(token.answer)) return;
    if (!systemVibrates_) holdVibrationOff();
    if (state == 0 || state == 1) ask("", "notify_set_state", {token.filledIn, number(state)});
    ask("", "notify_post", {text(stateName)});
    if (isIPod() && turnsOff) saveAndZeroVolume();
    show(!turnsOff);
    if (!systemVibrates_) {
        putVibrationBack();
        if (turnsOff ? vibrateWhenOff_ : vibrateWhenOn_) {
            tell("", "AudioServicesPlaySystemSound", {number(4095)});
        }
    }
    if (isIPod() && state == 1) restoreVolume();
    ask("", "notify_cancel", {token.filledIn});
}

std::optional<bool> SwitchModel::flag(const std::string& dictionary, const std::string& key) {
    const Reply found = ask(dictionary, "objectForKey:", {text(key)});
    if (isNothing(found.answer)) return std::nullopt;
    return isYes(ask(classOf(found.answer), "boolValue").answer);
}

void SwitchModel::loadPreferences() {
    const std::string dictionary = "NSDictionary";
    const Reply file = ask(dictionary, "dictionaryWithContentsOfFile:", {text(choicesFile)});
    const bool isThere = !isNothing(file.answer);
    systemVibrates_ = !isThere || flag(dictionary, "ios-vibrate-pattern").value_or(true);
    if (systemVibrates_) return;
    vibrateWhenOff_ = flag(dictionary, "vibrate-when-off").value_or(true);
    const auto whenOn = flag(dictionary, "vibrate-when-on");
    vibrateWhenOff_ = vibrateWhenOff_ || !whenOn;
    vibrateWhenOn_ = whenOn.value_or(vibrateWhenOn_);
}

void SwitchModel::put(const std::string& message, const TraceValue& value, const std::string& key) {
    tell("NSMutableDictionary", message, {value, text(key)});
}

void SwitchModel::writeVibration(bool isThere, bool whenRinging, bool whenSilent) {
    for (const auto& [key, value] :
         {std::pair{"ring-vibrate", whenRinging}, std::pair{"silent-vibrate", whenSilent}}) {
        const Reply made = ask("NSNumber", "numberWithBool:", {TraceValue{value}});
        if (isThere) put("setValue:forKey:", made.answer, key);
    }
    if (!isThere) return;
    ask("NSMutableDictionary", "writeToFile:atomically:", {text(settingsFile), TraceValue{true}});
}

void SwitchModel::announceAndWait() {
    for (const std::string key : {"ring-vibrate", "silent-vibrate"}) {
        ask("", "notify_post", {text(springBoard + "." + key + ".changed")});
        tell("", "GSSendAppPreferencesChanged", {text(springBoard), text(key)});
    }
    const Reply loop = ask("NSRunLoop", "currentRunLoop");
    const Reply date = ask("NSDate", "dateWithTimeIntervalSinceNow:", {TraceValue{0.5}});
    tell(std::get<std::string>(loop.answer), "runUntilDate:", {date.answer});
    while (world_.callsObserver()) refresh();
}

void SwitchModel::holdVibrationOff() {
    const std::string dictionary = "NSMutableDictionary";
    const Reply file = ask(dictionary, "dictionaryWithContentsOfFile:", {text(settingsFile)});
    const bool isThere = !isNothing(file.answer);
    vibratesWhenRinging_ = !isThere || flag(dictionary, "ring-vibrate").value_or(true);
    vibratesWhenSilent_ = !isThere || flag(dictionary, "silent-vibrate").value_or(true);
    writeVibration(isThere, false, false);
    announceAndWait();
}

void SwitchModel::putVibrationBack() {
    const Reply file =
        ask("NSMutableDictionary", "dictionaryWithContentsOfFile:", {text(settingsFile)});
    writeVibration(!isNothing(file.answer), vibratesWhenRinging_, vibratesWhenSilent_);
    announceAndWait();
}

bool SwitchModel::isIPod() {
    const Reply name = ask("", "uname", {std::nullopt});
    return isYes(ask("", "strstr", {name.filledIn, text("iPod")}).answer);
}

void SwitchModel::setVolume(double volume) {
    const Reply controller = ask("AVSystemController", "sharedAVSystemController");
    ask(std::get<std::string>(controller.answer),
        "setVolumeTo:forCategory:", {TraceValue{volume}, text("Ringtone")});
}

void SwitchModel::saveAndZeroVolume() {
    const std::string dictionary = "NSMutableDictionary";
    const Reply manager = ask("NSFileManager", "defaultManager");
    const Reply exists =
        ask(std::get<std::string>(manager.answer), "fileExistsAtPath:", {text(choicesFile)});
    const Reply file = isYes(exists.answer)
                           ? ask(dictionary, "initWithContentsOfFile:", {text(choicesFile)})
                           : ask(dictionary, "init");
    const Reply controller = ask("AVSystemController", "sharedAVSystemController");
    const Reply volume = ask(std::get<std::string>(controller.answer),
                             "getVolume:forCategory:", {std::nullopt, text("Ringtone")});
    const TraceValue asked = volume.filledIn.value_or(TraceValue{});
    // What nothing was written to is zero.
    const TraceValue saved = isNothing(asked) ? TraceValue{0.0} : asked;
    const Reply made = ask("NSNumber", "numberWithFloat:", {saved});
    if (!isNothing(file.answer)) {
        put("setObject:forKey:", made.answer, volumeKey);
        ask(dictionary, "writeToFile:atomically:", {text(choicesFile), TraceValue{true}});
    }
    setVolume(0);
}

void SwitchModel::restoreVolume() {
    const std::string dictionary = "NSDictionary";
    tell("NSThread", "sleepForTimeInterval:", {TraceValue{0.25}});
    const Reply file = ask(dictionary, "initWithContentsOfFile:", {text(choicesFile)});
    if (isNothing(file.answer)) return setVolume(1);
    const Reply found = ask(dictionary, "objectForKey:", {text(volumeKey)});
    if (isNothing(found.answer)) return setVolume(0);
    const Reply volume = ask(classOf(found.answer), "floatValue");
    const auto* const real = std::get_if<double>(&volume.answer);
    // A trace in JSON has integers where a real number is whole.
    const auto* const whole = std::get_if<std::int64_t>(&volume.answer);
    setVolume(real != nullptr ? *real : static_cast<double>(whole != nullptr ? *whole : 0));
}

void SwitchModel::show(bool ringerOn) {
    const std::string indicator = "SBRingerHUDController";
    const bool hasMedia =
        !isNothing(ask("", "NSClassFromString", {text("SBMediaController")}).answer);
    const bool hasIndicator = !isNothing(ask("", "NSClassFromString", {text(indicator)}).answer);
    if (hasIndicator) {
        const TraceValue state = number(ringerOn ? 1 : 0);
        if (isYes(ask(indicator, "respondsToSelector:", {text("activate:")}).answer)) {
            tell(indicator, "activate:", {state});
        } else {
            const Reply instance = ask(indicator, "sharedInstance");
            // Only one that knows the message takes it.
            if (!isNothing(instance.answer) && world_.takesActivate()) {
                tell(std::get<std::string>(instance.answer), "activate:", {state});
            }
        }
    }
    mute(ringerOn, hasMedia);
}

void SwitchModel::mute(bool ringerOn, bool hasClass) {
    const std::string media = "SBMediaController";
    if (!hasClass) return;
    const Reply instance = ask(media, "sharedInstance");
    if (isNothing(instance.answer)) return;
    const std::string receiver = std::get<std::string>(instance.answer);
    if (!isYes(ask(receiver, "respondsToSelector:", {text("setRingerMuted:")}).answer)) return;
    ask(media, "sharedInstance");
    tell(receiver, "setRingerMuted:", {TraceValue{!ringerOn}});
}

}  // namespace quillet::test
