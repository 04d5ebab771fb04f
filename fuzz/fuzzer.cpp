// SPDX-License-Identifier: MIT
//
// Looks for bytes that do not pass one of the checks, which QUILLET_CHECK names. See script/fuzz.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using quillet::standin::Check;
    static const Check& check = *std::ranges::find(quillet::standin::checks(),
                                                   std::string_view{QUILLET_CHECK}, &Check::name);
    check.isPassedBy({reinterpret_cast<const char*>(data), size});
    return 0;
}
