// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "tests/platforms/macho/loader/runtime.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using macho::Id;
using macho::LoadedClass;
using macho::sendMessage;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

/// A flag is a truth value to the runtime; on 32-bit devices, a number of one byte.
const std::string flag = sizeof(void*) == 8 ? "B" : "c";

bool ask(Id object, const char* getter) { return sendMessage<BOOL>(object, getter) != NO; }

/// A flag among the arguments fills a register, as the device's callers do it.
void tell(Id object, const char* setter, int value) { sendMessage<void>(object, setter, value); }

std::vector<bool> flagsOf(Id object) {
    return {ask(object, "defaultVibrationPattern"), ask(object, "vibrateWhenOff"),
            ask(object, "vibrateWhenOn")};
}

class DevicePreferencesClass : public ::testing::Test {
protected:
    Phone phone_;
    PrefsLoader& preferences_ = phone_.preferences();
    const Id object_ = &preferences_;
    LoadedClass& class_ = *macho::classOfInstance(object_);
    const Id address_ = const_cast<Id>(class_.cls.address);
};

TEST_F(DevicePreferencesClass, IsBasedOnTheRootClassAndKeptToTheModule) {
    EXPECT_EQ(class_.cls.name, "PrefsLoader");
    EXPECT_EQ(class_.cls.superclass, macho::platformClass("NSObject"));
    EXPECT_EQ(phone_.exported<void>("OBJC_CLASS_$_PrefsLoader"), nullptr);
    EXPECT_EQ(phone_.exported<void>("OBJC_METACLASS_$_PrefsLoader"), nullptr);
}

TEST_F(DevicePreferencesClass, HasThreeFlagsInOrderBehindTheRuntimesWord) {
    constexpr std::uint32_t word = sizeof(void*);
    EXPECT_EQ(class_.cls.instanceStart, word);
    EXPECT_EQ(class_.cls.instanceSize, word + 3);
    std::vector<std::tuple<std::string, std::string, std::uint32_t, std::uint32_t>> fields;
    for (const macho::Field& field : class_.cls.fields) {
        fields.emplace_back(field.name, field.type, field.offset, field.size);
    }
    EXPECT_THAT(fields, ElementsAre(std::tuple{"defaultVibrationPattern", flag, word, 1U},
                                    std::tuple{"vibrateWhenOff", flag, word + 1, 1U},
                                    std::tuple{"vibrateWhenOn", flag, word + 2, 1U}));
}

TEST_F(DevicePreferencesClass, HasAnAtomicWritablePropertyForEachFlag) {
    std::vector<std::pair<std::string, std::string>> properties;
    for (const macho::Property& property : class_.cls.properties) {
        properties.emplace_back(property.name, property.attributes);
    }
    // "N" would say that it is not atomic, "R" that it cannot be written.
    EXPECT_THAT(
        properties,
        ElementsAre(std::pair{"defaultVibrationPattern", "T" + flag + ",VdefaultVibrationPattern"},
                    std::pair{"vibrateWhenOff", "T" + flag + ",VvibrateWhenOff"},
                    std::pair{"vibrateWhenOn", "T" + flag + ",VvibrateWhenOn"}));
}

TEST_F(DevicePreferencesClass, AnswersItsMessagesAndNoOthers) {
    std::vector<std::string> methods;
    for (const macho::Method& method : class_.cls.instanceMethods) {
        methods.push_back(method.selector + " " + method.types);
    }
    const std::string getter = " " + flag + "@:";
    const std::string setter = " v@:" + flag;
    EXPECT_THAT(
        methods,
        UnorderedElementsAre(
            "init @@:", "loadPreferences v@:", "dealloc v@:", "defaultVibrationPattern" + getter,
            "setDefaultVibrationPattern:" + setter, "vibrateWhenOff" + getter,
            "setVibrateWhenOff:" + setter, "vibrateWhenOn" + getter, "setVibrateWhenOn:" + setter));
    EXPECT_TRUE(class_.cls.classMethods.empty());
}

TEST_F(DevicePreferencesClass, AnswersMessagesWithWhatTheBundleSees) {
    tell(object_, "setDefaultVibrationPattern:", YES);
    tell(object_, "setVibrateWhenOff:", NO);
    tell(object_, "setVibrateWhenOn:", YES);
    EXPECT_EQ(preferences_.defaultVibrationPattern(), YES);
    EXPECT_EQ(preferences_.vibrateWhenOff(), NO);
    EXPECT_EQ(preferences_.vibrateWhenOn(), YES);
    preferences_.setDefaultVibrationPattern(NO);
    preferences_.setVibrateWhenOff(YES);
    preferences_.setVibrateWhenOn(NO);
    EXPECT_THAT(flagsOf(object_), ElementsAre(false, true, false));
}

TEST_F(DevicePreferencesClass, LoadsWhenItIsSentTheMessage) {
    phone_.write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false},
                                                      {"vibrate-when-off", false},
                                                      {"vibrate-when-on", true}});
    tell(object_, "setVibrateWhenOff:", YES);
    sendMessage<void>(object_, "loadPreferences");
    EXPECT_THAT(flagsOf(object_), ElementsAre(false, false, true));
    phone_.remove(preferencesPath);
    tell(object_, "setVibrateWhenOff:", YES);
    sendMessage<void>(object_, "loadPreferences");
    EXPECT_THAT(flagsOf(object_), ElementsAre(true, true, true)) << "the setter's value is kept";
}

TEST_F(DevicePreferencesClass, MayBeMadeByAHostAndGoesWithItsLastRelease) {
    const std::size_t live = class_.live();
    phone_.log().clear();
    const Id allocated = sendMessage<Id>(address_, "alloc");
    EXPECT_THAT(flagsOf(allocated), ElementsAre(false, false, false));
    const Id made = sendMessage<Id>(allocated, "init");
    EXPECT_EQ(made, allocated);
    EXPECT_THAT(phone_.calls(), ElementsAre("<NSObject> init()"));
    EXPECT_EQ(macho::classOfInstance(made), &class_);
    EXPECT_THAT(flagsOf(made), ElementsAre(false, true, false));
    sendMessage<Id>(made, "retain");
    sendMessage<void>(made, "release");
    EXPECT_EQ(class_.live(), live + 1);
    sendMessage<void>(made, "release");
    EXPECT_EQ(class_.live(), live);
}

TEST(DeviceIdentifier, IsSentNothing) {
    Phone phone;
    phone.write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", true}});
    const Id cls = phone.exported<void>("OBJC_CLASS_$_RingerSwitch");
    const Id receiver = sendMessage<Id>(cls, "alloc");
    // No object: any message to it ends the process.
    const Id identifier = reinterpret_cast<Id>(std::uintptr_t{16});
    EXPECT_EQ(sendMessage<int>(receiver, "stateForSwitchIdentifier:", identifier), FSSwitchStateOn);
    for (const int state : {-1, 0, 1}) {
        sendMessage<void>(receiver, "applyState:forSwitchIdentifier:", state, identifier);
    }
    sendMessage<void>(receiver, "release");
}

}  // namespace
}  // namespace quillet::test
