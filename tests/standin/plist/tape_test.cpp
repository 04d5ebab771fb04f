// SPDX-License-Identifier: MIT
#include "platform/standin/plist/tape.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "platform/standin/plist/value.h"

namespace quillet::standin {
namespace {

TEST(Tape, TellsTheMemoryThatItTakes) {
    Tape tape{std::string(1000, 'a')};
    EXPECT_EQ(tape.size(), std::size_t{1000});
    EXPECT_EQ(tape.memory(), std::size_t{1000});
    tape.keep("12345");
    EXPECT_EQ(tape.memory(), std::size_t{1010});
    tape.nodes.reserve(10);
    EXPECT_EQ(tape.memory(), 1010 + 10 * sizeof(Node));
}

TEST(Tape, CountsTheBytesThatAreAddedToIt) {
    Dictionary dictionary;
    dictionary.set("key", Data{std::string(1000, 'a')});
    EXPECT_EQ(dictionary.tape()->size(), 3 * sizeof(Node) + 1003);
    dictionary.set("key", "text");
    EXPECT_EQ(dictionary.tape()->size(), 4 * sizeof(Node) + 1007);
}

TEST(Tape, SortsTheKeysOfALargeDictionaryThatIsAskedOften) {
    for (const std::size_t count : {std::size_t{10}, std::size_t{100}}) {
        std::vector<Entry> entries;
        for (std::size_t i = 0; i < count; ++i) entries.push_back({std::to_string(i), true});
        const Dictionary dictionary{entries};
        const std::size_t before = dictionary.tape()->memory();
        for (int i = 0; i < 100; ++i) EXPECT_TRUE(dictionary.find("7"));
        EXPECT_EQ(dictionary.tape()->memory(), before + (count == 10 ? 0 : count * sizeof(void*)));
    }
}

}  // namespace
}  // namespace quillet::standin
