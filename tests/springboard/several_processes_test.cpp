// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "platform/standin/plist/property_list.h"
#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;

constexpr char hardwarePath[] = "/var/db/hardware.plist";

class SeveralProcesses : public SpringBoard {
protected:
    /// Starts `springboard` on the device, beside the others.
    pid_t begin(Words words, const std::string& name) {
        words.insert(words.begin(), {"--root", root()});
        return start(QUILLET_SPRINGBOARD, {.words = words,
                                           .output = folder() / (name + ".output"),
                                           .errors = folder() / (name + ".errors")});
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
        const fs::directory_iterator files{onDevice(preferencesPath).parent_path()};
        EXPECT_EQ(std::distance(fs::begin(files), fs::end(files)), 2);
    }
};

TEST_F(SeveralProcesses, ThatFlipAtOnceAllSucceedAndLeaveEveryFileWhole) {
    std::vector<pid_t> processes;
    for (int i = 0; i < 8; ++i) {
        const char* const state = i % 2 == 0 ? "off" : "on";
        processes.push_back(begin({"--machine", "iPod5,1", "flip", state}, std::to_string(i)));
    }
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(waitFor(processes[static_cast<std::size_t>(i)]), 0)
            << errorsOf(std::to_string(i));
        EXPECT_THAT(outputOf(std::to_string(i)), testing::AnyOf("on\n", "off\n"));
        EXPECT_EQ(errorsOf(std::to_string(i)), "");
    }
    expectWholeFiles();
    expectOutput({"flip", "on"}, "on\n");
}

TEST_F(SeveralProcesses, ThatMakeOneDeviceAtOnceAllHaveIt) {
    fs::remove_all(root());
    std::vector<pid_t> processes;
    for (int i = 0; i < 4; ++i) processes.push_back(begin({"state"}, std::to_string(i)));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(waitFor(processes[static_cast<std::size_t>(i)]), 0)
            << errorsOf(std::to_string(i));
        EXPECT_EQ(outputOf(std::to_string(i)), "on\n");
    }
}

TEST_F(SeveralProcesses, OfWhichOneIsKilledInsideItsWaitGoOn) {
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const pid_t killed = begin({"--trace", "flip", "off"}, "killed");
    EXPECT_TRUE(
        becomesTrue([&] { return errorsOf("killed").find("runUntilDate:") != std::string::npos; }));
    ::kill(killed, SIGKILL);
    EXPECT_EQ(waitFor(killed), -SIGKILL);
    expectWholeFiles();

    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", true}});
    expectOutput({"state"}, "on\n");
    expectOutput({"flip"}, "off\n");
}

}  // namespace
}  // namespace quillet::test
