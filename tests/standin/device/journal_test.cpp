// SPDX-License-Identifier: MIT
#include "platform/standin/device/journal.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/standin/device/device.h"
#include "platform/standin/device/journal_line.h"
#include "platform/standin/device/process_birth.h"
#include "platform/standin/files/descriptor.h"
#include "tests/standin/device/journal_file.h"
#include "tests/support/child.h"
#include "tests/support/no_room.h"
#include "tests/support/program.h"
#include "tests/support/supervisor.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Complaints;
using standin::Journal;
using standin::JournalEntry;
using standin::JournalReader;
using standin::Told;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Details = std::vector<std::pair<std::string, std::string>>;

TEST_F(JournalFile, IsReadAsItWasTold) {
    Journal journal{{"a program", "flip off"}, path(), complaints_};
    const std::string odd = "a b=c%d\n\xFF .";
    const std::string end = "\n";
    journal.add("muted", Told{"muted", true}, Told{"volume", 0.25F}, Told{"word", std::uint64_t{7}},
                Told{"state", -1}, Told{"name", odd}, Told{"end", end});
    journal.add("ended");
    const auto told = entries();
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].program, "a program");
    EXPECT_EQ(told[0].event, "muted");
    EXPECT_EQ(told[0].details, (Details{{"muted", "1"},
                                        {"volume", "0.25"},
                                        {"word", "7"},
                                        {"state", "-1"},
                                        {"name", odd},
                                        {"end", end}}));
    EXPECT_EQ(told[0].process, getpid());
    EXPECT_EQ(told[1].number, told[0].number + 1);
    EXPECT_GE(told[1].time, told[0].time);
    EXPECT_EQ(told[1].find("name"), "");
    EXPECT_TRUE(complaints_.isEmpty());
}

TEST_F(JournalFile, LeavesOutWhatDoesNotFitInALine) {
    Journal journal{{"program", ""}, path(), complaints_};
    const std::string large(4000, 'x');
    journal.add("event", Told{"before", 1}, Told{"large", large}, Told{"after", 2});
    ASSERT_THAT(entries(), SizeIs(1));
    EXPECT_EQ(entries()[0].details, (Details{{"before", "1"}, {"after", "2"}}));
}

TEST(LineOfAJournal, IsWithoutTheWordsThatDoNotFit) {
    standin::JournalLine line;
    line.add("first");
    line.add(std::string(4000, 'x'));
    line.add("last");
    EXPECT_EQ(line.end(), "\nfirst last .");
}

TEST_F(JournalFile, PartOfALineIsNoneAndSwallowsNone) {
    Journal journal{{"program", ""}, path(), complaints_};
    journal.add("first");
    const std::string whole = readText(path());
    for (std::size_t size = 1; size < whole.size(); ++size) {
        writeText(path(), whole + whole.substr(0, size));
        Journal next{{"program", ""}, path(), complaints_};
        next.add("next");
        const auto told = entries();
        ASSERT_THAT(told, SizeIs(2)) << size;
        EXPECT_EQ(told[1].event, "next") << size;
    }
}

TEST_F(JournalFile, ThatTakesNothingOfALineHasNoRoom) {
    const auto add = [this] {
        std::string said;
        Complaints complaints{[&](const std::string& complaint) { said = complaint; }};
        Journal{{"program", ""}, path(), complaints}.add("event");
        return said.ends_with("No space left on device") ? 1 : 0;
    };
    const auto takeNothing = [](const SupervisedCall&) { return Verdict{Verdict::Kind::fails, 0}; };
    EXPECT_EQ(supervise({SYS_write}, add, takeNothing), 1);
}

TEST_F(JournalFile, IsNotKeptByThoseWhoDoNotAskForIt) {
    const fs::path root = path().parent_path() / "root";
    { const standin::Device device{{.root = root}}; }
    EXPECT_FALSE(fs::exists(root / "var/db/journal"));
    { const standin::Device device{{.root = root, .author = {"program", "command"}}}; }
    const auto told = JournalReader{root / "var/db/journal"}.read();
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].event, "started");
    EXPECT_EQ(told[0].details, (Details{{"command", "command"},
                                        {"model", "iPhone6,1"},
                                        {"host", "indicator=class,media=instance"},
                                        {"birth", standin::birthOf(getpid())}}));
    EXPECT_EQ(told[1].event, "ended");
}

