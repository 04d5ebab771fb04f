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

}  // namespace
}  // namespace quillet::standin
