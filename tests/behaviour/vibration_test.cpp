// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/no_room.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Array;
using standin::Data;
using standin::Date;
using standin::Dictionary;
using standin::Value;
using ::testing::ElementsAreArray;

const Calls announcements = {
    R"(notify_post("com.apple.springboard.ring-vibrate.changed") = 0)",
    R"(GSSendAppPreferencesChanged("com.apple.springboard", "ring-vibrate"))",
    R"(notify_post("com.apple.springboard.silent-vibrate.changed") = 0)",
    R"(GSSendAppPreferencesChanged("com.apple.springboard", "silent-vibrate"))",
};

const std::vector<std::string> announcing = {"notify_post", "GSSendAppPreferencesChanged"};

/// A phone whose SpringBoard has the given settings file, and what is exported for it.
class Vibration : public ::testing::Test {
protected:
    void turnOff() { phone.exported<void()>("turnSpringBoardVibrationOff")(); }
    void restore() { phone.exported<void()>("restoreSpringBoardVibration")(); }
    BOOL whenRinging() { return *phone.exported<BOOL>("GLOBAL_vibrateWhenRinging"); }
    BOOL whenSilent() { return *phone.exported<BOOL>("GLOBAL_vibrateWhenSilent"); }

    /// "ring-vibrate" and "silent-vibrate" as they stand in the file.
    std::pair<Value, Value> settings() {
        const auto file = phone.dictionary(springBoardPreferencesPath);
        return {*file->find("ring-vibrate"), *file->find("silent-vibrate")};
    }

    static Value flag(bool value) { return value; }

    Phone phone;
};

TEST_F(Vibration, TurnedOffWritesTheSettingsAnnouncesThemAndTurnsTheRunLoop) {
    phone.write(springBoardPreferencesPath,
                Dictionary{{"ring-vibrate", true}, {"silent-vibrate", false}});
    phone.log().clear();
    turnOff();
    const std::string path = std::string{"\""} + springBoardPreferencesPath + "\"";
    EXPECT_THAT(phone.calls(),
                ElementsAreArray(Calls{
                    "NSMutableDictionary dictionaryWithContentsOfFile:(" + path +
                        R"() = "<NSMutableDictionary: 2 entries>")",
                    R"(NSMutableDictionary objectForKey:("ring-vibrate") = true)",
                    R"(<NSNumber> boolValue() = true)",
                    R"(NSMutableDictionary objectForKey:("silent-vibrate") = false)",
                    R"(<NSNumber> boolValue() = false)",
                    R"(NSNumber numberWithBool:(false) = false)",
                    R"(NSMutableDictionary setValue:forKey:(false, "ring-vibrate"))",
                    R"(NSNumber numberWithBool:(false) = false)",
                    R"(NSMutableDictionary setValue:forKey:(false, "silent-vibrate"))",
                    "NSMutableDictionary writeToFile:atomically:(" + path + ", true) = true",
                    announcements[0],
                    announcements[1],
                    announcements[2],
                    announcements[3],
                    R"(NSRunLoop currentRunLoop() = "<NSRunLoop>")",
                    R"(NSDate dateWithTimeIntervalSinceNow:(0.5) = 0.5)",
                    R"(<NSRunLoop> runUntilDate:(0.5))",
                }));
}

TEST_F(Vibration, RestoredWritesTheSavedSettingsAnnouncesThemAndTurnsTheRunLoop) {
    phone.write(springBoardPreferencesPath,
                Dictionary{{"ring-vibrate", true}, {"silent-vibrate", false}});
    turnOff();
    phone.log().clear();
    restore();
    const std::string path = std::string{"\""} + springBoardPreferencesPath + "\"";
    EXPECT_THAT(phone.calls(),
                ElementsAreArray(Calls{
                    "NSMutableDictionary dictionaryWithContentsOfFile:(" + path +
                        R"() = "<NSMutableDictionary: 2 entries>")",
                    R"(NSNumber numberWithBool:(true) = true)",
                    R"(NSMutableDictionary setValue:forKey:(true, "ring-vibrate"))",
                    R"(NSNumber numberWithBool:(false) = false)",
                    R"(NSMutableDictionary setValue:forKey:(false, "silent-vibrate"))",
                    "NSMutableDictionary writeToFile:atomically:(" + path + ", true) = true",
                    announcements[0],
                    announcements[1],
                    announcements[2],
                    announcements[3],
                    R"(NSRunLoop currentRunLoop() = "<NSRunLoop>")",
                    R"(NSDate dateWithTimeIntervalSinceNow:(0.5) = 1)",
                    R"(<NSRunLoop> runUntilDate:(1))",
                }));
}

