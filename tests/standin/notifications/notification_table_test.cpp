// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/notification_table.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "tests/support/child.h"
#include "tests/support/descriptors.h"
#include "tests/support/no_room.h"
#include "tests/support/program.h"
#include "tests/support/supervisor.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/traced.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::NotificationTable;

class Table : public testing::Test {
protected:
    fs::path folder() const { return folder_.path(); }
    fs::path path() const { return folder() / "table"; }

    NotificationTable newTable() const {
        NotificationTable::create(path());
        return NotificationTable{path()};
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Table, ANewOneHasNoNames) {
    NotificationTable table = newTable();
    EXPECT_EQ(table.find("a.name"), nullptr);
    EXPECT_EQ(table.find(""), nullptr);
}

TEST_F(Table, AnAddedNameIsFoundWhereItStaysAndBeginsAtZero) {
    NotificationTable table = newTable();
    NotificationTable::Entry* const entry = table.findOrAdd("a.name");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->view(), "a.name");
    EXPECT_EQ(entry->state.load(), 0U);
    EXPECT_EQ(entry->posts.load(), 0U);
    for (int i = 0; i < 100; ++i) table.findOrAdd("other." + std::to_string(i));
    EXPECT_EQ(table.find("a.name"), entry);
    EXPECT_EQ(table.findOrAdd("a.name"), entry);
}

TEST_F(Table, WhosePagesAreLostIsNotInPlaceThoughItsFileIsWholeAgain) {
    NotificationTable table = newTable();
    EXPECT_TRUE(table.isInPlace());
    const auto size = fs::file_size(path());
    fs::resize_file(path(), 0);
    table.findOrAdd("a.name");
    fs::resize_file(path(), size);
    EXPECT_FALSE(table.isInPlace());
}

/// As many names as there are in such a list, each with its number for a word.
class Numbered {
public:
    explicit Numbered(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) names_.push_back("name." + std::to_string(i));
        for (std::size_t i = 0; i < count; ++i) words_.emplace_back(names_[i], i);
    }

    const NotificationTable::Words& words() const { return words_; }

    void expectIn(NotificationTable& table) const {
        for (const auto& [name, word] : words_) {
            NotificationTable::Entry* const entry = table.find(name);
            ASSERT_NE(entry, nullptr) << name;
            ASSERT_EQ(entry->state.load(), word) << name;
        }
    }

private:
    std::vector<std::string> names_;
    NotificationTable::Words words_;
};

TEST_F(Table, IsMadeWithTheNamesAndWordsThatItIsGiven) {
    const Numbered names{100};
    NotificationTable::create(path(), names.words());
    NotificationTable table{path()};
    names.expectIn(table);
    EXPECT_NE(table.findOrAdd("one.more"), nullptr);
}

TEST_F(Table, GrowsWithItsNamesAndAllItsBlocksAreThere) {
    NotificationTable table = newTable();
    const Numbered names{1000};
    for (const auto& [name, word] : names.words()) {
        NotificationTable::Entry* const entry = table.findOrAdd(name);
        ASSERT_NE(entry, nullptr) << name;
        entry->state = word;
        struct stat status = {};
        ASSERT_EQ(stat(path().c_str(), &status), 0);
        ASSERT_GE(status.st_blocks * 512, status.st_size) << name;
    }
    names.expectIn(table);
    NotificationTable again{path()};
    names.expectIn(again);
}

TEST_F(Table, IsGrownByOneAndReadByAnotherThatMappedItBefore) {
    NotificationTable reader = newTable();
    NotificationTable writer{path()};
    const Numbered names{200};
    for (const auto& [name, word] : names.words()) writer.findOrAdd(name)->state = word;
    names.expectIn(reader);
}

TEST_F(Table, IsInPlaceNoMoreWithoutWhatItGrewBy) {
    NotificationTable table = newTable();
    const auto size = fs::file_size(path());
    for (int i = 0; i < 100; ++i) ASSERT_NE(table.findOrAdd(std::to_string(i)), nullptr);
    ASSERT_GT(fs::file_size(path()), size);
    fs::resize_file(path(), size);
    EXPECT_FALSE(table.isInPlace());
}

TEST_F(Table, ThatGrowsWhileItIsLookedAtIsSound) {
    newTable();
    Traced opening = traced([this] { const NotificationTable table{path()}; });
    while (opening.nextCall() && opening.call() != SYS_mmap) {
    }
    while (opening.nextCall() && !isStat(static_cast<int>(opening.call()))) {
    }
    opening.next();
    NotificationTable other{path()};
    for (int i = 0; i < 100; ++i) ASSERT_NE(other.findOrAdd(std::to_string(i)), nullptr);
    EXPECT_EQ(opening.end(), 0) << "it knows the size from before";
}

TEST_F(Table, TakesAsManyNamesAsItSaysAndNoMore) {
    const Numbered names{NotificationTable::maxNames};
    const NotificationTable::Words allButOne{names.words().begin(), names.words().end() - 1};
    NotificationTable::create(path(), allButOne);
    NotificationTable table{path()};
    EXPECT_NE(table.findOrAdd("the.last"), nullptr);
    EXPECT_EQ(table.findOrAdd("one.too.many"), nullptr);
    EXPECT_EQ(table.find("one.too.many"), nullptr);
    EXPECT_EQ(table.find("name.0")->state.load(), 0U);
    EXPECT_NE(NotificationTable{path()}.find("the.last"), nullptr);
}

