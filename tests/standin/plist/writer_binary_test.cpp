// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "platform/standin/plist/object_table.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/tape.h"
#include "platform/standin/plist/writer_binary.h"
#include "tests/standin/plist/binary_property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

std::string inBinary(const Value& value) { return writePropertyList(value, Form::binary); }

/// What a value of one object is stored as.
std::string objectOf(const Value& value) {
    const std::string file = inBinary(value);
    constexpr std::size_t header = 8;
    constexpr std::size_t offsetAndTrailer = 1 + 32;
    return file.substr(header, file.size() - header - offsetAndTrailer);
}

/// A file as a device lays it out, whose numbers are as wide as said.
std::string fileOf(const std::vector<std::string>& objects, std::size_t offsetSize = 1,
                   std::size_t referenceSize = 1) {
    BinaryPropertyList file{objects};
    file.offsetSize = offsetSize;
    file.referenceSize = referenceSize;
    return file.bytes();
}

TEST(BinaryPropertyListWriter, PutsKeysBeforeValuesAndEachValueBeforeWhatItHolds) {
    const Value value = Dictionary{{"z", Array{1, Array(), "two"}},
                                   {"a", Dictionary{{"k", true}, {"z", Data{"QUI"}}}}};
    EXPECT_EQ(inBinary(value),
              fileOf({dictionaryObject({1, 2}, {3, 7}), asciiObject("z"), asciiObject("a"),
                      arrayObject({4, 5, 6}), "\x10\x01", "\xA0", asciiObject("two"),
                      dictionaryObject({8, 1}, {9, 10}), asciiObject("k"), "\x09", "\x43QUI"}));
}

TEST(BinaryPropertyListWriter, AnyKindMayStandAtTheTop) {
    EXPECT_EQ(inBinary(true), fileOf({"\x09"}));
    EXPECT_EQ(inBinary(Dictionary{}), fileOf({"\xD0"}));
    EXPECT_EQ(inBinary(Array()), fileOf({"\xA0"}));
}

TEST(BinaryPropertyListWriter, EqualValuesThatHoldNothingAreOneObject) {
    const Date date{1.5};
    const std::vector<std::string> objects{arrayObject({1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6}),
                                           asciiObject("a"),
                                           "\x10\x07",
                                           "\x09",
                                           "\x33" + bigEndian(std::bit_cast<std::uint64_t>(1.5), 8),
                                           "\x41"
                                           "a",
                                           "\x80\x07"};
    EXPECT_EQ(inBinary(Array{"a", "a", 7, 7, true, true, date, date, Data{"a"}, Data{"a"}, UID{7},
                             UID{7}}),
              fileOf(objects));
    // Read from a file, they share their bytes already, or do not.
    const auto read = readPropertyList(fileOf({arrayObject({1, 1, 2}), "\x51z", "\x51z"}));
    ASSERT_TRUE(read);
    EXPECT_EQ(inBinary(*read), fileOf({arrayObject({1, 1, 1}), "\x51z"}));
}

TEST(BinaryPropertyListWriter, TextsThatBeginAtOnePlaceOfAFileAreAsLongAsTheyWere) {
    // The length of the first one, 81, is the marker of the second.
    const std::string letters(81, 'a');
    const auto read = readPropertyList(fileOf({arrayObject({1, 2}), "\x5F\x10", "\x51" + letters}));
    ASSERT_EQ(read, (Value{Array{letters, "a"}}));
    EXPECT_EQ(readPropertyList(inBinary(*read)), read);
}

TEST(BinaryPropertyListWriter, ValuesThatOnlyLookEqualAreNot) {
    const Value value = Array{1, 1.0, true, UID{1}, Date{1}, "1", Data{"1"}, 0.0, -0.0, "", Data{}};
    const auto read = readBinaryPropertyList(inBinary(value));
    EXPECT_EQ(read, value);
    const auto elements = std::get<Array>(*read).elements();
    EXPECT_TRUE(std::signbit(std::get<double>(elements[8])));
    EXPECT_FALSE(std::signbit(std::get<double>(elements[7])));
}

TEST(BinaryPropertyListWriter, ContainersAreObjectsOfTheirOwn) {
    EXPECT_EQ(inBinary(Array{Array{true}, Array{true}}),
              fileOf({arrayObject({1, 3}), arrayObject({2}), "\x09", arrayObject({2})}));
}

