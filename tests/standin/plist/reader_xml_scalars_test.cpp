// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

TEST(XMLScalar, IntegersReachFromTheLeastSignedToTheGreatestUnsigned) {
    const struct {
        const char* text;
        Value value;
    } cases[] = {{"0", 0},
                 {"-0", 0},
                 {"+7", 7},
                 {" \t\r\n42 ", 42},
                 {"007", 7},
                 {"0x10", 16},
                 {"0XfF", 255},
                 {"-0x10", -16},
                 {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                 {"9223372036854775808", std::uint64_t{1} << 63},
                 {"18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
                 {"0xFFFFFFFFFFFFFFFF", std::numeric_limits<std::uint64_t>::max()},
                 {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
                 {"-0x8000000000000000", std::numeric_limits<std::int64_t>::min()}};
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<integer>"} + text + "</integer>"), value)
            << text;
    }
    for (const char* text : {"",
                             " ",
                             "+",
                             "-",
                             "--1",
                             "+-1",
                             "- 1",
                             "1 2",
                             "1.0",
                             "1e3",
                             "x",
                             "0x",
                             "-0x",
                             "0x-1",
                             "0xG",
                             "0b1",
                             "18446744073709551616",
                             "-9223372036854775809",
                             "0x10000000000000000",
                             "-0x8000000000000001"}) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<integer>"} + text + "</integer>"), std::nullopt)
            << text;
    }
    EXPECT_EQ(readXMLPropertyList("<integer/>"), std::nullopt);
}

TEST(XMLScalar, RealsAreDecimalNumbersOrWords) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        double value;
    } cases[] = {{"0", 0},
                 {"1.5", 1.5},
                 {"-0.25", -0.25},
                 {"+2", 2},
                 {" 3 ", 3},
                 {".5", 0.5},
                 {"5.", 5},
                 {"1e3", 1000},
                 {"1E-2", 0.01},
                 {"4.9e-324", 5e-324},
                 {"0.1", 0.1},
                 {"inf", infinity},
                 {"-INF", -infinity},
                 {"+Infinity", infinity},
                 {"-infinity", -infinity},
                 {"1e999", infinity},
                 {"-1e999", -infinity},
                 {"1e-999", 0.0},
                 {"1.7976931348623157e308", std::numeric_limits<double>::max()}};
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<real>"} + text + "</real>"), Value{value})
            << text;
    }
    for (const char* text : {"nan", "NaN", "+nan", "-NAN"}) {
        const auto value = readXMLPropertyList(std::string{"<real>"} + text + "</real>");
        ASSERT_TRUE(value && std::holds_alternative<double>(*value)) << text;
        EXPECT_TRUE(std::isnan(std::get<double>(*value))) << text;
    }
    for (const char* text : {"", " ", "+", ".", "e5", "1e", "1.2.3", "0x10", "1,5", "--1", "+-1",
                             "infinite", "nan(1)", "in", "1 2", "- 1", "1f"}) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<real>"} + text + "</real>"), std::nullopt)
            << text;
    }
    EXPECT_EQ(readXMLPropertyList("<real/>"), std::nullopt);
}

TEST(XMLScalar, DatesAreSecondsOfTheCalendar) {
    const struct {
        const char* text;
        double seconds;
    } cases[] = {{"2001-01-01T00:00:00Z", 0},
                 {"2001-01-02T03:04:05Z", 97445},
                 {"2000-12-31T23:59:59Z", -1},
                 {"1970-01-01T00:00:00Z", -978307200},
                 {"2000-02-29T00:00:00Z", -26524800},
                 {"2400-02-29T12:00:00Z", 12596299200},
                 {"0001-01-01T00:00:00Z", -63113904000},
                 {"0000-12-30T00:00:00Z", -63114076800},
                 {"0000-02-29T00:00:00Z", -63140428800},
                 {"-0001-01-01T00:00:00Z", -63177062400},
                 {"-001-01-01T00:00:00Z", -63177062400},
                 {"1-01-01T00:00:00Z", -63113904000},
                 {"9999-12-31T23:59:59Z", 252423993599},
                 {"10000-01-01T00:00:00Z", 252423993600},
                 {"2147483647-12-31T23:59:59Z", 67767975255225600.0},
                 {"-2147483647-01-01T00:00:00Z", -67768101514656000.0}};
    for (const auto& [text, seconds] : cases) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<date>"} + text + "</date>"),
                  Value{Date{seconds}})
            << text;
    }
    for (const char* text : {"",
                             "2001",
                             "2001-01-01",
                             "2001-01-01T00:00:00",
                             "2001-01-01T00:00:00z",
                             "2001-01-01t00:00:00Z",
                             "2001-01-01 00:00:00Z",
                             " 2001-01-01T00:00:00Z",
                             "2001-01-01T00:00:00Z ",
                             "2001-1-01T00:00:00Z",
                             "-01-01T00:00:00Z",
                             "+2001-01-01T00:00:00Z",
                             "--001-01-01T00:00:00Z",
                             "2147483648-01-01T00:00:00Z",
                             "-2147483648-01-01T00:00:00Z",
                             "99999999999999999999-01-01T00:00:00Z",
                             "-0001-02-29T00:00:00Z",
                             "2001-00-01T00:00:00Z",
                             "2001-13-01T00:00:00Z",
                             "2001-01-00T00:00:00Z",
                             "2001-01-32T00:00:00Z",
                             "2001-02-29T00:00:00Z",
                             "1900-02-29T00:00:00Z",
                             "2001-04-31T00:00:00Z",
                             "2001-01-01T24:00:00Z",
                             "2001-01-01T00:60:00Z",
                             "2001-01-01T00:00:60Z",
                             "2001-01-01T00:00:00.5Z",
                             "2001-01-01T00:00:00+00:00"}) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<date>"} + text + "</date>"), std::nullopt)
            << text;
    }
    EXPECT_EQ(readXMLPropertyList("<date/>"), std::nullopt);
}

TEST(XMLScalar, DataIsBase64WithAnythingElseInIt) {
    const struct {
        const char* text;
        std::string bytes;
    } cases[] = {{"", ""},
                 {" \n\t\r ", ""},
                 {"QQ==", "A"},
                 {"QUI=", "AB"},
                 {"QUJD", "ABC"},
                 {"QUJDRA==", "ABCD"},
                 {"Q U\nJ\tD\r", "ABC"},
                 {"Q Q = =", "A"},
                 {"AAAA", std::string(3, '\0')},
                 {"/+8=", "\xFF\xEF"},
                 {"////", "\xFF\xFF\xFF"},
                 {"Q", ""},
                 {"QQ", "A"},
                 {"QQ=", "A"},
                 {"QUI", "AB"},
                 {"QUJDR", "ABC"},
                 {"QQ===", "A"},
                 {"QUI==", "AB"},
                 {"QUJD=", "ABC"},
                 {"=", ""},
                 {"====", ""},
                 {"=QUJD", "ABC"},
                 {"Q===", ""},
                 {"QQ==QUI=", "AAB"},
                 {"QU!JD", "ABC"},
                 {"Q-U_J.D", "ABC"},
                 {"QR==", "A"},
                 {"QUJ=", "AB"},
                 {"QU\xC3\xA9JD", "ABC"}};
    for (const auto& [text, bytes] : cases) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<data>"} + text + "</data>"), Value{Data{bytes}})
            << text;
    }
}

}  // namespace
}  // namespace quillet::standin
