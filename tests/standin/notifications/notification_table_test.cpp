// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/notification_table.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>

#include "tests/support/no_room.h"
#include "tests/support/temporary_folder.h"

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

    void expectNoTable(const std::string& bytes) const {
        std::ofstream{path(), std::ios::binary} << bytes;
        EXPECT_THROW(NotificationTable table{path()}, std::runtime_error);
        EXPECT_EQ(fs::file_size(path()), bytes.size());
    }

private:
    TemporaryFolder folder_;
};

double secondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

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

TEST_F(Table, TakesAsManyNamesAsItSaysAndEachStaysWhatItWas) {
    NotificationTable table = newTable();
    for (std::size_t i = 0; i < NotificationTable::maxNames; ++i) {
        NotificationTable::Entry* const entry = table.findOrAdd("name." + std::to_string(i));
        ASSERT_NE(entry, nullptr) << i;
        entry->state = i;
    }
    EXPECT_EQ(table.findOrAdd("one.too.many"), nullptr);
    EXPECT_EQ(table.find("one.too.many"), nullptr);
    for (std::size_t i = 0; i < NotificationTable::maxNames; ++i) {
        NotificationTable::Entry* const entry = table.find("name." + std::to_string(i));
        ASSERT_NE(entry, nullptr) << i;
        EXPECT_EQ(entry->state.load(), i);
    }
}

TEST_F(Table, ANameThatIsTooLongIsNotCutButRefused) {
    NotificationTable table = newTable();
    const std::string longest(NotificationTable::maxNameLength, 'n');
    EXPECT_EQ(table.findOrAdd(longest + "n"), nullptr);
    EXPECT_EQ(table.find(longest), nullptr);
    EXPECT_NE(table.findOrAdd(longest), nullptr);
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

TEST_F(Table, IsNotCreatedOverAFileThatIsThere) {
    newTable().findOrAdd("a.name")->state = 7;
    EXPECT_THROW(NotificationTable::create(path()), std::system_error);
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

TEST_F(Table, AFileThatIsNoTableIsRefusedAndLeftAsItIs) {
    expectNoTable("");
    expectNoTable("some text\n");
    const fs::path other = folder() / "other";
    NotificationTable::create(other);
    expectNoTable(std::string(fs::file_size(other), 'x'));
}

TEST_F(Table, AFolderIsNoTable) {
    fs::create_directory(path());
    EXPECT_THROW(NotificationTable table{path()}, std::runtime_error);
}

TEST_F(Table, AWaitWithoutAPostTakesItsTime) {
    NotificationTable table = newTable();
    EXPECT_GE(secondsOf([&] { table.waitForPost(0.05, [] { return false; }); }), 0.049);
}

TEST_F(Table, AWaitForNoTimeOrLessReturnsAtOnce) {
    NotificationTable table = newTable();
    for (const double seconds : {0.0, -1.0}) {
        EXPECT_LT(secondsOf([&] { table.waitForPost(seconds, [] { return false; }); }), 5)
            << seconds;
    }
}

TEST_F(Table, AWaitReturnsAtOnceWhenSomethingIsPending) {
    NotificationTable table = newTable();
    EXPECT_LT(secondsOf([&] { table.waitForPost(60, [] { return true; }); }), 5);
}

TEST_F(Table, APostAfterTheLastLookIsNotMissed) {
    NotificationTable table = newTable();
    NotificationTable::Entry& entry = *table.findOrAdd("a.name");
    EXPECT_LT(secondsOf([&] {
                  table.waitForPost(60, [&] {
                      table.post(entry);
                      return false;
                  });
              }),
              5);
}

}  // namespace
}  // namespace quillet::test