TEST(BinaryPropertyListWriter, IntegersTakeNoMoreBytesThanTheyNeed) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const struct {
        Value value;
        std::string object;
    } cases[] = {
        {0, "\x10\x00"s},
        {255, "\x10\xFF"},
        {256, "\x11\x01\x00"s},
        {65535, "\x11\xFF\xFF"},
        {65536, "\x12\x00\x01\x00\x00"s},
        {std::int64_t{0xFFFFFFFF}, "\x12\xFF\xFF\xFF\xFF"},
        {std::int64_t{1} << 32, "\x13" + bigEndian(std::uint64_t{1} << 32, 8)},
        {-1, "\x13" + std::string(8, '\xFF')},
        {std::numeric_limits<std::int64_t>::min(), "\x13\x80" + std::string(7, '\0')},
        {most, "\x13\x7F" + std::string(7, '\xFF')},
        {std::uint64_t{most} + 1, "\x14" + std::string(8, '\0') + "\x80" + std::string(7, '\0')},
        {std::numeric_limits<std::uint64_t>::max(),
         "\x14" + std::string(8, '\0') + std::string(8, '\xFF')}};
    for (const auto& [value, object] : cases) {
        EXPECT_EQ(objectOf(value), object) << testing::PrintToString(value);
        EXPECT_EQ(readObject(object), value);
    }
    // Of a kind that has room for more.
    EXPECT_EQ(objectOf(std::uint64_t{7}), "\x10\x07");
    EXPECT_EQ(objectOf(std::uint64_t{most}), "\x13\x7F" + std::string(7, '\xFF'));
}

TEST(BinaryPropertyListWriter, IdentifiersTakeNoMoreBytesThanTheyNeed) {
    EXPECT_EQ(objectOf(UID{0}), "\x80\x00"s);
    EXPECT_EQ(objectOf(UID{255}), "\x80\xFF");
    EXPECT_EQ(objectOf(UID{256}), "\x81\x01\x00"s);
    EXPECT_EQ(objectOf(UID{65536}), "\x83\x00\x01\x00\x00"s);
    EXPECT_EQ(objectOf(UID{std::uint64_t{1} << 32}), "\x87\x00\x00\x00\x01\x00\x00\x00\x00"s);
}

TEST(BinaryPropertyListWriter, RealsAndDatesKeepAllTheirBits) {
    using Limits = std::numeric_limits<double>;
    for (const double number : {0.0, -0.0, 0.1, double{0.1F}, Limits::max(), Limits::denorm_min(),
                                -Limits::infinity(), Limits::quiet_NaN()}) {
        const std::string bits = bigEndian(std::bit_cast<std::uint64_t>(number), 8);
        EXPECT_EQ(objectOf(number), "\x23" + bits) << number;
        EXPECT_EQ(objectOf(Date{number}), "\x33" + bits) << number;
    }
}

TEST(BinaryPropertyListWriter, StringsAreASCIIOrElseUTF16) {
    EXPECT_EQ(objectOf(""), "\x50");
    EXPECT_EQ(objectOf("a\0\x7F"s),
              "\x53"
              "a\0\x7F"s);
    EXPECT_EQ(objectOf("a\u0080"),
              "\x62\x00"
              "a\x00\x80"s);
    EXPECT_EQ(objectOf("\u20AC\uFFFD"), "\x62\x20\xAC\xFF\xFD");
    EXPECT_EQ(objectOf("\uFFFF\U00010000\U0010FFFF"),
              "\x65\xFF\xFF\xD8\x00\xDC\x00\xDB\xFF\xDF\xFF"s);
}

TEST(BinaryPropertyListWriter, BytesThatAreNoUTF8AreReplacedOneByOne) {
    EXPECT_EQ(objectOf("\xE2\x82"s), "\x62\xFF\xFD\xFF\xFD");
    EXPECT_EQ(objectOf("\xFF\xC3\xA9"s), "\x62\xFF\xFD\x00\xE9"s);
    EXPECT_EQ(objectOf("\x80"s), "\x61\xFF\xFD");
}

TEST(BinaryPropertyListWriter, CountsFromFifteenOnAreIntegers) {
    EXPECT_EQ(objectOf(Data{std::string(14, 'a')}), "\x4E" + std::string(14, 'a'));
    EXPECT_EQ(objectOf(Data{std::string(15, 'a')}), "\x4F\x10\x0F" + std::string(15, 'a'));
    EXPECT_EQ(objectOf(std::string(15, 'a')), "\x5F\x10\x0F" + std::string(15, 'a'));
    EXPECT_EQ(objectOf(std::string(255, 'a')).substr(0, 3), "\x5F\x10\xFF");
    // Units, where the string has twice as many bytes in UTF-8, and half as many characters.
    std::string pairs;
    for (int i = 0; i < 8; ++i) pairs += "\U0001F600";
    EXPECT_EQ(objectOf(pairs).substr(0, 5), "\x6F\x10\x10\xD8\x3D");
    const std::string array = inBinary(Array{std::vector<Value>(300, true)});
    EXPECT_EQ(array.substr(8, 4), "\xAF\x11\x01\x2C");
}

