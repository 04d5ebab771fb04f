// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/plist/property_list.h"
#include "tests/standin/plist/binary_property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

TEST(SharedObjects, ScalarsMayBeSharedManyTimes) {
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

TEST(SharedObjects, StringsMayBeSharedManyTimes) {
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

TEST(SharedObjects, ALongTextMayBeSharedAsOftenAsAShortOne) {
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

TEST(SharedObjects, ASmallFileMayUnfoldToALargeValue) {
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

TEST(SharedObjects, LongDictionariesKeepTheirKeysHoweverOftenTheyShareThem) {
    const std::string name(300, 'k');
    BinaryPropertyList file{{arrayObject(std::vector<std::uint64_t>(1000, 1)),
                             dictionaryObject({2}, {3}), asciiObject(name), "\x09"}};
    const Value entry = Dictionary{{name, true}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()),
              (Value{Array{std::vector<Value>(1000, entry)}}));
}

TEST(SharedObjects, AreTooManyWhereSharingMultiplies) {
    for (const std::size_t width : {2U, 10U}) {
        BinaryPropertyList arrays;
        for (std::uint64_t level = 1; level <= 60; ++level) {
            arrays.objects.push_back(arrayObject(std::vector<std::uint64_t>(width, level)));
        }
        arrays.objects.push_back("\x09");
        EXPECT_EQ(readBinaryPropertyList(arrays.bytes()), std::nullopt) << width;
    }
}

TEST(SharedObjects, AreTooManyWhereLongKeysMultiply) {
    BinaryPropertyList file{{arrayObject(std::vector<std::uint64_t>(2000, 1)),
                             dictionaryObject({2}, {3}), asciiObject(std::string(10000, 'a')),
                             "\x09"}};
    EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt);
}

TEST(SharedObjects, AreTooManyWhereEmptyContainersMultiply) {
    for (const char* empty : {"\xA0", "\xD0"}) {
        BinaryPropertyList file;
        for (std::uint64_t level = 1; level <= 17; ++level) {
            file.objects.push_back(arrayObject({level, level}));
        }
        file.objects.push_back(empty);
        EXPECT_EQ(readBinaryPropertyList(file.bytes()), std::nullopt);
    }
}

TEST(SharedObjects, AreAsManyAsTheSizeOfTheFileAllows) {
    // 101 values for each reference, and a large file of which no more is used.
    const auto file = [](std::size_t references) {
        BinaryPropertyList made{{arrayObject(std::vector<std::uint64_t>(references, 1), 2),
                                 arrayObject(std::vector<std::uint64_t>(100, 2), 2)}};
        made.objects.resize(50000, "\x08");
        made.offsetSize = 3;
        made.referenceSize = 2;
        return made.bytes();
    };
    EXPECT_TRUE(readBinaryPropertyList(file(3000)));
    EXPECT_EQ(readBinaryPropertyList(file(3015)), std::nullopt);
}

/// An array of texts that have 10000 bytes of the file each, most of them the same.
std::string overlappingTexts(std::uint64_t count, const std::string& textMarker) {
    BinaryPropertyList file{{""}};
    file.referenceSize = 2;
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t number = 1; number <= count; ++number) numbers.push_back(number);
    file.objects.front() = arrayObject(numbers, 2);
    file.objects.insert(file.objects.end(), count, textMarker);
    file.objects.emplace_back(10000, 'a');
    return file.bytes();
}

TEST(SharedObjects, AreTooManyWhereOverlappingTextsMultiply) {
    for (const std::uint64_t count : {400U, 1000U}) {
        Fault fault;
        EXPECT_EQ(
            readBinaryPropertyList(overlappingTexts(count, "\x5F\x11\x27\x10"), &fault).has_value(),
            count == 400);
        EXPECT_STREQ(fault.reason,
                     count == 400 ? "" : "more shared parts than the size of the file allows");
    }
    // Of the bytes of data nothing is looked at.
    EXPECT_TRUE(readBinaryPropertyList(overlappingTexts(1000, "\x4F\x11\x27\x10")));
}

TEST(SharedObjects, AreTooManyWhereTheyOverlapInAnotherEncoding) {
    for (const std::uint64_t count : {100U, 200U}) {
        const auto value = readBinaryPropertyList(overlappingTexts(count, "\x6F\x11\x13\x88"));
        EXPECT_EQ(value.has_value(), count == 100) << count;
    }
}

}  // namespace
}  // namespace quillet::standin
