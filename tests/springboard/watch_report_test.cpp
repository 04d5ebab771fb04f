// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <string>

#include "tests/springboard/looking.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Dictionary;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;

class WatchReport : public Looking {};

TEST_F(WatchReport, TellsTheStateThenWhatIsSeenAndFeltAndWhy) {
    const pid_t watch = begin({"watch", "--json"}, "watch");
    EXPECT_TRUE(isTold("watch", "\"state\": \"on\""));
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_TRUE(isTold("watch", "buzz"));
    EXPECT_TRUE(isTold("watch", "cause"));
    EXPECT_EQ(kill(watch, SIGINT), -SIGINT);
    const auto told = parsed(outputOf("watch"));
    EXPECT_EQ(told[0]["event"], "state");
    EXPECT_EQ(told[0]["pid"], watch);
    EXPECT_THAT(eventsIn(outputOf("watch")), IsSupersetOf({"state", "indicator", "muted", "buzz"}));
    for (const Json& line : told) {
        if (!line.contains("cause")) continue;
        EXPECT_THAT(line["cause"].get<std::string>(), HasSubstr("flip off (springboard["));
    }
}

TEST_F(WatchReport, TellsOfTwoHostsAtOnce) {
    const pid_t watch = begin({"watch"}, "watch");
    EXPECT_TRUE(isTold("watch", "on   as it is now"));
    const pid_t one = begin({"flip", "off"}, "one");
    const pid_t other = begin({"flip", "off"}, "other");
    EXPECT_EQ(end(one), 0);
    EXPECT_EQ(end(other), 0);
    for (const pid_t host : {one, other}) {
        const std::string author = "(springboard[" + std::to_string(host) + "])";
        EXPECT_THAT(run({"log"}).output, HasSubstr(std::to_string(host) + "]  ringer muted"));
        EXPECT_TRUE(isTold("watch", "off  ringer muted")) << author;
    }
    EXPECT_TRUE(isTold("watch", "off  flip off (springboard["));
    kill(watch, SIGKILL);
}

TEST_F(WatchReport, EndsWhenItsDeviceGoes) {
    const pid_t watch = begin({"watch"}, "watch");
    EXPECT_TRUE(isTold("watch", "as it is now"));
    fs::remove_all(root());
    EXPECT_EQ(end(watch), 1);
    EXPECT_EQ(errorsOf("watch"), "springboard: " + root().string() + ": the device is gone\n");
}

}  // namespace
}  // namespace quillet::test
