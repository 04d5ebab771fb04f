// SPDX-License-Identifier: MIT
#include "program/suggestion.h"

#include <gtest/gtest.h>

namespace quillet::test {
namespace {

const std::vector<std::string> known = {"state", "flip", "apply", "watch"};

TEST(Suggestion, IsAWordOneSlipAway) {
    for (const char* const word : {"flp", "fliip", "flop", "filp", "fli", "fl"}) {
        EXPECT_EQ(suggestion(word, known), "; did you mean \"flip\"?") << word;
    }
    EXPECT_EQ(suggestion("aply", known), "; did you mean \"apply\"?");
    EXPECT_EQ(suggestion("State", known), "; did you mean \"state\"?");
}

TEST(Suggestion, AllowsAsManySlipsAsTheWordHasRoomFor) {
    EXPECT_EQ(suggestion("wacht", known), "; did you mean \"watch\"?");
    EXPECT_EQ(suggestion("sate", known), "; did you mean \"state\"?");
    EXPECT_EQ(suggestion("fp", known), "");
}

TEST(Suggestion, IsNothingWhereNothingIsNear) {
    for (const char* const word : {"", "-", "5", "on", "toggle", "f", "reboot"}) {
        EXPECT_EQ(suggestion(word, known), "") << word;
    }
    EXPECT_EQ(suggestion("flip", {}), "");
}

}  // namespace
}  // namespace quillet::test
