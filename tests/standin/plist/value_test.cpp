// SPDX-License-Identifier: MIT
#include "platform/standin/plist/readings.h"
#include "tests/support/values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace quillet::standin {
namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float largest = std::numeric_limits<float>::max();

TEST(Value, ABooleanReadsAsItIs) {
    EXPECT_EQ(boolValue(true), true);
    EXPECT_EQ(boolValue(false), false);
}

TEST(Value, ANumberReadsAsYesWhenItIsNotZero) {
    EXPECT_EQ(boolValue(0), false);
    EXPECT_EQ(boolValue(1), true);
    EXPECT_EQ(boolValue(-1), true);
    EXPECT_EQ(boolValue(256), true);
    EXPECT_EQ(boolValue(std::numeric_limits<std::int64_t>::min()), true);
    EXPECT_EQ(boolValue(std::uint64_t{0}), false);
    EXPECT_EQ(boolValue(std::uint64_t{1} << 63), true);
    EXPECT_EQ(boolValue(0.0), false);
    EXPECT_EQ(boolValue(-0.0), false);
    EXPECT_EQ(boolValue(0.25), true);
    EXPECT_EQ(boolValue(std::numeric_limits<double>::denorm_min()), true);
    EXPECT_EQ(boolValue(std::numeric_limits<double>::quiet_NaN()), true);
}

TEST(Value, AStringReadsAsYesByItsFirstCharacterThatCounts) {
    for (const char* yes : {"Y",  "y",  "T",  "t",  "1",   "2",     "3",     "4",  "5",
                            "6",  "7",  "8",  "9",  "YES", "true",  "10",    " Y", "\t\n\v\f\r y",
                            "+1", "-1", "+Y", "-t", "007", "+0001", " -00y", "0Y", "1no"}) {
        EXPECT_EQ(boolValue(std::string{yes}), true) << yes;
    }
    for (const char* no :
         {"",    " ",   "0",   "000", "+",  "-",  "N", "n", "no", "false",     "F", "++1", "+-1",
          "-+Y", "+ 1", "0 1", "0.5", ".5", "x1", "/", ":", "on", "\xC2\xA0Y", "~", "~Y",  "0~1"}) {
        EXPECT_EQ(boolValue(std::string{no}), false) << no;
    }
}

TEST(Value, AStringReadsAsNoWhenAZeroByteComesFirst) {
    EXPECT_EQ(boolValue(std::string("\0Y", 2)), false);
}

TEST(Value, OtherKindsHaveNoReadings) {
    for (const Value& value : {Value{Data{"1"}}, Value{Date{1}}, Value{UID{1}}, Value{Array{1, 2}},
                               Value{Dictionary{{"a", 1}}}}) {
        EXPECT_EQ(boolValue(value), std::nullopt) << testing::PrintToString(value);
        EXPECT_EQ(floatValue(value), std::nullopt) << testing::PrintToString(value);
    }
}

TEST(Value, ABooleanReadsAsOneOrZero) {
    EXPECT_EQ(floatValue(true), 1.0F);
    EXPECT_EQ(floatValue(false), 0.0F);
}

TEST(Value, AnIntegerReadsAsTheNearestFloat) {
    EXPECT_EQ(floatValue(0), 0.0F);
    EXPECT_EQ(floatValue(-7), -7.0F);
    EXPECT_EQ(floatValue(16777217), 16777216.0F);
    EXPECT_EQ(floatValue(16777219), 16777220.0F);
    EXPECT_EQ(floatValue(std::numeric_limits<std::int64_t>::min()), -0x1p63F);
    EXPECT_EQ(floatValue(std::numeric_limits<std::uint64_t>::max()), 0x1p64F);
}

TEST(Value, ARealReadsAsTheNearestFloat) {
    EXPECT_EQ(floatValue(0.1), 0.1F);
    EXPECT_EQ(floatValue(-2.5), -2.5F);
    EXPECT_EQ(floatValue(1e-60), 0.0F);
    EXPECT_TRUE(std::signbit(*floatValue(-1e-60)));
    EXPECT_TRUE(std::isnan(*floatValue(std::numeric_limits<double>::quiet_NaN())));
}

TEST(Value, ARealBeyondTheFloatsReadsAsAnInfinity) {
    // Half a unit above the largest float is where the nearest value stops being that float.
    const double halfway = 0x1.ffffffp+127;
    EXPECT_EQ(floatValue(double{largest}), largest);
    EXPECT_EQ(floatValue(std::nextafter(halfway, 0)), largest);
    EXPECT_EQ(floatValue(-std::nextafter(halfway, 0)), -largest);
    EXPECT_EQ(floatValue(halfway), infinity);
    EXPECT_EQ(floatValue(-halfway), -infinity);
    EXPECT_EQ(floatValue(1e300), infinity);
    EXPECT_EQ(floatValue(-std::numeric_limits<double>::infinity()), -infinity);
}

