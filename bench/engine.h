// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>

namespace quillet::bench {

/// Ways to do the same work: to read the file at `in` and look one key up; to set both keys of the
/// vibration to false, and write the file to `out` by way of a temporary one. False on failure.
struct Engine {
    std::function<bool(const std::string& in)> get;
    std::function<bool(const std::string& in, const std::string& out)> set;
};

inline constexpr const char* keys[] = {"ring-vibrate", "silent-vibrate"};

using Engines = std::map<std::string, Engine>;

/// "ours", "floor", which only reads, copies, writes and renames, and the peers that are linked in:
/// they add themselves before main begins.
Engines& engines();

}  // namespace quillet::bench
