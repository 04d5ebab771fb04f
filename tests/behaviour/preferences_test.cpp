// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/plist/property_list.h"
#include "tests/behaviour/choices.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Array;
using standin::Data;
using standin::Date;
using standin::Dictionary;
using standin::Value;
using ::testing::ElementsAreArray;

struct Flags {
    BOOL defaultVibrationPattern;
    BOOL vibrateWhenOff;
    BOOL vibrateWhenOn;
    bool operator==(const Flags&) const = default;
};

void PrintTo(const Flags& flags, std::ostream* out) {
    *out << int{flags.defaultVibrationPattern} << int{flags.vibrateWhenOff}
         << int{flags.vibrateWhenOn};
}

Flags flagsOf(Phone& phone) {
    const PrefsLoader& preferences = phone.preferences();
    return {preferences.defaultVibrationPattern(), preferences.vibrateWhenOff(),
            preferences.vibrateWhenOn()};
}

void setFlags(Phone& phone, const Flags& flags) {
    phone.preferences().setDefaultVibrationPattern(flags.defaultVibrationPattern);
    phone.preferences().setVibrateWhenOff(flags.vibrateWhenOff);
    phone.preferences().setVibrateWhenOn(flags.vibrateWhenOn);
}

/// Has the bundle load its preferences and do nothing else: a state applied while the notification
/// service is out of reach ends after the load.
void load(Phone& phone) {
    phone.device().tokens.refuse(true);
    phone.apply(1);
    phone.device().tokens.refuse(false);
}

/// The flags after a load of `file` by an instance that has just been made.
Flags loaded(const Value& file) {
    Phone phone;
    phone.write(preferencesPath, file);
    load(phone);
    return flagsOf(phone);
}

constexpr std::array<BOOL, 2> flags = {NO, YES};

std::vector<Flags> allFlags() {
    std::vector<Flags> all;
    for (const BOOL pattern : flags) {
        for (const BOOL off : flags) {
            for (const BOOL on : flags) all.push_back({pattern, off, on});
        }
    }
    return all;
}

Dictionary file(std::optional<bool> pattern, std::optional<bool> off, std::optional<bool> on) {
    Dictionary dictionary;
    if (pattern) dictionary.set("ios-vibrate-pattern", *pattern);
    if (off) dictionary.set("vibrate-when-off", *off);
    if (on) dictionary.set("vibrate-when-on", *on);
    return dictionary;
}

TEST(LoadPreferences, GivesEveryRowOfTheTableForEveryEarlierValueOfTheFlags) {
    Phone phone;
    for (const Flags& before : allFlags()) {
        for (const auto pattern : trueFalseOrAbsent) {
            for (const auto off : trueFalseOrAbsent) {
                for (const auto on : trueFalseOrAbsent) {
                    phone.write(preferencesPath, file(pattern, off, on));
                    setFlags(phone, before);
                    load(phone);
                    Flags expected = before;
                    expected.defaultVibrationPattern = pattern == false ? NO : YES;
                    if (pattern == false) {
                        // Absent "vibrate-when-on" sets vibrateWhenOff, whatever the file says.
                        expected.vibrateWhenOff = (on && off) ? *off : YES;
                        if (on) expected.vibrateWhenOn = *on;
                    }
                    EXPECT_EQ(flagsOf(phone), expected)
                        << "pattern " << pattern.value_or(9) << " off " << off.value_or(9) << " on "
                        << on.value_or(9);
                }
            }
        }
    }
}

TEST(LoadPreferences, WithoutAFileKeepsTheOtherTwoFlagsWhateverTheyAre) {
    Phone phone;
    for (const Flags& before : allFlags()) {
        setFlags(phone, before);
        load(phone);
        EXPECT_EQ(flagsOf(phone), (Flags{YES, before.vibrateWhenOff, before.vibrateWhenOn}));
    }
}

