// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/notify.h"
#include "tests/support/phone.h"
#include "tests/support/under_test.h"

namespace quillet::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const Calls refresh = {
    R"(FSSwitchPanel sharedPanel() = "<FSSwitchPanel>")",
    R"(NSBundle bundleForClass:("RingerSwitch") = "<NSBundle>")",
    R"(<NSBundle> bundleIdentifier() = "com.velk.switch.ringer")",
    R"(<FSSwitchPanel> stateDidChangeForSwitchIdentifier:("com.velk.switch.ringer"))",
};

Calls readingOf(const std::string& word) {
    return {
        R"(notify_register_check("com.apple.springboard.ringerstate", t1) = 0)",
        "notify_check(t1, 1) = 0",
        "notify_get_state(t1, " + word + ") = 0",
        "notify_cancel(t1) = 0",
    };
}

Calls joined(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(Loading, CreatesThePreferencesAndThenObservesTheRingerState) {
    Phone phone;
    EXPECT_THAT(phone.calls(), ElementsAreArray(Calls{
                                   "<NSObject> init()",
                                   R"(CFNotificationCenterGetDarwinNotifyCenter() = )"
                                   R"("<CFNotificationCenter>")",
                                   R"(CFNotificationCenterAddObserver("<CFNotificationCenter>", )"
                                   R"(null, "<callback>", )"
                                   R"("com.apple.springboard.ringerstate", null, 2))",
                               }));
}

TEST(Loading, LeavesThePreferencesAsTheyAreBeforeAnyLoad) {
    Phone phone;
    EXPECT_EQ(phone.preferences().defaultVibrationPattern(), NO);
    EXPECT_EQ(phone.preferences().vibrateWhenOff(), YES);
    EXPECT_EQ(phone.preferences().vibrateWhenOn(), NO);
}

TEST(Loading, LeavesTheSavedVibrationSettingsAtNo) {
    Phone phone;
    EXPECT_EQ(*phone.exported<BOOL>("GLOBAL_vibrateWhenRinging"), NO);
    EXPECT_EQ(*phone.exported<BOOL>("GLOBAL_vibrateWhenSilent"), NO);
}

TEST(Loading, CreatesThePreferencesForGood) {
    Phone phone;
    PrefsLoader* const first = &phone.preferences();
    ASSERT_NE(first, nullptr);
    for (const std::int32_t state : {0, 1, 2, -1}) phone.apply(state);
    EXPECT_EQ(&phone.preferences(), first) << "the instance is never replaced";
}

TEST(Loading, WithoutRoomForItsObserverStillAnswersButIsNotRefreshed) {
    const TemporaryFolder folder;
    standin::makeNewPhone(folder.path() / "root", {});
    const standin::DeviceRoot root{folder.path() / "root"};
    const auto table = root.below(standin::DeviceRoot::notificationsPath);
    std::filesystem::remove(table);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < standin::NotificationTable::maxNames; ++i) {
        names.push_back("name " + std::to_string(i));
    }
    standin::NotificationTable::Words words;
    for (const std::string& name : names) words.emplace_back(name, 0);
    standin::NotificationTable::create(table, words);
    standin::Device device{{.root = folder.path() / "root",
                            .clock = standin::Clock::Kind::virtualTime,
                            .openModule = moduleOpener()}};
    device.framework.load(bundleUnderTest());
    bool isRedrawn = false;
    device.framework.setRedraw([&](std::string_view, FSSwitchState) { isRedrawn = true; });
    auto* const source = device.framework.dataSource(switchIdentifier);
    EXPECT_EQ(source->stateForSwitchIdentifier(switchIdentifier), FSSwitchStateOff);
    source->applyState(FSSwitchStateOn, switchIdentifier);
    device.eventLoop.runUntil(1);
    EXPECT_FALSE(isRedrawn);
}

TEST(Loading, TakesNoTokenAndWritesNoFile) {
    Phone phone;
    EXPECT_EQ(phone.device().tokens.count(), 0U);
    EXPECT_EQ(phone.bytes(preferencesPath), std::nullopt);
}

TEST(RingerStateChanged, RefreshesTheSwitchByItsBundlesIdentifier) {
    Phone phone;
    phone.setStateWord(1);
    phone.log().clear();
    phone.post(ringerStateName);
    phone.device().eventLoop.turn();
    EXPECT_THAT(phone.calls(), ElementsAreArray(joined(refresh, readingOf("1"))));
}

TEST(RingerStateChanged, RefreshesOnceForEveryNotification) {
    Phone phone;
    phone.log().clear();
    for (int i = 0; i < 3; ++i) {
        phone.post(ringerStateName);
        phone.device().eventLoop.turn();
    }
    EXPECT_EQ(only(phone.calls(), {"stateDidChangeForSwitchIdentifier:"}).size(), 3U);
}

