// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/notification_table.h"

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <system_error>

#include "platform/standin/files/file_lock.h"

namespace quillet::standin {

struct NotificationTable::Layout {
    static constexpr std::uint64_t mark = 0x314c424154595451;  // "QTYTABL1"

    std::uint64_t markOfFile;
    /// Entries in use. Stored last when one is added.
    std::atomic<std::uint32_t> names;
    /// Processes inside a wait. One that dies there stays counted, which costs posts a system call.
    std::atomic<std::uint32_t> waiting;
    /// What waits wait on; changes with every post that finds somebody waiting.
    std::atomic<std::uint32_t> wakes;
    Entry entries[maxNames];
};

namespace {

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

[[noreturn]] void fail(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

[[noreturn]] void notATable(const std::filesystem::path& path) {
    throw std::runtime_error(path.string() + ": not a table of notifications");
}

/// The open file of a table, which has `size` bytes.
int openTable(const std::filesystem::path& path, std::size_t size) {
    Descriptor file{open(path.c_str(), O_RDWR | O_CLOEXEC)};
    struct stat status = {};
    if (!file.isOpen() || fstat(file.number(), &status) != 0) fail(path);
    if (status.st_size != static_cast<off_t>(size)) notATable(path);
    return file.release();
}

long futex(std::atomic<std::uint32_t>& word, int operation, std::uint32_t value,
           const timespec* timeout) {
    return syscall(SYS_futex, &word, operation, value, timeout, nullptr, 0);
}

timespec timeSpan(double seconds) {
    const double whole = std::floor(std::clamp(seconds, 0.0, 1e9));
    const double rest = std::clamp(seconds - whole, 0.0, 0.999999999);
    return {static_cast<time_t>(whole), static_cast<long>(rest * 1e9)};
}

}  // namespace

void NotificationTable::create(const std::filesystem::path& path) {
    const Descriptor file{open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644)};
    if (!file.isOpen()) fail(path);
    const std::uint64_t mark = Layout::mark;
    const bool isWritten = ftruncate(file.number(), sizeof(Layout)) == 0 &&
                           pwrite(file.number(), &mark, sizeof mark, 0) == ssize_t{sizeof mark};
    if (isWritten) return;
    const int error = errno;
    unlink(path.c_str());
    throw std::system_error(error, std::generic_category(), path.string());
}

NotificationTable::NotificationTable(const std::filesystem::path& path)
    : file_{openTable(path, sizeof(Layout))},
      mapping_{file_.number(), sizeof(Layout), path},
      layout_{*static_cast<Layout*>(mapping_.memory())} {
    if (layout_.markOfFile != Layout::mark) notATable(path);
}

NotificationTable::Entry* NotificationTable::find(std::string_view name) {
    Entry* const end = layout_.entries + std::min<std::size_t>(layout_.names.load(), maxNames);
    Entry* const entry = std::find_if(
        layout_.entries, end, [&](const Entry& candidate) { return candidate.view() == name; });
    return entry == end ? nullptr : entry;
}

NotificationTable::Entry* NotificationTable::findOrAdd(std::string_view name) {
    if (name.size() > maxNameLength) return nullptr;
    if (Entry* const entry = find(name)) return entry;
    const FileLock lock{file_.number()};
    if (!lock.isHeld()) return nullptr;
    Entry* entry = find(name);
    const std::uint32_t names = layout_.names.load();
    if (entry == nullptr && names < maxNames) {
        entry = &layout_.entries[names];
        entry->length = static_cast<std::uint32_t>(name.copy(entry->name, maxNameLength));
        layout_.names.store(names + 1);
    }
    return entry;
}

void NotificationTable::post(Entry& entry) {
    entry.posts.fetch_add(1);
    if (layout_.waiting.load() == 0) return;
    layout_.wakes.fetch_add(1);
    futex(layout_.wakes, FUTEX_WAKE, INT_MAX, nullptr);
}

void NotificationTable::waitForPost(double seconds, const std::function<bool()>& isPending) {
    // Counted before the last look: a post that this look misses finds the count.
    layout_.waiting.fetch_add(1);
    const std::uint32_t wakes = layout_.wakes.load();
    if (!isPending()) {
        const timespec timeout = timeSpan(seconds);
        futex(layout_.wakes, FUTEX_WAIT, wakes, &timeout);
    }
    layout_.waiting.fetch_sub(1);
}

}  // namespace quillet::standin
