// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAreArray;

/// What a command writes, and where.
class Streams : public SpringBoard {
protected:
    fs::path trace() const { return folder() / "trace"; }

    Outcome runTo(const fs::path& output, const Words& words) {
        return runBare({.words = words, .output = output, .errors = {}});
    }
};

/// The first line: where the trace comes from.
const std::regex firstLine{
    R"re(\{"event": "trace", "time": "20[0-9-]{8}T[0-9:]{8}\.[0-9]{3}Z", "pid": ([0-9]+), )re"
    R"re("program": "springboard", "model": "([^"]+)", "host": "([^"]+)"\})re"};

/// A call: the time, the operation, perhaps a receiver, the arguments, perhaps a result and a
/// depth.
const std::regex callLine{
    R"re(\{"t": ([0-9][0-9.e-]*), "op": "([^"]+)"(, "receiver": "[^"]+")?, )re"
    R"re("args": \[[^\]]*\](, "result": .+)?(, "depth": [12])?\})re"};

/// The end of a call that lasts.
const std::regex endLine{R"re(\{"t": ([0-9][0-9.e-]*), "op": "([^"]+)", "receiver": "[^"]+", )re"
                         R"re("dur": ([0-9][0-9.e-]*)(, "depth": [12])?\})re"};

/// The lines of a trace behind the first, each of which must be one.
Words linesOfTrace(const std::string& trace) {
    Words lines = linesOf(trace);
    if (lines.empty() || !std::regex_match(lines.front(), firstLine)) {
        ADD_FAILURE() << "says not where it comes from: " << trace;
        return lines;
    }
    lines.erase(lines.begin());
    return lines;
}

/// The operations of a trace, whose lines must have their shape and whose times must not go back.
Words operationsIn(const std::string& trace) {
    Words operations;
    double last = 0;
    for (const std::string& line : linesOfTrace(trace)) {
        std::smatch parts;
        const bool isCall = std::regex_match(line, parts, callLine);
        if (!isCall && !std::regex_match(line, parts, endLine)) {
            ADD_FAILURE() << "not of a trace: " << line;
            continue;
        }
        const double time = std::stod(parts[1]);
        // Each is rounded to the millionth.
        EXPECT_GE(time, last - 2e-6) << line;
        last = time;
        if (isCall) operations.push_back(parts[2]);
    }
    return operations;
}

TEST_F(Streams, TheTraceGoesToStandardErrorWithTheStateOnStandardOutput) {
    const Outcome outcome = run({"--trace", "flip"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "off\n");
    const Words operations = operationsIn(outcome.errors);
    EXPECT_THAT(operations, Contains("setRingerMuted:"));
    EXPECT_THAT(operations, Contains("notify_post"));
}

TEST_F(Streams, TheTraceOfAQuestionIsComplete) {
    EXPECT_THAT(operationsIn(run({"state", "--trace"}).errors),
                ElementsAre("init", "CFNotificationCenterGetDarwinNotifyCenter",
                            "CFNotificationCenterAddObserver", "notify_register_check",
                            "notify_check", "notify_get_state", "notify_cancel"));
}

TEST_F(Streams, TheTraceOfATapHasTheQuestionTheChangeAndTheRefresh) {
    const Outcome outcome = run({"flip", "--trace"});
    Words of;
    for (const std::string& operation : operationsIn(outcome.errors)) {
        if (operation == "notify_get_state" || operation == "notify_set_state" ||
            operation == "stateDidChangeForSwitchIdentifier:") {
            of.push_back(operation);
        }
    }
    EXPECT_THAT(of, ElementsAre("notify_get_state", "notify_set_state",
                                "stateDidChangeForSwitchIdentifier:", "notify_get_state",
                                "notify_get_state"));
}

TEST_F(Streams, ALineHasTheArgumentsAndTheResult) {
    const Outcome outcome = run({"--trace", "--machine", "iPod5,1", "flip", "off"});
    EXPECT_THAT(outcome.errors, HasSubstr(R"("op": "uname", "args": ["iPod5,1"], "result": 0})"));
    EXPECT_THAT(outcome.errors,
                HasSubstr(R"("op": "setVolumeTo:forCategory:", "receiver": )"
                          R"("<AVSystemController>", "args": [0, "Ringtone"], "result": true})"));
    EXPECT_THAT(outcome.errors, HasSubstr(R"("op": "setRingerMuted:", "receiver": )"
                                          R"("<SBMediaController>", "args": [true]})"));
}

TEST_F(Streams, TimesAreSecondsSinceTheCommandBegan) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const Outcome outcome = run({"--trace", "flip"});
    std::smatch parts;
    const Words lines = linesOfTrace(outcome.errors);
    ASSERT_THAT(lines, testing::Not(IsEmpty()));
    ASSERT_TRUE(std::regex_match(lines.front(), parts, callLine));
    EXPECT_LT(std::stod(parts[1]), 0.9);
    ASSERT_TRUE(std::regex_match(lines.back(), parts, callLine));
    EXPECT_GE(std::stod(parts[1]), 1.0) << "the switch waits for half a second twice";
    EXPECT_LT(std::stod(parts[1]), 60.0);
}

TEST_F(Streams, TheTraceTellsHowLongTheSwitchWaitedAndWhatHappenedMeanwhile) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const std::string trace = run({"--trace", "flip"}).errors;
    Words ends;
    for (const std::string& line : linesOfTrace(trace)) {
        std::smatch parts;
        if (!std::regex_match(line, parts, endLine)) continue;
        ends.push_back(parts[2]);
        const double duration = std::stod(parts[3]);
        EXPECT_EQ(duration >= 0.5, ends.back() == "runUntilDate:") << line;
    }
    EXPECT_THAT(
        ends, ElementsAre("runUntilDate:", "stateDidChangeForSwitchIdentifier:", "runUntilDate:"));
    EXPECT_THAT(trace, HasSubstr(R"("args": ["com.velk.switch.ringer"], "depth": 1})"));
    EXPECT_THAT(trace, HasSubstr(R"("result": 0, "depth": 2})")) << "the panel's question";
}

TEST_F(Streams, TheTraceSaysFirstWhereItComesFrom) {
    const Outcome outcome =
        run({"--trace", "--machine", "iPod5,1", "--host", "media=deaf", "state"});
    std::smatch parts;
    const std::string first = linesOf(outcome.errors).front();
    ASSERT_TRUE(std::regex_match(first, parts, firstLine)) << first;
    EXPECT_GT(std::stoi(parts[1]), 1);
    EXPECT_EQ(parts[2], "iPod5,1");
    EXPECT_EQ(parts[3], "indicator=class,media=deaf");
}

TEST_F(Streams, TheTraceMayGoToStandardOutputBeforeTheState) {
    const Outcome outcome = run({"--trace=-", "flip"});
    EXPECT_EQ(outcome.errors, "");
    ASSERT_TRUE(outcome.output.ends_with("}\noff\n")) << outcome.output;
    EXPECT_THAT(operationsIn(outcome.output.substr(0, outcome.output.size() - 4)),
                Contains("setRingerMuted:"));
}

/// The names of the events of a phase, in a document that must be whole.
Words eventsOf(const std::string& document, const std::string& phase) {
    Words names;
    const auto events = nlohmann::json::parse(document, nullptr, false);
    EXPECT_TRUE(events.is_array()) << document;
    for (const auto& event : events) {
        if (event.at("ph") == phase) names.push_back(event.at("name"));
    }
    return names;
}

TEST_F(Streams, TheTraceMayBeADocumentForViewersWithABeginAndAnEndOfEachCall) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const Outcome outcome = run({"--trace=-", "--trace-format=chrome", "flip", "off"});
    EXPECT_EQ(outcome.errors, "off\n") << "standard output is one document";
    const Words begins = eventsOf(outcome.output, "B");
    EXPECT_THAT(begins, Contains("<SBMediaController> setRingerMuted:"));
    EXPECT_THAT(eventsOf(outcome.output, "E"), UnorderedElementsAreArray(begins));
    EXPECT_THAT(eventsOf(outcome.output, "M"), ElementsAre("process_name", "process_labels"));
    // Calls are closed in the opposite order of their opening.
    Words open;
    std::int64_t last = 0;
    for (const auto& event : nlohmann::json::parse(outcome.output)) {
        if (event.at("ph") == "M") continue;
        EXPECT_GE(event.at("ts"), last - 2) << event;
        last = event.at("ts");
        if (event.at("ph") == "B") {
            open.push_back(event.at("name"));
            continue;
        }
        ASSERT_THAT(open, testing::Not(IsEmpty()));
        EXPECT_EQ(event.at("name"), open.back());
        open.pop_back();
    }
}

TEST_F(Streams, ADocumentForViewersIsWholeHoweverTheProcessEnds) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const pid_t host =
        start(QUILLET_SPRINGBOARD, {.words = {"--root", root(), "--trace=" + trace().string(),
                                              "--trace-format=chrome", "flip", "off"},
                                    .output = folder() / "output",
                                    .errors = folder() / "errors"});
    EXPECT_TRUE(becomesTrue([&] {
        return fs::exists(trace()) && readText(trace()).find("runUntilDate:") != std::string::npos;
    }));
    kill(host, SIGKILL);
    EXPECT_EQ(waitFor(host), -SIGKILL);
    EXPECT_EQ(eventsOf(readText(trace()), "B").back(), "<NSRunLoop> runUntilDate:");
}

