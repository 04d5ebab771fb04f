// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>
#include <utility>
#include <vector>

#include "tests/behaviour/applied.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ApplyStateWaits, AsksForTheDefaultPatternAgainAfterTheMute) {
    // A setter called while the first wait lets the run loop turn counts for the second half.
    Phone phone;
    phone.write(preferencesPath, ownVibration(true, true));
    phone.device().eventLoop.at(0.25, [&] { phone.preferences().setDefaultVibrationPattern(YES); });
    phone.apply(1);
    EXPECT_EQ(only(phone.calls(), {"runUntilDate:"}).size(), 1U);
    EXPECT_EQ(vibrations(phone), 0U);
}

TEST(ApplyStateWaits, AsksForTheVibrationOnlyAfterTheSettingsAreBack) {
    Phone phone;
    phone.write(preferencesPath, ownVibration(true, false));
    phone.device().eventLoop.at(0.75, [&] { phone.preferences().setVibrateWhenOn(YES); });
    phone.apply(1);
    EXPECT_EQ(vibrations(phone), 1U);
}

TEST(ApplyStateWaits, ReadsTheOldStateInTheFirstWaitAndTheNewOneInTheSecond) {
    Phone phone;
    phone.write(preferencesPath, ownVibration(false, false));
    phone.setStateWord(1);
    std::vector<std::pair<double, FSSwitchState>> redraws;
    phone.device().framework.setRedraw([&](std::string_view, FSSwitchState state) {
        redraws.emplace_back(phone.device().clock.now(), state);
    });
    phone.device().eventLoop.at(0.25, [&] { phone.post(ringerStateName); });
    phone.device().eventLoop.at(0.75, [&] { phone.post(ringerStateName); });
    phone.apply(0);
    EXPECT_THAT(redraws,
                ElementsAre(std::pair(0.25, FSSwitchStateOn), std::pair(0.5, FSSwitchStateOff),
                            std::pair(0.75, FSSwitchStateOff)));
}

TEST(ApplyStateWaits, IsRefreshedAfterwardsWhereItDoesNotWait) {
    Phone phone;
    std::vector<FSSwitchState> redraws;
    phone.device().framework.setRedraw(
        [&](std::string_view, FSSwitchState state) { redraws.push_back(state); });
    phone.apply(0);
    EXPECT_THAT(redraws, IsEmpty());
    phone.device().eventLoop.turn();
    EXPECT_THAT(redraws, ElementsAre(FSSwitchStateOff));
}

TEST(ApplyStateWaits, MayBeAskedForAnotherStateWhileItWaits) {
    // The host's own input falls due in the first wait and flips the switch the other way.
    Phone phone;
    phone.write(preferencesPath, ownVibration(false, false));
    phone.device().eventLoop.at(0.25, [&] { phone.apply(1); });
    phone.apply(0);
    EXPECT_EQ(phone.stateWord(), 0U) << "the outer call stores last";
    EXPECT_EQ(phone.device().tokens.count(), 0U);
    EXPECT_EQ(phone.device().clock.now(), 1.75);
}

TEST(ApplyStateWaits, TakesAtLeastASecondInRealTimeAndReadsTheStateOfTheMoment) {
    Phone phone{{.clock = standin::Clock::Kind::real}};
    phone.write(preferencesPath, ownVibration(false, false));
    phone.setStateWord(1);
    std::vector<FSSwitchState> redraws;
    phone.device().framework.setRedraw(
        [&](std::string_view, FSSwitchState state) { redraws.push_back(state); });
    const double start = phone.device().clock.now();
    phone.device().eventLoop.at(start + 0.25, [&] { phone.post(ringerStateName); });
    phone.device().eventLoop.at(start + 0.75, [&] { phone.post(ringerStateName); });
    phone.apply(0);
    EXPECT_GE(phone.device().clock.now() - start, 1.0);
    // On a busy machine the last two refreshes may fall together.
    ASSERT_GE(redraws.size(), 2U);
    EXPECT_EQ(redraws.front(), FSSwitchStateOn);
    EXPECT_THAT(std::vector(redraws.begin() + 1, redraws.end()), Each(FSSwitchStateOff));
}

}  // namespace
}  // namespace quillet::test