TEST(LoadPreferences, TakesWhatIsNotADictionaryForNoFileAndLeavesItAsItIs) {
    Phone phone;
    const std::string array = R"(<plist version="1.0"><array><false/></array></plist>)";
    for (const std::string& bytes :
         {array, std::string{}, std::string{"ios-vibrate-pattern = 0;"}, std::string{"bplist00"},
          std::string{"<plist><dict><key>ios-vibrate-pattern</key><false/></dict>"}}) {
        phone.writeBytes(preferencesPath, bytes);
        setFlags(phone, {NO, NO, YES});
        load(phone);
        EXPECT_EQ(flagsOf(phone), (Flags{YES, NO, YES})) << bytes;
        EXPECT_EQ(phone.bytes(preferencesPath), bytes);
    }
}

TEST(LoadPreferences, TakesAFolderInPlaceOfTheFileForNoFile) {
    Phone phone;
    std::filesystem::create_directory(phone.device().below(preferencesPath));
    setFlags(phone, {NO, YES, YES});
    load(phone);
    EXPECT_EQ(flagsOf(phone), (Flags{YES, YES, YES}));
}

TEST(LoadPreferences, ReadsTheBinaryForm) {
    // {"ios-vibrate-pattern": false, "vibrate-when-off": false, "vibrate-when-on": true}
    using namespace std::string_literals;
    const std::string bytes =
        "bplist00"
        "\xD3\x01\x02\x03\x04\x04\x05"                            // 8: dictionary of three
        "\x5F\x10\x13ios-vibrate-pattern"                         // 15
        "\x5F\x10\x10vibrate-when-off"                            // 37
        "\x5F\x10\x0Fvibrate-when-on"                             // 56
        "\x08\x09"                                                // 74: false, 75: true
        "\x08\x0F\x25\x38\x4A\x4B"                                // 76: offsets
        "\0\0\0\0\0\0\x01\x01"                                    // offset size, reference size
        "\0\0\0\0\0\0\0\x06\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x4C"s;  // objects, top, table
    Phone phone;
    phone.writeBytes(preferencesPath, bytes);
    load(phone);
    EXPECT_EQ(flagsOf(phone), (Flags{NO, NO, YES}));
}

TEST(LoadPreferences, IgnoresTheOtherTwoKeysWithoutTheFirst) {
    EXPECT_EQ(loaded(file(std::nullopt, false, true)), (Flags{YES, YES, NO}));
}

TEST(LoadPreferences, TurnsVibrateWhenOffOnWhenVibrateWhenOnIsAbsent) {
    EXPECT_EQ(loaded(file(false, false, std::nullopt)), (Flags{NO, YES, NO}));
}

TEST(LoadPreferences, TakesAnAbsentVibrateWhenOffForYes) {
    EXPECT_EQ(loaded(file(false, std::nullopt, false)), (Flags{NO, YES, NO}));
}

TEST(LoadPreferences, TakesBothFlagsFalseFromTheFile) {
    EXPECT_EQ(loaded(file(false, false, false)), (Flags{NO, NO, NO}));
}

TEST(LoadPreferences, OfAFileWithOnlyTheVolumeLeavesVibrationToTheSystem) {
    EXPECT_EQ(loaded(Dictionary{{"ringtone-volume", 0.5}}), (Flags{YES, YES, NO}));
}

TEST(LoadPreferences, MatchesKeysExactly) {
    EXPECT_EQ(loaded(Dictionary{{"iOS-Vibrate-Pattern", false},
                                {"ios-vibrate-pattern ", false},
                                {"IOS-VIBRATE-PATTERN", false}}),
              (Flags{YES, YES, NO}));
}

TEST(LoadPreferences, ConvertsNumbersAndStringsAsThePlatformDoes) {
    using namespace std::string_literals;
    const std::vector<std::pair<Value, BOOL>> readings = {
        {true, YES},
        {false, NO},
        {std::int64_t{0}, NO},
        {std::int64_t{1}, YES},
        {std::int64_t{2}, YES},
        {std::int64_t{-1}, YES},
        {0.0, NO},
        {0.25, YES},
        {"YES"s, YES},
        {"yes"s, YES},
        {"true"s, YES},
        {"True"s, YES},
        {"1"s, YES},
        {"NO"s, NO},
        {"no"s, NO},
        {"false"s, NO},
        {"0"s, NO},
        {""s, NO},
        {" \t\nY"s, YES},
        {"+1"s, YES},
        {"-9"s, YES},
        {"-0007"s, YES},
        {"0"s, NO},
        {"000"s, NO},
        {"+"s, NO},
        {"+-1"s, NO},
        {"maybe"s, NO},
        {"on"s, NO},
        {"00t"s, YES},
        {" - 1"s, NO},
    };
    Phone phone;
    for (const auto& [value, reading] : readings) {
        phone.write(preferencesPath, Dictionary{{"ios-vibrate-pattern", value}});
        load(phone);
        EXPECT_EQ(flagsOf(phone).defaultVibrationPattern, reading)
            << standin::writePropertyList(value);
        phone.write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false},
                                                {"vibrate-when-off", value},
                                                {"vibrate-when-on", value}});
        load(phone);
        EXPECT_EQ(flagsOf(phone), (Flags{NO, reading, reading}));
    }
}

