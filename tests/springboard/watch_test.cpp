// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <utility>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

/// Runs `springboard watch` beside the commands of the test.
class Watch : public SpringBoard {
protected:
    ~Watch() override {
        if (process_ == 0) return;
        ::kill(process_, SIGKILL);
        waitFor(process_);
    }

    /// Starts watching; it watches as soon as its observer is added, which the trace tells.
    void startWatching(const Words& more = {}, const fs::path& output = {}) {
        Words words = {"--root", root(), "watch", "--quiet", "--trace=" + trace().string()};
        words.insert(words.end(), more.begin(), more.end());
        process_ = start(
            QUILLET_SPRINGBOARD,
            {.words = words, .output = output.empty() ? lines() : output, .errors = errors()});
        ASSERT_TRUE(becomesTrue([this] {
            return readText(trace()).find("CFNotificationCenterAddObserver") != std::string::npos;
        })) << readText(errors());
    }

    /// What was watched, once it is `count` lines.
    Words watched(std::size_t count) {
        becomesTrue([&] { return linesOf(readText(lines())).size() >= count; });
        return linesOf(readText(lines()));
    }

    /// Sends the signal, and answers how the program ended.
    int stop(int signal) {
        ::kill(process_, signal);
        return end();
    }
    int end() { return waitFor(std::exchange(process_, 0)); }
    fs::path errors() const { return folder() / "watch.errors"; }

private:
    fs::path lines() const { return folder() / "watch.lines"; }
    fs::path trace() const { return folder() / "watch.trace"; }

    pid_t process_ = 0;
};

TEST_F(Watch, PrintsOneLineAtEachFlipOfAnotherProcessUntilItIsInterrupted) {
    startWatching();
    expectOutput({"flip"}, "off\n");
    EXPECT_THAT(watched(1), ElementsAre("off"));
    expectOutput({"flip"}, "on\n");
    EXPECT_THAT(watched(2), ElementsAre("off", "on"));
    expectOutput({"flip", "on"}, "on\n");
    EXPECT_THAT(watched(3), ElementsAre("off", "on", "on"));
    EXPECT_EQ(stop(SIGINT), -SIGINT);
    EXPECT_EQ(readText(errors()), "");
}

TEST_F(Watch, APostThatStoresNothingPrintsTheStateAsItIs) {
    startWatching();
    expectOutput({"apply", "2"}, "on\n");
    EXPECT_THAT(watched(1), ElementsAre("on"));
}

TEST_F(Watch, PrintsNothingWhenNothingIsPosted) {
    startWatching();
    expectOutput({"state"}, "on\n");
    expectOutput({"apply", "-1"}, "on\n");
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_THAT(watched(1), ElementsAre("off"));
    EXPECT_EQ(stop(SIGTERM), -SIGTERM);
}

TEST_F(Watch, PrintsJSONOnRequest) {
    startWatching({"--json"});
    expectOutput({"flip"}, "off\n");
    EXPECT_THAT(watched(1), ElementsAre(R"({"state": "off"})"));
}

TEST_F(Watch, OneThatIsKilledHoldsUpNobody) {
    startWatching();
    EXPECT_EQ(stop(SIGKILL), -SIGKILL);
    expectOutput({"flip"}, "off\n");
    expectOutput({"flip"}, "on\n");
}

TEST_F(Watch, EndsWhenItsLinesCannotBeWritten) {
    startWatching({}, "/dev/full");
    expectOutput({"flip"}, "off\n");
    EXPECT_EQ(end(), 1);
    EXPECT_EQ(readText(errors()), "springboard: standard output cannot be written\n");
}

}  // namespace
}  // namespace quillet::test
