// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <vector>

#include "platform/standin/runtime/instances.h"
#include "tests/behaviour/applied.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Dictionary;
using standin::HostVariant;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

TEST(ApplyState, IndeterminateDoesNothingAtAll) {
    Phone phone;
    phone.write(preferencesPath, ownVibration(true, true));
    phone.preferences().setDefaultVibrationPattern(YES);
    phone.setStateWord(7);
    phone.log().clear();
    phone.apply(-1);
    EXPECT_THAT(phone.calls(), IsEmpty());
    EXPECT_EQ(phone.preferences().defaultVibrationPattern(), YES) << "not even a reload";
    EXPECT_EQ(phone.stateWord(), 7U);
    EXPECT_EQ(phone.device().clock.now(), 0.0);
}

TEST(ApplyState, OnStoresPostsShowsAndUnmutes) {
    Phone phone;
    phone.device().hardware.setRingerMuted(true);
    EXPECT_THAT(applied(phone, 1),
                ElementsAre(taken, stored(1), posted, indicatorOn, unmuted, given));
    EXPECT_EQ(phone.stateWord(), 1U);
    EXPECT_FALSE(phone.device().hardware.isRingerMuted());
}

TEST(ApplyState, OffStoresPostsShowsAndMutes) {
    Phone phone;
    EXPECT_THAT(applied(phone, 0),
                ElementsAre(taken, stored(0), posted, indicatorOff, muted, given));
    EXPECT_EQ(phone.stateWord(), 0U);
    EXPECT_TRUE(phone.device().hardware.isRingerMuted());
}

TEST(ApplyState, HoldsTheSystemsVibrationOffFromBeforeTheStoreUntilAfterTheMute) {
    Phone phone;
    phone.write(preferencesPath, ownVibration(true, false));
    const Calls announced = {
        R"(notify_post("com.apple.springboard.ring-vibrate.changed") = 0)",
        R"(GSSendAppPreferencesChanged("com.apple.springboard", "ring-vibrate"))",
        R"(notify_post("com.apple.springboard.silent-vibrate.changed") = 0)",
        R"(GSSendAppPreferencesChanged("com.apple.springboard", "silent-vibrate"))",
    };
    Calls expected = {taken};
    expected.insert(expected.end(), announced.begin(), announced.end());
    expected.insert(expected.end(),
                    {"<NSRunLoop> runUntilDate:(0.5)", stored(0), posted, indicatorOff, muted});
    expected.insert(expected.end(), announced.begin(), announced.end());
    expected.insert(expected.end(), {"<NSRunLoop> runUntilDate:(1)",
                                     // The refresh for the switch's own post.
                                     R"(notify_register_check()"
                                     R"("com.apple.springboard.ringerstate", t2) = 0)",
                                     "notify_cancel(t2) = 0", vibrated, given});
    EXPECT_THAT(applied(phone, 0), ElementsAreArray(expected));
    EXPECT_EQ(phone.device().clock.now(), 1.0);
}

TEST(ApplyState, PutsTheSystemsVibrationSettingsBack) {
    Phone phone;
    phone.write(preferencesPath, ownVibration(false, false));
    const Dictionary settings = {{"ring-vibrate", false}, {"silent-vibrate", true}};
    phone.write(springBoardPreferencesPath, settings);
    std::optional<Dictionary> meanwhile;
    phone.device().eventLoop.at(0.25,
                                [&] { meanwhile = phone.dictionary(springBoardPreferencesPath); });
    phone.apply(1);
    EXPECT_EQ(meanwhile, (Dictionary{{"ring-vibrate", false}, {"silent-vibrate", false}}));
    EXPECT_EQ(phone.dictionary(springBoardPreferencesPath), settings);
}

TEST(ApplyState, VibratesOnceByTheUsersChoiceForTheNewState) {
    for (const bool whenOff : {false, true}) {
        for (const bool whenOn : {false, true}) {
            Phone phone;
            phone.write(preferencesPath, ownVibration(whenOff, whenOn));
            phone.apply(0);
            EXPECT_EQ(vibrations(phone), whenOff ? 1U : 0U);
            phone.log().clear();
            phone.apply(1);
            EXPECT_EQ(vibrations(phone), whenOn ? 1U : 0U);
        }
    }
}

