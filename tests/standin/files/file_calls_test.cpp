// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/files/file.h"
#include "tests/support/child.h"
#include "tests/support/entries.h"
#include "tests/support/supervisor.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::mayExist;
using standin::readFile;
using standin::writeFileAtomically;

/// Has every call with the number fail.
Judge failing(int number, int error) {
    return [=](const SupervisedCall& call) {
        return call.number == number ? Verdict{Verdict::Kind::fails, error} : Verdict{};
    };
}

/// A file that is replaced while its replacer's system calls meet their verdicts.
class FileCalls : public testing::Test {
protected:
    FileCalls() { writeOld(); }

    fs::path folder() const { return folder_.path(); }
    fs::path path() const { return folder() / "file"; }
    void writeOld() const { ASSERT_TRUE(writeFileAtomically(path(), oldBytes)); }

    bool replaceUnder(const Judge& judge) const {
        return supervise(
                   callsThatChange(),
                   [this] { return writeFileAtomically(path(), newBytes) ? 1 : 0; }, judge) == 1;
    }

    /// Has `round` done with each system call in turn meeting `verdict`, until there is no further.
    template <class Round>
    void forEachCall(const Verdict& verdict, Round round) const {
        int place = 0;
        for (;; ++place) {
            writeOld();
            Nth nth{place, verdict};
            round(nth);
            if (!nth.hasCome()) break;
        }
        EXPECT_GE(place, 8) << "open, lock, write, owner, mode, flush, rename, flush";
    }

    void expectOldOrNew() const {
        const auto bytes = readFile(path());
        EXPECT_TRUE(bytes == oldBytes || bytes == newBytes);
    }

    const std::string oldBytes = std::string(1000, 'o');
    const std::string newBytes = std::string(2000, 'n');

private:
    TemporaryFolder folder_;
};

TEST_F(FileCalls, ThatASignalInterruptsAreRepeated) {
    for (const int number : {SYS_openat, SYS_write, SYS_fsync, SYS_fchmod, SYS_fchown, SYS_flock}) {
        writeOld();
        int interrupted = 0;
        const bool isReplaced = replaceUnder([&](const SupervisedCall& call) {
            const bool isMeant = call.number == number && interrupted < 3;
            interrupted += isMeant ? 1 : 0;
            return isMeant ? Verdict{Verdict::Kind::fails, EINTR} : Verdict{};
        });
        EXPECT_TRUE(isReplaced) << number;
        EXPECT_EQ(interrupted, 3) << number;
        EXPECT_EQ(readFile(path()), newBytes) << number;
        EXPECT_EQ(entriesOf(folder()), 1) << number;
    }
}

TEST_F(FileCalls, ThatCloseAreNotAskedHowTheyWent) {
    for (const int error : {EINTR, EIO}) {
        writeOld();
        const auto write = [this] { return writeFileAtomically(path(), newBytes) ? 1 : 0; };
        // A second process, since what is not closed stays open.
        EXPECT_EQ(supervise(
                      {SYS_close}, [&] { return Child{write}.wait(); }, failing(SYS_close, error)),
                  1);
        EXPECT_EQ(readFile(path()), newBytes);
        EXPECT_EQ(entriesOf(folder()), 1);
    }
}

TEST_F(FileCalls, ThatAreNotPermittedToGiveOwnerAndModeDoNotStopIt) {
    for (const int number : {SYS_fchmod, SYS_fchown}) {
        writeOld();
        EXPECT_TRUE(replaceUnder(failing(number, EPERM)));
        EXPECT_EQ(readFile(path()), newBytes);
    }
}

TEST_F(FileCalls, ThatCannotGiveTheModeForAnotherReasonLeaveTheOldFile) {
    writeOld();
    EXPECT_FALSE(replaceUnder(failing(SYS_fchmod, EIO)));
    EXPECT_EQ(readFile(path()), oldBytes);
}

TEST_F(FileCalls, WithoutTheGroupNobodyIsAdmittedWhoWasNotBefore) {
    struct Row {
        mode_t before;
        mode_t after;
    };
    for (const Row row : {Row{0640, 0600}, Row{0664, 0644}, Row{0606, 0606}, Row{06755, 0755}}) {
        writeOld();
        ASSERT_EQ(::chmod(path().c_str(), row.before), 0);
        EXPECT_TRUE(replaceUnder(failing(SYS_fchown, EPERM)));
        EXPECT_EQ(static_cast<mode_t>(fs::status(path()).permissions()), row.after);
    }
}

TEST_F(FileCalls, ThatKnowNoFlushingOrLockingDoNotStopIt) {
    for (const auto& [number, error] : {std::pair{SYS_fsync, EINVAL}, std::pair{SYS_flock, ENOLCK},
                                        std::pair{SYS_flock, EOPNOTSUPP}}) {
        writeOld();
        EXPECT_TRUE(replaceUnder(failing(number, error)));
        EXPECT_EQ(readFile(path()), newBytes);
        EXPECT_EQ(entriesOf(folder()), 1);
    }
}