TEST(RingerStateChanged, IsNotCalledForOtherNames) {
    Phone phone;
    phone.log().clear();
    phone.post("com.apple.springboard.ring-vibrate.changed");
    phone.device().eventLoop.turn();
    EXPECT_THAT(phone.calls(), IsEmpty());
}

TEST(RingerStateChanged, ComesBackForTheSwitchsOwnPost) {
    Phone phone;
    phone.apply(0);
    phone.log().clear();
    phone.device().eventLoop.turn();
    EXPECT_THAT(phone.calls(), ElementsAreArray(joined(refresh, readingOf("0"))));
}

TEST(State, ReadsTheWordWithATokenOfItsOwn) {
    Phone phone;
    phone.setStateWord(1);
    phone.log().clear();
    EXPECT_EQ(phone.state(), FSSwitchStateOn);
    EXPECT_THAT(phone.calls(), ElementsAreArray(readingOf("1")));
    EXPECT_EQ(phone.device().tokens.count(), 0U);
}

TEST(State, IsOnForExactlyOneAndOffForEveryOtherWord) {
    Phone phone;
    phone.setStateWord(1);
    EXPECT_EQ(phone.state(), FSSwitchStateOn);
    for (const std::uint64_t word :
         {0ULL, 2ULL, 3ULL, 0x100000001ULL, 0x8000000000000001ULL, 0xFFFFFFFFULL, ~0ULL}) {
        phone.setStateWord(word);
        EXPECT_EQ(phone.state(), FSSwitchStateOff) << word;
    }
}

TEST(State, IsOffAndStillCancelsWhenNoTokenCanBeTaken) {
    Phone phone;
    phone.setStateWord(1);
    phone.device().tokens.refuse(true);
    phone.log().clear();
    EXPECT_EQ(phone.state(), FSSwitchStateOff);
    EXPECT_THAT(phone.calls(),
                ElementsAreArray(Calls{
                    R"(notify_register_check("com.apple.springboard.ringerstate", null) = 1000000)",
                    "notify_cancel(-1) = 2",
                }));
}

TEST(State, IsOffWhenTheWordCannotBeReadAndEveryCallIsStillMade) {
    Phone phone;
    phone.setStateWord(1);
    phone.log().clear();
    phone.whenTokenIsTaken([&](int token) { phone.device().tokens.cancel(token); });
    EXPECT_EQ(phone.state(), FSSwitchStateOff);
    EXPECT_THAT(phone.calls(), ElementsAreArray(Calls{
                                   R"(notify_register_check()"
                                   R"("com.apple.springboard.ringerstate", t1) = 0)",
                                   "notify_check(t1, null) = 2",
                                   "notify_get_state(t1, null) = 2",
                                   "notify_cancel(t1) = 2",
                               }));
}

TEST(State, ReadsTheWordWhateverTheCheckFinds) {
    Phone phone;
    phone.setStateWord(1);
    phone.whenTokenIsTaken([&](int token) { phone.device().tokens.check(token); });
    EXPECT_EQ(phone.state(), FSSwitchStateOn);
}

TEST(State, CancellingWithoutATokenTakesNobodyElsesToken) {
    Phone phone;
    int token = NOTIFY_TOKEN_INVALID;
    ASSERT_EQ(phone.device().tokens.take("a.name", token), NOTIFY_STATUS_OK);
    phone.device().tokens.refuse(true);
    phone.state();
    EXPECT_NE(phone.device().tokens.find(token), nullptr);
}

TEST(State, IsTheSameForAnyIdentifier) {
    Phone phone;
    for (const std::uint64_t word : {0ULL, 1ULL}) {
        phone.setStateWord(word);
        for (const char* const identifier : {switchIdentifier, "", "no.such.switch", "ü"}) {
            EXPECT_EQ(phone.state(identifier), static_cast<FSSwitchState>(word)) << identifier;
        }
    }
}

TEST(State, IsReadAfreshAtEveryQuestion) {
    Phone phone;
    for (const std::uint64_t word : {1ULL, 0ULL, 1ULL, 2ULL, 1ULL}) {
        phone.setStateWord(word);
        EXPECT_EQ(phone.state() == FSSwitchStateOn, word == 1) << word;
    }
}

TEST(Tap, AppliesTheOppositeOfTheState) {
    Phone phone;
    phone.setStateWord(1);
    phone.dataSource().applyActionForSwitchIdentifier(switchIdentifier);
    EXPECT_EQ(phone.stateWord(), 0U);
    phone.dataSource().applyActionForSwitchIdentifier(switchIdentifier);
    EXPECT_EQ(phone.stateWord(), 1U);
}

}  // namespace
}  // namespace quillet::test