TEST(Value, AStringReadsAsTheDecimalNumberThatItBeginsWith) {
    const struct {
        const char* text;
        float number;
    } cases[] = {{"0.5", 0.5F},   {"  1.25", 1.25F}, {"\t\n\v\f\r 2", 2.0F},
                 {"+3", 3.0F},    {"-4.5", -4.5F},   {".5", 0.5F},
                 {"5.", 5.0F},    {"-.25x", -0.25F}, {"1e3", 1000.0F},
                 {"1E-2", 0.01F}, {"1e+2", 100.0F},  {"1e", 1.0F},
                 {"1e+", 1.0F},   {"2e-x", 2.0F},    {"0.75 loud", 0.75F},
                 {"1,5", 1.0F},   {"0x10", 0.0F},    {"1.2.3", 1.2F},
                 {"007", 7.0F},   {"0.1", 0.1F},     {"16777217", 16777216.0F},
                 {"", 0.0F},      {" ", 0.0F},       {"+", 0.0F},
                 {"-", 0.0F},     {".", 0.0F},       {"-.e5", 0.0F},
                 {"e5", 0.0F},    {"+-5", 0.0F},     {"--5", 0.0F},
                 {"+ 5", 0.0F},   {"inf", 0.0F},     {"infinity", 0.0F},
                 {"nan", 0.0F},   {"-inf", 0.0F},    {"loud", 0.0F},
                 {"YES", 0.0F}};
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(floatValue(std::string{text}), number) << text;
    }
}

TEST(Value, AStringsNumberBeyondTheFloatsReadsAsAnInfinityOrZero) {
    const std::string zeros(400, '0');
    const struct {
        std::string text;
        float number;
    } cases[] = {{"1e39", infinity},
                 {"-1e39", -infinity},
                 {"1e99999999999999999999", infinity},
                 {"1e-99999999999999999999", 0.0F},
                 {"-1e-60", 0.0F},
                 {"1" + zeros, infinity},
                 {"-1" + zeros + ".5", -infinity},
                 {"0." + zeros + "1", 0.0F},
                 {"0." + zeros + "1e500", infinity},
                 {"0." + zeros + "1e+500", infinity},
                 {"1" + zeros + "e-500", 0.0F},
                 {"0." + zeros + "1e401", 1.0F},
                 {"0e99999999999999999999", 0.0F},
                 {"340282346638528859811704183484516925440", largest},
                 {"340282356779733661637539395458142568448", infinity},
                 {"1e-46", 0.0F}};
    for (const auto& [text, number] : cases) EXPECT_EQ(floatValue(text), number) << text;
    EXPECT_TRUE(std::signbit(*floatValue(std::string{"-1e-60"})));
}

TEST(Dictionary, TheLastOfSeveralEntriesCountsAtThePlaceOfTheFirst) {
    const Dictionary dictionary{{"b", 1}, {"a", 2}, {"c", 3}, {"b", 4}, {"a", 5}, {"b", 6}};
    const std::vector<Entry> expected{{"b", 6}, {"a", 5}, {"c", 3}};
    EXPECT_EQ(dictionary.entries(), expected);
}

TEST(Dictionary, EntriesKeepTheOrderInWhichTheyCame) {
    const std::vector<Entry> descending{{"c", 1}, {"b", 2}, {"a", 3}};
    EXPECT_EQ(Dictionary(descending).entries(), descending);
    const std::vector<Entry> ascending{{"", 1}, {"a", 2}, {"ab", 3}};
    EXPECT_EQ(Dictionary(ascending).entries(), ascending);
}

TEST(Dictionary, AdjacentEntriesWithOneKeyMerge) {
    const std::vector<Entry> expected{{"a", 3}};
    EXPECT_EQ((Dictionary{{"a", 1}, {"a", 2}, {"a", 3}}.entries()), expected);
}

TEST(Dictionary, ManyEntriesWithFewKeysMergeInReasonableTime) {
    constexpr int count = 200000;
    std::vector<Entry> entries;
    for (int i = 0; i < count; ++i) entries.push_back({std::to_string(i % (count / 2)), i});
    const Dictionary dictionary{entries};
    const auto left = dictionary.entries();
    ASSERT_EQ(left.size(), std::size_t{count / 2});
    EXPECT_EQ(left.front(), (Entry{"0", count / 2}));
    EXPECT_EQ(left.back(), (Entry{std::to_string(count / 2 - 1), count - 1}));
}