TEST_F(Table, WithoutRoomOnTheDiskRefusesNewNamesAndKeepsTheOld) {
    NotificationTable table = newTable();
    table.findOrAdd("a.name")->state = 7;
    {
        const NoRoom noRoom;
        for (std::size_t i = 0; table.findOrAdd("name." + std::to_string(i)) != nullptr; ++i) {
            ASSERT_LT(i, 100U);
        }
        EXPECT_EQ(NotificationTable{path()}.find("a.name")->state.load(), 7U);
    }
    EXPECT_NE(table.findOrAdd("later"), nullptr);
    EXPECT_TRUE(table.isInPlace());
}

TEST_F(Table, TenThousandNamesInTurnAreTakenThoughEachTakerDies) {
    newTable();
    for (int process = 0; process < 20; ++process) {
        Child taker{[&] {
            NotificationTable table{path()};
            for (int i = 0; i < 500; ++i) {
                const std::string name = std::to_string(process) + "." + std::to_string(i);
                if (table.findOrAdd(name) == nullptr) return 1;
            }
            kill(getpid(), SIGKILL);
            return 0;
        }};
        ASSERT_EQ(taker.wait(), -SIGKILL) << process;
    }
    NotificationTable table{path()};
    EXPECT_NE(table.find("0.0"), nullptr);
    EXPECT_NE(table.find("19.499"), nullptr);
}

TEST_F(Table, LeavesNoDescriptorAndNoMapping) {
    newTable();
    const std::ptrdiff_t before = openDescriptors();
    for (int i = 0; i < 200; ++i) {
        NotificationTable table{path()};
        ASSERT_NE(table.findOrAdd("name." + std::to_string(i)), nullptr);
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(readText("/proc/self/maps").find(path()), std::string::npos);
}

TEST_F(Table, APostIsNoSystemCall) {
    NotificationTable table = newTable();
    NotificationTable::Entry& entry = *table.findOrAdd("a.name");
    EXPECT_EQ(systemCallsOf([&] {
                  table.post("a.name");
                  table.post("nobody.knows");
              }).size(),
              0U);
    EXPECT_EQ(entry.posts.load(), 1U) << "the trace was of what it should be";
}

TEST_F(Table, ANameThatIsTooLongIsNotCutButRefused) {
    NotificationTable table = newTable();
    const std::string longest(NotificationTable::maxNameLength, 'n');
    EXPECT_EQ(table.findOrAdd(longest + "n"), nullptr);
    EXPECT_EQ(table.find(longest), nullptr);
    EXPECT_NE(table.findOrAdd(longest), nullptr);
    EXPECT_NE(NotificationTable{path()}.find(longest), nullptr);
}

TEST_F(Table, AnEmptyNameIsRefused) {
    NotificationTable table = newTable();
    EXPECT_EQ(table.findOrAdd(""), nullptr);
}

TEST_F(Table, KeepsItsNamesAndWordsWhenItIsMappedAgain) {
    newTable().findOrAdd("a.name")->state = 7;
    NotificationTable again{path()};
    ASSERT_NE(again.find("a.name"), nullptr);
    EXPECT_EQ(again.find("a.name")->state.load(), 7U);
}

TEST_F(Table, TwoMappingsAreOneTable) {
    NotificationTable first = newTable();
    NotificationTable second{path()};
    first.findOrAdd("a.name")->state = 7;
    ASSERT_NE(second.find("a.name"), nullptr);
    EXPECT_EQ(second.find("a.name")->state.load(), 7U);
    second.post(*second.find("a.name"));
    EXPECT_EQ(first.find("a.name")->posts.load(), 1U);
}

TEST_F(Table, IsClosedToOthersFromItsFirstMomentOn) {
    const mode_t before = umask(0);
    const auto create = [this] {
        NotificationTable::create(path());
        return 0;
    };
    supervise(callsThatChange(), create, [this](const SupervisedCall&) {
        for (const auto& file : fs::directory_iterator{folder()}) {
            EXPECT_EQ(file.status().permissions(), fs::perms{0600}) << file.path();
        }
        return Verdict{};
    });
    umask(before);
    EXPECT_TRUE(fs::exists(path()));
}

TEST_F(Table, IsNotCreatedOverAFileThatIsThere) {
    newTable().findOrAdd("a.name")->state = 7;
    try {
        NotificationTable::create(path());
        ADD_FAILURE() << "it is there";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::file_exists);
    }
    EXPECT_EQ(NotificationTable{path()}.find("a.name")->state.load(), 7U);
}

TEST_F(Table, IsNotCreatedWhereItCannotBeWritten) {
    EXPECT_THROW(NotificationTable::create(path() / "below"), std::system_error);
    const NoRoom noRoom;
    EXPECT_THROW(NotificationTable::create(path()), std::system_error);
}

TEST_F(Table, AFileThatIsNotThereCannotBeMapped) {
    EXPECT_THROW(NotificationTable table{path()}, std::system_error);
}

}  // namespace
}  // namespace quillet::test
