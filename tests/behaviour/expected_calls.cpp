// SPDX-License-Identifier: MIT
#include "tests/behaviour/expected_calls.h"

#include <optional>
#include <string>
#include <utility>

namespace quillet::test {

namespace {

using standin::HostVariant;

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string word(bool flag) { return flag ? "true" : "false"; }

class Expectation {
public:
    Expectation(const Situation& situation, double time) : case_{situation}, time_{time} {
        if (case_.state == -1) return;
        loadPreferences();
        add("notify_register_check(" + quoted(ringerStateName) +
            (case_.registers ? ", t1) = 0" : ", null) = 1000000"));
        if (!case_.registers) return;
        if (ownVibration()) turnVibrationOff();
        storeAndPost();
        askModel();
        if (case_.iPod && case_.state == 0) turnVolumeOff();
        showAndMute();
        if (ownVibration()) vibrate();
        askModel();
        if (case_.iPod && case_.state == 1) restoreVolume();
        add("notify_cancel(t1) = 0");
    }

    const Calls& calls() const { return calls_; }

private:
    void add(const std::string& line) { calls_.push_back(line); }

    bool ownVibration() const { return case_.choices.file && case_.choices.pattern == false; }
    bool turnsOn() const { return case_.state != 0; }

    /// The description of the preferences dictionary, null when there is no file.
    std::string dictionary(const std::string& cls) const {
        const auto& [file, pattern, whenOff, whenOn] = case_.choices;
        if (!file) return "null";
        const int entries =
            int{pattern.has_value()} + int{whenOff.has_value()} + int{whenOn.has_value()};
        return quoted("<" + cls + ": " + std::to_string(entries) + " entries>");
    }

    void read(const std::string& key, std::optional<bool> value) {
        add("NSDictionary objectForKey:(" + quoted(key) + ") = " + (value ? word(*value) : "null"));
        if (value) add("<NSNumber> boolValue() = " + word(*value));
    }

    void loadPreferences() {
        const Choices& choices = case_.choices;
        add("NSDictionary dictionaryWithContentsOfFile:(" + quoted(preferencesPath) +
            ") = " + dictionary("NSDictionary"));
        if (choices.file) read("ios-vibrate-pattern", choices.pattern);
        if (!ownVibration()) return;
        read("vibrate-when-off", choices.whenOff);
        read("vibrate-when-on", choices.whenOn);
    }

    void openSettings() {
        add("NSMutableDictionary dictionaryWithContentsOfFile:(" +
            quoted(springBoardPreferencesPath) + ") = \"<NSMutableDictionary: 2 entries>\"");
    }

    void writeSettings(bool whenRinging, bool whenSilent) {
        for (const auto& [key, value] :
             {std::pair("ring-vibrate", whenRinging), std::pair("silent-vibrate", whenSilent)}) {
            add("NSNumber numberWithBool:(" + word(value) + ") = " + word(value));
            add("NSMutableDictionary setValue:forKey:(" + word(value) + ", " + quoted(key) + ")");
        }
        add("NSMutableDictionary writeToFile:atomically:(" + quoted(springBoardPreferencesPath) +
            ", true) = true");
    }

    void announceAndWait() {
        for (const std::string key : {"ring-vibrate", "silent-vibrate"}) {
            add("notify_post(" + quoted("com.apple.springboard." + key + ".changed") + ") = 0");
            add("GSSendAppPreferencesChanged(\"com.apple.springboard\", " + quoted(key) + ")");
        }
        time_ += 0.5;
        const std::string until = render(time_);
        add("NSRunLoop currentRunLoop() = \"<NSRunLoop>\"");
        add("NSDate dateWithTimeIntervalSinceNow:(0.5) = " + until);
        add("<NSRunLoop> runUntilDate:(" + until + ")");
    }

    void turnVibrationOff() {
        openSettings();
        add("NSMutableDictionary objectForKey:(\"ring-vibrate\") = true");
        add("<NSNumber> boolValue() = true");
        add("NSMutableDictionary objectForKey:(\"silent-vibrate\") = false");
        add("<NSNumber> boolValue() = false");
        writeSettings(false, false);
        announceAndWait();
    }

    void storeAndPost() {
        if (case_.state == 0 || case_.state == 1) {
            add("notify_set_state(t1, " + std::to_string(case_.state) + ") = 0");
        }
        add("notify_post(" + quoted(ringerStateName) + ") = 0");
    }

    void askModel() {
        const std::string machine = quoted(case_.iPod ? "iPod7,1" : "iPhone6,1");
        add("uname(" + machine + ") = 0");
        add("strstr(" + machine + ", \"iPod\") = " + word(case_.iPod));
    }

