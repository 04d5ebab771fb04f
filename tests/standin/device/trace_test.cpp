// SPDX-License-Identifier: MIT
#include "platform/standin/device/trace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/property_list.h"
#include "platform/standin/device/device.h"
#include "tests/standin/on_a_device.h"

namespace quillet::test {
namespace {

using standin::Answer;
using standin::toJSON;
using standin::toTrace;
using standin::TraceRecord;
using standin::TraceValue;

/// `value` as JSON, where the result of a call stands.
std::string json(const TraceValue& value) {
    const std::string line = toJSON({0, "", "op", {}, value});
    const std::string before = R"({"t": 0, "op": "op", "args": [], "result": )";
    EXPECT_EQ(line.substr(0, before.size()), before);
    EXPECT_EQ(line.back(), '}');
    return line.substr(before.size(), line.size() - before.size() - 1);
}

std::string json(const char* text) { return json(toTrace(text)); }

TEST(TraceJSON, HasTheTimeTheOperationAndTheArguments) {
    EXPECT_EQ(toJSON({0.5, "", "setVolumeTo:forCategory:", {0.6, std::string{"Ringtone"}}, {}}),
              R"({"t": 0.5, "op": "setVolumeTo:forCategory:", "args": [0.6, "Ringtone"]})");
    EXPECT_EQ(toJSON({0, "", "init", {}, {}}), R"({"t": 0, "op": "init", "args": []})");
}

TEST(TraceJSON, HasTheReceiverOfAMessageAndTheResultWhereThereIsOne) {
    EXPECT_EQ(toJSON({1, "<NSDate>", "op", {true}, TraceValue{}}),
              R"({"t": 1, "op": "op", "receiver": "<NSDate>", "args": [true], "result": null})");
}

TEST(TraceJSON, EveryFieldIsEscaped) {
    EXPECT_EQ(toJSON({0, "a\"b", "c\\d", {std::string{"e\nf"}}, {}}),
              R"({"t": 0, "op": "c\\d", "receiver": "a\"b", "args": ["e\u000af"]})");
}

TEST(TraceJSON, CountsTimeInMillionthsOfASecond) {
    const std::pair<double, std::string> rows[] = {
        {0, "0"},     {0.5, "0.5"},     {1.25, "1.25"},       {0.1 + 0.2, "0.3"},
        {100, "100"}, {0.0000004, "0"}, {0.0000006, "1e-06"}, {12345.678901, "12345.678901"},
    };
    for (const auto& [time, text] : rows) {
        EXPECT_EQ(toJSON({time, "", "op", {}, {}}),
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
        EXPECT_EQ(json(toTrace(number)), "null");
        EXPECT_EQ(json(toTrace(static_cast<float>(number))), "null");
    }
}

TEST(TraceJSON, EscapesQuotesBackslashesAndControlCharacters) {
    EXPECT_EQ(json(""), R"("")");
    EXPECT_EQ(json("a \"b\" \\ /"), R"("a \"b\" \\ /")");
    EXPECT_EQ(json("\x01\t\n\r\x1F\x7F"), "\"\\u0001\\u0009\\u000a\\u000d\\u001f\x7F\"");
    EXPECT_EQ(json(TraceValue{std::string("\0a", 2)}), R"("\u0000a")");
}

TEST(TraceJSON, KeepsCharactersBeyondASCII) {
    EXPECT_EQ(json("\u00e9\u20ac\U0001F514"), "\"\u00e9\u20ac\U0001F514\"");
}

TEST(TraceJSON, KeepsOnlyTheASCIIOfATextThatIsNoUTF8) {
    EXPECT_EQ(json("a\xFF"
                   "b"),
              R"("a\ufffdb")");
    EXPECT_EQ(json("\xC3\n"), R"("\ufffd\u000a")");
    EXPECT_EQ(json("\u00e9\xFF"), R"("\ufffd\ufffd\ufffd")");
}

class TraceOfADevice : public OnADevice {};

TEST_F(TraceOfADevice, ObjectsStandAsTheirValueOrADescription) {
    const NSMutableDictionary dictionary = NSMutableDictionary::init();
    EXPECT_EQ(toTrace(dictionary), TraceValue{"<NSMutableDictionary: 0 entries>"});
    dictionary.setValue(NSNumber::numberWithBool(YES), "a");
    EXPECT_EQ(toTrace(dictionary), TraceValue{"<NSMutableDictionary: 1 entries>"});
    EXPECT_EQ(toTrace(NSString{"text"}), TraceValue{"text"});
    EXPECT_EQ(toTrace(NSNumber::numberWithBool(NO)), TraceValue{false});
    EXPECT_EQ(toTrace(NSNumber::numberWithFloat(0.5F)), TraceValue{0.5});
    EXPECT_EQ(toTrace(NSFileManager::defaultManager()), TraceValue{"<NSFileManager>"});
    EXPECT_EQ(toTrace(Object{}), TraceValue{});
}

TEST_F(TraceOfADevice, OtherPropertyListValuesStandAsTheirClass) {
    using standin::Value;
    const std::pair<Value, const char*> rows[] = {
        {standin::Array{}, "<NSArray>"},
        {standin::Data{"bytes"}, "<NSData>"},
        {standin::Date{}, "<NSDate>"},
        {standin::Dictionary{}, "<NSDictionary: 0 entries>"},
    };
    for (const auto& [value, description] : rows) {
        EXPECT_EQ(toTrace(standin::adopt<Object>(new standin::ValueInstance{value})),
                  TraceValue{description});
    }
    EXPECT_EQ(toTrace(standin::adopt<Object>(new standin::ValueInstance{Value{std::int64_t{-5}}})),
              TraceValue{std::int64_t{-5}});
}

TEST_F(TraceOfADevice, PointersAreNotShown) {
    EXPECT_EQ(standin::pointerTrace(nullptr), TraceValue{});
    EXPECT_EQ(standin::pointerTrace(this), TraceValue{"<pointer>"});
    EXPECT_EQ(standin::objectTrace(nullptr), TraceValue{});
}

TEST_F(TraceOfADevice, EachRecordHasTheTimeOfItsCall) {
    std::vector<double> times;
    device().trace.setSink([&](const TraceRecord& record) { times.push_back(record.time); });
    device().trace.function("first");
    device().clock.advanceTo(0.75);
    device().trace.function("second", Answer{1});
    EXPECT_EQ(times, (std::vector{0.0, 0.75}));
}

TEST_F(TraceOfADevice, WithoutASinkNothingIsRecorded) {
    device().trace.function("seen");
    device().trace.setSink(nullptr);
    device().trace.function("not seen");
    EXPECT_EQ(calls(), Calls{"seen()"});
}

}  // namespace
}  // namespace quillet::test
