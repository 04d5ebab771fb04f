// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/standin/plist/binary_property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

constexpr std::uint64_t greatest = std::numeric_limits<std::uint64_t>::max();

/// A small file with every kind of object:
/// {"k": [true, false, 7, 1.5, a date, data], "é": {}}
BinaryPropertyList smallFile() {
    return {{dictionaryObject({1, 2}, {3, 4}), asciiObject("k"), "\x61\x00\xE9"s,
             arrayObject({5, 6, 7, 8, 9, 10}), "\xD0", "\x09", "\x08", "\x10\x07",
             "\x22\x3F\xC0\x00\x00"s, "\x33"s + std::string(8, '\0'), "\x42\x01\x02"}};
}

/// `file` with a field of its trailer replaced.
std::string withField(std::string file, std::size_t position, std::size_t size,
                      std::uint64_t number) {
    return file.replace(file.size() - 32 + position, size, bigEndian(number, size));
}

TEST(MalformedBinaryPropertyList, SizesInTheTrailerOutsideOneToSixteen) {
    const std::string good = smallFile().bytes();
    ASSERT_TRUE(readBinaryPropertyList(good));
    for (const std::size_t position : {6U, 7U}) {
        for (const std::uint64_t size : {0U, 17U, 128U, 255U}) {
            EXPECT_EQ(readBinaryPropertyList(withField(good, position, 1, size)), std::nullopt)
                << position << size;
        }
    }
}

TEST(MalformedBinaryPropertyList, CountsAndPositionsInTheTrailerOutOfRange) {
    const std::string good = smallFile().bytes();
    const std::uint64_t objects = smallFile().objects.size();
    const std::uint64_t offsets = good.size() - 32 - 2 * objects;
    for (const std::uint64_t count :
         {std::uint64_t{0}, objects - 1, objects + 1, std::uint64_t{1} << 32,
          (std::uint64_t{1} << 63) + objects, greatest / 2 + 1, greatest}) {
        EXPECT_EQ(readBinaryPropertyList(withField(good, 8, 8, count)), std::nullopt) << count;
    }
    for (const std::uint64_t top : {objects, objects + 1, std::uint64_t{1} << 63, greatest}) {
        EXPECT_EQ(readBinaryPropertyList(withField(good, 16, 8, top)), std::nullopt) << top;
    }
    for (const std::uint64_t position :
         {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{8}, offsets - 2, offsets - 1,
          offsets + 1, offsets + 2, good.size() - 32, good.size() - 31, std::uint64_t{good.size()},
          std::uint64_t{1} << 63, greatest - 7, greatest}) {
        EXPECT_EQ(readBinaryPropertyList(withField(good, 24, 8, position)), std::nullopt)
            << position;
    }
}

TEST(MalformedBinaryPropertyList, BytesBetweenTheOffsetsAndTheTrailer) {
    for (const std::size_t size : {1U, 2U, 40U}) {
        std::string bytes = smallFile().bytes();
        EXPECT_EQ(readBinaryPropertyList(bytes.insert(bytes.size() - 32, size, '\0')), std::nullopt)
            << size;
    }
}

TEST(MalformedBinaryPropertyList, ReferencesTooShortForTheLastObject) {
    for (const std::size_t count : {255U, 256U}) {
        BinaryPropertyList file{std::vector<std::string>(count, "\x09")};
        EXPECT_EQ(readBinaryPropertyList(file.bytes()).has_value(), count == 255) << count;
        file.referenceSize = 2;
        EXPECT_TRUE(readBinaryPropertyList(file.bytes())) << count;
    }
}

TEST(MalformedBinaryPropertyList, OffsetsTooShortForTheLastObject) {
    for (const std::size_t end : {255U, 256U}) {
        const std::size_t before = 8 + 1;
        BinaryPropertyList file{{"\x09", std::string(end - before, '\x09')}};
        file.offsetSize = 1;
        EXPECT_EQ(readBinaryPropertyList(file.bytes()).has_value(), end == 255) << end;
        file.offsetSize = 2;
        EXPECT_TRUE(readBinaryPropertyList(file.bytes())) << end;
    }
}

TEST(MalformedBinaryPropertyList, TheUnusedBytesOfTheTrailerDoNotMatter) {
    const std::string good = smallFile().bytes();
    for (std::size_t position = 0; position < 6; ++position) {
        EXPECT_EQ(readBinaryPropertyList(withField(good, position, 1, 0xFF)),
                  readBinaryPropertyList(good))
            << position;
    }
}

