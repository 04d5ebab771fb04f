// SPDX-License-Identifier: MIT
//
// The tables that the link step for armv7 makes, byte by byte.

#include <gmock/gmock.h>

#include <optional>

#include "packaging/ios/link/bytes.h"
#include "packaging/ios/link/encodings.h"

namespace quillet::linker {
namespace {

using namespace std::string_literals;
using ::testing::SizeIs;

TEST(Uleb, HasSevenBitsInAByteTheLowestFirst) {
    EXPECT_EQ(uleb(0), "\x00"s);
    EXPECT_EQ(uleb(0x7F), "\x7F"s);
    EXPECT_EQ(uleb(0x80), "\x80\x01"s);
    EXPECT_EQ(uleb(0x3FFF), "\xFF\x7F"s);
    EXPECT_EQ(uleb(0x4000), "\x80\x80\x01"s);
    EXPECT_EQ(uleb(0xFFFFFFFF), "\xFF\xFF\xFF\xFF\x0F"s);
}

TEST(Differences, CountFromTheNumberBeforeAndEndWithZero) {
    EXPECT_EQ(differences({}), "\x00"s);
    EXPECT_EQ(differences({0x1000, 0x1004, 0x1084}), "\x80\x20\x04\x80\x01\x00"s);
}

TEST(RebaseProgram, NamesEachRowOfNeighboursOnce) {
    EXPECT_EQ(rebaseProgram(1, {}), "\x11\x00"s);
    EXPECT_EQ(rebaseProgram(1, {0x10, 0x14, 0x18, 0x100}),
              "\x11"              // pointers
              "\x21\x10\x60\x03"  // in segment 1, from 0x10: three
              "\x21\x80\x02\x60\x01"
              "\x00"s);
}

TEST(BindProgram, NamesALibraryAndASymbolOnceForAllTheirPointers) {
    EXPECT_EQ(bindProgram(1, {{2, "_b", false, 0x08},
                              {1, "_c", false, 0x0C},
                              {2, "_b", false, 0x04},
                              {2, "_a", false, 0x90}}),
              "\x51"                          // pointers
              "\x20\x01\x40_c\0\x71\x0C\x90"  // library 1, symbol, segment 1, set
              "\x20\x02\x40_a\0\x71\x90\x01\x90"
              "\x40_b\0\x71\x04\x90"
              "\x71\x08\x90"
              "\x00"s);
}

TEST(BindProgram, MarksASymbolThatMayBeMissing) {
    EXPECT_EQ(bindProgram(1, {{200, "_a", true, 0}}), "\x51\x20\xC8\x01\x41_a\0\x71\x00\x90\x00"s);
}

/// Follows the tree as the dynamic linker does: along the first edge that fits.
std::optional<std::uint32_t> found(const std::string& trie, const std::string& name) {
    const auto number = [&](std::size_t& at) {
        std::uint32_t value = 0;
        for (int shift = 0;; shift += 7) {
            const auto byte = static_cast<unsigned char>(trie.at(at++));
            value |= (byte & 0x7FU) << shift;
            if (byte < 0x80) return value;
        }
    };
    std::size_t node = 0;
    for (std::string rest = name;;) {
        std::size_t at = node;
        const std::uint32_t size = number(at);
        if (rest.empty()) {
            if (size == 0) return std::nullopt;
            EXPECT_EQ(number(at), 0U) << "a plain symbol";
            return number(at);
        }
        at += size;
        std::size_t next = 0;
        for (auto edges = static_cast<unsigned char>(trie.at(at++)); edges > 0 && next == 0;
             --edges) {
            const std::string label = trie.c_str() + at;
            at += label.size() + 1;
            const std::uint32_t child = number(at);
            if (rest.starts_with(label)) {
                rest.erase(0, label.size());
                next = child;
            }
        }
        if (next == 0) return std::nullopt;
        node = next;
    }
}

TEST(ExportTrie, IsARootWithALeafForEachName) {
    EXPECT_EQ(exportTrie({{"_a", 0x1000}, {"_b", 5}}),
              "\x00\x02"          // no name ends here; two edges
              "_b\0\x0A"          // to the leaf at 10
              "_a\0\x0E"          // to that at 14
              "\x02\x00\x05\x00"  // two bytes: plain, at 5; no edges
              "\x03\x00\x80\x20\x00"s);
}

TEST(ExportTrie, LeadsToEveryNameAndToNoOther) {
    std::map<std::string, std::uint32_t> exports;
    for (std::uint32_t i = 0; i < 100; ++i) exports["_name" + std::to_string(i)] = i * 1000;
    const std::string trie = exportTrie(exports);
    for (const auto& [name, place] : exports) EXPECT_EQ(found(trie, name), place) << name;
    for (const char* const name : {"", "_", "_name", "_name100", "_name1x", "name1"}) {
        EXPECT_EQ(found(trie, name), std::nullopt) << name;
    }
}

TEST(ExportTrie, HasNamesThatOthersBeginWith) {
    const std::string trie = exportTrie({{"_a", 1}, {"_ab", 2}, {"_abc", 3}});
    EXPECT_EQ(found(trie, "_a"), 1U);
    EXPECT_EQ(found(trie, "_ab"), 2U);
    EXPECT_EQ(found(trie, "_abc"), 3U);
    EXPECT_EQ(found(trie, "_abcd"), std::nullopt);
}

TEST(ExportTrie, MayBeEmpty) { EXPECT_EQ(exportTrie({}), "\x00\x00"s); }

TEST(ExportTrie, IsRefusedForMoreNamesThanItsRootCanHold) {
    std::map<std::string, std::uint32_t> exports;
    for (std::uint32_t i = 0; i < 255; ++i) exports["_" + std::to_string(i)] = i;
    EXPECT_EQ(found(exportTrie(exports), "_254"), 254U);
    exports["_more"] = 0;
    EXPECT_THROW(exportTrie(exports), LinkError);
}

}  // namespace
}  // namespace quillet::linker
