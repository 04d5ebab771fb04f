// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/notification_table.h"

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <system_error>

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
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (file < 0) fail(path);
    const std::uint64_t mark = Layout::mark;
    const bool written = ftruncate(file, sizeof(Layout)) == 0 &&
                         pwrite(file, &mark, sizeof mark, 0) == ssize_t{sizeof mark};
    close(file);
    if (!written) fail(path);
}

NotificationTable::NotificationTable(const std::filesystem::path& path)
    : file_{open(path.c_str(), O_RDWR | O_CLOEXEC)} {
    if (file_ < 0) fail(path);
    struct stat status = {};
    if (fstat(file_, &status) != 0 || status.st_size != off_t{sizeof(Layout)}) {
        close(file_);
        throw std::runtime_error(path.string() + ": not a table of notifications");
    }
    void* const memory =
        mmap(nullptr, sizeof(Layout), PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
    if (memory == MAP_FAILED) {
        close(file_);
        fail(path);
    }
    layout_ = static_cast<Layout*>(memory);
    if (layout_->markOfFile != Layout::mark) {
        munmap(layout_, sizeof(Layout));
        close(file_);
        throw std::runtime_error(path.string() + ": not a table of notifications");
    }
}

NotificationTable::~NotificationTable() {
    munmap(layout_, sizeof(Layout));
    close(file_);
}

NotificationTable::Entry* NotificationTable::find(std::string_view name) {
    Entry* const end = layout_->entries + std::min<std::size_t>(layout_->names.load(), maxNames);
    Entry* const entry = std::find_if(
        layout_->entries, end, [&](const Entry& candidate) { return candidate.view() == name; });
    return entry == end ? nullptr : entry;
}

NotificationTable::Entry* NotificationTable::findOrAdd(std::string_view name) {
    if (name.size() > maxNameLength) return nullptr;
    if (Entry* const entry = find(name)) return entry;
    while (flock(file_, LOCK_EX) != 0) {
        if (errno != EINTR) return nullptr;
    }
    Entry* entry = find(name);
    const std::uint32_t names = layout_->names.load();
    if (entry == nullptr && names < maxNames) {
        entry = &layout_->entries[names];
        entry->length = static_cast<std::uint32_t>(name.copy(entry->name, maxNameLength));
        layout_->names.store(names + 1);
    }
    flock(file_, LOCK_UN);
    return entry;
}

void NotificationTable::post(Entry& entry) {
    entry.posts.fetch_add(1);
    if (layout_->waiting.load() == 0) return;
    layout_->wakes.fetch_add(1);
    futex(layout_->wakes, FUTEX_WAKE, INT_MAX, nullptr);
}

void NotificationTable::waitForPost(double seconds, const std::function<bool()>& isPending) {
    // Counted before the last look: a post that this look misses finds the count.
    layout_->waiting.fetch_add(1);
    const std::uint32_t wakes = layout_->wakes.load();
    if (!isPending()) {
        const timespec timeout = timeSpan(seconds);
        futex(layout_->wakes, FUTEX_WAIT, wakes, &timeout);
    }
    layout_->waiting.fetch_sub(1);
}

}  // namespace quillet::standin