TEST(MalformedBinaryPropertyList, FilesWithoutObjects) {
    EXPECT_EQ(readBinaryPropertyList("bplist00"), std::nullopt);
    EXPECT_EQ(readBinaryPropertyList("bplist00" + std::string(32, '\0')), std::nullopt);
    EXPECT_EQ(readBinaryPropertyList(BinaryPropertyList{}.bytes()), std::nullopt);
    EXPECT_EQ(readObject(""), std::nullopt);
}

TEST(MalformedBinaryPropertyList, OffsetsOutsideTheObjects) {
    const std::string good = binaryFileOf("\x09");
    const std::size_t offsets = good.size() - 34;
    for (const std::uint64_t offset :
         {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{offsets}, std::uint64_t{offsets + 1},
          std::uint64_t{good.size() - 1}, std::uint64_t{good.size()}, std::uint64_t{0xFFFF}}) {
        std::string bytes = good;
        EXPECT_EQ(readBinaryPropertyList(bytes.replace(offsets, 2, bigEndian(offset, 2))),
                  std::nullopt)
            << offset;
    }
    BinaryPropertyList wide{{"\x09"}};
    wide.offsetSize = 8;
    for (const std::uint64_t offset : {std::uint64_t{1} << 32, std::uint64_t{1} << 63, greatest}) {
        std::string bytes = wide.bytes();
        EXPECT_EQ(readBinaryPropertyList(bytes.replace(9, 8, bigEndian(offset, 8))), std::nullopt)
            << offset;
    }
}

TEST(MalformedBinaryPropertyList, ReferencesToObjectsThatAreNotThere) {
    for (std::size_t size = 1; size <= 8; ++size) {
        for (const std::uint64_t reference : {std::uint64_t{2}, std::uint64_t{0x80}, greatest}) {
            BinaryPropertyList file{{arrayObject({1, reference}, size), asciiObject("k")}};
            file.referenceSize = size;
            EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt)
                << size << ' ' << reference;
            file.objects.front() = dictionaryObject({1}, {reference}, size);
            EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt)
                << size << ' ' << reference;
            file.objects.front() = dictionaryObject({reference}, {1}, size);
            EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt)
                << size << ' ' << reference;
        }
    }
}

TEST(MalformedBinaryPropertyList, AReferenceOnePastTheLastObjectWhereTheTrailerLooksLikeItsOffset) {
    const BinaryPropertyList file{{arrayObject({2}), "\x09"}};
    EXPECT_EQ(readBinaryPropertyList(withField(file.bytes(), 0, 2, 10)), std::nullopt);
    EXPECT_EQ(readBinaryPropertyList(withField(withField(file.bytes(), 0, 2, 10), 16, 8, 2)),
              std::nullopt);
}

TEST(MalformedBinaryPropertyList, MarkersThatStandForNoValue) {
    const std::string payload(40, '\0');
    for (unsigned kind = 0; kind < 256; ++kind) {
        const unsigned high = kind >> 4;
        const bool isFlag = kind == 0x08 || kind == 0x09;
        const bool isNumber = kind <= 0x14 && high == 1;
        const bool isReal = kind == 0x22 || kind == 0x23 || kind == 0x33;
        // An array or a dictionary of these bytes refers to itself, unless it is empty.
        const bool isContainer = kind == 0xA0 || kind == 0xD0;
        const bool isText = high >= 4 && high <= 6 && (kind & 0xFU) != 15;
        const bool isUID = high == 8;
        EXPECT_EQ(readObject(std::string(1, static_cast<char>(kind)) + payload).has_value(),
                  isFlag || isNumber || isReal || isContainer || isText || isUID)
            << kind;
    }
}

TEST(MalformedBinaryPropertyList, ObjectsThatReachBeyondTheObjects) {
    for (const char* object : {"\x10",
                               "\x11\x41",
                               "\x12\x41\x41\x41",
                               "\x13\x41\x41\x41\x41\x41\x41\x41",
                               "\x14\x41\x41\x41\x41\x41\x41\x41\x41\x41\x41\x41\x41\x41\x41\x41",
                               "\x22\x41\x41\x41",
                               "\x23\x41\x41\x41\x41\x41\x41\x41",
                               "\x33\x41\x41\x41\x41\x41\x41\x41",
                               "\x41",
                               "\x42\x41",
                               "\x51",
                               "\x52\x41",
                               "\x61\x41",
                               "\x62\x41\x41\x41",
                               "\xA1",
                               "\xA2\x01",
                               "\xD1\x01",
                               "\xD2\x01\x01\x01",
                               "\x4F",
                               "\x5F",
                               "\xAF",
                               "\xDF",
                               "\x4F\x10",
                               "\x4F\x11\x41",
                               "\x4F\x10\x01",
                               "\x5F\x10\x02\x41"}) {
        EXPECT_EQ(readObject(object), std::nullopt) << testing::PrintToString(object);
    }
}

