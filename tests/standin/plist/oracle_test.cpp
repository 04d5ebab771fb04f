// SPDX-License-Identifier: MIT
//
// Holds reader and writer against libplist, an independent implementation of both forms.
//
// Left out, because libplist differs there: strings with a zero byte (its strings end at one) and,
// in the XML form, dates before the year 1000 (it writes years without leading zeros).
#include <gtest/gtest.h>
#include <plist/plist.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

struct FreeNode {
    void operator()(void* node) const { plist_free(node); }
};
using OwnedNode = std::unique_ptr<void, FreeNode>;

OwnedNode nodeFrom(const std::string& bytes) {
    plist_t node = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
    return OwnedNode{node};
}

std::string binaryOf(const OwnedNode& node) {
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(node.get(), &bytes, &size);
    std::string copy(bytes, size);
    plist_to_bin_free(bytes);
    return copy;
}

std::string xmlOf(const OwnedNode& node) {
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_xml(node.get(), &bytes, &size);
    std::string copy(bytes, size);
    plist_to_xml_free(bytes);
    return copy;
}

std::uint64_t integerIn(plist_t node) {
    std::uint64_t number = 0;
    plist_get_uint_val(node, &number);
    return number;
}

/// Whether libplist's value is the same as ours.
struct Matches {
    plist_t node;

    bool is(plist_type type) const { return plist_get_node_type(node) == type; }

    bool operator()(bool flag) const {
        std::uint8_t theirs = 2;
        plist_get_bool_val(node, &theirs);
        return is(PLIST_BOOLEAN) && theirs == (flag ? 1 : 0);
    }
    // It has one reading for both ranges: the 64 bits.
    bool operator()(std::int64_t number) const {
        return is(PLIST_UINT) && integerIn(node) == static_cast<std::uint64_t>(number);
    }
    bool operator()(std::uint64_t number) const {
        return is(PLIST_UINT) && integerIn(node) == number;
    }
    bool operator()(double number) const {
        double theirs = 0;
        plist_get_real_val(node, &theirs);
        return is(PLIST_REAL) && theirs == number;
    }
    bool operator()(const std::string& text) const {
        return is(PLIST_STRING) && text == plist_get_string_ptr(node, nullptr);
    }
    bool operator()(const Data& data) const {
        std::uint64_t size = 0;
        const char* const bytes = plist_get_data_ptr(node, &size);
        return is(PLIST_DATA) && data.bytes == std::string_view{bytes, size};
    }
    bool operator()(UID uid) const {
        std::uint64_t theirs = 0;
        plist_get_uid_val(node, &theirs);
        return is(PLIST_UID) && theirs == uid.number;
    }
    // Its reading has 32 bits of seconds; dates beyond them are compared by way of its files.
    bool operator()(Date date) const {
        std::int32_t seconds = 0;
        std::int32_t microseconds = 0;
        plist_get_date_val(node, &seconds, &microseconds);
        return is(PLIST_DATE) && (std::abs(date.seconds) > 2e9 || seconds == date.seconds);
    }
    bool operator()(const Array& array) const {
        if (!is(PLIST_ARRAY) || plist_array_get_size(node) != array.size()) return false;
        // Not by index: that takes as long as the index is large.
        plist_array_iter iterator = nullptr;
        plist_array_new_iter(node, &iterator);
        const std::unique_ptr<void, decltype(&std::free)> owner{iterator, &std::free};
        const auto elements = array.elements();
        return std::all_of(elements.begin(), elements.end(), [&](const Value& value) {
            plist_t item = nullptr;
            plist_array_next_item(node, iterator, &item);
            return std::visit(Matches{item}, value);
        });
    }
    bool operator()(const Dictionary& dictionary) const {
        const auto entries = dictionary.entries();
        if (!is(PLIST_DICT) || plist_dict_get_size(node) != entries.size()) return false;
        return std::all_of(entries.begin(), entries.end(), [&](const Entry& entry) {
            const plist_t item = plist_dict_get_item(node, entry.key.c_str());
            return item != nullptr && std::visit(Matches{item}, entry.value);
        });
    }
};

/// Values made up from a sequence of numbers that is the same in every run.
class Inventor {
public:
    explicit Inventor(std::uint64_t seed) : random_{seed} {}

