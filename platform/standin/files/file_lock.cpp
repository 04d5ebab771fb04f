// SPDX-License-Identifier: MIT
#include "platform/standin/files/file_lock.h"

#include <sys/file.h>

#include "platform/standin/files/descriptor.h"

namespace quillet::standin {

FileLock::FileLock(int descriptor)
    : descriptor_{descriptor}, isHeld_{uninterrupted([&] {
                                           return flock(descriptor, LOCK_EX);
                                       }) == 0} {}

FileLock::~FileLock() {
    if (isHeld_) flock(descriptor_, LOCK_UN);
}

}  // namespace quillet::standin
