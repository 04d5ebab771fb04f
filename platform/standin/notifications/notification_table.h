// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include "platform/standin/files/descriptor.h"
#include "platform/standin/files/mapping.h"

namespace quillet::standin {

/// The names of the notification service with their state words and counts of posts, in a file
/// that every process of the device maps.
///
/// Reading and writing a word and counting a post are single atomic accesses. Names are only ever
/// added, under a lock of the file that the kernel gives back when its holder dies, and become
/// visible whole; so a process may die at any instruction without holding up another.
class NotificationTable {
public:
    static constexpr std::size_t maxNames = 256;
    static constexpr std::size_t maxNameLength = 239;

    /// A name's entry, in memory shared between processes.
    struct Entry {
        std::atomic<std::uint64_t> state;
        std::atomic<std::uint32_t> posts;
        std::uint32_t length;
        char name[maxNameLength + 1];

        std::string_view view() const { return {name, length}; }
    };

    /// Writes the file of a table without names. Throws std::system_error.
    static void create(const std::filesystem::path& path);

    /// Maps the table at `path`. Throws std::system_error, or std::runtime_error when the file is
    /// not a table.
    explicit NotificationTable(const std::filesystem::path& path);

    /// The entry of `name`, which stays where it is as long as the table; null when there is none.
    Entry* find(std::string_view name);

    /// The entry of `name`, added if there is none; null when the table is full or the
    /// name too long.
    Entry* findOrAdd(std::string_view name);

    /// Counts a post and wakes every process that waits. With nobody waiting it is no system call.
    void post(Entry& entry);

    /// The same by name. A name that is not in the table is posted to nobody.
    void post(std::string_view name) {
        if (Entry* const entry = find(name)) post(*entry);
    }

    /// Blocks for `seconds`, or until somebody posts any name; not at all if `isPending`, which is
    /// asked once no post can be missed any more. May return early.
    void waitForPost(double seconds, const std::function<bool()>& isPending);

private:
    struct Layout;

    Descriptor file_;
    Mapping mapping_;
    Layout& layout_;
};

}  // namespace quillet::standin
