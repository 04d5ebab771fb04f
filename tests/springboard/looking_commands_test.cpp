// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/device/root.h"
#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Dictionary;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using Json = nlohmann::json;

/// Programs that run beside the commands of the test.
class Looking : public SpringBoard {
protected:
    ~Looking() override {
        for (const pid_t process : running_) {
            ::kill(process, SIGKILL);
            waitFor(process);
        }
    }

    pid_t begin(Words words, const std::string& name) {
        words.insert(words.begin(), {"--root", root()});
        const pid_t process = start(QUILLET_SPRINGBOARD, {.words = words,
                                                          .output = folder() / (name + ".output"),
                                                          .errors = folder() / (name + ".errors")});
        running_.push_back(process);
        return process;
    }
    int end(pid_t process) {
        std::erase(running_, process);
        return waitFor(process);
    }
    int kill(pid_t process, int signal) {
        ::kill(process, signal);
        return end(process);
    }
    std::string outputOf(const std::string& name) const {
        return readText(folder() / (name + ".output"));
    }
    std::string errorsOf(const std::string& name) const {
        return readText(folder() / (name + ".errors"));
    }
    bool isTold(const std::string& name, const std::string& text) const {
        return becomesTrue([&] { return outputOf(name).find(text) != std::string::npos; });
    }

    /// A flip off that is stopped in its first wait, the user's settings put aside.
    pid_t stopAmidAFlip() {
        write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
        const pid_t process = begin({"--trace", "flip", "off"}, "killed");
        EXPECT_TRUE(becomesTrue(
            [&] { return errorsOf("killed").find("runUntilDate:") != std::string::npos; }));
        ::kill(process, SIGSTOP);  // So that it does not end meanwhile.
        return process;
    }

    Json status() { return Json::parse(run({"--json", "status"}).output); }

    /// Lines of a log or a watch.
    static std::vector<Json> parsed(const std::string& lines) {
        std::vector<Json> objects;
        for (const std::string& line : linesOf(lines)) objects.push_back(Json::parse(line));
        return objects;
    }
    Words eventsIn(const std::string& lines) {
        Words events;
        for (const Json& object : parsed(lines)) events.push_back(object["event"]);
        return events;
    }

private:
    std::vector<pid_t> running_;
};

