// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <string>
#include <utility>

#include "tests/springboard/looking.h"

namespace quillet::test {
namespace {

using standin::Dictionary;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class Status : public Looking {};

TEST_F(Status, IsInWords) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}, {"vibrate-when-on", false}});
    write(springBoardPreferencesPath, Dictionary{{"silent-vibrate", false}});
    const std::string status = run({"status"}).output;
    for (const std::string& line :
         {"Phone        " + root().string(), std::string{"Model        iPhone6,1"},
          std::string{"Host         indicator=class,media=instance"},
          std::string{"Ringer       on: sounds play (its word is 1)"},
          std::string{"             not muted, volume 0.75"},
          std::string{"Preferences  buzzes when muted, not when unmuted; a flip takes 1.0 s"},
          std::string{"             vibrate-when-off absent"},
          std::string{"             vibrate-when-on false"},
          std::string{"SpringBoard  ring-vibrate absent, counts as true"},
          std::string{"             silent-vibrate false"}, std::string{"Watched by   nobody"}}) {
        EXPECT_THAT(linesOf(status), Contains(line));
    }
    EXPECT_THAT(status, Not(HasSubstr("Left off")));
}

TEST_F(Status, IsWithin80Columns) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    EXPECT_EQ(run({"model", "iPod5,1"}).status, 0);
    const std::string status = run({"status"}).output;
    EXPECT_THAT(status, HasSubstr("Preferences  buzzes when muted, not when unmuted; a flip takes "
                                  "1.0 s, 0.25 s\n             more when unmuted\n"));
    for (const std::string& line : linesOf(status)) EXPECT_LE(line.size(), 80U) << line;
}

TEST_F(Status, TellsWhatThePreferencesComeTo) {
    const std::pair<Dictionary, std::string> rows[] = {
        {{}, "vibration is left to the system; a flip takes no time"},
        {{{"ios-vibrate-pattern", false}, {"vibrate-when-off", false}, {"vibrate-when-on", true}},
         "buzzes when unmuted, not when muted; a flip takes 1.0 s"},
        {{{"ios-vibrate-pattern", false}, {"vibrate-when-off", true}, {"vibrate-when-on", true}},
         "buzzes when muted and when unmuted; a flip takes 1.0 s"},
        {{{"ios-vibrate-pattern", false}, {"vibrate-when-off", false}, {"vibrate-when-on", false}},
         "never buzzes; a flip takes 1.0 s"},
        {{{"ios-vibrate-pattern", false}, {"vibrate-when-off", false}},
         "buzzes when muted, not when unmuted; a flip takes 1.0 s"},
        {{{"ios-vibrate-pattern", standin::Array{}}},
         "a flip ends SpringBoard: the first is no flag"},
    };
    for (const auto& [preferences, effect] : rows) {
        write(preferencesPath, preferences);
        EXPECT_EQ(status()["effect"], effect);
    }
}

TEST_F(Status, IsAnObjectOnRequest) {
    expectOutput({"model", "iPod5,1"}, "");
    expectOutput({"flip", "off"}, "off\n");
    const Json told = status();
    EXPECT_EQ(told["event"], "status");
    EXPECT_EQ(told["effect"],
              "vibration is left to the system; a flip takes no time, 0.25 s when unmuted");
    EXPECT_EQ(told["model"], "iPod5,1");
    EXPECT_EQ(told["state"], "off");
    EXPECT_EQ(told["word"], 0);
    EXPECT_EQ(told["muted"], true);
    EXPECT_EQ(told["volume"], 0);
    EXPECT_EQ(told["preferences"]["ringtone-volume"], 0.75);
    EXPECT_EQ(told["preferences"]["vibrate-when-off"], Json(nullptr));
    EXPECT_EQ(told["ring-vibrate"], true);
    EXPECT_EQ(told["left-off"], Json(nullptr));
}

TEST_F(Status, TellsWhoWatches) {
    const pid_t watch = begin({"watch"}, "watch");
    EXPECT_TRUE(isTold("watch", "as it is now"));
    const Json told = status();
    ASSERT_EQ(told["watchers"].size(), 1U);
    EXPECT_EQ(told["watchers"][0]["pid"], watch);
    EXPECT_EQ(told["watchers"][0]["command"], "watch");
    kill(watch, SIGKILL);
    EXPECT_TRUE(status()["watchers"].empty());
}

TEST_F(Status, TellsWhatAKilledFlipHasLeftOff) {
    const pid_t killed = stopAmidAFlip();
    EXPECT_EQ(status()["flipping"], true);
    EXPECT_EQ(status()["left-off"], Json(nullptr)) << "it may yet put them back";
    kill(killed, SIGKILL);
    const Json told = status();
    EXPECT_EQ(told["flipping"], false);
    EXPECT_EQ(told["left-off"]["ring-vibrate"], true);
    EXPECT_EQ(told["left-off"]["silent-vibrate"], true);
    EXPECT_EQ(told["left-off"]["pid"], killed);
    EXPECT_THAT(run({"status"}).output,
                HasSubstr("they were: ring-vibrate true, silent-vibrate true\n"));
    expectOutput({"flip", "on"}, "on\n");
    EXPECT_EQ(status()["left-off"]["pid"], killed) << "nothing has put them back";
    write(springBoardPreferencesPath, Dictionary{{"ring-vibrate", true}});
    EXPECT_EQ(status()["left-off"], Json(nullptr));
}

TEST_F(Status, KnowsSettingsThatTheUserHasTurnedOff) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    write(springBoardPreferencesPath,
          Dictionary{{"ring-vibrate", false}, {"silent-vibrate", false}});
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_EQ(status()["left-off"], Json(nullptr));
}

}  // namespace
}  // namespace quillet::test
