// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/notification_table.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

#include "platform/standin/files/draft.h"
#include "platform/standin/files/file.h"
#include "platform/standin/files/file_lock.h"
#include "platform/standin/files/same_file.h"

namespace quillet::standin {

/// Behind the last name there always is an entry without one, where every search ends.
struct NotificationTable::Layout {
    static constexpr char mark[sizeof(Entry) - sizeof(Bell)] = "Quillet notifications, form 3";

    char markOfFile[sizeof mark];
    Bell bell;
    Entry entries[maxNames + 1];
};

namespace {

/// Bytes of a file with that many entries, a multiple of what it grows by at a time.
constexpr off_t sizeFor(std::size_t entries) {
    constexpr std::size_t step = 64 * sizeof(NameEntry);
    return static_cast<off_t>((sizeof(NameEntry) * (1 + entries) + step - 1) / step * step);
}

[[noreturn]] void fail(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

[[noreturn]] void refuse(const std::filesystem::path& path, const char* reason) {
    throw std::runtime_error(path.string() + ": " + reason);
}

struct stat statusOf(const Descriptor& file, const std::filesystem::path& path) {
    struct stat status = {};
    if (!file.isOpen() || fstat(file.number(), &status) != 0) fail(path);
    return status;
}

bool isPrivate(const struct stat& status) {
    return status.st_uid == geteuid() && (status.st_mode & 077) == 0;
}

/// The open file of a table. Nobody but its user could have opened it, or put it there.
int openTable(const std::filesystem::path& path) {
    const std::filesystem::path place = path.parent_path();
    const Descriptor folder{open(place.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
    const struct stat folderStatus = statusOf(folder, path);
    constexpr int flags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    Descriptor file{openat(folder.number(), path.filename().c_str(), flags)};
    const struct stat status = statusOf(file, path);
    if (!S_ISREG(status.st_mode)) refuse(path, "not a table of notifications");
    if (!isPrivate(status) || !isPrivate(folderStatus)) {
        refuse(path, "must be the user's own and closed to others, and so must its folder");
    }
    return file.release();
}

/// Sees to it that the disk has all blocks of that part, and makes the file longer if it is
/// shorter.
bool allocate(int file, off_t begin, off_t size) {
    do {
        errno = posix_fallocate(file, begin, size);
    } while (errno == EINTR);
    return errno == 0;
}

/// Makes `bytes` all that is in a new file, its blocks taken and closed to others.
bool fill(const Draft& draft, const std::vector<char>& bytes) {
    const auto size = static_cast<off_t>(bytes.size());
    return allocate(draft.descriptor(), 0, size) && fchmod(draft.descriptor(), 0600) == 0 &&
           pwrite(draft.descriptor(), bytes.data(), bytes.size(), 0) == size;
}

/// Keeps everybody else from adding names to the table at `path`, if isHeld.
class AddingTurn {
public:
    explicit AddingTurn(const std::filesystem::path& path)
        : file_{open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)},
          lock_{file_.number()} {}

    bool isHeld() const { return lock_.isHeld(); }

private:
    Descriptor file_;
    FileLock lock_;
};

}  // namespace

void NotificationTable::create(const std::filesystem::path& path, const Words& words) {
    std::vector<char> bytes(static_cast<std::size_t>(sizeFor(words.size() + 1)));
    auto& layout = *static_cast<Layout*>(static_cast<void*>(bytes.data()));
    std::ranges::copy(Layout::mark, layout.markOfFile);
    Entry* entry = layout.entries;
    for (const auto& [name, word] : words) {
        entry->state.store(word);
        setName(*entry++, name);
    }
    if (mayExist(path)) {
        errno = EEXIST;
        fail(path);
    }
    Draft draft{path.parent_path(), Draft::Kind::file, 0600};
    const bool isMade = draft.isMade() && chmod(path.parent_path().c_str(), 0700) == 0 &&
                        fill(draft, bytes) && draft.publish(path);
    if (!isMade) fail(path);
}

NotificationTable::NotificationTable(const std::filesystem::path& path)
    : path_{path},
      file_{openTable(path)},
      mapping_{file_.number(), sizeof(Layout), path},
      layout_{*static_cast<Layout*>(mapping_.memory())},
      bell_{layout_.bell},
      extent_{statusOf(file_, path).st_size} {
    // Once more if it has grown meanwhile: others may have filled what was room.
    for (off_t checked = extent_; !isSound(extent_); checked = extent_) {
        extent_ = statusOf(file_, path).st_size;
        if (extent_ == checked) refuse(path, "not a table of notifications");
    }
}

bool NotificationTable::isSound(std::int64_t size) const {
    const auto bytes = static_cast<std::size_t>(size);
    return bytes >= 2 * sizeof(Entry) && bytes <= sizeof(Layout) && bytes % sizeof(Entry) == 0 &&
           std::ranges::equal(layout_.markOfFile, Layout::mark) &&
           areSound({layout_.entries, bytes / sizeof(Entry) - 1});
}

NotificationTable::Place NotificationTable::search(std::string_view name, Entry* from) {
    Entry* const last = layout_.entries + maxNames;
    for (Entry* entry = from; entry != last; ++entry) {
        // Whole names have seals that fit: to compare them would cost one of the name looked for.
        if (entry->seal.load() == 0) return {entry, false};
        if (entry->view() == name) return {entry, true};
    }
    return {last, false};
}

NotificationTable::Entry* NotificationTable::find(std::string_view name) {
    const Place place = search(name, layout_.entries);
    return place.hasName ? place.entry : nullptr;
}

NotificationTable::Entry* NotificationTable::findOrAdd(std::string_view name) {
    Place place = search(name, layout_.entries);
    if (place.hasName) return place.entry;
    if (name.empty() || name.size() > maxNameLength) return nullptr;
    const AddingTurn turn{path_};
    if (!turn.isHeld() || !isInPlace()) return nullptr;
    place = search(name, place.entry);
    if (!place.hasName && !setAt(place.entry, name)) return nullptr;
    return place.entry;
}

bool NotificationTable::setAt(Entry* entry, std::string_view name) {
    const auto index = static_cast<std::size_t>(entry - layout_.entries);
    if (index == maxNames || !makeRoom(index)) return false;
    setName(*entry, name);
    return true;
}

bool NotificationTable::makeRoom(std::size_t index) {
    const auto begin = static_cast<off_t>(sizeof(Entry) * (1 + index));
    const off_t end = sizeFor(index + 2);
    if (!allocate(file_.number(), begin, end - begin)) return false;
    extent_ = std::max<std::int64_t>(extent_, end);
    return true;
}

bool NotificationTable::isInPlace() const {
    struct stat own = {};
    struct stat found = {};
    if (mapping_.isLost()) return false;
    if (fstat(file_.number(), &own) != 0) return true;
    if (lstat(path_.c_str(), &found) != 0) return errno != ENOENT && errno != ENOTDIR;
    return isSameFile(own, found) && own.st_size >= extent_;
}

}  // namespace quillet::standin
