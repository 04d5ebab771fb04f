// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/writer_xml.h"

namespace quillet::standin {
namespace {

const std::string prolog =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

std::string written(const Value& value) { return writePropertyList(value); }

std::string document(const std::string& content) { return prolog + content + "\n</plist>\n"; }

Value nested(int depth) {
    Value value = Array();
    for (int i = 1; i < depth; ++i) {
        value =
            i % 2 == 0 ? Value{Array{std::vector<Value>{value}}} : Value{Dictionary{{"k", value}}};
    }
    return value;
}

TEST(PropertyListWriter, WritesEachKindOnItsOwnIndentedLine) {
    const Dictionary value{{"z", true},
                           {"a", false},
                           {"integer", -12},
                           {"real", 0.75},
                           {"date", Date{0}},
                           {"array", Array{1, Array(), Dictionary{}, "two"}},
                           {"dict", Dictionary{{"", ""}}},
                           {"data", Data{"QUI"}},
                           {"none", Data{}}};
    EXPECT_EQ(written(value), document("<dict>\n"
                                       "\t<key>z</key>\n"
                                       "\t<true/>\n"
                                       "\t<key>a</key>\n"
                                       "\t<false/>\n"
                                       "\t<key>integer</key>\n"
                                       "\t<integer>-12</integer>\n"
                                       "\t<key>real</key>\n"
                                       "\t<real>0.75</real>\n"
                                       "\t<key>date</key>\n"
                                       "\t<date>2001-01-01T00:00:00Z</date>\n"
                                       "\t<key>array</key>\n"
                                       "\t<array>\n"
                                       "\t\t<integer>1</integer>\n"
                                       "\t\t<array/>\n"
                                       "\t\t<dict/>\n"
                                       "\t\t<string>two</string>\n"
                                       "\t</array>\n"
                                       "\t<key>dict</key>\n"
                                       "\t<dict>\n"
                                       "\t\t<key></key>\n"
                                       "\t\t<string></string>\n"
                                       "\t</dict>\n"
                                       "\t<key>data</key>\n"
                                       "\t<data>\n"
                                       "\tUVVJ\n"
                                       "\t</data>\n"
                                       "\t<key>none</key>\n"
                                       "\t<data>\n"
                                       "\t</data>\n"
                                       "</dict>"));
}

TEST(PropertyListWriter, AnyKindMayStandAtTheTop) {
    EXPECT_EQ(written(true), document("<true/>"));
    EXPECT_EQ(written("text"), document("<string>text</string>"));
    EXPECT_EQ(written(Dictionary{}), document("<dict/>"));
    EXPECT_EQ(written(Array()), document("<array/>"));
}

TEST(PropertyListWriter, EscapesMarkupAndControlCharacters) {
    EXPECT_EQ(written("a&b<c>d\"e'f"), document("<string>a&amp;b&lt;c&gt;d\"e'f</string>"));
    EXPECT_EQ(written("\t\n\r\x01\x1F\x7F "), document("<string>\t\n&#13;&#1;&#31;\x7F </string>"));
    EXPECT_EQ(written(std::string(1, '\0')), document("<string>&#0;</string>"));
    EXPECT_EQ(written("&&"), document("<string>&amp;&amp;</string>"));
    EXPECT_EQ(written("]]>"), document("<string>]]&gt;</string>"));
    EXPECT_EQ(written("\u20AC\U0001F600"), document("<string>\u20AC\U0001F600</string>"));
    EXPECT_EQ(written(Dictionary{{"<&>\r", 1}}),
              document("<dict>\n\t<key>&lt;&amp;&gt;&#13;</key>\n\t<integer>1</integer>\n</dict>"));
}

TEST(PropertyListWriter, WritesRealsInTheirShortestForm) {
    using Limits = std::numeric_limits<double>;
    const struct {
        double number;
        const char* text;
    } cases[] = {{0.1, "0.1"},
                 {-0.0, "-0"},
                 {3, "3"},
                 {1e300, "1e+300"},
                 {double{0.1F}, "0.10000000149011612"},
                 {Limits::denorm_min(), "5e-324"},
                 {Limits::max(), "1.7976931348623157e+308"},
                 {-Limits::min(), "-2.2250738585072014e-308"},
                 {Limits::quiet_NaN(), "nan"},
                 {Limits::infinity(), "+infinity"},
                 {-Limits::infinity(), "-infinity"}};
    for (const auto& [number, text] : cases) {
        EXPECT_EQ(written(number), document(std::string{"<real>"} + text + "</real>"));
    }
}

TEST(PropertyListWriter, WritesIntegersOfBothRanges) {
    const struct {
        Value value;
        const char* text;
    } cases[] = {{std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
                 {std::numeric_limits<std::int64_t>::max(), "9223372036854775807"},
                 {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"}};
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(written(value), document(std::string{"<integer>"} + text + "</integer>"));
    }
}

TEST(PropertyListWriter, WritesTheWholeSecondThatADateFallsIn) {
    const struct {
        double seconds;
        const char* text;
    } cases[] = {{0.999, "2001-01-01T00:00:00Z"},
                 {-0.001, "2000-12-31T23:59:59Z"},
                 {97445, "2001-01-02T03:04:05Z"},
                 {-63113904000, "0001-01-01T00:00:00Z"},
                 {252423993599.75, "9999-12-31T23:59:59Z"},
                 {252423993600, "10000-01-01T00:00:00Z"},
                 {-63114076800, "0000-12-30T00:00:00Z"},
                 {-63177062400, "-0001-01-01T00:00:00Z"},
                 {67767975255225600.0, "2147483647-12-31T23:59:59Z"},
                 {1e300, "2147483647-12-31T23:59:59Z"},
                 {-1e300, "-2147483647-01-01T00:00:00Z"},
                 {std::numeric_limits<double>::quiet_NaN(), "0001-01-01T00:00:00Z"}};
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(written(Date{seconds}), document(std::string{"<date>"} + text + "</date>"));
    }
}

TEST(PropertyListWriter, TakesALimitToTheByte) {
    const Array value{1, -1, std::uint64_t{1} << 63, 0.5, Date{0}, Data{"QUI"}, "<", UID{7}};
    const std::string text = written(value);
    EXPECT_EQ(writeXML(value.head(), text.size()), text);
    EXPECT_EQ(writeXML(value.head(), text.size() - 1), std::nullopt);
}

TEST(PropertyListWriter, WritesAnIdentifierAsADictionaryThatReadsBackAsOne) {
    EXPECT_EQ(written(UID{7}), document("<dict>\n\t<key>CF$UID</key>\n"
                                        "\t<integer>7</integer>\n</dict>"));
    EXPECT_EQ(written(Array{UID{7}}), document("<array>\n\t<dict>\n\t\t<key>CF$UID</key>\n"
                                               "\t\t<integer>7</integer>\n\t</dict>\n</array>"));
    const Value value = Dictionary{{"root", Array{UID{0}, UID{1}}}};
    EXPECT_EQ(readXMLPropertyList(written(value)), value);
}

TEST(PropertyListWriter, WritesDataInLinesOf68Characters) {
    const std::string line(68, 'A');
    EXPECT_EQ(written(Data{std::string(51, '\0')}), document("<data>\n" + line + "\n</data>"));
    EXPECT_EQ(written(Data{std::string(52, '\0')}),
              document("<data>\n" + line + "\nAA==\n</data>"));
    EXPECT_EQ(written(Data{std::string(104, '\0')}),
              document("<data>\n" + line + "\n" + line + "\nAAA=\n</data>"));
    EXPECT_EQ(written(Data{"\xFB\xEF\xBE\xFF"}), document("<data>\n++++/w==\n</data>"));
}

TEST(PropertyListWriter, WhatItWritesReadsBackEqual) {
    std::string everyByteOfASCII;
    for (char c = 0; c < 0x7F; ++c) everyByteOfASCII += c;
    std::string everyByte;
    for (int c = 0; c < 256; ++c) everyByte += static_cast<char>(c);
    std::vector<Value> values{true,
                              false,
                              0,
                              std::numeric_limits<std::int64_t>::min(),
                              std::uint64_t{1} << 63,
                              0.1,
                              -std::numeric_limits<double>::infinity(),
                              everyByteOfASCII,
                              "\u0080\u20AC\uFFFF\U0010FFFF",
                              Date{-1},
                              Dictionary{{everyByteOfASCII, Array()}, {"", Dictionary{}}}};
    for (std::size_t size = 0; size <= everyByte.size(); ++size) {
        values.push_back(Data{everyByte.substr(everyByte.size() - size)});
    }
    EXPECT_EQ(readXMLPropertyList(written(Array{values})), Value{Array{values}});
    EXPECT_EQ(readXMLPropertyList(written(nested(maxDepth))), nested(maxDepth));
}

TEST(PropertyListWriter, RealsOfAnyBitsReadBackTheSame) {
    std::mt19937_64 random{7};
    for (int i = 0; i < 20000; ++i) {
        const auto number = std::bit_cast<double>(random());
        if (std::isnan(number)) continue;
        ASSERT_EQ(readXMLPropertyList(written(number)), Value{number}) << number;
    }
}

TEST(PropertyListWriter, EveryDayReadsBackTheSame) {
    constexpr double step = 61;  // a prime: every day of a month and of a year comes up
    for (double century = -1096000; century < 5000000; century += 36500) {
        std::vector<Value> days;
        for (double day = century; day < century + 36500; day += step) {
            days.emplace_back(Date{day * 86400 + 3661});
        }
        const Value dates = Array{days};
        ASSERT_EQ(readXMLPropertyList(written(dates)), dates) << century;
    }
}

}  // namespace
}  // namespace quillet::standin
