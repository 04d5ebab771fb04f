// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/plist/property_list.h"
#include "tests/springboard/springboard.h"
#include "tests/support/entries.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;

constexpr char hardwarePath[] = "/var/db/hardware.plist";
constexpr char turnPath[] = "/var/run/springboard.lock";
constexpr char waiting[] = "springboard: waiting for another flip of this device\n";

class SeveralProcesses : public SpringBoard {
protected:
    /// Starts `springboard` on the device, beside the others.
    pid_t begin(Words words, const std::string& name) {
        words.insert(words.begin(), {"--root", root()});
        return start(QUILLET_SPRINGBOARD, {.words = words,
                                           .output = folder() / (name + ".output"),
                                           .errors = folder() / (name + ".errors")});
    }

    /// Starts so many programs, which are named by their numbers, and expects all to succeed.
    void runAtOnce(int count, const std::function<Words(int)>& wordsOf) {
        std::vector<pid_t> processes;
        for (int i = 0; i < count; ++i) processes.push_back(begin(wordsOf(i), std::to_string(i)));
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(waitFor(processes[static_cast<std::size_t>(i)]), 0)
                << errorsOf(std::to_string(i));
        }
    }

    /// Starts a flip off that has its turn and stops in its first wait, the user's settings put
    /// aside. To be killed, or continued.
    pid_t beginAndStop() {
        write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
        const pid_t stopped = begin({"--trace", "flip", "off"}, "stopped");
        EXPECT_TRUE(becomesTrue(
            [&] { return errorsOf("stopped").find("runUntilDate:") != std::string::npos; }));
        ::kill(stopped, SIGSTOP);
        return stopped;
    }

    /// Starts `springboard` while another one has the turn, for which it says that it waits.
    pid_t beginAndWait(Words words, const std::string& name) {
        const pid_t process = begin(std::move(words), name);
        EXPECT_TRUE(becomesTrue([&] { return errorsOf(name) == waiting; }));
        return process;
    }

    /// Has a flip die.
    static void killAndAwait(pid_t stopped) {
        ::kill(stopped, SIGKILL);
        EXPECT_EQ(waitFor(stopped), -SIGKILL);
    }

    std::string outputOf(const std::string& name) const {
        return readText(folder() / (name + ".output"));
    }
    std::string errorsOf(const std::string& name) const {
        return readText(folder() / (name + ".errors"));
    }

    /// Expects each file of the device to be a whole property list, and no other one to be there.
    void expectWholeFiles() const {
        for (const char* const path : {preferencesPath, springBoardPreferencesPath, hardwarePath}) {
            EXPECT_TRUE(standin::readPropertyList(bytes(path))) << path;
        }
        EXPECT_EQ(entriesOf(onDevice(preferencesPath).parent_path()), 2);
    }
};

TEST_F(SeveralProcesses, ThatFlipAtOnceAllSucceedAndLeaveEveryFileWhole) {
    const auto flip = [](int i) -> Words {
        return {"--machine", "iPod5,1", "flip", i % 2 == 0 ? "off" : "on"};
    };
    runAtOnce(8, flip);
    for (int i = 0; i < 8; ++i) {
        EXPECT_THAT(outputOf(std::to_string(i)), testing::AnyOf("on\n", "off\n"));
        EXPECT_THAT(errorsOf(std::to_string(i)), testing::AnyOf("", waiting));
    }
    expectWholeFiles();
    expectOutput({"flip", "on"}, "on\n");
}

TEST_F(SeveralProcesses, ThatMakeOneDeviceAtOnceAllHaveIt) {
    fs::remove_all(root());
    runAtOnce(4, [](int /*i*/) { return Words{"state"}; });
    for (int i = 0; i < 4; ++i) EXPECT_EQ(outputOf(std::to_string(i)), "on\n");
}

TEST_F(SeveralProcesses, OfWhichOneIsKilledInsideItsWaitGoOn) {
    const pid_t killed = beginAndStop();
    killAndAwait(killed);
    expectWholeFiles();

    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", true}});
    expectOutput({"state"}, "on\n");
    expectOutput({"flip"}, "off\n");
}

TEST_F(SeveralProcesses, TakeTurnsInFlippingAndSayThatTheyWait) {
    const std::string before = bytes(springBoardPreferencesPath);
    const pid_t first = beginAndStop();
    const pid_t second = beginAndWait({"flip", "on"}, "second");
    const pid_t third = beginAndWait({"apply", "0"}, "third");
    EXPECT_NE(bytes(springBoardPreferencesPath), before);
    ::kill(first, SIGCONT);
    for (const pid_t process : {first, second, third}) EXPECT_EQ(waitFor(process), 0);
    EXPECT_EQ(outputOf("stopped"), "off\n");
    EXPECT_EQ(outputOf("second"), "on\n");
    EXPECT_EQ(outputOf("third"), "off\n");
    EXPECT_EQ(bytes(springBoardPreferencesPath), before);
}

TEST_F(SeveralProcesses, LoseTheirTurnsWithTheirLives) {
    const pid_t killed = beginAndStop();
    const pid_t next = beginAndWait({"flip", "on"}, "next");
    killAndAwait(killed);
    EXPECT_EQ(waitFor(next), 0);
    EXPECT_EQ(outputOf("next"), "on\n");
}

TEST_F(SeveralProcesses, MayEndWhileTheyWaitForTheirTurns) {
    const pid_t stopped = beginAndStop();
    const pid_t impatient = beginAndWait({"flip", "on"}, "impatient");
    ::kill(impatient, SIGINT);
    EXPECT_EQ(waitFor(impatient), -SIGINT);
    killAndAwait(stopped);
}

TEST_F(SeveralProcesses, ThatAreAskedToEndAmidAFlipEndItFirst) {
    const std::string before = bytes(springBoardPreferencesPath);
    const pid_t process = beginAndStop();
    ::kill(process, SIGTERM);
    ::kill(process, SIGCONT);
    EXPECT_EQ(waitFor(process), -SIGTERM);
    EXPECT_EQ(outputOf("stopped"), "off\n");
    EXPECT_EQ(bytes(springBoardPreferencesPath), before);
}

TEST_F(SeveralProcesses, NeedNoTurnsToAskForTheState) {
    const pid_t stopped = beginAndStop();
    expectOutput({"state"}, "on\n");
    killAndAwait(stopped);
}

TEST_F(SeveralProcesses, OfOthersCannotTakeATurn) {
    expectOutput({"flip"}, "off\n");
    EXPECT_EQ(fs::status(onDevice(turnPath)).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(SeveralProcesses, DoNotFlipWithoutATurn) {
    fs::create_directory(onDevice(turnPath));
    expectFailure(run({"flip"}), 1, onDevice(turnPath));
    fs::remove(onDevice(turnPath));
    fs::create_symlink(folder() / "elsewhere", onDevice(turnPath));
    expectFailure(run({"flip"}), 1, onDevice(turnPath));
    EXPECT_FALSE(fs::exists(folder() / "elsewhere"));
    expectOutput({"state"}, "on\n");
}

}  // namespace
}  // namespace quillet::test
