// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tests/behaviour/choices.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Dictionary;
using standin::HostVariant;
using ::testing::ElementsAreArray;

/// The preferences file: none, without a pattern, with the default one, or with one's own choices.
struct Choices {
    bool file;
    std::optional<bool> pattern;
    std::optional<bool> whenOff;
    std::optional<bool> whenOn;
};

struct Case {
    std::int32_t state;
    Choices choices;
    bool iPod;
    HostVariant host;
    bool registers;
};

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string word(bool flag) { return flag ? "true" : "false"; }

/// Writes down, step by step, every platform call that applying a state makes. SpringBoard's file
/// holds "ring-vibrate" true and "silent-vibrate" false, the preferences no volume, the volume is
/// 0.75, and the clock starts at `time`.
class Expectation {
public:
    Expectation(const Case& situation, double time) : case_{situation}, time_{time} {
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

    const Case& case_;
    double time_;
    Calls calls_;
};

constexpr std::array<std::int32_t, 8> states = {-1,
                                                0,
                                                1,
                                                2,
                                                -2,
                                                127,
                                                std::numeric_limits<std::int32_t>::min(),
                                                std::numeric_limits<std::int32_t>::max()};

std::vector<Choices> allChoices() {
    std::vector<Choices> all = {{false, {}, {}, {}}};
    for (const auto pattern : trueFalseOrAbsent) {
        for (const auto whenOff : trueFalseOrAbsent) {
            for (const auto whenOn : trueFalseOrAbsent)
                all.push_back({true, pattern, whenOff, whenOn});
        }
    }
    return all;
}

std::vector<HostVariant> allHosts() {
    std::vector<HostVariant> all;
    for (const auto indicator :
         {HostVariant::Indicator::absent, HostVariant::Indicator::class_,
          HostVariant::Indicator::instance, HostVariant::Indicator::noInstance,
          HostVariant::Indicator::deaf}) {
        for (const auto media : {HostVariant::Media::absent, HostVariant::Media::instance,
                                 HostVariant::Media::noInstance, HostVariant::Media::deaf}) {
            all.push_back({indicator, media});
        }
    }
    return all;
}

const Dictionary settings = {{"ring-vibrate", true}, {"silent-vibrate", false}};

class ApplyStateTable : public ::testing::TestWithParam<std::tuple<std::int32_t, bool>> {
protected:
    ApplyStateTable() { phone_.write(springBoardPreferencesPath, settings); }

    /// Puts the phone into the case's situation, as new but for its clock. SpringBoard's settings
    /// are there already, for every case must leave them as they were.
    void prepare(const Case& situation) {
        phone_.device().eventLoop.turn();
        phone_.device().host = situation.host;
        phone_.device().tokens.refuse(!situation.registers);
        if (iPod_) phone_.device().hardware.setVolume("Ringtone", 0.75F);
        phone_.setStateWord(9);
        phone_.preferences().setDefaultVibrationPattern(NO);
        phone_.preferences().setVibrateWhenOff(YES);
        phone_.preferences().setVibrateWhenOn(NO);
        writePreferences(situation.choices);
        phone_.log().clear();
    }

    void writePreferences(const Choices& choices) {
        phone_.remove(preferencesPath);
        if (!choices.file) return;
        Dictionary file;
        if (choices.pattern) file.set("ios-vibrate-pattern", *choices.pattern);
        if (choices.whenOff) file.set("vibrate-when-off", *choices.whenOff);
        if (choices.whenOn) file.set("vibrate-when-on", *choices.whenOn);
        phone_.write(preferencesPath, file);
    }

    void check(const Case& situation) {
        prepare(situation);
        const Expectation expectation{situation, phone_.device().clock.now()};
        phone_.apply(situation.state);
        if (phone_.calls() != expectation.calls()) {  // Matchers take as long as a flip.
            ASSERT_THAT(phone_.calls(), ElementsAreArray(expectation.calls()));
        }
        const bool stores = situation.registers && (situation.state == 0 || situation.state == 1);
        ASSERT_EQ(phone_.stateWord(), stores ? static_cast<std::uint64_t>(situation.state) : 9U);
        ASSERT_EQ(phone_.dictionary(springBoardPreferencesPath), settings);
    }

    const bool iPod_ = std::get<1>(GetParam());
    Phone phone_{{.machine = iPod_ ? "iPod7,1" : "iPhone6,1"}};
};

TEST_P(ApplyStateTable, MakesExactlyTheCallsOfEveryStepInTheirOrder) {
    const auto choices = allChoices();
    const auto hosts = allHosts();
    for (const Choices& choice : choices) {
        for (const HostVariant& host : hosts) {
            for (const bool registers : {true, false}) {
                SCOPED_TRACE(::testing::Message()
                             << "file " << choice.file << " pattern " << choice.pattern.value_or(9)
                             << " off " << choice.whenOff.value_or(9) << " on "
                             << choice.whenOn.value_or(9) << " indicator "
                             << static_cast<int>(host.indicator) << " media "
                             << static_cast<int>(host.media) << " registers " << registers);
                ASSERT_NO_FATAL_FAILURE(
                    check({std::get<0>(GetParam()), choice, iPod_, host, registers}));
            }
        }
    }
}

std::string nameOf(const ::testing::TestParamInfo<std::tuple<std::int32_t, bool>>& info) {
    const auto [state, iPod] = info.param;
    const std::string number = std::to_string(std::abs(std::int64_t{state}));
    return (state < 0 ? "Minus" : "State") + number + (iPod ? "OnAnIPod" : "OnAPhone");
}

INSTANTIATE_TEST_SUITE_P(EveryState, ApplyStateTable,
                         ::testing::Combine(::testing::ValuesIn(states), ::testing::Bool()),
                         nameOf);

}  // namespace
}  // namespace quillet::test