TEST_F(Looking, TheLogTellsAFlipStepByStep) {
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
    EXPECT_EQ(told[5]["name"], "com.apple.springboard.ringerstate");
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

TEST_F(Looking, TheLogIsInWordsAndWithin80Columns) {
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

TEST_F(Looking, ALongLineOfTheLogGoesOnBelowItsWords) {
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

TEST_F(Looking, EveryLineOfAStatusIsWithin80Columns) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    EXPECT_EQ(run({"model", "iPod5,1"}).status, 0);
    const std::string status = run({"status"}).output;
    EXPECT_THAT(status, HasSubstr("Preferences  buzzes when muted, not when unmuted; a flip takes "
                                  "1.0 s, 0.25 s\n             more when unmuted\n"));
    for (const std::string& line : linesOf(status)) EXPECT_LE(line.size(), 80U) << line;
}

TEST_F(Looking, TheLogMayBeOfTheLastTimeAlone) {
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_THAT(run({"log", "--last", "0s"}).output, IsEmpty());
    EXPECT_EQ(run({"log", "--json", "--last", "1h"}).output, run({"log", "--json"}).output);
    for (const char* const word : {"", "5x", "m", "-1s", "99999999999999999999"}) {
        expectFailure(run({"log", "--last", word}), 2, "no duration such as");
    }
}

TEST_F(Looking, TheLogIsFollowedUntilTheDeviceGoes) {
    const pid_t log = begin({"log", "-f", "--json"}, "log");
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_TRUE(isTold("log", "\"event\": \"ended\""));
    EXPECT_THAT(eventsIn(outputOf("log")), Contains("muted"));
    fs::remove_all(root());
    EXPECT_EQ(end(log), 1);
    EXPECT_THAT(errorsOf("log"), HasSubstr(root().string() + ": the device is gone"));
}

TEST_F(Looking, WhoIsKilledHasDied) {
    const pid_t killed = stopAmidAFlip();
    EXPECT_THAT(eventsIn(run({"--json", "log"}).output), Not(Contains("died"))) << "it lives";
    kill(killed, SIGKILL);
    const auto told = parsed(run({"--json", "log"}).output);
    ASSERT_EQ(told.back()["event"], "died");
    EXPECT_EQ(told.back()["pid"], killed);
    EXPECT_THAT(run({"log"}).output, HasSubstr("]  died\n"));
}

TEST_F(Looking, WhoIsEndedByASignalHasEnded) {
    const pid_t watch = begin({"watch"}, "watch");
    EXPECT_TRUE(isTold("watch", "as it is now"));
    EXPECT_EQ(kill(watch, SIGTERM), -SIGTERM);
    const auto told = parsed(run({"--json", "log"}).output);
    EXPECT_EQ(told.back()["event"], "ended");
    EXPECT_EQ(told.back()["signal"], SIGTERM);
}

TEST_F(Looking, TheStatusIsInWords) {
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

TEST_F(Looking, TheStatusTellsWhatThePreferencesComeTo) {
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

TEST_F(Looking, TheStatusIsAnObjectOnRequest) {
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

TEST_F(Looking, TheStatusTellsWhoWatches) {
    const pid_t watch = begin({"watch"}, "watch");
    EXPECT_TRUE(isTold("watch", "as it is now"));
    const Json told = status();
    ASSERT_EQ(told["watchers"].size(), 1U);
    EXPECT_EQ(told["watchers"][0]["pid"], watch);
    EXPECT_EQ(told["watchers"][0]["command"], "watch");
    kill(watch, SIGKILL);
    EXPECT_TRUE(status()["watchers"].empty());
}

TEST_F(Looking, TheStatusTellsWhatAKilledFlipHasLeftOff) {
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

TEST_F(Looking, SettingsThatTheUserHasTurnedOffAreNotLeftOff) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    write(springBoardPreferencesPath,
          Dictionary{{"ring-vibrate", false}, {"silent-vibrate", false}});
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_EQ(status()["left-off"], Json(nullptr));
}

TEST_F(Looking, AWatchTellsTheStateThenWhatIsSeenAndFeltAndWhy) {
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

TEST_F(Looking, TwoHostsAtOnceAreBothTold) {
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

TEST_F(Looking, AWatchEndsWhenItsDeviceGoes) {
    const pid_t watch = begin({"watch"}, "watch");
    EXPECT_TRUE(isTold("watch", "as it is now"));
    fs::remove_all(root());
    EXPECT_EQ(end(watch), 1);
    EXPECT_EQ(errorsOf("watch"), "springboard: " + root().string() + ": the device is gone\n");
}

TEST_F(Looking, HardwareThatCannotBeReadOrLockedIsComplainedOf) {
    const auto expectComplaint = [this](const std::string& complaint) {
        const Outcome outcome = run({"--trace", "--trace-format=text", "flip", "off"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "off\n") << "the switch has done its part";
        EXPECT_THAT(outcome.errors, HasSubstr("springboard: " + root().string() + complaint));
        EXPECT_THAT(outcome.errors, HasSubstr("setRingerMuted:true  (not done)\n"));
        EXPECT_THAT(eventsIn(run({"--json", "log", "--last", "1h"}).output),
                    Not(Contains("muted")));
    };
    const std::string before = bytes(standin::DeviceRoot::hardwarePath);
    writeText(onDevice(standin::DeviceRoot::hardwarePath), "junk");
    expectComplaint("/var/db/hardware.plist: cannot be read: line 1, column 1: text where ");
    EXPECT_EQ(bytes(standin::DeviceRoot::hardwarePath), "junk");
    EXPECT_EQ(run({"status"}).status, 1);
    fs::remove(onDevice(standin::DeviceRoot::hardwarePath));
    fs::create_directory(onDevice(standin::DeviceRoot::hardwarePath));
    expectComplaint("/var/db/hardware.plist: cannot be read: not a file");
    fs::remove(onDevice(standin::DeviceRoot::hardwarePath));
    writeText(onDevice(standin::DeviceRoot::hardwarePath), before);
    fs::remove(onDevice("/var/db/hardware.plist.lock"));
    fs::create_directory(onDevice("/var/db/hardware.plist.lock"));
    expectComplaint("/var/db/hardware.plist.lock: no lock: Is a directory");
}

TEST_F(Looking, SettingsThatCountAsNoneAreMentionedWithThePlaceOfTheFault) {
    const auto expectMention = [this](const char* path, const std::string& place) {
        for (const char* const command : {"flip", "status"}) {
            const Outcome outcome = run({command});
            EXPECT_EQ(outcome.status, 0) << "a device goes on without them";
            EXPECT_EQ(outcome.errors, "springboard: " + onDevice(path).string() +
                                          ": counts as no file: " + place + '\n');
        }
    };
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    writeText(onDevice(springBoardPreferencesPath), "bplist00");
    expectMention(springBoardPreferencesPath, "offset 0: a trailer that does not fit the file");
    write(springBoardPreferencesPath, Dictionary{{"ring-vibrate", true}});
    writeText(onDevice(preferencesPath), "<dict>\n<key>vibrate-when-on</key></dict>");
    expectMention(preferencesPath, "line 2, column 27: a key without a value");
}

TEST_F(Looking, HardwareThatIsMissingIsMadeAgainAsTheStateSays) {
    expectOutput({"flip", "off"}, "off\n");
    fs::remove_all(onDevice("/var/db"));
    const Outcome outcome = run({"state"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "off\n");
    EXPECT_THAT(outcome.errors, HasSubstr("hardware.plist: was missing; made again"));
    EXPECT_EQ(dictionary(standin::DeviceRoot::hardwarePath).find("ringer-muted"),
              standin::Value{true});
    expectOutput({"flip", "on"}, "on\n");
    EXPECT_EQ(dictionary(standin::DeviceRoot::hardwarePath).find("ringer-muted"),
              standin::Value{false});
}

TEST_F(Looking, APreferenceOfAnOddKindIsNamedWithItsFileAndKey) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", standin::Array{}}});
    expectFailure(run({"flip"}), 1,
                  std::string{preferencesPath} + ": \"ios-vibrate-pattern\" is an array");
}

TEST_F(Looking, ErrorsAreObjectsOnRequest) {
    const auto expectError = [](const Outcome& outcome, int status, const std::string& message) {
        EXPECT_EQ(outcome.status, status);
        const Json error = Json::parse(outcome.errors);
        EXPECT_EQ(error["event"], "error");
        EXPECT_THAT(error["message"].get<std::string>(), HasSubstr(message));
        EXPECT_EQ(error["program"], "springboard");
        EXPECT_TRUE(error.contains("time") && error.contains("pid"));
    };
    expectError(run({"--json", "sing"}), 2, "no such command");
    writeText(onDevice(standin::DeviceRoot::hardwarePath), "junk");
    expectError(run({"--json", "flip"}), 1, "hardware.plist: cannot be read: line 1, column 1");
    fs::remove(onDevice("/var/run/notifications"));
    expectError(run({"--json", "state"}), 1, "has lost /var/run/notifications");
}

}  // namespace
}  // namespace quillet::test
