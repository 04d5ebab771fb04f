// SPDX-License-Identifier: MIT
#include "program/help_text.h"

#include <gtest/gtest.h>

#include <string>

namespace quillet::test {
namespace {

TEST(Wrapped, BreaksAtTheLastBlankWithin80Columns) {
    const std::string words = std::string(40, 'a') + ' ' + std::string(39, 'b');
    EXPECT_EQ(wrapped(words, 0), words + '\n');
    EXPECT_EQ(wrapped(words + " c", 0), words + "\nc\n");
    EXPECT_EQ(wrapped(words, 4), std::string(40, 'a') + "\n    " + std::string(39, 'b') + '\n');
    EXPECT_EQ(wrapped("", 4), "\n");
}

TEST(Wrapped, KeepsAWordThatIsTooLongAndTheBlanksInALine) {
    const std::string word(90, 'a');
    EXPECT_EQ(wrapped(word, 2), word + '\n');
    EXPECT_EQ(wrapped(word + " b  c", 2), word + "\n  b  c\n");
    EXPECT_EQ(wrapped("b " + word, 2), "b\n  " + word + '\n');
    EXPECT_EQ(wrapped("a b", 90), "a\n" + std::string(90, ' ') + "b\n");
}

TEST(HelpTable, PutsALongTermInALineOfItsOwn) {
    EXPECT_EQ(helpTable("Words", {{"a", "one"}, {"a term that is too long", "two"}}),
              "\nWords:\n  a  one\n  a term that is too long\n     two\n");
    EXPECT_EQ(helpTable("Words", {}), "");
}

}  // namespace
}  // namespace quillet::test