TEST_F(Vibration, OfAFileWithNeitherKeyIsTakenForYesAndMaterialised) {
    phone.write(springBoardPreferencesPath, Dictionary{{"other", std::int64_t{7}}});
    turnOff();
    EXPECT_EQ(settings(), std::pair(flag(false), flag(false)));
    EXPECT_EQ(whenRinging(), YES);
    EXPECT_EQ(whenSilent(), YES);
    restore();
    EXPECT_EQ(settings(), std::pair(flag(true), flag(true)));
}

TEST_F(Vibration, SurvivesAPairOfCallsForEveryStartingPoint) {
    for (const bool ringing : {false, true}) {
        for (const bool silent : {false, true}) {
            phone.write(springBoardPreferencesPath,
                        Dictionary{{"ring-vibrate", ringing}, {"silent-vibrate", silent}});
            turnOff();
            EXPECT_EQ(settings(), std::pair(flag(false), flag(false)));
            EXPECT_EQ(whenRinging(), ringing);
            EXPECT_EQ(whenSilent(), silent);
            restore();
            EXPECT_EQ(settings(), std::pair(flag(ringing), flag(silent)));
        }
    }
}

TEST_F(Vibration, ReadsNumbersAndStringsAsThePlatformDoes) {
    phone.write(springBoardPreferencesPath, Dictionary{{"ring-vibrate", std::int64_t{2}},
                                                       {"silent-vibrate", std::string{"no"}}});
    turnOff();
    EXPECT_EQ(whenRinging(), YES);
    EXPECT_EQ(whenSilent(), NO);
    restore();
    EXPECT_EQ(settings(), std::pair(flag(true), flag(false))) << "written back as booleans";
}

TEST_F(Vibration, TurnedOffTwiceLosesTheUsersSettings) {
    phone.write(springBoardPreferencesPath,
                Dictionary{{"ring-vibrate", true}, {"silent-vibrate", true}});
    turnOff();
    turnOff();
    restore();
    EXPECT_EQ(settings(), std::pair(flag(false), flag(false)));
}

TEST_F(Vibration, RestoredBeforeAnyTurnOffIsOff) {
    phone.write(springBoardPreferencesPath,
                Dictionary{{"ring-vibrate", true}, {"silent-vibrate", true}});
    restore();
    EXPECT_EQ(settings(), std::pair(flag(false), flag(false)));
}

TEST_F(Vibration, RestoredTwiceWritesTheSameAgain) {
    phone.write(springBoardPreferencesPath,
                Dictionary{{"ring-vibrate", true}, {"silent-vibrate", false}});
    turnOff();
    restore();
    restore();
    EXPECT_EQ(settings(), std::pair(flag(true), flag(false)));
}

TEST_F(Vibration, CarriesEveryOtherKeyThroughUnchanged) {
    const Dictionary others = {
        {"string", std::string{"<&> \u00fc"}},
        {"data", Data{std::string{"\0\xFF\x10", 3}}},
        {"date", Date{-1.5e8}},
        {"integer", std::int64_t{-9223372036854775807 - 1}},
        {"real", 0.1},
        {"true", true},
        {"false", false},
        {"array", Array{std::int64_t{1}, std::string{}, Array{}, Dictionary{}}},
        {"dictionary", Dictionary{{"ring-vibrate", std::string{"not this one"}}}},
        {"Ring-Vibrate", std::string{"nor this"}},
    };
    phone.write(springBoardPreferencesPath, others);
    turnOff();
    restore();
    const auto file = phone.dictionary(springBoardPreferencesPath);
    ASSERT_TRUE(file);
    for (const standin::Entry& entry : others.entries()) {
        EXPECT_EQ(file->find(entry.key), entry.value) << entry.key;
    }
    EXPECT_EQ(file->entries().size(), others.entries().size() + 2);
}

TEST_F(Vibration, CarriesCharactersAndNumbersOfEverySizeThrough) {
    const Value character = std::string{"\U0001F514"};
    const Value number = std::uint64_t{18446744073709551615U};
    phone.write(springBoardPreferencesPath,
                Dictionary{{"character", character}, {"number", number}});
    turnOff();
    restore();
    const auto file = phone.dictionary(springBoardPreferencesPath);
    ASSERT_TRUE(file);
    for (const auto& [key, value] : {std::pair("character", character), {"number", number}}) {
        EXPECT_EQ(file->find(key), value) << key;
    }
}

