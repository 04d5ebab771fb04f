// SPDX-License-Identifier: MIT
#pragma once

namespace quillet::standin {

/// Keeps every other process that locks the same open file or folder waiting, until the object goes
/// or the process dies: the kernel gives the lock back. See flock(2).
class FileLock {
public:
    /// Waits for the lock of `descriptor`, which must stay open for as long as the object lives.
    explicit FileLock(int descriptor);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// False when the file cannot be locked.
    bool isHeld() const { return isHeld_; }

private:
    int descriptor_;
    bool isHeld_;
};

}  // namespace quillet::standin
