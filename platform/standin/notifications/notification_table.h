// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/standin/files/descriptor.h"
#include "platform/standin/files/mapping.h"
#include "platform/standin/notifications/bell.h"
#include "platform/standin/notifications/name_entry.h"

namespace quillet::standin {

/// The names of the notification service with their state words and counts of posts, in a file
/// that every process of the device maps. For any thread.
///
/// Reading and writing a word and making a post are single atomic accesses: a process that dies has
/// made its post, or has not. Who waits for posts is woken by a bell, and looks at the counts even
/// if nobody rings it, so that nobody can be left asleep. Names are only ever added, under a lock
/// that the kernel gives back when its holder dies, and are seen whole or not at all. So a process
/// may die at any instruction without holding up another. models/notifications.pml is this in the
/// language of a model checker.
class NotificationTable {
public:
    /// The file grows with its names, up to so many.
    static constexpr std::size_t maxNames = 65534;
    static constexpr std::size_t maxNameLength = NameEntry::maxLength;

    using Entry = NameEntry;
    using Words = std::vector<std::pair<std::string_view, std::uint64_t>>;

    /// Writes the file of a table that holds `words` by their names, each once and of a length that
    /// a name may have; they are maxNames at most. It appears whole or not at all, with all its
    /// blocks, and its folder is made the user's alone. Throws std::system_error, also when
    /// something is at `path`.
    static void create(const std::filesystem::path& path, const Words& words = {});

    /// Maps the table at `path`. Throws std::system_error, or std::runtime_error when the file is
    /// no table that is sound from its first byte to its last, or others than its user might open
    /// it.
    explicit NotificationTable(const std::filesystem::path& path);

    /// The entry of `name`, which stays where it is as long as the table; null when there is none.
    Entry* find(std::string_view name);

    /// The entry of `name`, added if there is none. Null when it cannot be added: the name is empty
    /// or too long, the table or the disk is full, the file is in place no more, or somebody has
    /// held its lock for longer than FileLock waits.
    Entry* findOrAdd(std::string_view name);

    /// Makes a post. It is no system call when nobody waits.
    void post(Entry& entry) {
        entry.posts.fetch_add(1);
        bell_.ring();
    }

    /// The same by name. A name that is not in the table is posted to nobody.
    void post(std::string_view name) {
        if (Entry* const entry = find(name)) post(*entry);
    }

    /// What posts ring, of whatever name.
    Bell& bell() { return bell_; }

    /// Whether the memory is the file no more, but zeros.
    bool isLost() const { return mapping_.isLost(); }

    /// Whether the file is still the one that others find at its path, and none of it is gone. What
    /// cannot be looked at counts as in place.
    bool isInPlace() const;

private:
    struct Layout;
    struct Place {
        Entry* entry;
        bool hasName;
    };

    bool isSound(std::int64_t size) const;
    /// The first place, from that one on, that has the name; or else the free one behind all names.
    Place search(std::string_view name, Entry* from);
    bool setAt(Entry* entry, std::string_view name);
    bool makeRoom(std::size_t index);

    std::filesystem::path path_;
    Descriptor file_;
    Mapping mapping_;
    Layout& layout_;
    Bell& bell_;
    /// Bytes that the file has at least.
    std::atomic<std::int64_t> extent_;
};

}  // namespace quillet::standin