    void turnVolumeOff() {
        const std::string path = quoted(preferencesPath);
        add("NSFileManager defaultManager() = \"<NSFileManager>\"");
        add("<NSFileManager> fileExistsAtPath:(" + path + ") = " + word(case_.choices.file));
        if (case_.choices.file) {
            add("NSMutableDictionary initWithContentsOfFile:(" + path +
                ") = " + dictionary("NSMutableDictionary"));
        } else {
            add("NSMutableDictionary init() = \"<NSMutableDictionary: 0 entries>\"");
        }
        shareController();
        add("<AVSystemController> getVolume:forCategory:(0.75, \"Ringtone\") = true");
        add("NSNumber numberWithFloat:(0.75) = 0.75");
        add("NSMutableDictionary setObject:forKey:(0.75, \"ringtone-volume\")");
        add("NSMutableDictionary writeToFile:atomically:(" + path + ", true) = true");
        setVolume("0");
    }

    void shareController() {
        add("AVSystemController sharedAVSystemController() = \"<AVSystemController>\"");
    }

    void setVolume(const std::string& volume) {
        shareController();
        add("<AVSystemController> setVolumeTo:forCategory:(" + volume + ", \"Ringtone\") = true");
    }

    void restoreVolume() {
        add("NSThread sleepForTimeInterval:(0.25)");
        add("NSDictionary initWithContentsOfFile:(" + quoted(preferencesPath) +
            ") = " + dictionary("NSDictionary"));
        if (case_.choices.file) {
            add("NSDictionary objectForKey:(\"ringtone-volume\") = null");
        }
        setVolume(case_.choices.file ? "0" : "1");
    }

    void lookUp(const std::string& cls, bool isThere) {
        add("NSClassFromString(" + quoted(cls) + ") = " + (isThere ? quoted(cls) : "null"));
    }

    void askForInstance(const std::string& cls, bool isThere) {
        add(cls + " sharedInstance() = " + (isThere ? quoted("<" + cls + ">") : "null"));
    }

    void showAndMute() {
        lookUp("SBMediaController", case_.host.media != HostVariant::Media::absent);
        lookUp("SBRingerHUDController", case_.host.indicator != HostVariant::Indicator::absent);
        if (case_.host.indicator != HostVariant::Indicator::absent) show();
        if (case_.host.media != HostVariant::Media::absent) mute();
    }

    void show() {
        const HostVariant::Indicator indicator = case_.host.indicator;
        const bool atClass = indicator == HostVariant::Indicator::class_;
        const std::string state = turnsOn() ? "(1)" : "(0)";
        add("SBRingerHUDController respondsToSelector:(\"activate:\") = " + word(atClass));
        if (atClass) {
            add("SBRingerHUDController activate:" + state);
            return;
        }
        askForInstance("SBRingerHUDController", indicator != HostVariant::Indicator::noInstance);
        if (indicator == HostVariant::Indicator::instance) {
            add("<SBRingerHUDController> activate:" + state);
        }
    }

    void mute() {
        const bool hasInstance = case_.host.media != HostVariant::Media::noInstance;
        const bool responds = case_.host.media == HostVariant::Media::instance;
        askForInstance("SBMediaController", hasInstance);
        if (!hasInstance) return;
        add("<SBMediaController> respondsToSelector:(\"setRingerMuted:\") = " + word(responds));
        if (!responds) return;
        askForInstance("SBMediaController", true);
        add("<SBMediaController> setRingerMuted:(" + word(!turnsOn()) + ")");
    }

    void vibrate() {
        openSettings();
        writeSettings(true, false);
        announceAndWait();
        refresh();
        const auto& [file, pattern, whenOff, whenOn] = case_.choices;
        // New preferences: vibrateWhenOn is NO until a file says otherwise.
        const bool vibrates = turnsOn() ? whenOn.value_or(false)
                                        : (whenOn.has_value() ? whenOff.value_or(true) : true);
        if (vibrates) add("AudioServicesPlaySystemSound(4095)");
    }

    /// The switch's own post comes back to it in the second wait.
    void refresh() {
        const std::string state = turnsOn() && case_.state != 1 ? "9" : std::to_string(case_.state);
        add("FSSwitchPanel sharedPanel() = \"<FSSwitchPanel>\"");
        add("NSBundle bundleForClass:(\"RingerSwitch\") = \"<NSBundle>\"");
        add("<NSBundle> bundleIdentifier() = " + quoted(switchIdentifier));
        add("<FSSwitchPanel> stateDidChangeForSwitchIdentifier:(" + quoted(switchIdentifier) + ")");
        add("notify_register_check(" + quoted(ringerStateName) + ", t2) = 0");
        add("notify_check(t2, 1) = 0");
        add("notify_get_state(t2, " + state + ") = 0");
        add("notify_cancel(t2) = 0");
    }

    const Situation& case_;
    double time_;
    Calls calls_;
};

}  // namespace

Calls expectedCalls(const Situation& situation, double time) {
    return Expectation{situation, time}.calls();
}

}  // namespace quillet::test
