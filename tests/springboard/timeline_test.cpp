// SPDX-License-Identifier: MIT
#include "springboard/timeline.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

using standin::TraceRecord;
using standin::TraceValue;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

TracedCall callAt(double time, const std::string& operation, int depth = 0) {
    return {{time, "", operation, {}, {}, depth, false}, {}};
}

TracedCall waitAt(double time, double duration) {
    return {{time, "", "runUntilDate:", {}, {}, 0, true}, duration};
}

/// A buzz, half a second of nothing but a refresh, and a buzz.
ReadTrace twoBuzzes() {
    TracedCall refresh = callAt(3.0022, "stateDidChangeForSwitchIdentifier:", 1);
    refresh.duration = 0.0001;
    return {"a trace",
            {callAt(3, "AudioServicesPlaySystemSound"), waitAt(3.002, 0.5), refresh,
             callAt(3.503, "AudioServicesPlaySystemSound")}};
}

TEST(Timeline, IsCutWhereNothingHappensAndMagnifiedBetween) {
    const Timeline timeline = layOut(twoBuzzes(), 30);
    ASSERT_THAT(timeline.lines, ElementsAre(SizeIs(2)));
    const auto& [first, second] =
        std::pair{timeline.lines.front().front(), timeline.lines.front().back()};
    EXPECT_NEAR(first.end - first.begin, 0.0023, 1e-9);
    EXPECT_NEAR(first.gap, 0.4997, 1e-9);
    EXPECT_EQ(second.gap, 0);
    EXPECT_EQ(first.column, 0U);
    EXPECT_EQ(second.column, first.width + cutWidth);
    EXPECT_LE(second.column + second.width, 30U);
    EXPECT_EQ(first.calls.front(), 0U);
    EXPECT_EQ(first.calls.back(), first.width - 1);
    EXPECT_NEAR(timeline.duration, 0.503, 1e-9);
    EXPECT_NEAR(timeline.waited, 0.5, 1e-9);
}

TEST(Timeline, MarksWhatIsWorthAWord) {
    const auto bursts = layOut(twoBuzzes(), 30).lines.front();
    ASSERT_THAT(bursts.front().marks, SizeIs(2));
    EXPECT_EQ(bursts.front().marks[0].label, "buzz");
    EXPECT_EQ(bursts.front().marks[0].column, 0U);
    EXPECT_EQ(bursts.front().marks[1].label, "refresh");
    EXPECT_TRUE(bursts.front().marks[1].isInWait);
    EXPECT_FALSE(bursts.back().marks.front().isInWait);
}

TEST(Timeline, HasAStripThatIsTrueToScale) {
    const Timeline timeline = layOut(twoBuzzes(), 20);
    std::string strip;
    for (const bool isCalled : timeline.strip) strip += isCalled ? '#' : '.';
    EXPECT_EQ(strip, "#..................#");
}

TEST(Timeline, OfOneCallIsOneColumn) {
    const Timeline timeline = layOut({"", {callAt(5, "init")}}, 20);
    ASSERT_THAT(timeline.lines, ElementsAre(SizeIs(1)));
    EXPECT_THAT(timeline.lines.front().front().calls, ElementsAre(0U));
    EXPECT_EQ(timeline.duration, 0);
}

TEST(Timeline, GoesOnInTheNextLineWhenOneIsFull) {
    ReadTrace trace;
    for (int second = 0; second < 9; ++second) trace.calls.push_back(callAt(second, "init"));
    const Timeline timeline = layOut(trace, 30);
    EXPECT_THAT(timeline.lines, ElementsAre(SizeIs(3), SizeIs(3), SizeIs(3)));
    for (const Timeline::Line& line : timeline.lines) {
        EXPECT_LE(line.back().column + line.back().width, 30U);
    }
}

TEST(Timeline, TellsTimesShortly) {
    const std::pair<double, const char*> rows[] = {
        {0, "0.0 ms"},      {0.00004, "0.0 ms"}, {0.0042, "4.2 ms"}, {0.00999, "10 ms"},
        {0.4997, "500 ms"}, {1.014, "1.0 s"},    {12.3, "12 s"},     {4000, "4000 s"},
    };
    for (const auto& [seconds, text] : rows) EXPECT_EQ(shortTime(seconds), text) << seconds;
}

TEST(Timeline, AsTextHangsWordsOnTheCalls) {
    EXPECT_EQ(timelineText(layOut(twoBuzzes(), 30), false), R"(a trace
4 calls in 503 ms, 500 ms of it in waits

True to scale:
#............................#
0                       503 ms

Waits cut, calls magnified:
2.3 ms                1.0 ms
|---------+|//500 ms//+-----|
|          :                buzz 503 ms
|          refresh, in the wait 2.2 ms
buzz 0.0 ms
)");
}

/// `springboard timeline` on traces of the switch that vibrates itself.
class TimelineCommand : public SpringBoard {
protected:
    TimelineCommand() {
        write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
        run({"--trace=" + trace(), "--machine=iPod5,1", "flip", "off"});
    }
    std::string trace() const { return folder() / "flip.trace"; }
};

TEST_F(TimelineCommand, ShowsAFlipWithinAScreen) {
    const Outcome outcome = run({"timeline", trace()});
    EXPECT_EQ(outcome.errors, "");
    const Words lines = linesOf(outcome.output);
    EXPECT_LE(lines.size(), 24U);
    for (const std::string& line : lines) EXPECT_LE(line.size(), 80U) << line;
    for (const char* const word :
         {"preferences", "settings off", "state off", "keep volume", "volume 0", "indicator",
          "mute", "settings back", "refresh, in the wait", "buzz", "//500 ms//"}) {
        EXPECT_THAT(outcome.output, HasSubstr(word));
    }
}

TEST_F(TimelineCommand, ReadsStandardInputWithoutAFile) {
    const std::string springboard = std::string{QUILLET_SPRINGBOARD} + " --root " + root().string();
    const Outcome outcome =
        runInShell(springboard + " --trace=- state | " + springboard + " timeline");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output,
                AllOf(StartsWith("springboard, process "), HasSubstr("7 calls in ")));
}

TEST_F(TimelineCommand, WritesAPictureInLightAndDark) {
    const std::string picture = folder() / "flip.svg";
    expectOutput({"timeline", trace(), "--svg", picture}, "");
    const std::string svg = readText(picture);
    EXPECT_THAT(svg, AllOf(StartsWith("<svg xmlns="), HasSubstr("prefers-color-scheme: dark"),
                           HasSubstr(">buzz <"), HasSubstr("500 ms"), Not(HasSubstr("<NS"))));
    EXPECT_TRUE(svg.ends_with("</svg>\n"));
}

TEST_F(TimelineCommand, NamesWhatItCannotReadOrWrite) {
    expectFailure(run({"timeline", folder() / "none"}), 1, "/none: No such file");
    expectFailure(run({"timeline", onDevice(preferencesPath)}), 1, "holds no call of a trace");
    expectFailure(run({"timeline", trace(), "--svg", "/dev/full"}), 1,
                  "/dev/full: cannot be written");
    expectFailure(run({"timeline", trace(), "--svg="}), 2, "--svg needs a name");
}

TEST_F(TimelineCommand, HasColoursOnRequest) {
    EXPECT_THAT(run({"--color=always", "timeline", trace()}).output,
                HasSubstr("\033[1mTrue to scale:\033[m\n"));
    EXPECT_THAT(run({"timeline", trace()}).output, Not(HasSubstr("\033")));
}

}  // namespace
}  // namespace quillet::test
