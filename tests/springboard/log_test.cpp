// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <regex>
#include <string>

#include "tests/springboard/looking.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Dictionary;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Log : public Looking {};

TEST_F(Log, TellsAFlipStepByStep) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    expectOutput({"--machine", "iPod5,1", "flip", "off"}, "off\n");
    const std::string log = run({"--json", "log"}).output;
    EXPECT_THAT(
        eventsIn(log),
        ElementsAre("started", "applying", "vibration-settings", "posted", "posted", "word-set",
                    "posted", "volume", "indicator", "muted", "vibration-settings", "posted",
                    "posted", "refresh-asked", "refreshed", "buzz", "applied", "ended"));
    const auto told = parsed(log);
    EXPECT_EQ(told[0]["command"], "flip off");
    EXPECT_EQ(told[0]["model"], "iPod5,1");
    EXPECT_EQ(told[5]["name"], ringerStateName);
    EXPECT_EQ(told[5]["word"], 0);
    EXPECT_EQ(told[7]["volume"], 0);
    EXPECT_EQ(told[9]["muted"], true);
    EXPECT_EQ(told[2]["ring"], false);
    EXPECT_EQ(told[2]["ring-before"], true);
    EXPECT_EQ(told[10]["ring"], true);
    const std::regex time{"20[0-9]{2}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\\.[0-9]{6}Z"};
    for (const Json& line : told) {
        EXPECT_TRUE(std::regex_match(line["time"].get<std::string>(), time)) << line;
        EXPECT_EQ(line["pid"], told[0]["pid"]);
        EXPECT_EQ(line["program"], "springboard");
    }
}

TEST_F(Log, IsInWordsAndWithin80Columns) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    expectOutput({"flip", "off"}, "off\n");
    const std::string log = run({"log"}).output;
    for (const char* const words :
         {"started: flip off", "switch is to be off", "ringer muted", "buzz", "switch is off",
          "vibration: ring off, silent off (was on, on)", "ended"}) {
        EXPECT_THAT(log, HasSubstr("]  " + std::string{words} + "\n"));
    }
    for (const std::string& line : linesOf(log)) EXPECT_LE(line.size(), 80U) << line;
}

TEST_F(Log, GoesOnWithALongLineBelowItsWords) {
    const Words many(20, "words");
    std::string value = "\x1b[31m";
    for (const std::string& word : many) value += ' ' + word;
    EXPECT_EQ(run({"prefs", "set", "a", value}).status, 0);
    const std::string log = run({"log"}).output;
    EXPECT_THAT(log, HasSubstr("]  changed: prefs set a \\x1b[31m words words"));
    const Words lines = linesOf(log);
    EXPECT_EQ(lines.back().substr(0, 39), std::string(lines[1].find("changed"), ' ') + "words")
        << log;
    for (const std::string& line : lines) EXPECT_LE(line.size(), 80U) << line;
    EXPECT_THAT(run({"log", "--json"}).output, HasSubstr("\\u001b[31m"));
}

TEST_F(Log, MayBeOfTheLastTimeAlone) {
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_THAT(run({"log", "--last", "0s"}).output, IsEmpty());
    EXPECT_EQ(run({"log", "--json", "--last", "1h"}).output, run({"log", "--json"}).output);
    for (const char* const word : {"", "5x", "m", "-1s", "99999999999999999999"}) {
        expectFailure(run({"log", "--last", word}), 2, "no duration such as");
    }
}

TEST_F(Log, IsFollowedUntilTheDeviceGoes) {
    const pid_t log = begin({"log", "-f", "--json"}, "log");
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_TRUE(isTold("log", "\"event\": \"ended\""));
    EXPECT_THAT(eventsIn(outputOf("log")), Contains("muted"));
    fs::remove_all(root());
    EXPECT_EQ(end(log), 1);
    EXPECT_THAT(errorsOf("log"), HasSubstr(root().string() + ": the device is gone"));
}

TEST_F(Log, TellsWhoWasKilled) {
    const pid_t killed = stopAmidAFlip();
    EXPECT_THAT(eventsIn(run({"--json", "log"}).output), Not(Contains("died"))) << "it lives";
    kill(killed, SIGKILL);
    const auto told = parsed(run({"--json", "log"}).output);
    ASSERT_EQ(told.back()["event"], "died");
    EXPECT_EQ(told.back()["pid"], killed);
    EXPECT_THAT(run({"log"}).output, HasSubstr("]  died\n"));
}

TEST_F(Log, TellsWhatSignalEndedAProgram) {
    const pid_t watch = begin({"watch"}, "watch");
    EXPECT_TRUE(isTold("watch", "as it is now"));
    EXPECT_EQ(kill(watch, SIGTERM), -SIGTERM);
    const auto told = parsed(run({"--json", "log"}).output);
    EXPECT_EQ(told.back()["event"], "ended");
    EXPECT_EQ(told.back()["signal"], SIGTERM);
}

}  // namespace
}  // namespace quillet::test
