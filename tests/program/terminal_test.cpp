// SPDX-License-Identifier: MIT
#include "program/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>

namespace quillet::test {
namespace {

/// A terminal of the test's own, called by a usual name, and a file that is none.
class Terminal : public testing::Test {
protected:
    Terminal() {
        if (openpty(&far_, &terminal, nullptr, nullptr, nullptr) != 0) {
            throw std::runtime_error("no terminal");
        }
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    }
    ~Terminal() override {
        close(far_);
        close(terminal);
        close(file);
    }

    int terminal = -1;
    int file = open("/dev/null", O_WRONLY | O_CLOEXEC);

private:
    int far_ = -1;
};

TEST_F(Terminal, HasColorsByItself) {
    EXPECT_TRUE(hasColors(Color::automatic, terminal));
    EXPECT_FALSE(hasColors(Color::automatic, file));
}

TEST_F(Terminal, HasNoneWhenItIsDumbOrNobodyKnowsItsName) {
    setenv("TERM", "dumb", 1);
    EXPECT_FALSE(hasColors(Color::automatic, terminal));
    unsetenv("TERM");
    EXPECT_FALSE(hasColors(Color::automatic, terminal));
}

TEST_F(Terminal, HasNoneWhenTheUserWantsNone) {
    setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(hasColors(Color::automatic, terminal));
    setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(hasColors(Color::automatic, terminal)) << "an empty word is none";
}

TEST_F(Terminal, WhatIsAskedForCountsMoreThanWhereItGoes) {
    setenv("NO_COLOR", "1", 1);
    for (const int descriptor : {terminal, file}) {
        SCOPED_TRACE(descriptor == file ? "a file" : "a terminal");
        EXPECT_TRUE(hasColors(Color::always, descriptor));
        EXPECT_FALSE(hasColors(Color::never, descriptor));
    }
}

TEST(Printable, HasNoCharacterThatATerminalObeys) {
    EXPECT_EQ(printable("a \x1b[31m\n\t\x7f \u00e9"), "a \\x1b[31m\\x0a\\x09\\x7f \u00e9");
}

TEST(BoldHeadings, AreTheLinesWithoutAnIndentThatEndWithAColon) {
    EXPECT_EQ(withBoldHeadings("Usage: a\n\nWords:\n  b:\n"),
              "Usage: a\n\n\033[1mWords:\033[m\n  b:\n");
}

}  // namespace
}  // namespace quillet::test