TEST(ApplyState, LeavesVibrationToTheSystemByDefaultWhateverTheOtherChoicesAre) {
    Phone phone;
    phone.preferences().setVibrateWhenOff(YES);
    phone.preferences().setVibrateWhenOn(YES);
    phone.write(preferencesPath, Dictionary{{"ios-vibrate-pattern", true},
                                            {"vibrate-when-off", true},
                                            {"vibrate-when-on", true}});
    const auto settings = phone.bytes(springBoardPreferencesPath);
    phone.apply(1);
    phone.apply(0);
    EXPECT_EQ(vibrations(phone), 0U);
    EXPECT_EQ(phone.bytes(springBoardPreferencesPath), settings);
    EXPECT_THAT(only(phone.calls(), {"GSSendAppPreferencesChanged", "runUntilDate:"}), IsEmpty());
    EXPECT_EQ(phone.device().clock.now(), 0.0);
}

TEST(ApplyState, GoesOnWhenTheStateCannotBeStored) {
    Phone phone;
    phone.setStateWord(9);
    phone.whenTokenIsTaken([&](int token) { phone.device().tokens.cancel(token); });
    EXPECT_THAT(applied(phone, 0), ElementsAre(taken, "notify_set_state(t1, 0) = 2", posted,
                                               indicatorOff, muted, "notify_cancel(t1) = 2"));
    EXPECT_THAT(applied(phone, 1), ElementsAre(taken, "notify_set_state(t1, 1) = 2", posted,
                                               indicatorOn, unmuted, "notify_cancel(t1) = 2"));
    EXPECT_EQ(phone.stateWord(), 9U);
}

TEST(ApplyState, OfAnyOtherValueTurnsOnWithoutStoring) {
    for (const std::int32_t state : {2, -2, 127, std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()}) {
        Phone phone{{.machine = "iPod5,1"}};
        phone.write(preferencesPath, ownVibration(false, true));
        phone.setStateWord(5);
        phone.log().clear();
        phone.apply(state);
        const std::vector<std::string> steps = {
            "notify_set_state",        "activate:",
            "setRingerMuted:",         "AudioServicesPlaySystemSound",
            "sleepForTimeInterval:",   "getVolume:forCategory:",
            "setVolumeTo:forCategory:"};
        EXPECT_THAT(only(phone.calls(), steps), ElementsAre(indicatorOn, unmuted, vibrated))
            << state;
        EXPECT_EQ(phone.posts(ringerStateName), 1U) << state;
        EXPECT_EQ(phone.stateWord(), 5U) << state;
    }
}

TEST(ApplyState, WithoutATokenOnlyReloadsThePreferences) {
    for (const std::int32_t state : {0, 1, 2}) {
        Phone phone{{.machine = "iPod5,1"}};
        phone.write(preferencesPath, ownVibration(false, true));
        phone.setStateWord(1);
        phone.device().tokens.refuse(true);
        EXPECT_THAT(
            applied(phone, state),
            ElementsAre(
                R"(notify_register_check("com.apple.springboard.ringerstate", null) = 1000000)"))
            << "no cancel either";
        EXPECT_EQ(phone.preferences().defaultVibrationPattern(), NO);
        EXPECT_EQ(phone.preferences().vibrateWhenOff(), NO);
        EXPECT_EQ(phone.preferences().vibrateWhenOn(), YES);
        EXPECT_EQ(phone.posts(ringerStateName), 0U);
        EXPECT_EQ(phone.stateWord(), 1U);
        EXPECT_EQ(phone.device().clock.now(), 0.0);
    }
}

TEST(ApplyState, IgnoresTheIdentifier) {
    for (const char* const identifier : {"", "no.such.switch", switchIdentifier}) {
        Phone phone;
        phone.log().clear();
        phone.apply(0, identifier);
        EXPECT_THAT(only(phone.calls(), outward),
                    ElementsAre(taken, stored(0), posted, indicatorOff, muted, given));
    }
}