TEST_F(Streams, AFlipOfASwitchThatVibratesItselfPlaysTheSound) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false},
                                               {"vibrate-when-off", true},
                                               {"vibrate-when-on", false}});
    const std::string sound = R"("op": "AudioServicesPlaySystemSound", "args": [4095]})";
    EXPECT_THAT(run({"--trace", "flip", "off"}).errors, HasSubstr(sound));
}

TEST_F(Streams, TheTraceMayBeTextForPeople) {
    const std::regex line{
        R"re( +[0-9]+\.[0-9]{6}  (  )*([A-Za-z_]+\(.*\)|<?[A-Z]+[a-zA-Z]+>? .+|end of .*)( = .+)?)re"};
    const Outcome outcome = run({"--trace", "--trace-format", "text", "flip", "off"});
    EXPECT_EQ(outcome.output, "off\n");
    Words lines = linesOf(outcome.errors);
    EXPECT_EQ(lines.size(), linesOf(run({"--trace", "flip", "off"}).errors).size());
    EXPECT_THAT(lines.front(), testing::MatchesRegex("# 20.*Z springboard, process [0-9]+, "
                                                     "iPhone6,1, indicator=class,media=instance"));
    lines.erase(lines.begin());
    for (const std::string& text : lines) EXPECT_TRUE(std::regex_match(text, line)) << text;
    EXPECT_THAT(outcome.errors, HasSubstr("  <SBMediaController> setRingerMuted:true\n"));
    EXPECT_THAT(operationsIn(run({"--trace", "--trace-format=json", "state"}).errors),
                Contains("notify_get_state"));
}