TEST_F(FileCalls, EachOfWhichFailsOnceLeaveOneOfTheTwoContentsAndNothingElse) {
    for (const int error : {EIO, ENOSPC, EACCES, EPERM, ENOMEM, EMFILE, EEXIST, EROFS}) {
        forEachCall({Verdict::Kind::fails, error}, [&](Nth& nth) {
            const bool isReplaced = replaceUnder(std::ref(nth));
            EXPECT_EQ(readFile(path()), isReplaced ? newBytes : oldBytes) << nth.number();
            EXPECT_EQ(entriesOf(folder()), 1) << nth.number();
        });
    }
}

TEST_F(FileCalls, OfOneKindThatAlwaysFailLeaveOneOfTheTwoContents) {
    for (const int number : callsThatChange()) {
        for (const int error : {EIO, EEXIST, EPERM}) {
            writeOld();
            const bool isReplaced = replaceUnder(failing(number, error));
            EXPECT_EQ(readFile(path()), isReplaced ? newBytes : oldBytes) << number;
        }
    }
}

TEST_F(FileCalls, BeforeEachOfWhichTheWriterIsKilledLeaveOneOfTheTwoContents) {
    forEachCall({Verdict::Kind::kills, 0}, [&](Nth& nth) {
        const auto write = [this] { return writeFileAtomically(path(), newBytes) ? 0 : 1; };
        const int status = supervise(
            callsThatChange(), [&] { return Child{write}.wait(); }, std::ref(nth));
        EXPECT_EQ(status, nth.hasCome() ? -SIGKILL : 0);
        expectOldOrNew();
        EXPECT_LE(entriesOf(folder()), 2) << "with its draft";
        writeOld();
        EXPECT_EQ(entriesOf(folder()), 1) << "the next writer removes it";
    });
}

TEST_F(FileCalls, ThatAreNeverReachedLeaveOneDraftHoweverManyWritersDie) {
    for (int killed = 0; killed < 20; ++killed) {
        const auto write = [this] { return writeFileAtomically(path(), newBytes) ? 0 : 1; };
        supervise(
            {SYS_fsync}, [&] { return Child{write}.wait(); },
            [](const SupervisedCall&) {
                return Verdict{Verdict::Kind::kills, 0};
            });
    }
    EXPECT_EQ(readFile(path()), oldBytes);
    EXPECT_EQ(entriesOf(folder()), 2);
}

TEST_F(FileCalls, ADraftWhoseMakerLivesIsLeftAlone) {
    bool isReplacedMeanwhile = false;
    EXPECT_TRUE(replaceUnder([&](const SupervisedCall& call) {
        const bool isLast = call.number == SYS_fsync && !isReplacedMeanwhile;
        if (isLast) isReplacedMeanwhile = writeFileAtomically(path(), "in between");
        return Verdict{};
    }));
    EXPECT_TRUE(isReplacedMeanwhile);
    EXPECT_EQ(readFile(path()), newBytes);
}

TEST_F(FileCalls, ADraftThatIsTakenForAbandonedBeforeItIsLockedIsMadeAgain) {
    int taken = 0;
    EXPECT_TRUE(replaceUnder([&](const SupervisedCall& call) {
        // Its maker has not locked it yet: to all others it looks like that of a dead one.
        if (call.number == SYS_flock && taken++ < 3) writeFileAtomically(folder() / "other", "");
        return Verdict{};
    }));
    EXPECT_GE(taken, 3);
    EXPECT_EQ(readFile(path()), newBytes);
    EXPECT_EQ(entriesOf(folder()), 2);
}

TEST_F(FileCalls, ThatLookAndFailDoNotMakeAFileAbsent) {
    for (const int error : {EIO, EACCES, ENOMEM, ELOOP, ENAMETOOLONG, EOVERFLOW}) {
        const auto fail = [&](const SupervisedCall& call) {
            return isStat(call.number) ? Verdict{Verdict::Kind::fails, error} : Verdict{};
        };
        const auto look = [this] { return mayExist(path()) ? 1 : 0; };
        EXPECT_EQ(supervise(callsThatLook(), look, fail), 1) << error;
        const auto write = [this] { return writeFileAtomically(path(), newBytes) ? 1 : 0; };
        EXPECT_EQ(supervise(callsThatLook(), write, fail), 0) << error;
        EXPECT_EQ(readFile(path()), oldBytes) << error;
    }
}

TEST_F(FileCalls, ThatFindNothingMakeAFileAbsent) {
    for (const int error : {ENOENT, ENOTDIR}) {
        const auto look = [this] { return mayExist(path()) ? 1 : 0; };
        EXPECT_EQ(
            supervise(
                callsThatLook(), look,
                [&](const SupervisedCall& call) {
                    return isStat(call.number) ? Verdict{Verdict::Kind::fails, error} : Verdict{};
                }),
            0);
    }
}

TEST_F(FileCalls, AWriteThatTakesNothingIsNotRepeated) {
    EXPECT_FALSE(replaceUnder(failing(SYS_write, 0)));
    EXPECT_EQ(readFile(path()), oldBytes);
}

}  // namespace
}  // namespace quillet::test
