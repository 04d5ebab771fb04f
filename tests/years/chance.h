// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace quillet::test {

/// Chance that comes out the same in every run.
class Chance {
public:
    explicit Chance(std::uint64_t seed) : numbers_{seed} {}

    /// From 0 to `end` - 1.
    std::size_t below(std::size_t end) { return numbers_() % end; }
    bool oneIn(std::size_t times) { return below(times) == 0; }
    const auto& of(const auto& choices) { return choices[below(choices.size())]; }

private:
    std::mt19937_64 numbers_;
};

}  // namespace quillet::test
