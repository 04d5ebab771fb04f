// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <set>
#include <string>

#include "platform/standin/device/new_phone.h"
#include "platform/standin/files/file.h"
#include "tests/support/disk.h"
#include "tests/support/program.h"
#include "tests/support/supervisor.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::writeFileAtomically;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

constexpr char oldBytes[] = "old";
constexpr char newBytes[] = "new";

class PowerLoss : public testing::Test {
protected:
    fs::path folder() const { return folder_.path(); }
    fs::path path() const { return folder() / "file"; }

    /// Has `disk` follow what `body` does, and `look` done after each call.
    static void follow(Disk& disk, const std::function<void()>& body,
                       const std::function<void(const SupervisedCall&)>& look) {
        const auto run = [&] {
            body();
            return 0;
        };
        supervise(callsThatChange(), run, [&](const SupervisedCall& call) {
            disk.follow(call);
            look(call);
            return Verdict{};
        });
    }

    /// Expects `before` or the new bytes at `path` whenever the power is lost while the file at
    /// `written` is, and the new ones afterwards.
    void expectOldOrNew(const fs::path& written, const std::string& before) const {
        Disk disk{folder()};
        int calls = 0;
        follow(
            disk, [&] { EXPECT_TRUE(writeFileAtomically(written, newBytes)); },
            [&](const SupervisedCall&) {
                ++calls;
                EXPECT_THAT(disk.contentsOf(path()), Each(AnyOf(before, newBytes)));
            });
        EXPECT_GE(calls, 6) << "open, lock, write, flush, rename, flush";
        EXPECT_THAT(disk.contentsOf(path()), ElementsAre(newBytes));
    }

private:
    TemporaryFolder folder_;
};

TEST_F(PowerLoss, WhileAFileIsReplacedLeavesTheOldOneOrTheNew) {
    writeText(path(), oldBytes);
    expectOldOrNew(path(), oldBytes);
}

TEST_F(PowerLoss, WhileANewFileIsWrittenLeavesNoneOrTheNewOne) {
    expectOldOrNew(path(), Disk::absent);
}

TEST_F(PowerLoss, WhileAFileIsReplacedBehindALinkLeavesTheOldOneOrTheNew) {
    writeText(path(), oldBytes);
    const TemporaryFolder elsewhere;
    fs::create_symlink(path(), elsewhere.path() / "link");
    expectOldOrNew(elsewhere.path() / "link", oldBytes);
}

TEST_F(PowerLoss, WhileDraftsOfTheDeadAreRemovedLeavesTheOldFileOrTheNew) {
    writeText(path(), oldBytes);
    writeText(folder() / ".quillet-draft-1-1", "half");
    writeText(folder() / ".quillet-draft-1-2", "half");
    expectOldOrNew(path(), oldBytes);
}

// The check itself: it tells what replaces files without flushing.

TEST_F(PowerLoss, AfterAFileWasReplacedByOneThatWasNotFlushedMayLeaveNeither) {
    writeText(path(), oldBytes);
    Disk disk{folder()};
    const fs::path draft = folder() / "draft";
    follow(
        disk,
        [&] {
            writeText(draft, newBytes);
            ASSERT_EQ(std::rename(draft.c_str(), path().c_str()), 0);
        },
        [](const SupervisedCall&) {});
    EXPECT_THAT(disk.contentsOf(path()), UnorderedElementsAre(oldBytes, Disk::torn));
}

TEST_F(PowerLoss, AfterAFileWasWrittenInPlaceMayLeaveNeither) {
    writeText(path(), oldBytes);
    Disk disk{folder()};
    follow(
        disk, [&] { writeText(path(), newBytes); }, [](const SupervisedCall&) {});
    EXPECT_THAT(disk.contentsOf(path()), ElementsAre(Disk::torn));
}

TEST_F(PowerLoss, AfterARenamingInAFolderThatWasNotFlushedMayLeaveEither) {
    writeText(path(), oldBytes);
    writeText(folder() / "draft", newBytes);
    Disk disk{folder()};
    follow(
        disk, [&] { fs::rename(folder() / "draft", path()); }, [](const SupervisedCall&) {});
    EXPECT_THAT(disk.contentsOf(path()), UnorderedElementsAre(oldBytes, newBytes));
}

/// The files of a state that lie in `folder`.
Disk::State filesIn(const fs::path& folder, const Disk::State& state) {
    Disk::State files;
    for (const auto& [path, bytes] : state) {
        if (path.lexically_relative(folder).begin()->string() != "..") files.emplace(path, bytes);
    }
    return files;
}

TEST_F(PowerLoss, WhileADeviceIsMadeLeavesNoneOrAWholeOne) {
    const fs::path root = folder() / "root";
    Disk disk{folder()};
    bool isPublished = false;
    std::set<Disk::State> devices;
    follow(
        disk, [&] { standin::makeNewPhone(root, {}); },
        [&](const SupervisedCall& call) {
            const auto paths = call.paths();
            isPublished = isPublished || (paths.size() == 2 && paths[1] == root);
            if (!isPublished) return;
            for (const auto& state : disk.states()) devices.insert(filesIn(root, state));
        });
    ASSERT_EQ(devices.size(), 2U) << "none and one";
    EXPECT_THAT(devices, Contains(Disk::State{}));
    ASSERT_EQ(disk.states().size(), 1U);
    const Disk::State whole = filesIn(root, disk.states().front());
    EXPECT_EQ(whole.size(), 5U);
    EXPECT_THAT(devices, Contains(whole));
    for (const auto& [path, bytes] : whole) EXPECT_TRUE(bytes.has_value()) << path;
}

}  // namespace
}  // namespace quillet::test
