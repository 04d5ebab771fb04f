// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/standin/device/journal.h"
#include "platform/standin/device/journal_reader.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {

/// A journal in a folder of its own.
class JournalFile : public testing::Test {
protected:
    std::filesystem::path path() const { return folder_.path() / "journal"; }
    std::vector<standin::JournalEntry> entries() const {
        return standin::JournalReader{path()}.read();
    }

    /// Writes so many lines, about 100 bytes each, as a program of its own.
    static void writeLines(const std::filesystem::path& path, int count) {
        standin::Complaints complaints;
        standin::Journal journal{{"writer", ""}, path, complaints};
        const std::string filler(50, 'x');
        for (int i = 0; i < count; ++i) journal.add("event", standin::Told{"filler", filler});
    }

    /// Expects each process's lines to be there from some number on, without a gap and each once.
    void expectNoGaps() const {
        std::map<pid_t, std::uint64_t> next;
        for (const standin::JournalEntry& entry : entries()) {
            const auto [known, isNew] = next.try_emplace(entry.process, entry.number);
            ASSERT_EQ(entry.number, known->second) << "of process " << entry.process;
            known->second = entry.number + 1;
        }
    }

    standin::Complaints complaints_;

private:
    TemporaryFolder folder_;
};

}  // namespace quillet::test
