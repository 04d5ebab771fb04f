// SPDX-License-Identifier: MIT
#include "platform/standin/files/draft.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/standin/files/draft_folder.h"
#include "tests/support/entries.h"
#include "tests/support/supervisor.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Draft;
using standin::DraftFolder;

/// A folder in which drafts are made while their maker's system calls meet their verdicts.
class Drafts : public testing::Test {
protected:
    fs::path folder() const { return folder_.path(); }

    /// Whether the call opens a draft, or makes it.
    bool isOfDraft(const SupervisedCall& call) const {
        const fs::path path = call.paths().front();
        return path.parent_path() == folder() && path.filename().string().starts_with(".quillet-");
    }

    /// 0, or why a draft cannot be made.
    int make(Draft::Kind kind) const {
        const Draft draft{folder(), kind, 0700};
        return draft.isMade() ? 0 : errno;
    }

    /// The same when each call with the number that is for a draft meets what `judge` says.
    int makeUnder(Draft::Kind kind, int number, const Judge& judge) const {
        return supervise(
            {number}, [&] { return make(kind); },
            [&](const SupervisedCall& call) { return isOfDraft(call) ? judge(call) : Verdict{}; });
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Drafts, ThatCannotBeMadeAreNotTriedUnderOtherNames) {
    for (const int error : {EACCES, EMFILE, ENOSPC}) {
        int tries = 0;
        const auto fail = [&](const SupervisedCall&) {
            ++tries;
            return Verdict{Verdict::Kind::fails, error};
        };
        EXPECT_EQ(makeUnder(Draft::Kind::file, SYS_openat, fail), error);
        EXPECT_EQ(tries, 1) << error;
    }
}

TEST_F(Drafts, WhoseNamesAreTakenAreTriedUnderAHundred) {
    int tries = 0;
    const auto fail = [&](const SupervisedCall&) {
        ++tries;
        return Verdict{Verdict::Kind::fails, EEXIST};
    };
    EXPECT_EQ(makeUnder(Draft::Kind::file, SYS_openat, fail), EEXIST);
    EXPECT_EQ(tries, 100);
}

TEST_F(Drafts, OfFoldersThatCannotBeOpenedAreTakenBack) {
    for (const int error : {EACCES, EMFILE}) {
        const auto fail = [&](const SupervisedCall&) {
            return Verdict{Verdict::Kind::fails, error};
        };
        EXPECT_EQ(makeUnder(Draft::Kind::folder, SYS_openat, fail), error);
        EXPECT_EQ(entriesOf(folder()), 0) << error;
    }
}

TEST_F(Drafts, OfFoldersThatAreTakenForAbandonedBeforeTheyAreOpenAreMadeAgain) {
    int taken = 0;
    const auto take = [&](const SupervisedCall& call) {
        if (taken++ < 3) fs::remove(call.paths().front());
        return Verdict{};
    };
    EXPECT_EQ(makeUnder(Draft::Kind::folder, SYS_openat, take), 0);
    EXPECT_GT(taken, 3);
}

TEST_F(Drafts, OfFoldersThatCannotBeMadeAreRefusedWithTheReason) {
    const auto make = [this] {
        try {
            const DraftFolder draft{folder() / "place"};
        } catch (const std::system_error& error) {
            return error.code().value();
        }
        return 0;
    };
    const auto fail = [](const SupervisedCall&) { return Verdict{Verdict::Kind::fails, EROFS}; };
    EXPECT_EQ(supervise({SYS_mkdir}, make, fail), EROFS);
    EXPECT_EQ(entriesOf(folder()), 0);
}

}  // namespace
}  // namespace quillet::test