TEST(MalformedBinaryPropertyList, CountsThatNoFileCouldHold) {
    for (const unsigned kind : {0x4FU, 0x5FU, 0x6FU, 0xAFU, 0xDFU}) {
        for (const std::uint64_t count :
             {std::uint64_t{41}, std::uint64_t{1} << 31, std::uint64_t{1} << 32,
              std::uint64_t{1} << 62, std::uint64_t{1} << 63, (std::uint64_t{1} << 63) + 1,
              greatest / 72 + 1, greatest}) {
            const std::string object = std::string(1, static_cast<char>(kind)) + "\x13" +
                                       bigEndian(count, 8) + std::string(40, '\x41');
            EXPECT_EQ(readObject(object), std::nullopt) << kind << ' ' << count;
        }
    }
}

TEST(MalformedBinaryPropertyList, CountsThatAreNoIntegersOfOneToSixteenBytes) {
    for (const unsigned marker : {0x00U, 0x08U, 0x09U, 0x15U, 0x1FU, 0x22U, 0x51U, 0xFFU}) {
        const std::string object = "\x4F"s + static_cast<char>(marker) + std::string(40, '\0');
        EXPECT_EQ(readObject(object), std::nullopt) << marker;
    }
}

TEST(MalformedBinaryPropertyList, KeysThatAreNoStrings) {
    for (const std::string& key :
         {"\x09"s, "\x10\x07"s, "\x23"s + std::string(8, '\0'), "\x33"s + std::string(8, '\0'),
          "\x41\x61"s, "\xA0"s, "\xD0"s, "\x00"s, "\x80\x01"s}) {
        const BinaryPropertyList file{{dictionaryObject({1}, {2}), key, "\x09"}};
        EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt)
            << testing::PrintToString(key);
    }
}

TEST(MalformedBinaryPropertyList, ContainersThatHoldThemselves) {
    const std::vector<std::vector<std::string>> files{
        {arrayObject({0})},
        {arrayObject({0, 0})},
        {arrayObject({1}), arrayObject({0})},
        {dictionaryObject({1}, {0}), asciiObject("k")},
        {arrayObject({1}), dictionaryObject({2}, {0}), asciiObject("k")}};
    for (const auto& objects : files) {
        SCOPED_TRACE(testing::PrintToString(objects));
        BinaryPropertyList file{objects};
        EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt);
        // The file's size, and with it the memory that it may take, must not help.
        file.objects.push_back(asciiObject(std::string(60000, 'a')));
        EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt);
    }
}

TEST(MalformedBinaryPropertyList, EveryTruncationOfAGoodFile) {
    const std::string good = smallFile().bytes();
    ASSERT_TRUE(readBinaryPropertyList(good));
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_EQ(readBinaryPropertyList(good.substr(0, size)), std::nullopt) << size;
    }
}

TEST(MalformedBinaryPropertyList, EveryChangeOfOneByteGivesNothingOrAValueThatSurvivesARewrite) {
    const std::string good = smallFile().bytes();
    int values = 0;
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (int difference = 1; difference < 256; ++difference) {
            std::string changed = good;
            changed[i] = static_cast<char>(changed[i] ^ difference);
            const auto value = readBinaryPropertyList(changed);
            if (!value) continue;
            ++values;
            // Compared as text, where dates have whole seconds and NaN is itself.
            const std::string text = writePropertyList(*value);
            const auto again = readXMLPropertyList(text);
            ASSERT_TRUE(again) << text;
            ASSERT_EQ(writePropertyList(*again), text) << testing::PrintToString(changed);
            const std::string binary = writePropertyList(*value, Form::binary);
            const auto same = readBinaryPropertyList(binary);
            ASSERT_TRUE(same) << testing::PrintToString(changed);
            ASSERT_EQ(writePropertyList(*same, Form::binary), binary);
        }
    }
    EXPECT_GT(values, 0);
}

}  // namespace
}  // namespace quillet::standin
