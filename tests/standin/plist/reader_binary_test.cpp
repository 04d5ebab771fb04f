// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/plist/property_list.h"
#include "tests/standin/plist/binary_property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

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

TEST(BinaryPropertyList, EntriesKeepTheirOrderAndTheFirstOfOneKeyCounts) {
    BinaryPropertyList file{{dictionaryObject({1, 2, 3}, {4, 4, 5}), asciiObject("b"),
                             asciiObject("a"), "\x61\x00\x62"s, "\x09", "\x08"}};
    const auto value = readBinaryPropertyList(file.bytes());
    ASSERT_TRUE(value);
    const std::vector<Entry> expected{{"b", true}, {"a", true}};
    EXPECT_EQ(std::get<Dictionary>(*value).entries(), expected);
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
