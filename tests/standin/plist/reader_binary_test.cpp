// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include "platform/standin/plist/property_list.h"
#include "tests/standin/plist/binary_property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

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
    std::vector<Value> elements(299, true);
    elements.push_back(Dictionary{{"k", Array{false, 7}}});
    return Array{elements};
}

TEST(BinaryPropertyList, EveryOffsetSizeWithEveryReferenceSize) {
    for (std::size_t offsetSize = 2; offsetSize <= 16; ++offsetSize) {
        for (std::size_t referenceSize = 1; referenceSize <= 16; ++referenceSize) {
            BinaryPropertyList file = largeFile(referenceSize);
            file.offsetSize = offsetSize;
            EXPECT_EQ(readBinaryPropertyList(file.bytes()), largeValue())
                << offsetSize << ' ' << referenceSize;
        }
    }
    for (std::size_t referenceSize = 1; referenceSize <= 16; ++referenceSize) {
        BinaryPropertyList file{
            {dictionaryObject({1}, {2}, referenceSize), asciiObject("k"), "\x09"}};
        file.offsetSize = 1;
        file.referenceSize = referenceSize;
        EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Dictionary{{"k", true}}}))
            << referenceSize;
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
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Array{true, false}}));
}

TEST(BinaryPropertyList, TheTopObjectMayStandAnywhere) {
    BinaryPropertyList file{{"\x08", asciiObject("text"), "\x09"}};
    for (const auto& [top, value] : {std::pair{0U, Value{false}}, {1U, "text"}, {2U, true}}) {
        file.top = top;
        EXPECT_EQ(readBinaryPropertyList(file.bytes()), value) << top;
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

TEST(BinaryPropertyList, DatesAreAnyNumberOfSeconds) {
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

TEST(BinaryPropertyList, IdentifiersOfArchivesOfEveryWidth) {
    for (unsigned size = 1; size <= 16; ++size) {
        const std::string marker(1, static_cast<char>(0x80 | (size - 1)));
        EXPECT_EQ(readObject(marker + bigEndian(0x81, size)), Value{UID{0x81}}) << size;
    }
    constexpr std::uint64_t greatest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(readObject("\x87" + bigEndian(greatest, 8)), Value{UID{greatest}});
    const BinaryPropertyList file{{dictionaryObject({1}, {2}), asciiObject("root"), "\x80\x07"}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Dictionary{{"root", UID{7}}}}));
}

TEST(BinaryPropertyList, ADictionaryThatLooksLikeAnIdentifierIsOneOnlyInXML) {
    const BinaryPropertyList file{{dictionaryObject({1}, {2}), asciiObject("CF$UID"), "\x10\x07"}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Dictionary{{"CF$UID", 7}}}));
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

TEST(BinaryPropertyList, StringsMarkedASCIIAreUTF8OrElseLatin1) {
    EXPECT_EQ(readObject("\x51\x80"s), Value{"\u0080"});
    EXPECT_EQ(readObject("\x52\x41\xFF"s), Value{"A\u00FF"});
    EXPECT_EQ(readObject("\x52\xC3\xA9"s), Value{"\u00E9"});
    EXPECT_EQ(readObject("\x53\xC3\xA9\xC3"s), Value{"\u00C3\u00A9\u00C3"});
    EXPECT_EQ(readObject("\x53\xED\xA0\x80"s), Value{"\u00ED\u00A0\u0080"});
    const BinaryPropertyList file{{dictionaryObject({1}, {1}), "\x51\xE9"}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), (Value{Dictionary{{"\u00E9", "\u00E9"}}}));
}

TEST(BinaryPropertyList, UnitsThatAreNoCharacterAreReplaced) {
    EXPECT_EQ(readObject("\x61\xD8\x00"s), Value{"\uFFFD"});
    EXPECT_EQ(readObject("\x61\xDC\x00"s), Value{"\uFFFD"});
    // One unit; what follows it in the file is no part of the string.
    EXPECT_EQ(readObject("\x61\xD8\x00\xDC\x00"s), Value{"\uFFFD"});
    EXPECT_EQ(readObject("\x62\xD8\x00\x00\x41"s), Value{"\uFFFD"
                                                         "A"});
    EXPECT_EQ(readObject("\x62\xD8\x00\xD8\x00"s), Value{"\uFFFD\uFFFD"});
    EXPECT_EQ(readObject("\x62\xDC\x00\xD8\x00"s), Value{"\uFFFD\uFFFD"});
}

