// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;

/// What a command writes, and where.
class Streams : public SpringBoard {
protected:
    Outcome runTo(const fs::path& output, const Words& words) {
        return runBare({.words = words, .output = output, .errors = {}});
    }
};

TEST_F(Streams, AReaderWhoGoesAwayAmidAFlipIsAFailureAfterIt) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const std::string before = bytes(springBoardPreferencesPath);
    const fs::path pipe = folder() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const pid_t host = start(
        QUILLET_SPRINGBOARD,
        {.words = {"--root", root(), "--trace", "flip", "off"}, .output = pipe, .errors = pipe});
    EXPECT_TRUE(becomesTrue([&, trace = std::string{}]() mutable {
        char letter = 0;
        while (read(reader, &letter, 1) == 1) trace += letter;
        return trace.find("runUntilDate:") != std::string::npos;
    }));
    EXPECT_NE(bytes(springBoardPreferencesPath), before);
    close(reader);
    EXPECT_EQ(waitFor(host), 1);
    EXPECT_EQ(bytes(springBoardPreferencesPath), before);
}

TEST_F(Streams, StandardOutputThatCannotBeWrittenIsAFailure) {
    const std::string message = "standard output cannot be written";
    for (const Words& words : {Words{"state"}, Words{"flip"}, Words{"apply", "1"}, Words{"--help"},
                               Words{"--version"}, Words{"--json", "state"}}) {
        Words all = {"--root", root()};
        all.insert(all.end(), words.begin(), words.end());
        const Outcome outcome = runBare({.words = all, .output = "/dev/full", .errors = {}});
        EXPECT_EQ(outcome.status, 1) << testing::PrintToString(words);
        EXPECT_THAT(outcome.errors, HasSubstr(message)) << testing::PrintToString(words);
    }
}

TEST_F(Streams, AClosedStandardOutputIsAFailureAndLeavesTheDeviceWhole) {
    const std::string before = bytes("/var/run/notifications");
    for (const int input : {0, 1}) {
        const Outcome outcome = runBare(
            {.words = {"--root", root(), "state"}, .output = {}, .errors = {}, .closed = input});
        EXPECT_EQ(outcome.status, input) << outcome.errors;
        EXPECT_EQ(bytes("/var/run/notifications"), before) << "descriptor " << input;
    }
    expectOutput({"state"}, "on\n");
}

TEST_F(Streams, AClosedStandardErrorLeavesTheDeviceWhole) {
    const std::string before = bytes("/var/run/notifications");
    const Outcome outcome = runBare(
        {.words = {"--root", root(), "state", "--trace"}, .output = {}, .errors = {}, .closed = 2});
    EXPECT_EQ(outcome.status, 1) << "the trace cannot be written";
    EXPECT_EQ(bytes("/var/run/notifications"), before);
    expectOutput({"state"}, "on\n");
}

}  // namespace
}  // namespace quillet::test
