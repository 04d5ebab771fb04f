// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/standin/plist/value.h"

namespace quillet::bench {

/// Settings like a real device's, of about `size` bytes in the XML form: hundreds of keys, nested
/// lists of icons, records of applications, all kinds of values, text beyond ASCII and with
/// entities, and the two keys of the vibration, which also stand deeper down, as decoys. The same
/// for the same seed.
standin::Dictionary settings(std::size_t size, std::uint64_t seed);

}  // namespace quillet::bench
