// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include "platform/standin/plist/property_list.h"
#include "tests/standin/plist/binary_property_list.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

std::optional<Value> read(const std::string& bytes) { return readBinaryPropertyList(bytes); }
std::optional<Value> readObject(const std::string& object) { return read(binaryFileOf(object)); }

std::string realObject(double number) {
    return "\x23" + bigEndian(std::bit_cast<std::uint64_t>(number), 8);
}

std::string dateObject(double seconds) {
    return "\x33" + bigEndian(std::bit_cast<std::uint64_t>(seconds), 8);
}

/// An array of 300 elements: true, but the last one, which is a dictionary {"k": [false, 7]}.
BinaryPropertyList largeFile(std::size_t referenceSize) {
    BinaryPropertyList file;
    file.referenceSize = referenceSize;
    std::vector<std::uint64_t> elements(299, 1);
    elements.push_back(2);
    file.objects = {arrayObject(elements, referenceSize),
                    "\x09",
                    dictionaryObject({3}, {4}, referenceSize),
                    asciiObject("k"),
                    arrayObject({5, 6}, referenceSize),
                    "\x08",
                    "\x10\x07"};
    return file;
}

Value largeValue() {
    Array elements(299, true);
    elements.push_back(Dictionary{{"k", Array{false, 7}}});
    return elements;
}

TEST(BinaryPropertyList, EveryOffsetSizeWithEveryReferenceSize) {
    for (std::size_t offsetSize = 2; offsetSize <= 8; ++offsetSize) {
        for (std::size_t referenceSize = 1; referenceSize <= 8; ++referenceSize) {
            BinaryPropertyList file = largeFile(referenceSize);
            file.offsetSize = offsetSize;
            EXPECT_EQ(read(file.bytes()), largeValue()) << offsetSize << ' ' << referenceSize;
        }
    }
    for (std::size_t referenceSize = 1; referenceSize <= 8; ++referenceSize) {
        BinaryPropertyList file{
            {dictionaryObject({1}, {2}, referenceSize), asciiObject("k"), "\x09"}};
        file.offsetSize = 1;
        file.referenceSize = referenceSize;
        EXPECT_EQ(read(file.bytes()), (Value{Dictionary{{"k", true}}})) << referenceSize;
    }
}

TEST(BinaryPropertyList, OffsetsAndReferencesUseAllTheirBytes) {
    // 66000 objects before the ones that count need three bytes for both.
    BinaryPropertyList file;
    file.objects.assign(66000, "\x08");
    file.objects.push_back("\x09");
    file.objects.push_back(arrayObject({66000, 0}, 3));
    file.top = 66001;
    file.offsetSize = 3;
    file.referenceSize = 3;
    EXPECT_EQ(read(file.bytes()), (Value{Array{true, false}}));
}

TEST(BinaryPropertyList, TheTopObjectMayStandAnywhere) {
    BinaryPropertyList file{{"\x08", asciiObject("text"), "\x09"}};
    for (const auto& [top, value] : {std::pair{0U, Value{false}}, {1U, "text"}, {2U, true}}) {
        file.top = top;
        EXPECT_EQ(read(file.bytes()), value) << top;
    }
}

