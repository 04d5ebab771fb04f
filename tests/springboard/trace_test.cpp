// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
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

/// What --trace writes, and where.
class TraceOfACommand : public SpringBoard {
protected:
    fs::path trace() const { return folder() / "trace"; }
};

/// The first line: where the trace comes from.
const std::regex firstLine{
    R"re(\{"event": "trace", "time": "20[0-9-]{8}T[0-9:]{8}\.[0-9]{6}Z", "pid": ([0-9]+), )re"
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

TEST_F(TraceOfACommand, TheTraceGoesToStandardErrorWithTheStateOnStandardOutput) {
    const Outcome outcome = run({"--trace", "flip"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "off\n");
    const Words operations = operationsIn(outcome.errors);
    EXPECT_THAT(operations, Contains("setRingerMuted:"));
    EXPECT_THAT(operations, Contains("notify_post"));
}

TEST_F(TraceOfACommand, TheTraceOfAQuestionIsComplete) {
    EXPECT_THAT(operationsIn(run({"state", "--trace"}).errors),
                ElementsAre("init", "CFNotificationCenterGetDarwinNotifyCenter",
                            "CFNotificationCenterAddObserver", "notify_register_check",
                            "notify_check", "notify_get_state", "notify_cancel"));
}

TEST_F(TraceOfACommand, TheTraceOfATapHasTheQuestionTheChangeAndTheRefresh) {
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

TEST_F(TraceOfACommand, ALineHasTheArgumentsAndTheResult) {
    const Outcome outcome = run({"--trace", "--machine", "iPod5,1", "flip", "off"});
    EXPECT_THAT(outcome.errors, HasSubstr(R"("op": "uname", "args": ["iPod5,1"], "result": 0})"));
    EXPECT_THAT(outcome.errors,
                HasSubstr(R"("op": "setVolumeTo:forCategory:", "receiver": )"
                          R"("<AVSystemController>", "args": [0, "Ringtone"], "result": true})"));
    EXPECT_THAT(outcome.errors, HasSubstr(R"("op": "setRingerMuted:", "receiver": )"
                                          R"("<SBMediaController>", "args": [true]})"));
}

TEST_F(TraceOfACommand, TimesAreSecondsSinceTheCommandBegan) {
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

TEST_F(TraceOfACommand, TheTraceTellsHowLongTheSwitchWaitedAndWhatHappenedMeanwhile) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const std::string trace = run({"--trace", "flip"}).errors;
    Words ends;
    for (const std::string& line : linesOfTrace(trace)) {
        std::smatch parts;
        if (!std::regex_match(line, parts, endLine)) continue;
        ends.push_back(parts[2]);
        const double duration = std::stod(parts[3]);
        // The wait ends half a second after its limit was made, which was before the call.
        EXPECT_EQ(duration >= 0.4, ends.back() == "runUntilDate:") << line;
    }
    EXPECT_THAT(
        ends, ElementsAre("runUntilDate:", "stateDidChangeForSwitchIdentifier:", "runUntilDate:"));
    EXPECT_THAT(trace, HasSubstr(R"("args": ["com.velk.switch.ringer"], "depth": 1})"));
    EXPECT_THAT(trace, HasSubstr(R"("result": 0, "depth": 2})")) << "the panel's question";
}

TEST_F(TraceOfACommand, TheTraceSaysFirstWhereItComesFrom) {
    const Outcome outcome =
        run({"--trace", "--machine", "iPod5,1", "--host", "media=deaf", "state"});
    std::smatch parts;
    const std::string first = linesOf(outcome.errors).front();
    ASSERT_TRUE(std::regex_match(first, parts, firstLine)) << first;
    EXPECT_GT(std::stoi(parts[1]), 1);
    EXPECT_EQ(parts[2], "iPod5,1");
    EXPECT_EQ(parts[3], "indicator=class,media=deaf");
}

TEST_F(TraceOfACommand, TheTraceMayGoToStandardOutputBeforeTheState) {
    const Outcome outcome = run({"--trace=-", "flip"});
    EXPECT_EQ(outcome.errors, "");
    ASSERT_TRUE(outcome.output.ends_with("}\noff\n")) << outcome.output;
    EXPECT_THAT(operationsIn(outcome.output.substr(0, outcome.output.size() - 4)),
                Contains("setRingerMuted:"));
}

TEST_F(TraceOfACommand, AFlipOfASwitchThatVibratesItselfPlaysTheSound) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false},
                                               {"vibrate-when-off", true},
                                               {"vibrate-when-on", false}});
    const std::string sound = R"("op": "AudioServicesPlaySystemSound", "args": [4095]})";
    EXPECT_THAT(run({"--trace", "flip", "off"}).errors, HasSubstr(sound));
}

TEST_F(TraceOfACommand, TheTraceMayBeTextForPeople) {
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

TEST_F(TraceOfACommand, TheTraceMayGoToAFile) {
    writeText(trace(), "an older trace\n");
    expectOutput({"--trace=" + trace().string(), "flip"}, "off\n");
    EXPECT_THAT(operationsIn(readText(trace())), Contains("setRingerMuted:"));
}

TEST_F(TraceOfACommand, ATraceThatCannotBeWrittenIsAFailure) {
    const std::string nowhere = folder() / "no" / "trace";
    expectFailure(run({"--trace=" + nowhere, "flip"}), 1, nowhere + ": cannot be written");
    expectOutput({"state"}, "on\n");
}

TEST_F(TraceOfACommand, ATraceThatIsCutOffIsAFailure) {
    const Outcome outcome = run({"--trace=/dev/full", "flip"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "off\n") << "the switch was flipped all the same";
    EXPECT_EQ(outcome.errors, "springboard: the trace cannot be written\n");
}

TEST_F(TraceOfACommand, AMachineNameThatIsNoUTF8IsTracedAsASCII) {
    const Outcome outcome = run({"--trace", "--machine", "iPod\xFF", "flip", "on"});
    EXPECT_THAT(outcome.errors, HasSubstr(R"("op": "uname", "args": ["iPod\ufffd"])"));
}

}  // namespace
}  // namespace quillet::test