Value numbers(int count) {
    std::vector<Value> elements;
    for (int i = 0; i < count; ++i) elements.emplace_back(i);
    return Array{elements};
}

/// The sizes of offsets and of references that the trailer tells.
std::string sizesIn(const std::string& file) { return file.substr(file.size() - 26, 2); }

TEST(BinaryPropertyListWriter, ReferencesAndOffsetsTakeOneTwoFourOrEightBytes) {
    // The array is an object too.
    EXPECT_EQ(sizesIn(inBinary(numbers(254))), "\x02\x01");
    EXPECT_EQ(sizesIn(inBinary(numbers(255))), "\x02\x02");
    EXPECT_EQ(sizesIn(inBinary(numbers(65534))), "\x04\x02");
    EXPECT_EQ(sizesIn(inBinary(numbers(65535))), "\x04\x04");
    for (const int count : {254, 255, 65534, 65535}) {
        EXPECT_EQ(readBinaryPropertyList(inBinary(numbers(count))), numbers(count)) << count;
    }
    // Eight bytes of header and three of the data's own stand before the offsets.
    EXPECT_EQ(sizesIn(inBinary(Data{std::string(255 - 11, 'a')})), "\x01\x01");
    EXPECT_EQ(sizesIn(inBinary(Data{std::string(256 - 11, 'a')})), "\x02\x01");
}

TEST(BinaryPropertyListWriter, WhatItWritesReadsBackEqual) {
    std::string everyByte;
    for (int c = 0; c < 256; ++c) everyByte += static_cast<char>(c);
    const Value value = Dictionary{
        {"", Dictionary{{"", Array()}, {"\u20AC\uFFFF\U0010FFFF", Dictionary{}}}},
        {everyByte.substr(0, 128), Data{everyByte}},
        {"dates", Array{Date{0.5}, Date{-1e300}, Date{std::numeric_limits<double>::infinity()}}},
        {"identifiers", Array{UID{0}, UID{std::numeric_limits<std::uint64_t>::max()}}},
        {"no identifier", Dictionary{{"CF$UID", 7}}},
        {"numbers",
         Array{-1, std::uint64_t{1} << 63, 0.1, -std::numeric_limits<double>::infinity()}},
        {"flags", Array{true, false, true}}};
    EXPECT_EQ(readBinaryPropertyList(inBinary(value)), value);
}

TEST(BinaryPropertyListWriter, ThatADictionaryLooksLikeAnIdentifierDoesNotMatter) {
    EXPECT_EQ(objectOf(UID{7}), "\x80\x07");
    const Value value = Dictionary{{"CF$UID", 7}};
    EXPECT_EQ(readBinaryPropertyList(inBinary(value)), value);
}

TEST(BinaryPropertyListWriter, TakesALimitToTheByte) {
    const Array value{1, "text", Array{UID{7}, 0.5}};
    const std::string file = inBinary(value);
    const Node& head = value.head();
    const std::size_t forTable =
        ObjectTable::memoryFor(static_cast<std::size_t>(head.next() - &head));
    EXPECT_EQ(writeBinary(head, forTable + file.size()), file);
    for (const std::size_t less : {forTable + file.size() - 1, forTable, forTable - 1}) {
        EXPECT_EQ(writeBinary(head, less), std::nullopt) << less;
    }
}

TEST(BinaryPropertyListWriter, EntriesKeepTheirOrder) {
    const std::vector<Entry> entries{{"c", 1}, {"a", 2}, {"b", 3}};
    const auto read = readBinaryPropertyList(inBinary(Dictionary{entries}));
    ASSERT_TRUE(read);
    EXPECT_EQ(std::get<Dictionary>(*read).entries(), entries);
}

TEST(BinaryPropertyListWriter, WritesAPartOfAValueAloneAndAValueThatWasChanged) {
    auto value = readXMLPropertyList(
        "<dict><key>a</key><array><true/><string>x</string></array><key>b</key><true/></dict>");
    ASSERT_TRUE(value);
    auto& dictionary = std::get<Dictionary>(*value);
    EXPECT_EQ(inBinary(*dictionary.find("a")),
              fileOf({arrayObject({1, 2}), "\x09", asciiObject("x")}));
    dictionary.set("b", "x");
    EXPECT_EQ(readBinaryPropertyList(inBinary(dictionary)), Value{dictionary});
}

TEST(BinaryPropertyListWriter, TheFirstBytesTellTheForm) {
    EXPECT_EQ(formOf(inBinary(true)), Form::binary);
    EXPECT_EQ(formOf(writePropertyList(true)), Form::xml);
    EXPECT_EQ(formOf("bplist0"), Form::binary);
    EXPECT_EQ(formOf("bplist"), Form::xml);
    EXPECT_EQ(formOf(""), Form::xml);
}

}  // namespace
}  // namespace quillet::standin
