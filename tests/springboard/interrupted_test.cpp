// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "platform/standin/device/device.h"
#include "platform/standin/plist/property_list.h"
#include "springboard/options.h"
#include "tests/springboard/springboard.h"
#include "tests/support/stride.h"
#include "tests/support/traced.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Clock;
using standin::DeviceRoot;
using standin::Dictionary;
using ::testing::AnyOf;
using ::testing::ContainsRegex;
using ::testing::Not;

/// Whether a call may change something, or take long: between two of these it makes no difference
/// when a process is interrupted.
bool mayMatter(long call) {
    static const std::set<long> harmless = {
        SYS_read,  SYS_close,   SYS_fstat,  SYS_newfstatat, SYS_lseek,
        SYS_mmap,  SYS_munmap,  SYS_brk,    SYS_mprotect,   SYS_getrandom,
        SYS_fcntl, SYS_pread64, SYS_getpid, SYS_getdents64, SYS_madvise};
    return !harmless.contains(call);
}

/// Runs commands that are interrupted, as by Ctrl-C, before each call that may matter.
class Interrupted : public SpringBoard {
protected:
    using Work = std::function<void()>;

    /// A process that runs the command line, stopped before the command begins.
    Traced springboard(Words words, Clock::Kind clock = Clock::Kind::virtualTime) const {
        words.insert(words.begin(), {"springboard", "--root", root(), "--bundle", QUILLET_BUNDLE});
        return Traced{[&]() -> int {
            takeSignals();
            const int file = open(output().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            dup2(file, STDOUT_FILENO);
            dup2(file, STDERR_FILENO);
            std::vector<char*> line;
            for (std::string& word : words) line.push_back(word.data());
            Options options = parseOptions(static_cast<int>(line.size()), line.data());
            options.clock = clock;
            Traced::begin();
            options.run(options);
            // What has been made is left.
            _exit(EXIT_SUCCESS);
        }};
    }

    /// Whether a command waits for ever: it is to print something when it does, its last stage.
    enum class End { byItself, never };

    /// Interrupts what `begin` starts in each of its stages, every time after `prepare`. Expects
    /// that the interruption ends it, or that it had done its work, and that `check` holds
    /// afterwards.
    template <class Begin>
    void interruptEverywhere(Begin begin, End end, const Work& prepare, const Work& check) const {
        std::size_t interrupted = 0;
        bool isOver = false;
        for (std::size_t stage = 0; !isOver; stage += stride) {
            SCOPED_TRACE("stage " + std::to_string(stage));
            prepare();
            writeText(output(), "");
            Traced process = begin();
            const bool isThere = goOn(process, stage);
            isOver = !isThere || (end == End::never && !readText(output()).empty());
            if (isThere) process.send(SIGINT);
            const int status = process.end();
            EXPECT_THAT(status, AnyOf(end == End::never ? -SIGINT : 0, -SIGINT));
            interrupted += status == -SIGINT;
            check();
        }
        EXPECT_GT(interrupted, 0U);
    }

    void interruptEverywhere(const Words& words, const Work& prepare, const Work& check) const {
        SCOPED_TRACE(testing::PrintToString(words));
        interruptEverywhere([&] { return springboard(words); }, End::byItself, prepare, check);
    }

    /// Goes on to a stage of that number. False when it ends before that.
    static bool goOn(Traced& process, std::size_t stage) {
        for (std::size_t passed = 0;;) {
            if (!process.nextCall() || process.call() == SYS_exit_group) return false;
            if (mayMatter(process.call()) && passed++ == stage) return true;
        }
    }

    /// The files and folders below one, by their paths in it.
    static std::set<fs::path> contentsOf(const fs::path& top) {
        std::set<fs::path> paths;
        for (const auto& entry : fs::recursive_directory_iterator{top}) {
            paths.insert(entry.path().lexically_relative(top));
        }
        return paths;
    }

    fs::path output() const { return folder() / "interrupted.output"; }

    void makeAgain() const {
        fs::remove_all(root());
        standin::makeNewPhone(root(), {}, {.machine = "iPod5,1"});
        write(preferencesPath, before_);
    }

    const Dictionary before_{{"ios-vibrate-pattern", false}, {"vibrate-when-on", true}};
};

TEST_F(Interrupted, AMakingOfAPhoneLeavesAWholeOneOrNone) {
    const std::set<fs::path> whole = contentsOf(root());
    interruptEverywhere(
        {"new"}, [&] { fs::remove_all(root()); },
        [&] {
            if (!fs::exists(root())) return;
            EXPECT_TRUE(DeviceRoot::isDevice(root()));
            std::set<fs::path> contents = contentsOf(root());
            contents.erase("var/db/journal");
            EXPECT_EQ(contents, whole);
        });
}

TEST_F(Interrupted, AChangeOfThePreferencesIsDoneOrNot) {
    Dictionary set = before_;
    set.set("vibrate-when-on", false);
    Dictionary imported = before_;
    imported.set("a", std::string{"b"});
    writeText(folder() / "import", standin::writePropertyList(Dictionary{{"a", std::string{"b"}}}));
    const auto isOldOr = [&](const Dictionary& changed) {
        const Dictionary found = dictionary(preferencesPath);
        EXPECT_TRUE(found == before_ || found == changed);
    };
    interruptEverywhere(
        {"prefs", "set", "vibrate-when-on", "no"}, [&] { makeAgain(); }, [&] { isOldOr(set); });
    interruptEverywhere(
        {"prefs", "import", folder() / "import"}, [&] { makeAgain(); }, [&] { isOldOr(imported); });
}

TEST_F(Interrupted, APhoneIsErasedOrNotAndKeepsItsModel) {
    interruptEverywhere(
        {"erase"}, [&] { makeAgain(); },
        [&] {
            EXPECT_TRUE(DeviceRoot::isDevice(root()));
            EXPECT_EQ(standin::readFacts(onDevice(DeviceRoot::factsPath)).machine, "iPod5,1");
            const Dictionary found = dictionary(preferencesPath);
            EXPECT_TRUE(found == before_ || found.find("vibrate-when-off"));
        });
}

TEST_F(Interrupted, APhoneIsAnotherModelOrNot) {
    interruptEverywhere(
        {"model", "iPad2,1"}, [&] { makeAgain(); },
        [&] {
            EXPECT_THAT(standin::readFacts(onDevice(DeviceRoot::factsPath)).machine,
                        AnyOf("iPod5,1", "iPad2,1"));
        });
}

TEST_F(Interrupted, AStateIsAppliedWholeOrNot) {
    makeAgain();
    const std::string settings = bytes(springBoardPreferencesPath);
    interruptEverywhere(
        {"apply", "0"}, [&] { makeAgain(); },
        [&] {
            standin::Device device{{.root = root()}};
            const auto* const word = device.notifications.find(DeviceRoot::ringerStateName);
            EXPECT_EQ(device.hardware.isRingerMuted(), word->state.load() == 0);
            EXPECT_EQ(bytes(springBoardPreferencesPath), settings);
        });
}

TEST_F(Interrupted, WhoeverWaitsLeavesThePhoneAsItIs) {
    expectOutput({"state"}, "on\n");
    const auto contents = contentsOf(root());
    const auto isAsBefore = [&] { EXPECT_EQ(contentsOf(root()), contents); };
    const auto interruptWaiting = [&](const auto& begin) {
        interruptEverywhere(
            begin, End::never, [] {}, isAsBefore);
    };
    interruptWaiting([&] { return springboard({"watch"}, Clock::Kind::real); });
    interruptWaiting([&] { return springboard({"log", "-f"}); });
    interruptWaiting([&] {
        return Traced{QUILLET_NOTIFYUTIL,
                      {.words = {"--root", root(), "-w", "a", "-g", "a"},
                       .output = output(),
                       .errors = output()}};
    });
    EXPECT_THAT(run({"log"}).output, Not(ContainsRegex("notifyutil.[0-9]+. +died\n")));
}

}  // namespace
}  // namespace quillet::test