TEST(ApplyState, KeepsNoToken) {
    Phone phone;
    phone.write(preferencesPath, ownVibration(true, true));
    for (const std::int32_t state : {0, 1, 2, -1}) {
        phone.apply(state);
        EXPECT_EQ(phone.device().tokens.count(), 0U);
    }
}

TEST(ApplyState, ReadsTheModelTwiceAndAfreshWhateverTheState) {
    for (const std::int32_t state : {0, 1, 2}) {
        Phone phone;
        phone.log().clear();
        phone.apply(state);
        EXPECT_THAT(only(phone.calls(), {"uname", "notify_post", "NSClassFromString"}),
                    ElementsAreArray(Calls{
                        posted,
                        R"(uname("iPhone6,1") = 0)",
                        R"(NSClassFromString("SBMediaController") = "SBMediaController")",
                        R"(NSClassFromString("SBRingerHUDController") = "SBRingerHUDController")",
                        R"(uname("iPhone6,1") = 0)",
                    }));
    }
}

TEST(ApplyState, WithoutAPreferencesObjectTakesNoForEveryChoice) {
    for (const std::int32_t state : {0, 1}) {
        Phone phone;
        phone.write(preferencesPath, ownVibration(true, true));
        *phone.exported<PrefsLoader*>("_prefsLoader") = nullptr;
        phone.log().clear();
        phone.apply(state);
        EXPECT_EQ(only(phone.calls(), {"dictionaryWithContentsOfFile:"}).size(), 2U)
            << "SpringBoard's file, off and on again";
        EXPECT_EQ(only(phone.calls(), {"runUntilDate:"}).size(), 2U);
        EXPECT_EQ(phone.stateWord(), static_cast<std::uint64_t>(state));
        EXPECT_EQ(vibrations(phone), 0U);
    }
}

TEST(ApplyState, EndsTheProcessWhenASecondControllerCannotMute) {
    Phone phone;
    phone.device().trace.setSink([&](const standin::TraceRecord& record) {
        if (record.operation != "respondsToSelector:" || record.receiver[0] != '<') return;
        phone.device().host.media = HostVariant::Media::deaf;
    });
    EXPECT_DEATH(phone.apply(1), "setRingerMuted:");
}

TEST(ApplyState, ActivatesTheIndicatorAtTheInstanceWhereTheClassDoesNotRespond) {
    Phone phone{{.host = {.indicator = HostVariant::Indicator::instance}}};
    EXPECT_THAT(only(applied(phone, 1), {"activate:"}),
                ElementsAre("<SBRingerHUDController> activate:(1)"));
    EXPECT_THAT(only(applied(phone, 0), {"activate:"}),
                ElementsAre("<SBRingerHUDController> activate:(0)"));
}

TEST(ApplyState, DoesTheRestWhereTheHostLacksBothClasses) {
    Phone phone{{.machine = "iPod5,1",
                 .host = {.indicator = HostVariant::Indicator::absent,
                          .media = HostVariant::Media::absent}}};
    phone.write(preferencesPath, ownVibration(true, true));
    phone.apply(0);
    phone.log().clear();
    phone.apply(1);
    EXPECT_THAT(
        only(phone.calls(), {"notify_set_state", "activate:", "setRingerMuted:", "sharedInstance",
                             "AudioServicesPlaySystemSound", "setVolumeTo:forCategory:"}),
        ElementsAre(stored(1), vibrated, volumeSet("0.75")));
    EXPECT_EQ(only(phone.calls(), {"runUntilDate:"}).size(), 2U);
}

TEST(ApplyState, LeaksNothing) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.write(preferencesPath, ownVibration(true, true));
    phone.apply(0);
    phone.apply(1);
    const int live = standin::Instance::live();
    for (int flip = 0; flip < 10; ++flip) phone.apply(flip % 2);
    phone.state();
    EXPECT_EQ(standin::Instance::live(), live);
}

}  // namespace
}  // namespace quillet::test