TEST(LoadPreferences, KeepsVibrateWhenOnFromAnEarlierFile) {
    Phone phone;
    phone.write(preferencesPath, file(false, false, true));
    load(phone);
    phone.write(preferencesPath, file(false, false, std::nullopt));
    load(phone);
    EXPECT_EQ(flagsOf(phone), (Flags{NO, YES, YES}));
}

TEST(LoadPreferences, OverwritesWhatASetterSetOnlyWhereItSetsTheFlag) {
    Phone phone;
    phone.write(preferencesPath, file(false, false, false));
    setFlags(phone, {YES, YES, YES});
    load(phone);
    EXPECT_EQ(flagsOf(phone), (Flags{NO, NO, NO}));

    phone.write(preferencesPath, file(true, false, false));
    setFlags(phone, {NO, YES, YES});
    load(phone);
    EXPECT_EQ(flagsOf(phone), (Flags{YES, YES, YES}));
}

TEST(LoadPreferences, ReadsTheFileAtEveryApplyAndNeverElse) {
    Phone phone;
    const std::vector<std::string> reading = {"dictionaryWithContentsOfFile:"};
    phone.state();
    EXPECT_TRUE(only(phone.calls(), reading).empty());
    for (std::size_t flips = 1; flips <= 3; ++flips) {
        phone.apply(1);
        EXPECT_EQ(only(phone.calls(), reading).size(), flips);
    }
}

TEST(LoadPreferences, SeesAChangeOfTheFileAtTheNextApply) {
    Phone phone;
    phone.write(preferencesPath, file(true, {}, {}));
    phone.apply(1);
    EXPECT_EQ(flagsOf(phone).defaultVibrationPattern, YES);
    phone.write(preferencesPath, file(false, false, true));
    EXPECT_EQ(flagsOf(phone).defaultVibrationPattern, YES);
    phone.apply(1);
    EXPECT_EQ(flagsOf(phone), (Flags{NO, NO, YES}));
}

TEST(LoadPreferences, SendsAValueThatHasNoBooleanReadingToThePlatformUnguarded) {
    for (const Value& value : std::vector<Value>{Array{}, Dictionary{}, Date{0}, Data{"1"}}) {
        Phone phone;
        phone.write(preferencesPath, Dictionary{{"ios-vibrate-pattern", value}});
        EXPECT_DEATH(load(phone), "boolValue");
    }
}

TEST(Preferences, AnswerWhatASetterWasGiven) {
    Phone phone;
    for (const Flags& given : allFlags()) {
        setFlags(phone, given);
        EXPECT_EQ(flagsOf(phone), given);
    }
}

TEST(Preferences, AreThreeBytesInTheOrderOfTheirPropertiesBehindTheRuntimesWord) {
    Phone phone;
    const auto* const bytes = reinterpret_cast<const BOOL*>(&phone.preferences()) + sizeof(void*);
    setFlags(phone, {YES, NO, NO});
    EXPECT_THAT(std::vector<BOOL>(bytes, bytes + 3), ElementsAreArray({YES, NO, NO}));
    setFlags(phone, {NO, NO, YES});
    EXPECT_THAT(std::vector<BOOL>(bytes, bytes + 3), ElementsAreArray({NO, NO, YES}));
    EXPECT_EQ(sizeof(PrefsLoader), 2 * sizeof(void*));
}

}  // namespace
}  // namespace quillet::test
