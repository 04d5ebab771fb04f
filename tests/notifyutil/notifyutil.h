// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <utility>

#include "tests/springboard/springboard.h"

namespace quillet::test {

/// Runs `notifyutil` as a user does, beside `springboard`.
class NotifyUtil : public SpringBoard {
protected:
    ~NotifyUtil() override {
        if (waiting_ == 0) return;
        ::kill(waiting_, SIGKILL);
        waitFor(waiting_);
    }

    Outcome notify(Words words, const std::filesystem::path& output = {}) {
        words.insert(words.begin(), {"--root", root()});
        return notifyBare({.words = words, .output = output, .errors = {}});
    }

    /// The same without --root.
    Outcome notifyBare(Start how) {
        if (how.output.empty()) how.output = folder() / "notify.output";
        how.errors = folder() / "notify.errors";
        const int status = waitFor(start(QUILLET_NOTIFYUTIL, how));
        const bool isFile = std::filesystem::is_regular_file(how.output);
        return {status, isFile ? readText(how.output) : "", readText(how.errors)};
    }

    void expectPrinted(const Words& words, const std::string& output) {
        const Outcome outcome = notify(words);
        EXPECT_EQ(outcome.status, 0) << testing::PrintToString(words);
        EXPECT_EQ(outcome.output, output) << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, "") << testing::PrintToString(words);
    }

    void expectRefused(const Words& words, const std::string& message) {
        const Outcome outcome = notify(words);
        EXPECT_EQ(outcome.status, 2) << testing::PrintToString(words);
        EXPECT_EQ(outcome.output, "") << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, "notifyutil: " + message + "\nTry \"notifyutil --help\".\n");
    }

    /// Starts `notifyutil` with words that have it wait for posts, and lets it.
    void beginToWait(Words words) {
        words.insert(words.begin(), {"--root", root()});
        words.insert(words.end(), {"-g", "registered"});
        std::filesystem::remove(reports());
        waiting_ = start(QUILLET_NOTIFYUTIL,
                         {.words = words, .output = reports(), .errors = folder() / "errors"});
        EXPECT_THAT(reported(0), testing::ElementsAre());
    }

    /// What was reported to the one that waits, once it is `count` lines.
    Words reported(std::size_t count) {
        EXPECT_TRUE(becomesTrue([&] { return linesOf(readText(reports())).size() > count; }));
        Words lines = linesOf(readText(reports()));
        EXPECT_EQ(lines.front(), "registered 0");
        lines.erase(lines.begin());
        return lines;
    }

    int endWaiting() { return waitFor(std::exchange(waiting_, 0)); }
    int endWaiting(int signal) {
        ::kill(waiting_, signal);
        return endWaiting();
    }

    pid_t waiting_ = 0;

private:
    std::filesystem::path reports() const { return folder() / "reports"; }
};

}  // namespace quillet::test
