// SPDX-License-Identifier: MIT
#include "platform/standin/device/journal_reader.h"

#include <gmock/gmock.h>
#include <sys/syscall.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/device/journal.h"
#include "tests/standin/device/journal_file.h"
#include "tests/support/program.h"
#include "tests/support/supervisor.h"
#include "tests/support/traced.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Journal;
using standin::JournalEntry;
using standin::JournalReader;
using standin::Told;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

TEST_F(JournalFile, IsFollowedFromOneFileToTheNext) {
    JournalReader reader{path()};
    EXPECT_THAT(reader.read(), IsEmpty());
    Journal journal{{"program", ""}, path(), complaints_};
    const std::string filler(1000, 'x');
    std::uint64_t next = 0;
    for (int i = 0; i < 1000; ++i) {
        journal.add("event", Told{"filler", filler});
        if (i % 7 != 0) continue;
        for (const JournalEntry& entry : reader.read()) ASSERT_EQ(entry.number, next++);
    }
    EXPECT_GT(next, 990U);
    EXPECT_TRUE(fs::exists(Journal::older(path())));
}

TEST_F(JournalFile, IsFollowedThoughSomebodyRemovesIt) {
    Journal journal{{"program", ""}, path(), complaints_};
    JournalReader reader{path()};
    journal.add("first");
    ASSERT_THAT(reader.read(), SizeIs(1));
    fs::remove(path());
    journal.add("second");
    journal.add("third");
    const auto told = reader.read();
    ASSERT_THAT(told, SizeIs(2));
    EXPECT_EQ(told[0].event, "second");
    EXPECT_EQ(told[1].event, "third");
}

TEST_F(JournalFile, IsLookedAtByOneSystemCallWhileNothingIsAdded) {
    writeLines(path(), 1);
    JournalReader reader{path()};
    ASSERT_THAT(reader.read(), SizeIs(1));
    EXPECT_THAT(systemCallsOf([&] { reader.read(); }), SizeIs(1));
}

TEST_F(JournalFile, IsReadAsItIsWrittenByteByByte) {
    const std::string text = "12 34 56 program first key=value .\n78 34 57 program second .";
    JournalReader reader{path()};
    std::vector<JournalEntry> told;
    for (std::size_t size = 0; size <= text.size(); ++size) {
        writeText(path(), text.substr(0, size));
        for (JournalEntry& entry : reader.read()) told.push_back(std::move(entry));
    }
    EXPECT_THAT(told, ElementsAre(JournalEntry{12, 34, 56, "program", "first", {{"key", "value"}}},
                                  JournalEntry{78, 34, 57, "program", "second"}));
}

TEST_F(JournalFile, IsReadToItsEndThoughItIsPutAwayMeanwhile) {
    const std::string lines[] = {"\n1 2 0 program event .", "\n1 2 1 program event .",
                                 "\n1 2 2 program event .", "\n1 2 3 program event ."};
    writeText(path(), lines[0]);
    JournalReader reader{path()};
    const auto read = [&] { return static_cast<int>(reader.read().size()); };
    const auto putAway = [&](const SupervisedCall&) {
        if (!fs::exists(Journal::older(path()))) {
            writeText(path(), lines[0] + lines[1] + lines[2]);
            fs::rename(path(), Journal::older(path()));
            writeText(path(), lines[3]);
        }
        return Verdict{};
    };
    ASSERT_THAT(reader.read(), SizeIs(1));
    writeText(path(), lines[0] + lines[1]);
    EXPECT_EQ(supervise({SYS_openat}, read, putAway), 3);
}

TEST_F(JournalFile, ThatCannotBeReadHasNoLines) {
    writeLines(path(), 1);
    const auto read = [this] { return static_cast<int>(entries().size()); };
    const auto fail = [](const SupervisedCall&) { return Verdict{Verdict::Kind::fails, EIO}; };
    EXPECT_EQ(supervise({SYS_read}, read, fail), 0);
    EXPECT_THAT(entries(), SizeIs(1));
}

TEST_F(JournalFile, OfWhichLinesHaveAnotherFormIsReadWithoutThem) {
    const std::string sound = "1 2 3 program event key=a%3db%4g% other=%4";
    std::string text;
    for (const char* const line :
         {"", " .", "1 2 3 program .", "x 2 3 program event .", "1 2x 3 program event .",
          "1 2 -3 program event .", "1 2 3 program event key .", "1 2 3 program event key=a"}) {
        text.append(line).append("\n");
    }
    writeText(path(), text + sound + " .\n");
    const auto told = entries();
    ASSERT_THAT(told, SizeIs(1));
    EXPECT_THAT(told[0].details, ElementsAre(Pair("key", "a=b%4g%"), Pair("other", "%4")));
}

}  // namespace
}  // namespace quillet::test
