// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/device/complaints.h"
#include "platform/standin/device/journal_line.h"
#include "platform/standin/files/descriptor.h"

namespace quillet::standin {

/// What a journal tells of an event, under a key.
template <class Value>
struct Told {
    std::string_view key;
    const Value& value;
};

template <class Value>
Told(const char*, const Value&) -> Told<Value>;

/// What happens to a device, told by each process that it happens through, in a file that all of
/// them share: a line for each event, with the time, the process and a number that counts its
/// lines. JournalReader reads it. For any thread.
///
/// A line is written by one call, behind all others. A file that has grown to `bound` gets another
/// name, in place of the one that had it, and a new one begins: what is kept is at least the last
/// `bound` bytes. Nobody waits for anybody: the file grows on, to `utmost`, while the process that
/// puts it away stands still. A process that dies may leave part of a line, which no reader takes
/// for one. A line that went to a file which somebody else was putting away is written again, under
/// the same number.
class Journal {
public:
    static constexpr std::size_t bound = std::size_t{256} << 10U;
    /// Whoever has been putting a file of that size away may never go on; others do it then.
    static constexpr std::size_t utmost = 4 * bound;

    /// Whose journal it is.
    struct Author {
        /// Empty for a process that keeps none.
        std::string program;
        /// What the program does here, in words.
        std::string command;
    };

    /// The older lines of the journal at `path`.
    static std::filesystem::path older(const std::filesystem::path& path);

    /// Whether the next line is added to the file of that status: nobody has removed it, and it has
    /// not grown so that it is put away.
    static bool goesOnIn(const struct stat& file);

    /// `path` is made when the first line is written. `complaints`, which hears of lines that
    /// cannot be written, must outlive the journal.
    Journal(Author author, const std::filesystem::path& path, Complaints& complaints);

    bool isKept() const { return !author_.program.empty(); }
    const Author& author() const { return author_; }

    /// Adds a line with what is told of the event, in that order; nothing when no journal is kept.
    template <class... Tellings>
    void add(std::string_view event, const Tellings&... tellings) {
        if (isKept()) tell(event, tellings...);
    }

private:
    /// Not a part of its callers: who tells nothing pays nothing for it.
    template <class... Tellings>
    [[gnu::noinline]] void tell(std::string_view event, const Tellings&... tellings) {
        JournalLine line = begin(event);
        (line.add(tellings.key, tellings.value), ...);
        append(line.end());
    }
    JournalLine begin(std::string_view event);
    void append(std::string_view line);
    /// False, and errno says why, when it cannot be written.
    bool write(std::string_view line);
    bool open();
    /// Whether what was written stays where it is, and the next line may follow it.
    bool isInPlace() const;
    /// Puts the file away, if nobody else has; says whether the line has to be written again.
    bool putAway();
    bool isAtPath() const;

    Author author_;
    std::string path_;
    std::string older_;
    Complaints& complaints_;
    pid_t process_;
    /// Both under the ProcessLock.
    std::uint64_t number_ = 0;
    std::optional<Descriptor> file_;
};

}  // namespace quillet::standin
