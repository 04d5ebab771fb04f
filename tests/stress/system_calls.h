// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace quillet::test {

/// What a fault makes of a call: an error of errno(3), or a call that does one byte of its work.
inline constexpr int oneByte = -1;

/// A system call, and what can become of it.
struct SystemCall {
    /// Where its arguments name a file.
    enum class Target {
        none,
        /// The first is a path.
        path,
        /// The first is a folder, the second a path in it.
        pathIn,
        /// Two paths.
        paths,
        /// Two folders, each before a path in it.
        pathsIn,
        /// The first is an open file.
        file,
        /// The fifth is.
        mappedFile,
        /// It is about the program's memory.
        memory,
    };

    long number;
    const char* name;
    Target target;
    /// The errors of its manual page that a sound program can meet; none for a call that cannot
    /// fail.
    std::vector<int> errors;
};

/// The call of that number, null for one that is not known here.
const SystemCall* systemCall(long number);

/// "EIO"
std::string nameOf(int error);

}  // namespace quillet::test
