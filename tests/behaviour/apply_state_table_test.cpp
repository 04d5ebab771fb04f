// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "tests/behaviour/choices.h"
#include "tests/behaviour/expected_calls.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Dictionary;
using standin::HostVariant;
using ::testing::ElementsAreArray;

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
    void prepare(const Situation& situation) {
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

    void check(const Situation& situation) {
        prepare(situation);
        const Calls expected = expectedCalls(situation, phone_.device().clock.now());
        phone_.apply(situation.state);
        if (phone_.calls() != expected) {  // Matchers take as long as a flip.
            ASSERT_THAT(phone_.calls(), ElementsAreArray(expected));
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
