// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "platform/standin/device/host_variant.h"
#include "tests/support/phone.h"

namespace quillet::test {

/// The preferences file: none, without a pattern, with the default one, or with one's own choices.
struct Choices {
    bool file;
    std::optional<bool> pattern;
    std::optional<bool> whenOff;
    std::optional<bool> whenOn;
};

struct Situation {
    std::int32_t state;
    Choices choices;
    bool iPod;
    standin::HostVariant host;
    bool registers;
};

/// Every platform call that applying the state makes, step by step. SpringBoard's file holds
/// "ring-vibrate" true and "silent-vibrate" false, the preferences no volume, the volume is 0.75,
/// and the clock starts at `time`.
Calls expectedCalls(const Situation& situation, double time);

}  // namespace quillet::test
