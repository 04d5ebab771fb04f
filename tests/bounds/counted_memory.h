// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace quillet::test {

/// What operator new has handed out and not taken back, in a program that this is linked into.
/// Beginning a count sets the peak to what is in use.
class CountedMemory {
public:
    CountedMemory();

    /// The most that was in use at once since the count began, over what was in use then.
    std::size_t peak() const;

private:
    std::size_t before_;
};

/// While it lives, what this thread takes from operator new after the first `granted` pieces is
/// refused: the next piece alone, or all of them.
class RefusedMemory {
public:
    enum class Which { next, all };

    RefusedMemory(int granted, Which which);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;

    /// Whether there was a piece to refuse.
    bool hasRefused() const;
};

}  // namespace quillet::test
