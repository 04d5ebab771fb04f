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
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

const std::string quotedPath = std::string{"\""} + preferencesPath + "\"";
constexpr double singlePoint6 = 0.6F;

class RingtoneVolume : public ::testing::Test {
protected:
    void turnOff() { phone.exported<void()>("turnRingerVolumeOff")(); }
    void restore() { phone.exported<void()>("restoreRingerVolume")(); }
    void setVolume(float volume) { phone.device().hardware.setVolume("Ringtone", volume); }

    Phone phone;
};

bool isiPod(const std::string& machine) {
    Phone phone{{.machine = machine}};
    return phone.exported<BOOL()>("isiPod")() != NO;
}

TEST(IsiPod, FindsTheFourLettersAnywhereInTheModel) {
    for (const char* const machine : {"iPod5,1", "iPod7,1", "iPod", "x-iPod", "iPiPod9,9"}) {
        EXPECT_TRUE(isiPod(machine)) << machine;
    }
    EXPECT_TRUE(isiPod(std::string(251, 'x') + "iPod")) << "at the very end of the field";
}

TEST(IsiPod, IsNoForEveryOtherModel) {
    for (const char* const machine :
         {"iPhone6,1", "iPad4,1", "ipod5,1", "IPOD5,1", "iPo", "iP od", "i", "x86_64"}) {
        EXPECT_FALSE(isiPod(machine)) << machine;
    }
}

TEST(IsiPod, AsksTheSystemAtEveryCall) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.log().clear();
    phone.exported<BOOL()>("isiPod")();
    phone.device().machine = "iPad4,1";
    phone.exported<BOOL()>("isiPod")();
    EXPECT_THAT(phone.calls(), ElementsAreArray(Calls{
                                   R"(uname("iPod5,1") = 0)",
                                   R"(strstr("iPod5,1", "iPod") = true)",
                                   R"(uname("iPad4,1") = 0)",
                                   R"(strstr("iPad4,1", "iPod") = false)",
                               }));
}

TEST_F(RingtoneVolume, TurnedOffIsKeptInTheFileAndThenZeroed) {
    setVolume(0.6F);
    phone.write(preferencesPath, Dictionary{{"ringtone-volume", 0.25}});
    phone.log().clear();
    turnOff();
    EXPECT_THAT(phone.calls(),
                ElementsAreArray(Calls{
                    R"(NSFileManager defaultManager() = "<NSFileManager>")",
                    "<NSFileManager> fileExistsAtPath:(" + quotedPath + ") = true",
                    "NSMutableDictionary initWithContentsOfFile:(" + quotedPath +
                        R"() = "<NSMutableDictionary: 1 entries>")",
                    R"(AVSystemController sharedAVSystemController() = "<AVSystemController>")",
                    R"(<AVSystemController> getVolume:forCategory:(0.6, "Ringtone") = true)",
                    R"(NSNumber numberWithFloat:(0.6) = 0.6)",
                    R"(NSMutableDictionary setObject:forKey:(0.6, "ringtone-volume"))",
                    "NSMutableDictionary writeToFile:atomically:(" + quotedPath + ", true) = true",
                    R"(AVSystemController sharedAVSystemController() = "<AVSystemController>")",
                    R"(<AVSystemController> setVolumeTo:forCategory:(0, "Ringtone") = true)",
                }));
}

TEST_F(RingtoneVolume, WithoutAFileStartsFromAnEmptyDictionary) {
    setVolume(0.5F);
    phone.log().clear();
    turnOff();
    EXPECT_THAT(only(phone.calls(), {"fileExistsAtPath:", "initWithContentsOfFile:", "init"}),
                ElementsAreArray(Calls{
                    "<NSFileManager> fileExistsAtPath:(" + quotedPath + ") = false",
                    R"(NSMutableDictionary init() = "<NSMutableDictionary: 0 entries>")",
                }));
    EXPECT_EQ(phone.dictionary(preferencesPath), (Dictionary{{"ringtone-volume", 0.5}}));
    EXPECT_EQ(phone.volume(), 0.0F);
}

TEST_F(RingtoneVolume, ComesBackAsItWas) {
    setVolume(0.6F);
    phone.write(preferencesPath, Dictionary{{"ios-vibrate-pattern", true}});
    turnOff();
    EXPECT_EQ(phone.volume(), 0.0F);
    ASSERT_TRUE(phone.dictionary(preferencesPath)->find("ringtone-volume").has_value());
    restore();
    EXPECT_EQ(phone.volume(), 0.6F);
}

TEST_F(RingtoneVolume, IsKeptAsANumberOfSinglePrecision) {
    setVolume(0.6F);
    turnOff();
    EXPECT_EQ(phone.dictionary(preferencesPath), (Dictionary{{"ringtone-volume", singlePoint6}}));
}

TEST_F(RingtoneVolume, LeavesEveryOtherKeyOfTheFileAsItIs) {
    const Dictionary before = {
        {"ios-vibrate-pattern", false},
        {"ringtone-volume", std::string{"loud"}},
        {"vibrate-when-on", std::int64_t{1}},
        {"unknown", Array{Data{"\x01\x02"}, Date{86400.0}, std::int64_t{-9999999999}}},
    };
    phone.write(preferencesPath, before);
    setVolume(0.6F);
    turnOff();
    Dictionary expected = before;
    expected.set("ringtone-volume", singlePoint6);
    EXPECT_EQ(phone.dictionary(preferencesPath), expected);
}

