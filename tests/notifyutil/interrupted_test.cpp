// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/notifyutil/notifyutil.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

class InterruptedNotifyUtil : public NotifyUtil {};

TEST_F(InterruptedNotifyUtil, EndsProperly) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        beginToWait({"-w", "a"});
        const std::string author = "notifyutil[" + std::to_string(waiting_) + "]  ";
        EXPECT_EQ(endWaiting(signal), -signal);
        const std::string log = run({"log"}).output;
        EXPECT_THAT(log, HasSubstr(author + "ended by signal " + std::to_string(signal) + '\n'));
        EXPECT_THAT(log, Not(HasSubstr(author + "died\n")));
    }
}

TEST_F(InterruptedNotifyUtil, DoesNothingMore) {
    waiting_ =
        start(QUILLET_NOTIFYUTIL,
              {.words = {"--root", root(), "-z", "60000", "-p", "a", "-s", ringerStateName, "0"},
               .output = folder() / "reports",
               .errors = folder() / "errors"});
    EXPECT_TRUE(
        becomesTrue([&] { return run({"log"}).output.find("posted a\n") != std::string::npos; }));
    EXPECT_EQ(endWaiting(SIGINT), -SIGINT);
    expectOutput({"state"}, "on\n");
}

TEST_F(InterruptedNotifyUtil, EndsWhenNobodyReadsItsReportsAnyMore) {
    const fs::path pipe = folder() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    waiting_ = start(QUILLET_NOTIFYUTIL, {.words = {"--root", root(), "-w", "a", "-g", "a"},
                                          .output = pipe,
                                          .errors = folder() / "errors"});
    char byte = 0;
    EXPECT_TRUE(becomesTrue([&] { return read(reader, &byte, 1) == 1; })) << "it is registered";
    close(reader);
    expectPrinted({"-z", "0", "-p", "a"}, "");
    EXPECT_EQ(endWaiting(), -SIGPIPE);
    EXPECT_THAT(run({"log"}).output, HasSubstr("ended by signal 13\n"));
}

}  // namespace
}  // namespace quillet::test
