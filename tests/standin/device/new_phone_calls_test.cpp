// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/standin/device/device.h"
#include "platform/standin/device/new_phone.h"
#include "platform/standin/files/draft.h"
#include "tests/support/child.h"
#include "tests/support/entries.h"
#include "tests/support/program.h"
#include "tests/support/supervisor.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;

/// A device that is made while its maker's system calls meet their verdicts.
class NewPhoneCalls : public testing::Test {
protected:
    fs::path folder() const { return folder_.path(); }
    fs::path root() const { return folder() / "root"; }

    /// 0, or 1 when it cannot be made.
    int make() const {
        try {
            standin::makeNewPhone(root(), {});
            return 0;
        } catch (const std::runtime_error&) {
            return 1;
        }
    }

    /// Has `round` done with each system call in turn meeting `verdict`, until there is no further.
    template <class Round>
    void forEachCall(const Verdict& verdict, Round round) const {
        int place = 0;
        for (;; ++place) {
            fs::remove_all(root());
            Nth nth{place, verdict};
            round(nth);
            if (!nth.hasCome()) break;
        }
        EXPECT_GT(place, 40) << "four files, and the folders above them";
    }

    void expectDevice() const {
        const standin::Device device{{.root = root()}};
        EXPECT_EQ(device.hardware.volume("Ringtone"), 0.75F);
        EXPECT_EQ(entriesOf(folder()), 1) << "nothing is left beside it";
    }

private:
    TemporaryFolder folder_;
};

TEST_F(NewPhoneCalls, BeforeEachOfWhichItsMakerIsKilledLeaveWhatTheNextOneRemoves) {
    forEachCall({Verdict::Kind::kills, 0}, [this](Nth& nth) {
        const int status = supervise(
            callsThatChange(), [this] { return Child{[this] { return make(); }}.wait(); },
            std::ref(nth));
        EXPECT_EQ(status, nth.hasCome() ? -SIGKILL : 0);
        EXPECT_LE(entriesOf(folder()), 1);
        expectDevice();
    });
}

TEST_F(NewPhoneCalls, EachOfWhichFailsOnceLeaveAWholeDeviceOrNothing) {
    forEachCall({Verdict::Kind::fails, EIO}, [this](Nth& nth) {
        const bool isMade = supervise(
                                callsThatChange(), [this] { return make(); }, std::ref(nth)) == 0;
        EXPECT_EQ(fs::exists(root()), isMade) << nth.number();
        EXPECT_EQ(entriesOf(folder()), isMade ? 1 : 0) << nth.number();
        if (isMade) expectDevice();
    });
}

TEST_F(NewPhoneCalls, ThatFlushAndFailBeforeItIsInPlaceMakeNoDevice) {
    std::vector<fs::path> flushed;
    const auto note = [&](const SupervisedCall& call) {
        if (!fs::exists(root())) flushed.push_back(call.file(0));
        return Verdict{};
    };
    EXPECT_EQ(supervise(
                  {SYS_fsync}, [this] { return make(); }, note),
              0);
    EXPECT_GT(flushed.size(), 10U);
    for (std::size_t place = 0; place < flushed.size(); ++place) {
        const auto later = flushed.begin() + static_cast<std::ptrdiff_t>(place) + 1;
        if (std::find(later, flushed.end(), flushed[place]) != flushed.end()) continue;
        fs::remove_all(root());
        Nth nth{static_cast<int>(place), {Verdict::Kind::fails, EIO}};
        EXPECT_EQ(supervise(
                      {SYS_fsync}, [this] { return make(); }, std::ref(nth)),
                  1)
            << place;
        EXPECT_EQ(entriesOf(folder()), 0) << place;
    }
}

TEST_F(NewPhoneCalls, FlushAllOfADeviceBeforeItTakesThePlaceOfAnother) {
    ASSERT_EQ(make(), 0);
    const auto erase = [this] {
        standin::eraseDevice(root(), {}, {});
        return 0;
    };
    std::set<fs::path> flushed;
    const auto follow = [&](const SupervisedCall& call) {
        if (call.number == SYS_fsync) {
            flushed.insert(call.file(0));
            return Verdict{};
        }
        const fs::path draft = call.paths().at(0);
        EXPECT_TRUE(flushed.contains(draft));
        for (const auto& entry : fs::recursive_directory_iterator{draft}) {
            EXPECT_TRUE(flushed.contains(entry.path())) << entry.path();
        }
        return Verdict{};
    };
    EXPECT_EQ(supervise({SYS_fsync, SYS_renameat2}, erase, follow), 0);
    EXPECT_GT(flushed.size(), 10U);
}

TEST_F(NewPhoneCalls, OfOneWhoDiesWhileSomebodyElseIsFasterLeaveNothingForTheNext) {
    supervise(
        callsThatChange(), [this] { return Child{[this] { return make(); }}.wait(); },
        [this](const SupervisedCall& call) {
            const auto paths = call.paths();
            if (paths.size() != 2 || paths[1] != root()) return Verdict{};
            EXPECT_EQ(make(), 0);
            return Verdict{Verdict::Kind::kills, 0};
        });
    EXPECT_EQ(entriesOf(folder()), 2) << "the device, and half of another";
    EXPECT_EQ(make(), 0);
    expectDevice();
}

TEST_F(NewPhoneCalls, BeforeAnyOfWhichSomebodyTidiesUpLeaveADeviceAllTheSame) {
    int place = 0;
    for (int calls = 1; place < calls; ++place) {
        fs::remove_all(root());
        calls = 0;
        const auto tidyOnce = [&](const SupervisedCall& /*call*/) {
            if (calls++ == place) standin::Draft::removeAbandoned(folder());
            return Verdict{};
        };
        EXPECT_EQ(supervise(
                      callsThatChange(), [this] { return make(); }, tidyOnce),
                  0)
            << place;
        expectDevice();
    }
    EXPECT_GT(place, 40) << "four files, and the folders above them";
}

TEST_F(NewPhoneCalls, ThatFailToLookIntoAFolderSayWhichAndWhy) {
    fs::create_directory(root());
    std::string message;
    const auto makeThere = [&] {
        try {
            standin::makeNewPhone(root(), {});
        } catch (const std::runtime_error& error) {
            message = error.what();
        }
        return 0;
    };
    supervise({SYS_openat}, makeThere, [this](const SupervisedCall& call) {
        const bool isLook = call.paths().front() == root();
        return isLook ? Verdict{Verdict::Kind::fails, EACCES} : Verdict{};
    });
    EXPECT_EQ(message, root().string() + ": cannot be looked at: Permission denied");
}

TEST_F(NewPhoneCalls, LeaveFoldersOfTheUsersAlone) {
    fs::create_directories(folder() / "root.backup");
    fs::create_directories(folder() / ".quillet-drafts");
    EXPECT_EQ(make(), 0);
    EXPECT_EQ(entriesOf(folder()), 3);
}

}  // namespace
}  // namespace quillet::test
