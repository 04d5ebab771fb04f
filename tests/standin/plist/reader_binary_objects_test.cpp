// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/standin/plist/binary_property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

std::string dateObject(double seconds) {
    return "\x33" + bigEndian(std::bit_cast<std::uint64_t>(seconds), 8);
}

TEST(BinaryObject, IntegersOfEveryWidth) {
    const std::string ones(8, '\xFF');
    const std::string zeros(8, '\0');
    const struct {
        std::string object;
        Value value;
    } cases[] = {{"\x10\x00"s, 0},
                 {"\x10\x7F"s, 127},
                 {"\x10\xFF"s, 255},
                 {"\x11\x01\x02"s, 258},
                 {"\x11\xFF\xFF"s, 65535},
                 {"\x12\x01\x02\x03\x04"s, 0x01020304},
                 {"\x12\xFF\xFF\xFF\xFF"s, std::int64_t{0xFFFFFFFF}},
                 {"\x13" + bigEndian(0x0102030405060708, 8), 0x0102030405060708},
                 {"\x13" + ones, -1},
                 {"\x13\x80"s + std::string(7, '\0'), std::numeric_limits<std::int64_t>::min()},
                 {"\x14" + zeros + bigEndian(5, 8), 5},
                 {"\x14" + zeros + ones, std::numeric_limits<std::uint64_t>::max()},
                 {"\x14" + zeros + bigEndian(std::uint64_t{1} << 63, 8), std::uint64_t{1} << 63},
                 {"\x14" + ones + ones, -1},
                 {"\x14" + ones + bigEndian(std::uint64_t{1} << 63, 8),
                  std::numeric_limits<std::int64_t>::min()}};
    for (const auto& [object, value] : cases) {
        EXPECT_EQ(readObject(object), value) << testing::PrintToString(object);
    }
}

TEST(BinaryObject, IntegersBeyondBothRangesAreMalformed) {
    EXPECT_EQ(readObject("\x14" + bigEndian(1, 8) + bigEndian(0, 8)), std::nullopt);
    EXPECT_EQ(readObject("\x14" + std::string(8, '\xFF') + bigEndian(0, 8)), std::nullopt);
    EXPECT_EQ(readObject("\x14\x80"s + std::string(15, '\0')), std::nullopt);
}

TEST(BinaryObject, RealsOfBothWidths) {
    EXPECT_EQ(readObject("\x22" + bigEndian(std::bit_cast<std::uint32_t>(0.1F), 4)),
              Value{double{0.1F}});
    for (const double number :
         {0.0, 0.1, -2.5, 1e300, 5e-324, std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(readObject(realObject(number)), Value{number}) << number;
    }
    const auto nan = readObject(realObject(std::numeric_limits<double>::quiet_NaN()));
    ASSERT_TRUE(nan);
    EXPECT_TRUE(std::isnan(std::get<double>(*nan)));
}

TEST(BinaryObject, DatesAreAnyNumberOfSeconds) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds :
         {0.0, -0.5, 1234567.875, -63113904000.0, 252423993599.75, -63114076800.0, 252423993600.0,
          1e300, -1e300, infinity, -infinity}) {
        EXPECT_EQ(readObject(dateObject(seconds)), Value{Date{seconds}}) << seconds;
    }
    const auto value = readObject(dateObject(std::numeric_limits<double>::quiet_NaN()));
    ASSERT_TRUE(value);
    EXPECT_TRUE(std::isnan(std::get<Date>(*value).seconds));
}

TEST(BinaryObject, IdentifiersOfArchivesOfEveryWidth) {
    for (unsigned size = 1; size <= 16; ++size) {
        const std::string marker(1, static_cast<char>(0x80 | (size - 1)));
        EXPECT_EQ(readObject(marker + bigEndian(0x81, size)), Value{UID{0x81}}) << size;
    }
    constexpr std::uint64_t greatest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(readObject("\x87" + bigEndian(greatest, 8)), Value{UID{greatest}});
    const BinaryPropertyList file{{dictionaryObject({1}, {2}), asciiObject("root"), "\x80\x07"}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Dictionary{{"root", UID{7}}}}));
}

TEST(BinaryObject, ADictionaryThatLooksLikeAnIdentifierIsOneOnlyInXML) {
    const BinaryPropertyList file{{dictionaryObject({1}, {2}), asciiObject("CF$UID"), "\x10\x07"}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Dictionary{{"CF$UID", 7}}}));
}