TEST(Dictionary, FindsValuesByTheExactKey) {
    const Dictionary dictionary{{"key", 1}, {"", 2}};
    ASSERT_TRUE(dictionary.find("key"));
    EXPECT_EQ(*dictionary.find("key"), Value{1});
    EXPECT_EQ(*dictionary.find(""), Value{2});
    for (const char* absent : {"Key", "ke", "keys", " key"}) {
        EXPECT_EQ(dictionary.find(absent), std::nullopt) << absent;
    }
    EXPECT_EQ(Dictionary{}.find("key"), std::nullopt);
}

/// What `dictionary` finds for "0" to "99" and "none", each asked for twice.
std::string foundIn(const Dictionary& dictionary) {
    std::string found;
    for (int i = 0; i < 200; ++i) {
        const auto value = dictionary.find(std::to_string(i % 100));
        found += value ? std::get<std::string>(*value) + ' ' : "- ";
        EXPECT_EQ(dictionary.find("none"), std::nullopt);
    }
    return found;
}

TEST(Dictionary, FindsWhatIsThereHoweverOftenALargeOneIsAskedAndChanged) {
    std::vector<Entry> entries;
    for (int i = 0; i < 100; ++i) entries.push_back({std::to_string(i), "a" + std::to_string(i)});
    Dictionary dictionary{entries};
    const Dictionary before = dictionary;
    const auto expect = [&] {
        std::string expected;
        for (const Entry& entry : entries) expected += std::get<std::string>(entry.value) + ' ';
        EXPECT_EQ(foundIn(dictionary), expected + expected);
    };
    expect();
    dictionary.set("7", entries[7].value = std::string{"of one size"});
    expect();
    dictionary.set("8", Array{1, 2, 3});
    dictionary.set("8", entries[8].value = std::string{"of another size"});
    expect();
    dictionary.erase("9");
    entries[9].value = std::string{"-"};
    expect();
    dictionary.set("9", entries[9].value = std::string{"at the end"});
    expect();
    EXPECT_EQ(std::get<std::string>(*before.find("9")), "a9");
}

TEST(Dictionary, ALargeOneWithinALargeOneFindsItsOwn) {
    std::vector<Entry> inner;
    for (int i = 0; i < 100; ++i) inner.push_back({std::to_string(i), std::to_string(2 * i)});
    std::vector<Entry> outer = inner;
    outer[50].value = Dictionary{inner};
    const Dictionary dictionary{outer};
    const auto within = std::get<Dictionary>(*dictionary.find("50"));
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(within.find("50"), Value{std::string{"100"}});
        if (i % 40 != 0) continue;
        EXPECT_EQ(dictionary.find("51"), Value{std::string{"102"}});
    }
}

TEST(Dictionary, SettingReplacesInPlaceOrAppends) {
    Dictionary dictionary{{"a", 1}, {"b", 2}};
    dictionary.set("a", "one");
    dictionary.set("c", 3);
    const std::vector<Entry> expected{{"a", "one"}, {"b", 2}, {"c", 3}};
    EXPECT_EQ(dictionary.entries(), expected);
}

TEST(Dictionary, ErasingRemovesOneEntryAndLeavesTheOthersInOrder) {
    Dictionary dictionary{{"a", 1}, {"b", 2}, {"c", 3}};
    dictionary.erase("b");
    dictionary.erase("absent");
    const std::vector<Entry> expected{{"a", 1}, {"c", 3}};
    EXPECT_EQ(dictionary.entries(), expected);
}

TEST(Dictionary, EqualityDisregardsTheOrder) {
    EXPECT_EQ((Dictionary{{"a", 1}, {"b", 2}}), (Dictionary{{"b", 2}, {"a", 1}}));
    EXPECT_NE((Dictionary{{"a", 1}, {"b", 2}}), (Dictionary{{"a", 2}, {"b", 1}}));
    EXPECT_NE((Dictionary{{"a", 1}}), (Dictionary{{"a", 1}, {"b", 2}}));
    EXPECT_NE((Dictionary{{"a", 1}}), (Dictionary{{"b", 1}}));
}

TEST(Value, KindsThatLookAlikeAreNotEqual) {
    EXPECT_NE(Value{1}, Value{true});
    EXPECT_NE(Value{1}, Value{1.0});
    EXPECT_NE(Value{"1"}, Value{Data{"1"}});
    EXPECT_NE(Value{1.0}, Value{Date{1}});
    EXPECT_NE(Value{Array()}, Value{Dictionary{}});
}

}  // namespace
}  // namespace quillet::standin
