// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "tests/platforms/gnustep/host.h"
#include "tests/platforms/gnustep/values.h"
#include "tests/support/phone.h"

#import <objc/runtime.h>

/// The preferences object as a host knows it.
@interface NSObject (QuilletPreferences)
- (bool)defaultVibrationPattern;
- (void)setDefaultVibrationPattern:(bool)value;
- (bool)vibrateWhenOff;
- (void)setVibrateWhenOff:(bool)value;
- (bool)vibrateWhenOn;
- (void)setVibrateWhenOn:(bool)value;
- (void)loadPreferences;
@end

namespace quillet::test {
namespace {

using gnustep::asHost;
using ::testing::ElementsAre;

id object(PrefsLoader& preferences) { return reinterpret_cast<id>(&preferences); }

std::vector<bool> flagsOf(id preferences) {
    return {[preferences defaultVibrationPattern],
            [preferences vibrateWhenOff],
            [preferences vibrateWhenOn]};
}

TEST(FoundationPreferencesClass, IsOfTheModuleAndBasedOnTheRootClass) {
    Phone phone;
    asHost([&] {
        const ::Class cls = [object(phone.preferences()) class];
        EXPECT_STREQ(class_getName(cls), "PrefsLoader");
        EXPECT_TRUE([cls superclass] == [::NSObject class]);
        EXPECT_STREQ([[[::NSBundle bundleForClass:cls] bundleIdentifier] UTF8String],
                     switchIdentifier);
    });
}

TEST(FoundationPreferencesClass, HasThreeFlagsInOrderBehindTheRuntimesWord) {
    Phone phone;
    unsigned count = 0;
    Ivar* const fields = class_copyIvarList([object(phone.preferences()) class], &count);
    std::vector<std::tuple<std::string, std::string, std::ptrdiff_t>> found;
    for (unsigned i = 0; i < count; ++i) {
        found.emplace_back(ivar_getName(fields[i]), ivar_getTypeEncoding(fields[i]),
                           ivar_getOffset(fields[i]));
    }
    std::free(fields);
    EXPECT_THAT(found, ElementsAre(std::tuple{"defaultVibrationPattern", "B", 8},
                                   std::tuple{"vibrateWhenOff", "B", 9},
                                   std::tuple{"vibrateWhenOn", "B", 10}));
}

TEST(FoundationPreferencesClass, AnswersMessagesWithWhatTheBundleSees) {
    Phone phone;
    PrefsLoader& preferences = phone.preferences();
    const id receiver = object(preferences);
    [receiver setDefaultVibrationPattern:true];
    [receiver setVibrateWhenOff:false];
    [receiver setVibrateWhenOn:true];
    EXPECT_EQ(preferences.defaultVibrationPattern(), YES);
    EXPECT_EQ(preferences.vibrateWhenOff(), NO);
    EXPECT_EQ(preferences.vibrateWhenOn(), YES);
    preferences.setDefaultVibrationPattern(NO);
    preferences.setVibrateWhenOff(YES);
    preferences.setVibrateWhenOn(NO);
    EXPECT_THAT(flagsOf(receiver), ElementsAre(false, true, false));
}

TEST(FoundationPreferencesClass, LoadsWhenItIsSentTheMessage) {
    Phone phone;
    const id receiver = object(phone.preferences());
    phone.write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false},
                                                     {"vibrate-when-off", false},
                                                     {"vibrate-when-on", true}});
    asHost([&] { [receiver loadPreferences]; });
    EXPECT_THAT(flagsOf(receiver), ElementsAre(false, false, true));
    phone.remove(preferencesPath);
    [receiver setVibrateWhenOff:true];
    asHost([&] { [receiver loadPreferences]; });
    EXPECT_THAT(flagsOf(receiver), ElementsAre(true, true, true)) << "the setter's value is kept";
}

TEST(FoundationPreferencesClass, MayBeMadeByAHostAndGoesWithItsLastRelease) {
    Phone phone;
    asHost([&] {
        const ::Class cls = [object(phone.preferences()) class];
        phone.log().clear();
        const id made = [[cls alloc] init];
        EXPECT_THAT(phone.calls(), ElementsAre("<NSObject> init()"));
        EXPECT_TRUE([made class] == cls);
        EXPECT_THAT(flagsOf(made), ElementsAre(false, true, false));
        [made retain];
        EXPECT_EQ([made retainCount], 2U);
        [made release];
        [made release];
    });
}

TEST(FoundationIdentifier, IsSentNothing) {
    Phone phone;
    phone.write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", true}});
    // No object: any message to it ends the process.
    const id identifier = reinterpret_cast<id>(std::uintptr_t{16});
    asHost([&] {
        const id receiver = [[NSClassFromString(@"RingerSwitch") alloc] init];
        EXPECT_EQ([receiver stateForSwitchIdentifier:identifier], FSSwitchStateOn);
        for (const int state : {-1, 0, 1}) {
            [receiver applyState:static_cast<FSSwitchState>(state) forSwitchIdentifier:identifier];
        }
        [receiver release];
    });
}

}  // namespace
}  // namespace quillet::test