    Value value(int depth) {
        switch (below(depth > 0 ? 10 : 8)) {
            case 0:
                return below(2) == 0;
            case 1:
                return static_cast<std::int64_t>(random_()) >> below(64);
            case 2:
                return random_() | std::uint64_t{1} << 63;
            case 3:
                return real();
            case 4:
                return text();
            case 5:
                return Data{bytes()};
            case 6:
                return Date{std::floor(earliest_ + real01() * (252423993599.0 - earliest_))};
            case 7:
                return static_cast<std::int64_t>(below(3));
            case 8:
                return array(depth - 1);
            default:
                return dictionary(depth - 1);
        }
    }

    Value dictionary(int depth) {
        Dictionary result;
        for (std::uint64_t i = below(6); i > 0; --i) result.set(text(), value(depth));
        return result;
    }

private:
    /// 1000-01-01.
    static constexpr double earliest_ = -31589136000.0;

    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
    double real01() { return static_cast<double>(random_() >> 11) * 0x1p-53; }
    double real() {
        const auto number = std::bit_cast<double>(random_());
        return std::isfinite(number) ? number : real01();
    }

    std::string bytes() {
        std::string result(below(200), '\0');
        for (char& byte : result) byte = static_cast<char>(random_());
        return result;
    }

    std::string text() {
        static const std::string alphabet[] = {"a", "Z",      "0",      " ",         "\n",
                                               "&", "<",      ">",      "\"",        "'",
                                               ";", "\u00E9", "\u20AC", "\U0001F600"};
        std::string result;
        for (std::uint64_t i = below(30); i > 0; --i)
            result += alphabet[below(std::size(alphabet))];
        return result;
    }

    Value array(int depth) {
        std::vector<Value> result;
        for (std::uint64_t i = below(6); i > 0; --i) result.push_back(value(depth));
        return Array{result};
    }

    std::mt19937_64 random_;
};

TEST(PropertyListOracle, ReadsWhatWeWriteAndWritesWhatWeRead) {
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        const Value value = Inventor{seed}.dictionary(4);
        const std::string text = writePropertyList(value);
        const OwnedNode node = nodeFrom(text);
        ASSERT_TRUE(node) << text;
        EXPECT_TRUE(std::visit(Matches{node.get()}, value)) << text;
        EXPECT_EQ(readPropertyList(xmlOf(node)), value) << text;
        EXPECT_EQ(readPropertyList(binaryOf(node)), value) << text;
        const std::string binary = writePropertyList(value, Form::binary);
        const OwnedNode nodeOfBinary = nodeFrom(binary);
        ASSERT_TRUE(nodeOfBinary) << text;
        EXPECT_TRUE(std::visit(Matches{nodeOfBinary.get()}, value)) << text;
        EXPECT_EQ(readPropertyList(binary), value) << text;
    }
}

TEST(PropertyListOracle, EarlyDatesAgreeInTheBinaryForm) {
    for (const double seconds : {-63113904000.0, -50000000000.0, -31589136001.0}) {
        const Value value = Dictionary{{"date", Date{seconds}}};
        const OwnedNode node = nodeFrom(writePropertyList(value));
        ASSERT_TRUE(node) << seconds;
        EXPECT_EQ(readPropertyList(binaryOf(node)), value) << seconds;
    }
}

TEST(PropertyListOracle, LargeFilesAgreeInBothForms) {
    std::vector<Value> elements;
    for (int i = 0; i < 70000; ++i) {
        elements.push_back(Dictionary{{"name", "n" + std::to_string(i)}, {"shared", "value"}});
    }
    const Value value = Dictionary{{"elements", Array{elements}}};
    const OwnedNode node = nodeFrom(writePropertyList(value));
    ASSERT_TRUE(node);
    EXPECT_EQ(readPropertyList(binaryOf(node)), value);
    EXPECT_EQ(readPropertyList(xmlOf(node)), value);
    const OwnedNode nodeOfBinary = nodeFrom(writePropertyList(value, Form::binary));
    EXPECT_TRUE(std::visit(Matches{nodeOfBinary.get()}, value));
}

}  // namespace
}  // namespace quillet::standin
