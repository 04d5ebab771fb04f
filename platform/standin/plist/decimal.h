// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quillet::standin {

template <class Real>
struct Decimal {
    Real value;
    /// Bytes that the number takes of the text.
    std::size_t length;
};

/// The longest decimal number that `text` begins with: [+-] digits [. digits] [(e|E) [+-] digits],
/// where digits may lack on one side of the point. No white space, no words, whatever the locale.
/// The value is the nearest one; too large a number gives an infinity, too small a one zero.
/// Nothing when `text` begins with none. Real is float or double.
template <class Real>
std::optional<Decimal<Real>> readDecimal(std::string_view text);

}  // namespace quillet::standin
