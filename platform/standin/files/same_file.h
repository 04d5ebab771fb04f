// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>

namespace quillet::standin {

/// Whether both are of one file, whatever its names. See inode(7).
inline bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace quillet::standin
