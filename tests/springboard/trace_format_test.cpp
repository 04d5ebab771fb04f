// SPDX-License-Identifier: MIT
#include "springboard/trace_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace quillet::test {
namespace {

using standin::toTrace;
using standin::TraceRecord;
using standin::TraceValue;

std::string lineOf(const TraceRecord& record) { return toLine(toJSON(record)); }

/// `value` as JSON, where the result of a call stands.
std::string json(const TraceValue& value) {
    const std::string line = lineOf({0, "", "op", {}, value});
    const std::string before = R"({"t": 0, "op": "op", "args": [], "result": )";
    EXPECT_EQ(line.substr(0, before.size()), before);
    EXPECT_EQ(line.back(), '}');
    return line.substr(before.size(), line.size() - before.size() - 1);
}

std::string json(const char* text) { return json(toTrace(text)); }

TEST(TraceJSON, HasTheTimeTheOperationAndTheArguments) {
    EXPECT_EQ(lineOf({0.5, "", "setVolumeTo:forCategory:", {0.6, std::string{"Ringtone"}}, {}}),
              R"({"t": 0.5, "op": "setVolumeTo:forCategory:", "args": [0.6, "Ringtone"]})");
    EXPECT_EQ(lineOf({0, "", "init", {}, {}}), R"({"t": 0, "op": "init", "args": []})");
}

TEST(TraceJSON, HasTheReceiverOfAMessageAndTheResultWhereThereIsOne) {
    EXPECT_EQ(lineOf({1, "<NSDate>", "op", {true}, TraceValue{}}),
              R"({"t": 1, "op": "op", "receiver": "<NSDate>", "args": [true], "result": null})");
}

TEST(TraceJSON, EveryFieldIsEscaped) {
    EXPECT_EQ(lineOf({0, "a\"b", "c\\d", {std::string{"e\nf"}}, {}}),
              R"({"t": 0, "op": "c\\d", "receiver": "a\"b", "args": ["e\nf"]})");
}

TEST(TraceJSON, CountsTimeInMillionthsOfASecond) {
    const std::pair<double, std::string> rows[] = {
        {0, "0"},     {0.5, "0.5"},     {1.25, "1.25"},       {0.1 + 0.2, "0.3"},
        {100, "100"}, {0.0000004, "0"}, {0.0000006, "1e-06"}, {12345.678901, "12345.678901"},
    };
    for (const auto& [time, text] : rows) {
        EXPECT_EQ(lineOf({time, "", "op", {}, {}}),
                  R"({"t": )" + text + R"(, "op": "op", "args": []})");
    }
}

TEST(TraceJSON, WritesFlagsAndNothing) {
    EXPECT_EQ(json(TraceValue{true}), "true");
    EXPECT_EQ(json(TraceValue{false}), "false");
    EXPECT_EQ(json(TraceValue{}), "null");
}