TEST_F(Vibration, WithoutAFileTakesYesWritesNothingAndStillAnnouncesAndWaits) {
    phone.remove(springBoardPreferencesPath);
    phone.log().clear();
    turnOff();
    EXPECT_EQ(whenRinging(), YES);
    EXPECT_EQ(whenSilent(), YES);
    EXPECT_THAT(only(phone.calls(), announcing), ElementsAreArray(announcements));
    EXPECT_EQ(phone.device().clock.now(), 0.5);
    phone.log().clear();
    restore();
    EXPECT_THAT(only(phone.calls(), announcing), ElementsAreArray(announcements));
    EXPECT_EQ(phone.device().clock.now(), 1.0);
    EXPECT_EQ(phone.bytes(springBoardPreferencesPath), std::nullopt) << "the file is not created";
}

TEST_F(Vibration, LeavesAFileThatIsNoDictionaryAsItIs) {
    for (const std::string bytes : {"", "<plist><array/></plist>", "<plist><dict>", "bplist00"}) {
        phone.writeBytes(springBoardPreferencesPath, bytes);
        phone.log().clear();
        turnOff();
        EXPECT_THAT(only(phone.calls(), announcing), ElementsAreArray(announcements));
        phone.log().clear();
        restore();
        EXPECT_THAT(only(phone.calls(), announcing), ElementsAreArray(announcements));
        EXPECT_EQ(phone.bytes(springBoardPreferencesPath), bytes);
        EXPECT_EQ(whenRinging(), YES);
        EXPECT_EQ(whenSilent(), YES);
    }
}

TEST_F(Vibration, TakesAFolderInPlaceOfTheFileForNoFile) {
    phone.remove(springBoardPreferencesPath);
    std::filesystem::create_directory(phone.device().below(springBoardPreferencesPath));
    turnOff();
    restore();
    EXPECT_EQ(whenRinging(), YES);
    EXPECT_EQ(whenSilent(), YES);
    EXPECT_TRUE(std::filesystem::is_empty(phone.device().below(springBoardPreferencesPath)));
}

TEST_F(Vibration, OfAFileWithOneKeyIsTakenForYesOnlyWhereItIsAbsent) {
    phone.write(springBoardPreferencesPath, Dictionary{{"ring-vibrate", false}});
    turnOff();
    restore();
    EXPECT_EQ(settings(), std::pair(flag(false), flag(true)));
    phone.write(springBoardPreferencesPath, Dictionary{{"silent-vibrate", false}});
    turnOff();
    restore();
    EXPECT_EQ(settings(), std::pair(flag(true), flag(false)));
}

TEST_F(Vibration, DoesNotNoticeAFailedWrite) {
    phone.write(springBoardPreferencesPath,
                Dictionary{{"ring-vibrate", true}, {"silent-vibrate", false}});
    const auto before = phone.bytes(springBoardPreferencesPath);
    phone.log().clear();
    {
        const NoRoom noRoom;
        turnOff();
    }
    EXPECT_THAT(only(phone.calls(), announcing), ElementsAreArray(announcements));
    EXPECT_EQ(phone.device().clock.now(), 0.5);
    EXPECT_EQ(phone.bytes(springBoardPreferencesPath), before) << "the file holds what it held";
    EXPECT_EQ(whenRinging(), YES) << "the saved values stay";
    EXPECT_EQ(whenSilent(), NO);
}

TEST_F(Vibration, RestoredDoesNotNoticeAFailedWriteEither) {
    turnOff();
    const auto before = phone.bytes(springBoardPreferencesPath);
    phone.log().clear();
    {
        const NoRoom noRoom;
        restore();
    }
    EXPECT_THAT(only(phone.calls(), announcing), ElementsAreArray(announcements));
    EXPECT_EQ(phone.device().clock.now(), 1.0);
    EXPECT_EQ(phone.bytes(springBoardPreferencesPath), before);
}

TEST_F(Vibration, ServesTimersAndObserversWhileItWaits) {
    phone.setStateWord(1);
    std::vector<double> timers;
    const auto note = [&] { timers.push_back(phone.device().clock.now()); };
    phone.device().eventLoop.at(0.25, note);
    phone.device().eventLoop.at(0.5, note);
    phone.device().eventLoop.at(0.75, note);
    phone.device().eventLoop.at(0.125, [&] { phone.post(ringerStateName); });
    phone.log().clear();
    turnOff();
    EXPECT_THAT(timers, ElementsAreArray({0.25, 0.5}));
    EXPECT_EQ(only(phone.calls(), {"stateDidChangeForSwitchIdentifier:"}).size(), 1U);
    restore();
    EXPECT_THAT(timers, ElementsAreArray({0.25, 0.5, 0.75}));
}

TEST_F(Vibration, SendsASettingThatHasNoBooleanReadingToThePlatformUnguarded) {
    phone.write(springBoardPreferencesPath, Dictionary{{"ring-vibrate", Array{}}});
    EXPECT_DEATH(turnOff(), "boolValue");
}

}  // namespace
}  // namespace quillet::test