TEST(BinaryObject, BooleansDataAndStrings) {
    EXPECT_EQ(readObject("\x08"), Value{false});
    EXPECT_EQ(readObject("\x09"), Value{true});
    EXPECT_EQ(readObject("\x40"), Value{Data{}});
    EXPECT_EQ(readObject("\x43\x00\xFF\x41"s), Value{Data{"\0\xFF\x41"s}});
    EXPECT_EQ(readObject("\x50"), Value{""});
    EXPECT_EQ(readObject("\x53"
                         "a\0\x7F"s),
              Value{"a\0\x7F"s});
    EXPECT_EQ(readObject("\x60"), Value{""});
    EXPECT_EQ(readObject("\x62\x00\x41\x20\xAC"s), Value{"A\u20AC"});
    EXPECT_EQ(readObject("\x62\xD8\x00\xDC\x00"s), Value{"\U00010000"});
    EXPECT_EQ(readObject("\x63\xDB\xFF\xDF\xFF\x00\x42"s), Value{"\U0010FFFF"
                                                                 "B"});
}

TEST(BinaryObject, StringsMarkedASCIIAreUTF8OrElseLatin1) {
    EXPECT_EQ(readObject("\x51\x80"s), Value{"\u0080"});
    EXPECT_EQ(readObject("\x52\x41\xFF"s), Value{"A\u00FF"});
    EXPECT_EQ(readObject("\x52\xC3\xA9"s), Value{"\u00E9"});
    EXPECT_EQ(readObject("\x53\xC3\xA9\xC3"s), Value{"\u00C3\u00A9\u00C3"});
    EXPECT_EQ(readObject("\x53\xED\xA0\x80"s), Value{"\u00ED\u00A0\u0080"});
    const BinaryPropertyList file{{dictionaryObject({1}, {1}), "\x51\xE9"}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Dictionary{{"\u00E9", "\u00E9"}}}));
}

TEST(BinaryObject, UnitsThatAreNoCharacterAreReplaced) {
    EXPECT_EQ(readObject("\x61\xD8\x00"s), Value{"\uFFFD"});
    EXPECT_EQ(readObject("\x61\xDC\x00"s), Value{"\uFFFD"});
    // One unit; what follows it in the file is no part of the string.
    EXPECT_EQ(readObject("\x61\xD8\x00\xDC\x00"s), Value{"\uFFFD"});
    EXPECT_EQ(readObject("\x62\xD8\x00\x00\x41"s), Value{"\uFFFD"
                                                         "A"});
    EXPECT_EQ(readObject("\x62\xD8\x00\xD8\x00"s), Value{"\uFFFD\uFFFD"});
    EXPECT_EQ(readObject("\x62\xDC\x00\xD8\x00"s), Value{"\uFFFD\uFFFD"});
}

TEST(BinaryObject, CountsOfEveryWidth) {
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{14}, std::size_t{15}, std::size_t{255}}) {
        for (unsigned power = 0; power <= 4; ++power) {
            const std::string count =
                std::string(1, static_cast<char>(0x10 | power)) + bigEndian(length, 1U << power);
            EXPECT_EQ(readObject("\x4F" + count + std::string(length, 'a')),
                      Value{Data{std::string(length, 'a')}})
                << length << ' ' << power;
        }
    }
    EXPECT_EQ(readObject("\x5F\x11\x01\x2C"s + std::string(300, 'a')),
              Value{std::string(300, 'a')});
    EXPECT_EQ(readObject("\x6F\x10\x10"s + std::string(32, '\x20')).has_value(), true);
}

TEST(BinaryObject, OfNumbersOfSixteenBytesTheLastEightCount) {
    const std::string high = bigEndian(0x0123456789ABCDEF, 8);
    EXPECT_EQ(readObject("\x4F\x14" + high + bigEndian(3, 8) + "abc"), Value{Data{"abc"}});
    EXPECT_EQ(readObject("\x8F" + high + bigEndian(7, 8)), Value{UID{7}});
    // Their one object stands right behind the header.
    EXPECT_EQ(
        readBinaryPropertyList("bplist00\x09" + high + bigEndian(8, 8) + std::string(6, '\0') +
                               "\x10\x01" + bigEndian(1, 8) + bigEndian(0, 8) + bigEndian(9, 8)),
        Value{true});
    BinaryPropertyList file{{"\xA1" + high + bigEndian(1, 8), "\x09"}};
    file.referenceSize = 16;
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Array{true}}));
}

}  // namespace
}  // namespace quillet::standin