TEST(TraceJSON, WritesIntegersInFull) {
    EXPECT_EQ(json(toTrace(0)), "0");
    EXPECT_EQ(json(toTrace(-1)), "-1");
    EXPECT_EQ(json(toTrace(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
    EXPECT_EQ(json(toTrace(std::numeric_limits<std::int64_t>::max())), "9223372036854775807");
    EXPECT_EQ(json(toTrace(std::numeric_limits<std::uint64_t>::max())), "18446744073709551615");
    EXPECT_EQ(json(toTrace(std::uint32_t{4095})), "4095");
}

TEST(TraceJSON, WritesASinglePrecisionNumberAsItWasMeant) {
    EXPECT_EQ(json(toTrace(0.6F)), "0.6");
    EXPECT_EQ(json(toTrace(0.1F)), "0.1");
    EXPECT_EQ(json(toTrace(1.0F)), "1");
    EXPECT_EQ(json(toTrace(-0.75F)), "-0.75");
    EXPECT_EQ(json(toTrace(std::numeric_limits<float>::max())), "3.4028235e+38");
    EXPECT_EQ(json(toTrace(std::numeric_limits<float>::denorm_min())), "1e-45");
}

TEST(TraceJSON, WritesADoublePrecisionNumberSoThatItReadsBackTheSame) {
    EXPECT_EQ(json(toTrace(0.6)), "0.6");
    EXPECT_EQ(json(toTrace(0.25)), "0.25");
    EXPECT_EQ(json(toTrace(1.0 / 3.0)), "0.3333333333333333");
    EXPECT_EQ(json(toTrace(-0.0)), "-0");
    EXPECT_EQ(json(toTrace(1e300)), "1e+300");
    EXPECT_EQ(json(toTrace(-1.2345678901234568e-300)), "-1.2345678901234568e-300");
    EXPECT_EQ(json(toTrace(std::numeric_limits<double>::denorm_min())), "5e-324");
}

TEST(TraceJSON, WritesNullForNumbersThatAreNotFinite) {
    for (const double number : {std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(), std::nan("")}) {
        EXPECT_EQ(json(toTrace(number)), "null") << number;
        EXPECT_EQ(json(toTrace(static_cast<float>(number))), "null") << number;
    }
}

TEST(TraceJSON, EscapesQuotesBackslashesAndControlCharacters) {
    EXPECT_EQ(json(""), R"("")");
    EXPECT_EQ(json("a \"b\" \\ /"), R"("a \"b\" \\ /")");
    EXPECT_EQ(json("\x01\t\n\r\x1F\x7F"), "\"\\u0001\\t\\n\\r\\u001f\x7F\"");
    EXPECT_EQ(json(TraceValue{std::string("\0a", 2)}), R"("\u0000a")");
}

TEST(TraceJSON, KeepsCharactersBeyondASCII) {
    EXPECT_EQ(json("\u00e9\u20ac\U0001F514"), "\"\u00e9\u20ac\U0001F514\"");
}

TEST(TraceJSON, KeepsOnlyTheASCIIOfATextThatIsNoUTF8) {
    EXPECT_EQ(json("a\xFF"
                   "b"),
              R"("a\ufffdb")");
    EXPECT_EQ(json("\xC3\n"), R"("\ufffd\n")");
    EXPECT_EQ(json("\u00e9\xFF"), R"("\ufffd\ufffd\ufffd")");
}

TraceRecord aWait() { return {0.25, "<A>", "wait:", {0.5}, {}, 1, true}; }

TEST(TraceJSON, HasTheDepthOfACallInAnotherOneAndHowLongItTookAtItsEnd) {
    EXPECT_EQ(lineOf(aWait()),
              R"({"t": 0.25, "op": "wait:", "receiver": "<A>", "args": [0.5], "depth": 1})");
    EXPECT_EQ(toLine(endToJSON(aWait(), 0.5)),
              R"({"t": 0.75, "op": "wait:", "receiver": "<A>", "dur": 0.5, "depth": 1})");
}

TEST(TraceJSON, SaysFirstWhereItComesFrom) {
    const TraceOrigin origin{1002, 12, "springboard", "iPod5,1", "media=deaf"};
    EXPECT_EQ(toLine(toJSON(origin)),
              R"({"event": "trace", "time": "1970-01-01T00:00:00.001002Z", "pid": 12, )"
              R"("program": "springboard", "model": "iPod5,1", "host": "media=deaf"})");
    EXPECT_EQ(toText(origin),
              "# 1970-01-01T00:00:00.001002Z springboard, process 12, iPod5,1, media=deaf");
}

TEST(TraceText, IsIndentedByTheDepth) {
    EXPECT_EQ(toText(aWait()), "   0.250000    <A> wait:0.5");
    EXPECT_EQ(endToText(aWait(), 0.5), "   0.750000    end of wait: after 0.500000 s");
}

TEST(TraceText, OfAMessageHasEachPartBeforeItsArgument) {
    EXPECT_EQ(toText({0.5,
                      "<AVSystemController>",
                      "setVolumeTo:forCategory:",
                      {0.6, std::string{"Ringtone"}},
                      TraceValue{true}}),
              R"(   0.500000  <AVSystemController> setVolumeTo:0.6 forCategory:"Ringtone" = true)");
    EXPECT_EQ(toText({12.25, "NSRunLoop", "currentRunLoop", {}, std::string{"<NSRunLoop>"}}),
              R"(  12.250000  NSRunLoop currentRunLoop = "<NSRunLoop>")");
    EXPECT_EQ(toText({0, "<SBMediaController>", "setRingerMuted:", {false}, {}}),
              "   0.000000  <SBMediaController> setRingerMuted:false");
}

TEST(TraceText, OfAFunctionHasItsArgumentsInParentheses) {
    EXPECT_EQ(toText({0, "", "notify_post", {std::string{"a\nname"}}, std::int64_t{0}}),
              R"(   0.000000  notify_post("a\nname") = 0)");
    EXPECT_EQ(
        toText({0, "", "GSSendAppPreferencesChanged", {std::string{"a"}, std::string{"b"}}, {}}),
        R"(   0.000000  GSSendAppPreferencesChanged("a", "b"))");
    EXPECT_EQ(toText({0, "", "notify_get_state", {TraceValue{}}, TraceValue{}}),
              "   0.000000  notify_get_state(null) = null");
}

}  // namespace
}  // namespace quillet::test
