// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "platform/standin/files/file.h"
#include "tests/support/child.h"
#include "tests/support/entries.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::mayExist;
using standin::readFile;
using standin::writeFileAtomically;

class ReplacedFile : public testing::Test {
protected:
    fs::path path(const std::string& name) const { return folder_.path() / name; }

    fs::path folderWith(const std::string& name) const {
        fs::create_directory(path(name));
        return path(name);
    }

    std::ptrdiff_t entries() const { return entriesOf(folder_.path()); }

private:
    TemporaryFolder folder_;
};

struct stat statusAt(const fs::path& path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

TEST_F(ReplacedFile, BehindALinkIsReplacedWhereItIsAndTheLinkStays) {
    writeText(folderWith("elsewhere") / "file", "old");
    fs::create_symlink("elsewhere/file", path("relative"));
    fs::create_symlink(path("relative"), path("absolute"));
    EXPECT_TRUE(writeFileAtomically(path("absolute"), "new"));
    EXPECT_EQ(readFile(path("elsewhere") / "file"), "new");
    EXPECT_TRUE(fs::is_symlink(path("relative")));
    EXPECT_TRUE(fs::is_symlink(path("absolute")));
    EXPECT_EQ(entries(), 3);
}

TEST_F(ReplacedFile, BehindALinkInALinkedFolderIsTheOneThatTheSystemFinds) {
    fs::create_directories(folderWith("a") / "b");
    fs::create_directory_symlink("a/b", path("linked"));
    fs::create_symlink("../file", path("a") / "b" / "link");
    EXPECT_TRUE(writeFileAtomically(path("linked") / "link", "new"));
    EXPECT_EQ(readFile(path("a") / "file"), "new");
}

TEST_F(ReplacedFile, ThatALinkLeadsToNeedNotBeThere) {
    fs::create_symlink("file", path("link"));
    EXPECT_FALSE(mayExist(path("link")));
    EXPECT_TRUE(writeFileAtomically(path("link"), "new"));
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(readFile(path("file")), "new");
}

TEST_F(ReplacedFile, IsNoneBehindLinksWithoutAnEnd) {
    fs::create_symlink("circle", path("circle"));
    EXPECT_TRUE(mayExist(path("circle"))) << "who could look?";
    EXPECT_FALSE(writeFileAtomically(path("circle"), "new"));
    EXPECT_TRUE(fs::is_symlink(path("circle")));
    EXPECT_EQ(entries(), 1);
}

TEST_F(ReplacedFile, IsNothingButAFile) {
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    fs::create_symlink("/dev/null", path("null"));
    fs::create_symlink("folder", path("linked folder"));
    folderWith("folder");
    for (const char* const name : {"fifo", "null", "folder", "linked folder"}) {
        const mode_t before = statusAt(path(name)).st_mode;
        EXPECT_FALSE(writeFileAtomically(path(name), "new")) << name;
        EXPECT_EQ(statusAt(path(name)).st_mode, before) << name;
    }
    EXPECT_EQ(entries(), 4);
}

TEST_F(ReplacedFile, HandsOnItsOwnerAndGroupWithItsMode) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser may give files away";
    writeText(path("file"), "old");
    ASSERT_EQ(::chown(path("file").c_str(), 501, 502), 0);
    ASSERT_EQ(::chmod(path("file").c_str(), 06640), 0);
    EXPECT_TRUE(writeFileAtomically(path("file"), "new"));
    const struct stat after = statusAt(path("file"));
    EXPECT_EQ(after.st_uid, 501U);
    EXPECT_EQ(after.st_gid, 502U);
    EXPECT_EQ(after.st_mode & 07777U, 06640U);
}

TEST_F(ReplacedFile, OfSomebodyElseIsReplacedByOneOfOnesOwn) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser may become somebody else";
    const fs::path file = folderWith("open") / "file";
    fs::permissions(path(""), fs::perms{0755});
    fs::permissions(path("open"), fs::perms{0777});
    writeText(file, "old");
    Child other{[&] {
        if (::setgid(502) != 0 || ::setuid(501) != 0) return 2;
        return writeFileAtomically(file, "new") ? 0 : 1;
    }};
    EXPECT_EQ(other.wait(), 0);
    EXPECT_EQ(readFile(file), "new");
    EXPECT_EQ(statusAt(file).st_uid, 501U);
    EXPECT_EQ(statusAt(file).st_mode & 07777U, 0644U);
}

TEST_F(ReplacedFile, ThatIsNewHasTheModeThatTheProcessGivesToFiles) {
    for (const mode_t mask : {0000U, 0022U, 0027U, 0077U}) {
        fs::remove(path("file"));
        const mode_t before = ::umask(mask);
        EXPECT_TRUE(writeFileAtomically(path("file"), "new"));
        ::umask(before);
        EXPECT_EQ(statusAt(path("file")).st_mode & 07777U, 0666U & ~mask);
    }
}

TEST_F(ReplacedFile, InAFolderWithDraftsOfTheDeadAndFilesOfOthersCleansUpAfterTheDeadAlone) {
    writeText(path(".quillet-draft-1-2"), "half");
    writeText(folderWith(".quillet-draft-1-3") / "file", "half");
    for (const char* const name :
         {".quillet-draft-", ".quillet-draft-123", ".quillet-draft-1-2.plist",
          ".quillet-draft-1-2~", "quillet-draft-1-2"}) {
        writeText(path(name), "the user's");
    }
    EXPECT_TRUE(writeFileAtomically(path("file"), "new"));
    EXPECT_FALSE(fs::exists(path(".quillet-draft-1-2")));
    EXPECT_FALSE(fs::exists(path(".quillet-draft-1-3")));
    EXPECT_EQ(entries(), 6);
}

TEST_F(ReplacedFile, ByManyProcessesAtOnceIsAlwaysReplaced) {
    Gate gate;
    std::vector<std::unique_ptr<Child>> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.push_back(std::make_unique<Child>([&, writer] {
            if (!gate.pass()) return 1;
            for (int round = 0; round < 200; ++round) {
                const std::string name = std::to_string(round % 2 == 0 ? 0 : writer);
                if (!writeFileAtomically(path(name), name)) return 2;
            }
            return 0;
        }));
    }
    for (std::size_t writer = 0; writer < writers.size(); ++writer) gate.open();
    for (const auto& writer : writers) EXPECT_EQ(writer->wait(), 0);
    EXPECT_EQ(entries(), 4) << "and no draft is left";
}

}  // namespace
}  // namespace quillet::test