TEST_F(JournalFile, OfSeveralProcessesHasEachLineOnceAndStaysSmall) {
    constexpr int writers = 4;
    constexpr int lines = 3000;
    Gate gate;
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < writers; ++i) {
        children.push_back(std::make_unique<Child>([&] {
            if (!gate.pass()) return 1;
            writeLines(path(), lines);
            return 0;
        }));
    }
    for (int i = 0; i < writers; ++i) gate.open();
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
    constexpr auto most = Journal::utmost + std::size_t{writers} * 2048;
    EXPECT_LE(fs::file_size(path()), most);
    EXPECT_LE(fs::file_size(Journal::older(path())), most);
    expectNoGaps();
    EXPECT_GT(entries().size(), Journal::bound / 120) << "so much is kept at least";
    EXPECT_EQ(std::ranges::max(entries(), {}, &JournalEntry::number).number, lines - 1U);
}

TEST_F(JournalFile, IsWholeWhateverWritersAreKilled) {
    for (int round = 0; round < 20; ++round) {
        Child killed{[&] {
            writeLines(path(), 1000000);
            return 0;
        }};
        Child other{[&] {
            writeLines(path(), 200);
            return 0;
        }};
        EXPECT_EQ(other.wait(), 0);
        killed.kill();
        killed.wait();
    }
    Journal journal{{"program", ""}, path(), complaints_};
    journal.add("last");
    expectNoGaps();
    EXPECT_EQ(entries().back().event, "last");
}

TEST_F(JournalFile, GrowsNotForEverWhileSomebodyStandsStillInPuttingItAway) {
    writeLines(path(), 1);
    const standin::Descriptor file{::open(path().c_str(), O_RDWR)};
    ASSERT_EQ(::flock(file.number(), LOCK_EX), 0);
    writeLines(path(), 20000);
    EXPECT_LE(fs::file_size(path()), 4 * Journal::bound + 4096);
    EXPECT_TRUE(fs::exists(Journal::older(path())));
}

TEST_F(JournalFile, ThatCannotBeWrittenIsComplainedOfOnce) {
    std::vector<std::string> said;
    Complaints complaints{[&](const std::string& text) { said.push_back(text); }};
    fs::create_directory(path());
    Journal journal{{"program", ""}, path(), complaints};
    journal.add("event");
    journal.add("event");
    EXPECT_THAT(said, ElementsAre(path().string() + ": cannot be written: Is a directory"));
}

TEST_F(JournalFile, WithoutRoomForALineIsComplainedOf) {
    std::vector<std::string> said;
    Complaints complaints{[&](const std::string& text) { said.push_back(text); }};
    Journal journal{{"program", ""}, path(), complaints};
    const NoRoom noRoom;
    journal.add("event");
    EXPECT_THAT(said, ElementsAre(path().string() + ": cannot be written: File too large"));
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(JournalFile, ThatIsNoFileIsComplainedOfThoughSomebodyReadsIt) {
    std::vector<std::string> said;
    Complaints complaints{[&](const std::string& text) { said.push_back(text); }};
    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    const standin::Descriptor reader{::open(path().c_str(), O_RDONLY | O_NONBLOCK)};
    Journal journal{{"program", ""}, path(), complaints};
    journal.add("event");
    EXPECT_THAT(said, ElementsAre(path().string() + ": cannot be written: Invalid argument"));
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(JournalFile, OfADeviceThatIsGoneIsNotMadeAgain) {
    const fs::path gone = path().parent_path() / "gone" / "journal";
    Journal journal{{"program", ""}, gone, complaints_};
    journal.add("event");
    EXPECT_FALSE(fs::exists(gone));
    EXPECT_TRUE(complaints_.isEmpty());
}

}  // namespace
}  // namespace quillet::test