TEST(BinaryPropertyList, IntegersOfEveryWidth) {
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

TEST(BinaryPropertyList, IntegersBeyondBothRangesAreMalformed) {
    EXPECT_EQ(readObject("\x14" + bigEndian(1, 8) + bigEndian(0, 8)), std::nullopt);
    EXPECT_EQ(readObject("\x14" + std::string(8, '\xFF') + bigEndian(0, 8)), std::nullopt);
    EXPECT_EQ(readObject("\x14\x80"s + std::string(15, '\0')), std::nullopt);
}

TEST(BinaryPropertyList, RealsOfBothWidths) {
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

TEST(BinaryPropertyList, DatesKeepTheirFractionsWithinTheCalendar) {
    for (const double seconds : {0.0, -0.5, 1234567.875, -63113904000.0, 252423993599.75}) {
        EXPECT_EQ(readObject(dateObject(seconds)), Value{Date{seconds}}) << seconds;
    }
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds : {-63113904001.0, 252423993600.0, 1e300, -1e300, infinity, -infinity,
                                 std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(readObject(dateObject(seconds)), std::nullopt) << seconds;
    }
}

TEST(BinaryPropertyList, BooleansDataAndStrings) {
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

TEST(BinaryPropertyList, StringsWithBytesOrUnitsThatStandForNothingAreMalformed) {
    EXPECT_EQ(readObject("\x51\x80"s), std::nullopt);
    EXPECT_EQ(readObject("\x52\x41\xFF"s), std::nullopt);
    EXPECT_EQ(readObject("\x61\xD8\x00"s), std::nullopt);
    EXPECT_EQ(readObject("\x61\xDC\x00"s), std::nullopt);
    // One unit; what follows it in the file is no part of the string.
    EXPECT_EQ(readObject("\x61\xD8\x00\xDC\x00"s), std::nullopt);
    EXPECT_EQ(readObject("\x62\xD8\x00\x00\x41"s), std::nullopt);
    EXPECT_EQ(readObject("\x62\xD8\x00\xD8\x00"s), std::nullopt);
    EXPECT_EQ(readObject("\x62\xDC\x00\xD8\x00"s), std::nullopt);
}

TEST(BinaryPropertyList, CountsOfEveryWidth) {
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{14}, std::size_t{15}, std::size_t{255}}) {
        for (unsigned power = 0; power <= 3; ++power) {
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

TEST(BinaryPropertyList, EntriesKeepTheirOrderAndTheLastOfOneKeyCounts) {
    BinaryPropertyList file{{dictionaryObject({1, 2, 3}, {4, 4, 5}), asciiObject("b"),
                             asciiObject("a"), "\x61\x00\x62"s, "\x09", "\x08"}};
    const auto value = read(file.bytes());
    ASSERT_TRUE(value);
    const std::vector<Entry> expected{{"b", false}, {"a", true}};
    EXPECT_EQ(std::get<Dictionary>(*value).entries(), expected);
}

TEST(BinaryPropertyList, ScalarsMayBeSharedManyTimes) {
    BinaryPropertyList file;
    file.offsetSize = 4;
    file.referenceSize = 2;
    file.objects.resize(1);
    std::vector<std::uint64_t> elements;
    Array expected;
    const std::string name = "com.quillet.a.rather.long.shared.name";
    file.objects.insert(file.objects.end(), {asciiObject(name), "\x10\x07", realObject(1.5), "\x09",
                                             dictionaryObject({1}, {2}, 2)});
    for (int i = 0; i < 10000; ++i) {
        elements.insert(elements.end(), {1, 2, 3, 4, 5});
        expected.insert(expected.end(), {name, 7, 1.5, true, Dictionary{{name, 7}}});
    }
    file.objects.front() = arrayObject(elements, 2);
    EXPECT_EQ(read(file.bytes()), Value{expected});
}

TEST(BinaryPropertyList, AFileReadsForAsLongAsItsValueTakesNoMoreThan64TimesItsSize) {
    int good = 0;
    int malformed = 0;
    for (std::size_t outer = 1; outer < 60; ++outer) {
        for (std::size_t inner = 1; inner < 60; ++inner) {
            const BinaryPropertyList file{{arrayObject(std::vector<std::uint64_t>(outer, 1)),
                                           arrayObject(std::vector<std::uint64_t>(inner, 2)),
                                           "\x09"}};
            const std::string bytes = file.bytes();
            const std::size_t memory = sizeof(Value) * (1 + outer + outer * inner);
            const bool fits = memory <= 64 * bytes.size();
            ++(fits ? good : malformed);
            EXPECT_EQ(read(bytes).has_value(), fits) << outer << ' ' << inner;
        }
    }
    EXPECT_GT(good, 0);
    EXPECT_GT(malformed, 0);
}

TEST(BinaryPropertyList, ContainersNestAsDeepAsTheLimitAndNoDeeper) {
    for (const bool isArray : {true, false}) {
        for (const int depth : {maxDepth, maxDepth + 1}) {
            BinaryPropertyList file;
            file.referenceSize = 2;
            const auto levels = static_cast<std::uint64_t>(depth);
            for (std::uint64_t i = 1; i < levels; ++i) {
                file.objects.push_back(isArray ? arrayObject({i}, 2)
                                               : dictionaryObject({levels}, {i}, 2));
            }
            file.objects.push_back(isArray ? "\xA0" : "\xD0");
            file.objects.push_back(asciiObject("key"));
            EXPECT_EQ(read(file.bytes()).has_value(), depth == maxDepth) << isArray << depth;
        }
    }
}

TEST(BinaryPropertyList, TheFirstBytesTellTheForm) {
    EXPECT_EQ(readPropertyList(binaryFileOf("\x09")), Value{true});
    EXPECT_EQ(readPropertyList("<true/>"), Value{true});
    EXPECT_EQ(readPropertyList("bplist"), std::nullopt);
    EXPECT_EQ(readPropertyList("bplist01" + binaryFileOf("\x09").substr(8)), std::nullopt);
    EXPECT_EQ(readPropertyList(""), std::nullopt);
    EXPECT_EQ(readBinaryPropertyList("<true/>"), std::nullopt);
    EXPECT_EQ(readXMLPropertyList(binaryFileOf("\x09")), std::nullopt);
}

}  // namespace
}  // namespace quillet::standin
