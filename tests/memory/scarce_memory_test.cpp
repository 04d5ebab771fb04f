// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <new>
#include <string>

#include "platform/standin/device/new_phone.h"
#include "platform/standin/plist/property_list.h"
#include "springboard/host_process.h"
#include "tests/memory/failing_memory.h"
#include "tests/support/child.h"
#include "tests/support/names.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Dictionary;

constexpr int memoryLasted = 2;

/// Flips a switch that vibrates by itself in processes without memory.
class ScarceMemory : public testing::Test {
protected:
    ScarceMemory() {
        standin::makeNewPhone(root(), {{preferencesPath, {{"ios-vibrate-pattern", false}}}});
    }

    /// How a host ends that makes its device and turns the switch off, without the memory that it
    /// asks for at that request, or from then on: memoryLasted when it asks for less.
    int statusWithout(int request, Failing failing) const {
        Child host{[&]() -> int {
            silence();
            const Options options = this->options();
            failMemory(request, failing);
            return flipOff(options);
        }};
        return host.wait();
    }

    /// Expects hosts to flip and to leave the settings as they were, whichever request fails.
    void expectFlipsWithoutAnyRequest(Failing failing) const {
        const std::string before = settings();
        int requests = 0;
        for (int status = 0; status != memoryLasted; ++requests) {
            status = statusWithout(requests, failing);
            ASSERT_TRUE(status == 0 || status == memoryLasted) << requests << ": " << status;
            ASSERT_EQ(settings(), before) << requests;
        }
        EXPECT_GT(requests, 100);
    }

    std::string settings() const { return readText(settingsFile()); }
    fs::path settingsFile() const {
        return root() / "var/mobile/Library/Preferences/com.apple.springboard.plist";
    }

private:
    static void silence() {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
    }

    static int flipOff(const Options& options) {
        try {
            HostProcess{options}.flip(0);
            return hasMemoryFailed() ? EXIT_SUCCESS : memoryLasted;
        } catch (const std::bad_alloc&) {
            return EXIT_FAILURE;
        }
    }

    Options options() const {
        Options options;
        options.root = root();
        options.bundle = QUILLET_BUNDLE;
        options.clock = standin::Clock::Kind::virtualTime;
        return options;
    }

    fs::path root() const { return folder_.path() / "root"; }

    TemporaryFolder folder_;
};

TEST_F(ScarceMemory, OnceStopsNoFlip) { expectFlipsWithoutAnyRequest(Failing::once); }

TEST_F(ScarceMemory, ForEverStopsNoFlip) { expectFlipsWithoutAnyRequest(Failing::forEver); }

TEST_F(ScarceMemory, LeavesSettingsThatItCannotHoldAsTheyWere) {
    const Dictionary large = {{"picture", std::string(std::size_t{20} << 20U, '.')}};
    writeText(settingsFile(), standin::writePropertyList(large));
    const std::string before = settings();
    EXPECT_EQ(statusWithout(0, Failing::forEver), EXIT_SUCCESS);
    EXPECT_EQ(settings(), before);
}

}  // namespace
}  // namespace quillet::test