TEST(BinaryPropertyList, CountsOfEveryWidth) {
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

TEST(BinaryPropertyList, OfNumbersOfSixteenBytesTheLastEightCount) {
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

TEST(BinaryPropertyList, EntriesKeepTheirOrderAndTheFirstOfOneKeyCounts) {
    BinaryPropertyList file{{dictionaryObject({1, 2, 3}, {4, 4, 5}), asciiObject("b"),
                             asciiObject("a"), "\x61\x00\x62"s, "\x09", "\x08"}};
    const auto value = readBinaryPropertyList(file.bytes());
    ASSERT_TRUE(value);
    const std::vector<Entry> expected{{"b", true}, {"a", true}};
    EXPECT_EQ(std::get<Dictionary>(*value).entries(), expected);
}

TEST(BinaryPropertyList, ScalarsMayBeSharedManyTimes) {
    BinaryPropertyList file;
    file.offsetSize = 4;
    file.referenceSize = 2;
    file.objects.resize(1);
    std::vector<std::uint64_t> elements;
    std::vector<Value> expected;
    const std::string name = "com.quillet.a.rather.long.shared.name";
    file.objects.insert(file.objects.end(), {asciiObject(name), "\x10\x07", realObject(1.5), "\x09",
                                             dictionaryObject({1}, {2}, 2)});
    for (int i = 0; i < 10000; ++i) {
        elements.insert(elements.end(), {1, 2, 3, 4, 5});
        expected.insert(expected.end(), {name, 7, 1.5, true, Dictionary{{name, 7}}});
    }
    file.objects.front() = arrayObject(elements, 2);
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), Value{Array{expected}});
}

TEST(BinaryPropertyList, StringsMayBeSharedManyTimes) {
    // As a writer that shares equal strings leaves {"ring-vibrate": false, "names": [...]}.
    const std::string name(100, 'a');
    BinaryPropertyList file{{dictionaryObject({1, 3}, {2, 4}), asciiObject("ring-vibrate"), "\x08",
                             asciiObject("names"), arrayObject(std::vector<std::uint64_t>(1000, 5)),
                             asciiObject(name)}};
    const Value expected = Dictionary{{"ring-vibrate", false},
                                      {"names", Array{std::vector<Value>(1000, Value{name})}}};
    ASSERT_LT(file.bytes().size(), std::size_t{1200});
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), expected);
    file.objects.back() = "\x6F\x10\x64";
    for (int i = 0; i < 100; ++i) file.objects.back() += "\0a"s;
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), expected);
}

TEST(BinaryPropertyList, ALongTextMayBeSharedAsOftenAsAShortOne) {
    constexpr std::size_t times = 10000;
    for (const std::size_t length : {std::size_t{1}, std::size_t{100000}}) {
        BinaryPropertyList file{{arrayObject(std::vector<std::uint64_t>(times, 1)),
                                 asciiObject(std::string(length, 'a'))}};
        file.offsetSize = 4;
        const auto value = readBinaryPropertyList(file.bytes());
        ASSERT_TRUE(value.has_value()) << length;
        EXPECT_EQ(std::get<Array>(*value).size(), times) << length;
    }
}

TEST(BinaryPropertyList, ASmallFileMayUnfoldToALargeValue) {
    BinaryPropertyList file;
    for (std::uint64_t level = 1; level <= 3; ++level) {
        file.objects.push_back(arrayObject(std::vector<std::uint64_t>(7, level)));
    }
    file.objects.push_back("\x09");
    ASSERT_EQ(file.bytes().size(), std::size_t{73});
    const auto value = readBinaryPropertyList(file.bytes());
    ASSERT_TRUE(value);
    EXPECT_GT(writePropertyList(*value).size(), std::size_t{3000});
}

TEST(BinaryPropertyList, LongDictionariesKeepTheirKeysHoweverOftenTheyShareThem) {
    const std::string name(300, 'k');
    BinaryPropertyList file{{arrayObject(std::vector<std::uint64_t>(1000, 1)),
                             dictionaryObject({2}, {3}), asciiObject(name), "\x09"}};
    const Value entry = Dictionary{{name, true}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()),
              (Value{Array{std::vector<Value>(1000, entry)}}));
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
            EXPECT_EQ(readBinaryPropertyList(file.bytes()).has_value(), depth == maxDepth)
                << isArray << depth;
        }
    }
}

TEST(BinaryPropertyList, TheFirstBytesTellTheForm) {
    EXPECT_EQ(readPropertyList(binaryFileOf("\x09")), Value{true});
    EXPECT_EQ(readPropertyList("<true/>"), Value{true});
    EXPECT_EQ(readPropertyList("bplist"), std::nullopt);
    for (const char version : {'0', '1', '9', 'A', '\0', '\xFF'}) {
        std::string file = binaryFileOf("\x09");
        file[7] = version;
        EXPECT_EQ(readPropertyList(file), Value{true}) << int{version};
    }
    EXPECT_EQ(readPropertyList("bplist10" + binaryFileOf("\x09").substr(8)), std::nullopt);
    EXPECT_EQ(readPropertyList(""), std::nullopt);
    EXPECT_EQ(readBinaryPropertyList("<true/>"), std::nullopt);
    EXPECT_EQ(readXMLPropertyList(binaryFileOf("\x09")), std::nullopt);
}

}  // namespace
}  // namespace quillet::standin
