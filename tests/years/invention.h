// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>

#include "tests/years/chance.h"
#include "tests/years/simulation.h"

namespace quillet::test {

/// Makes situations up.
class Invention {
public:
    explicit Invention(Chance& chance) : chance_{chance} {}

    /// What the bundle's preferences hold, and SpringBoard's settings.
    FileContent choices();
    FileContent settings();
    /// Nothing for hardware that cannot be read.
    std::optional<float> volume();
    standin::HostVariant host();
    /// Also a model that is nearly an iPod's.
    const std::string& machine();
    std::uint64_t word();
    /// A state to apply; most often off or on.
    std::int32_t state();

private:
    FileContent content(std::initializer_list<const char*> keys);

    Chance& chance_;
};

}  // namespace quillet::test
