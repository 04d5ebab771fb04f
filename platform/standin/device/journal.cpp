// SPDX-License-Identifier: MIT
#include "platform/standin/device/journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <system_error>
#include <utility>

#include "platform/standin/files/same_file.h"
#include "platform/standin/notifications/process_lock.h"

namespace quillet::standin {

namespace {

/// Without waiting: what lies there may be a FIFO.
constexpr int journalFlags = O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

std::int64_t microsecondsNow() {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

}  // namespace

std::filesystem::path Journal::older(const std::filesystem::path& path) {
    return path.string() + ".old";
}

Journal::Journal(Author author, const std::filesystem::path& path, Complaints& complaints)
    : author_{std::move(author)},
      path_{path},
      older_{older(path)},
      complaints_{complaints},
      process_{getpid()} {}

JournalLine Journal::begin(std::string_view event) {
    JournalLine line;
    const ProcessLock lock;
    line.add(std::to_string(microsecondsNow()));
    line.add(std::to_string(process_));
    line.add(std::to_string(number_++));
    line.add(author_.program);
    line.add(event);
    return line;
}

void Journal::append(std::string_view line) {
    const bool isWritten = [&] {
        const ProcessLock lock;
        return write(line);
    }();
    const int error = errno;
    // A device that was removed has nothing to tell any more.
    if (isWritten || error == ENOENT || error == ENOTDIR) return;
    complaints_.add(path_, "cannot be written: " + std::generic_category().message(error));
}

bool Journal::write(std::string_view line) {
    for (;;) {
        if (!file_ && !open()) return false;
        const auto size =
            uninterrupted([&] { return ::write(file_->number(), line.data(), line.size()); });
        if (size != static_cast<ssize_t>(line.size())) {
            if (size >= 0) errno = ENOSPC;
            return false;
        }
        if (isInPlace() || !putAway()) return true;
    }
}

bool Journal::open() {
    file_.emplace(uninterrupted([&] { return ::open(path_.c_str(), journalFlags, 0600); }));
    struct stat status {};
    const bool isFile =
        file_->isOpen() && fstat(file_->number(), &status) == 0 && S_ISREG(status.st_mode);
    if (isFile) return true;
    if (file_->isOpen()) errno = EINVAL;
    file_.reset();
    return false;
}

bool Journal::goesOnIn(const struct stat& file) {
    return file.st_nlink > 0 && static_cast<std::size_t>(file.st_size) <= bound;
}

bool Journal::isInPlace() const {
    struct stat status {};
    return fstat(file_->number(), &status) != 0 || goesOnIn(status);
}

bool Journal::isAtPath() const {
    struct stat own {};
    struct stat found {};
    return fstat(file_->number(), &own) == 0 && lstat(path_.c_str(), &found) == 0 &&
           isSameFile(own, found);
}

bool Journal::putAway() {
    // Locked, so that two do not put away one file after another; the lock goes with the file.
    const bool isTurn = flock(file_->number(), LOCK_EX | LOCK_NB) == 0;
    const bool isCurrent = isAtPath();
    const auto size = lseek(file_->number(), 0, SEEK_END);
    const bool isLate = size > static_cast<off_t>(utmost);
    if (isCurrent && !isTurn && !isLate) return false;
    if (isCurrent) std::rename(path_.c_str(), older_.c_str());
    file_.reset();
    return !isCurrent;
}

}  // namespace quillet::standin