TEST_F(RingtoneVolume, LeavesNumbersOfEverySizeAsTheyAre) {
    Dictionary expected = {{"unknown", std::uint64_t{9999999999999999999U}}};
    phone.write(preferencesPath, expected);
    setVolume(0.5F);
    turnOff();
    expected.set("ringtone-volume", 0.5);
    EXPECT_EQ(phone.dictionary(preferencesPath), expected);
}

TEST_F(RingtoneVolume, TurnedOffTwiceIsLost) {
    setVolume(0.6F);
    turnOff();
    turnOff();
    EXPECT_EQ(phone.dictionary(preferencesPath), (Dictionary{{"ringtone-volume", 0.0}}));
    restore();
    EXPECT_EQ(phone.volume(), 0.0F);
}

TEST_F(RingtoneVolume, RestoredReadsTheFileAndSetsTheVolume) {
    phone.write(preferencesPath, Dictionary{{"ringtone-volume", 0.25}});
    phone.log().clear();
    restore();
    EXPECT_THAT(phone.calls(),
                ElementsAreArray(Calls{
                    "NSDictionary initWithContentsOfFile:(" + quotedPath +
                        R"() = "<NSDictionary: 1 entries>")",
                    R"(NSDictionary objectForKey:("ringtone-volume") = 0.25)",
                    R"(<NSNumber> floatValue() = 0.25)",
                    R"(AVSystemController sharedAVSystemController() = "<AVSystemController>")",
                    R"(<AVSystemController> setVolumeTo:forCategory:(0.25, "Ringtone") = true)",
                }));
    EXPECT_EQ(phone.device().clock.now(), 0.0) << "it does not pause";
}

TEST_F(RingtoneVolume, RestoredWithoutAFileIsFull) {
    setVolume(0.5F);
    restore();
    EXPECT_EQ(phone.volume(), 1.0F);
    EXPECT_EQ(phone.bytes(preferencesPath), std::nullopt);
}

TEST_F(RingtoneVolume, RestoredFromAFileWithoutTheKeyIsSilentNotFull) {
    setVolume(0.5F);
    phone.write(preferencesPath, Dictionary{{"ios-vibrate-pattern", true}});
    restore();
    EXPECT_EQ(phone.volume(), 0.0F);
}

TEST_F(RingtoneVolume, RestoredStaysInTheFile) {
    const Dictionary file = {{"a", true}, {"ringtone-volume", 0.25}};
    phone.write(preferencesPath, file);
    const auto before = phone.bytes(preferencesPath);
    restore();
    restore();
    EXPECT_EQ(phone.bytes(preferencesPath), before);
}

TEST_F(RingtoneVolume, IsReadFromNumbersAndStringsAsThePlatformDoes) {
    const std::vector<std::pair<Value, float>> readings = {
        {0.5, 0.5F},
        {std::int64_t{1}, 1.0F},
        {true, 1.0F},
        {false, 0.0F},
        {std::string{" 0.25x"}, 0.25F},
        {std::string{"loud"}, 0.0F},
        {std::string{""}, 0.0F},
    };
    for (const auto& [value, volume] : readings) {
        phone.write(preferencesPath, Dictionary{{"ringtone-volume", value}});
        restore();
        EXPECT_EQ(phone.volume(), volume);
    }
}

TEST_F(RingtoneVolume, IsZeroedButNotKeptWhenTheFileIsNoDictionary) {
    for (const std::string bytes : {"", "<plist><array/></plist>", "bplist00", "{ old = 1; }"}) {
        phone.writeBytes(preferencesPath, bytes);
        setVolume(0.6F);
        turnOff();
        EXPECT_EQ(phone.volume(), 0.0F);
        EXPECT_EQ(phone.bytes(preferencesPath), bytes);
        restore();
        EXPECT_EQ(phone.volume(), 1.0F);
    }
}

TEST_F(RingtoneVolume, IsZeroedEvenWhenItCannotBeWritten) {
    phone.write(preferencesPath, Dictionary{{"ringtone-volume", 0.25}});
    const auto before = phone.bytes(preferencesPath);
    phone.log().clear();
    {
        const NoRoom noRoom;
        turnOff();
    }
    EXPECT_EQ(phone.bytes(preferencesPath), before);
    EXPECT_THAT(
        only(phone.calls(), {"setVolumeTo:forCategory:"}),
        ElementsAre(R"(<AVSystemController> setVolumeTo:forCategory:(0, "Ringtone") = false)"))
        << "asked for, although the device has no room for it either";
}

TEST_F(RingtoneVolume, ThatCannotBeAskedForIsKeptAsSilence) {
    phone.device().hardware = standin::Hardware{"/nonexistent"};
    phone.log().clear();
    turnOff();
    EXPECT_EQ(phone.dictionary(preferencesPath), (Dictionary{{"ringtone-volume", 0.0}}));
    EXPECT_EQ(only(phone.calls(), {"setVolumeTo:forCategory:"}).size(), 1U);
}

}  // namespace
}  // namespace quillet::test
