// SPDX-License-Identifier: MIT
#include "springboard/trace_diff.h"

#include <gmock/gmock.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

ReadTrace traceIn(const std::string& text) {
    std::istringstream stream{text};
    return readTrace(stream, "trace");
}

Words hunks(const Words& first, const Words& second, std::size_t context) {
    return hunksOf(diffOf(first, second), context);
}

constexpr char waitLine[] = R"({"t": 0.5, "op": "runUntilDate:", "receiver": "<A>", "args": [1]})";
constexpr char insideLine[] = R"({"t": 0.6, "op": "b", "args": [true], "result": 1, "depth": 1})";
constexpr char waitEndLine[] = R"({"t": 1, "op": "runUntilDate:", "receiver": "<A>", "dur": 0.5})";

std::string linesWith(const std::string& last) {
    return std::string{waitLine} + "\n" + insideLine + "\n" + waitEndLine + "\n" + last;
}

TEST(ReadingATrace, GivesItsCallsWithDepthAndDuration) {
    const ReadTrace trace = traceIn(
        R"({"event": "trace", "time": "2026", "pid": 7, "program": "p", "model": "m", "host": ""})"
        "\n" +
        linesWith("off\n{\"state\": \"off\"}\n"));
    EXPECT_EQ(trace.origin, "p, process 7, m, 2026");
    ASSERT_EQ(trace.calls.size(), 2U);
    EXPECT_EQ(trace.calls[0].duration, 0.5);
    EXPECT_TRUE(trace.calls[0].record.lasts);
    EXPECT_EQ(trace.calls[1].record.depth, 1);
    EXPECT_EQ(trace.calls[1].record.operation, "b");
    EXPECT_EQ(trace.calls[1].duration, std::nullopt);
}

TEST(ReadingATrace, PassesOverALastLineThatIsCutOffAndNoOther) {
    EXPECT_EQ(traceIn(linesWith(R"({"t": 0.)")).calls.size(), 2U);
    EXPECT_THROW(traceIn(linesWith("{\"t\": 0.\n")), std::runtime_error);
    EXPECT_THROW(traceIn(linesWith("{\"t\": 0}\n")), std::runtime_error);
    EXPECT_THROW(traceIn(linesWith("{\"dur\": 0}\n")), std::runtime_error);
}

TEST(ReadingATrace, WantsACall) {
    EXPECT_THROW(traceIn(""), std::runtime_error);
    EXPECT_THROW(traceIn("   0.5  notify_cancel(0) = 0\n"), std::runtime_error);
}

TEST(ComparableCalls, HaveNeitherTimesNorTheNumbersOfTokens) {
    const Words lines = comparableCalls(
        traceIn(R"({"t": 1, "op": "notify_register_check", "args": ["a", 7], "result": 0}
{"t": 1, "op": "notify_set_state", "args": [7, 7], "result": 0}
{"t": 2, "op": "runUntilDate:", "receiver": "<NSRunLoop>", "args": [2.5]}
{"t": 2, "op": "notify_register_check", "args": ["a", 3], "result": 0, "depth": 1}
{"t": 2, "op": "notify_cancel", "args": [-1], "result": 2}
)"));
    EXPECT_THAT(lines,
                ElementsAre(R"(notify_register_check("a", "t1") = 0)",
                            R"(notify_set_state("t1", 7) = 0)", R"(<NSRunLoop> runUntilDate:"...")",
                            R"(  notify_register_check("a", "t2") = 0)", "notify_cancel(-1) = 2"));
}

TEST(Diff, OfTheSameIsEmpty) {
    EXPECT_THAT(hunks({"a", "b"}, {"a", "b"}, 3), IsEmpty());
    EXPECT_THAT(hunks({}, {}, 3), IsEmpty());
}

TEST(Diff, ShowsWhatWasTakenAwayAndAddedWithWhatStandsAround) {
    EXPECT_THAT(hunks({"a", "b", "c", "d"}, {"a", "b", "x", "d"}, 1),
                ElementsAre("@@ call 2", "  b", "- c", "+ x", "  d"));
    EXPECT_THAT(hunks({}, {"a"}, 1), ElementsAre("@@ call 1", "+ a"));
    EXPECT_THAT(hunks({"a"}, {}, 1), ElementsAre("@@ call 1", "- a"));
}

TEST(Diff, ShowsACallThatMovedOnceAtEachPlace) {
    EXPECT_THAT(hunks({"a", "b", "c", "d", "e"}, {"b", "c", "d", "a", "e"}, 0),
                ElementsAre("@@ call 1", "- a", "@@ call 5", "+ a"));
}

TEST(Diff, OfTwoThatHaveLittleInCommonIsAllOfBoth) {
    const Words first(5000, "a");
    const Words second(5000, "b");
    EXPECT_EQ(diffOf(first, second).size(), 10'000U);
}

class TraceDiff : public SpringBoard {
protected:
    std::string traced(const std::string& name, Words words) {
        const std::string file = folder() / name;
        words.insert(words.begin(), {"--trace=" + file, "flip", "off"});
        run(words);
        return file;
    }
};

TEST_F(TraceDiff, OfTwoRunsOfOneCommandSaysNothing) {
    const std::string first = traced("first", {});
    expectOutput({"trace", "diff", first, traced("second", {})}, "");
}

TEST_F(TraceDiff, OfAnotherModelShowsWhereAndEndsWithOne) {
    const std::string first = traced("first", {});
    const std::string second = traced("second", {"--machine=iPod5,1"});
    const Outcome outcome = run({"trace", "diff", first, second});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("\n- uname(\"iPhone6,1\") = 0\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\n+ uname(\"iPod5,1\") = 0\n"));
    EXPECT_THAT(outcome.output, HasSubstr("--- " + first + ": springboard, process "));
    EXPECT_THAT(outcome.errors, HasSubstr("springboard: the traces differ in "));
    EXPECT_THAT(run({"--color=always", "trace", "diff", first, second}).output,
                HasSubstr("\033[31m- uname(\"iPhone6,1\") = 0\033[m\n"));
}

TEST_F(TraceDiff, NamesAFileThatHoldsNoTrace) {
    expectFailure(run({"trace", "diff", root() / "none", root() / "none"}), 1, "/none: No such");
    expectFailure(run({"trace", "diff", onDevice(preferencesPath), "-"}), 1, "holds no call");
    expectFailure(run({"trace", "diff", "a"}), 2, "diff needs two traces");
    expectFailure(run({"trace"}), 2, "trace needs a command; see \"springboard help trace\"\n");
}

}  // namespace
}  // namespace quillet::test
