// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace quillet::standin {

/// Keeps everybody else waiting who locks the same file or folder, until the object goes or the
/// process dies: the kernel gives the lock back. It belongs to the open file. So a file that is
/// opened for one lock alone keeps out other threads and forked children too, and whoever may not
/// open the file cannot hold it up. See flock(2).
class FileLock {
public:
    /// How long a holder that does not move delays others.
    static constexpr std::chrono::milliseconds longestWait{1000};

    /// Waits for the lock of `descriptor`, which must stay open for as long as the object lives.
    explicit FileLock(int descriptor);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// False when the file cannot be locked, or was not free in time.
    bool isHeld() const { return isHeld_; }

private:
    int descriptor_;
    bool isHeld_;
};

}  // namespace quillet::standin