TEST_F(Streams, TheTraceMayGoToAFile) {
    writeText(trace(), "an older trace\n");
    expectOutput({"--trace=" + trace().string(), "flip"}, "off\n");
    EXPECT_THAT(operationsIn(readText(trace())), Contains("setRingerMuted:"));
}

TEST_F(Streams, ATraceThatCannotBeWrittenIsAFailure) {
    const std::string nowhere = folder() / "no" / "trace";
    expectFailure(run({"--trace=" + nowhere, "flip"}), 1, nowhere + ": cannot be written");
    expectOutput({"state"}, "on\n");
}

TEST_F(Streams, ATraceThatIsCutOffIsAFailure) {
    const Outcome outcome = run({"--trace=/dev/full", "flip"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "off\n") << "the switch was flipped all the same";
    EXPECT_EQ(outcome.errors, "springboard: the trace cannot be written\n");
}

TEST_F(Streams, AReaderWhoGoesAwayAmidAFlipIsAFailureAfterIt) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const std::string before = bytes(springBoardPreferencesPath);
    const fs::path pipe = folder() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const pid_t host = start(
        QUILLET_SPRINGBOARD,
        {.words = {"--root", root(), "--trace", "flip", "off"}, .output = pipe, .errors = pipe});
    EXPECT_TRUE(becomesTrue([&, trace = std::string{}]() mutable {
        char letter = 0;
        while (read(reader, &letter, 1) == 1) trace += letter;
        return trace.find("runUntilDate:") != std::string::npos;
    }));
    EXPECT_NE(bytes(springBoardPreferencesPath), before);
    close(reader);
    EXPECT_EQ(waitFor(host), 1);
    EXPECT_EQ(bytes(springBoardPreferencesPath), before);
}

TEST_F(Streams, AMachineNameThatIsNoUTF8IsTracedAsASCII) {
    const Outcome outcome = run({"--trace", "--machine", "iPod\xFF", "flip", "on"});
    EXPECT_THAT(outcome.errors, HasSubstr(R"("op": "uname", "args": ["iPod\ufffd"])"));
}

TEST_F(Streams, StandardOutputThatCannotBeWrittenIsAFailure) {
    const std::string message = "springboard: standard output cannot be written\n";
    for (const Words& words : {Words{"state"}, Words{"flip"}, Words{"apply", "1"}, Words{"--help"},
                               Words{"--version"}, Words{"--json", "state"}}) {
        Words all = {"--root", root()};
        all.insert(all.end(), words.begin(), words.end());
        const Outcome outcome = runBare({.words = all, .output = "/dev/full", .errors = {}});
        EXPECT_EQ(outcome.status, 1) << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, message) << testing::PrintToString(words);
    }
}

TEST_F(Streams, AClosedStandardOutputIsAFailureAndLeavesTheDeviceWhole) {
    const std::string before = bytes("/var/run/notifications");
    for (const int input : {0, 1}) {
        const Outcome outcome = runBare(
            {.words = {"--root", root(), "state"}, .output = {}, .errors = {}, .closed = input});
        EXPECT_EQ(outcome.status, input) << outcome.errors;
        EXPECT_EQ(bytes("/var/run/notifications"), before) << "descriptor " << input;
    }
    expectOutput({"state"}, "on\n");
}

TEST_F(Streams, AClosedStandardErrorLeavesTheDeviceWhole) {
    const std::string before = bytes("/var/run/notifications");
    const Outcome outcome = runBare(
        {.words = {"--root", root(), "state", "--trace"}, .output = {}, .errors = {}, .closed = 2});
    EXPECT_EQ(outcome.status, 1) << "the trace cannot be written";
    EXPECT_EQ(bytes("/var/run/notifications"), before);
    expectOutput({"state"}, "on\n");
}

}  // namespace
}  // namespace quillet::test
