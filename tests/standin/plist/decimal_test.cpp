// SPDX-License-Identifier: MIT
#include "platform/standin/plist/decimal.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillet::standin {
namespace {

TEST(Decimal, LooksNoFurtherThanTheTextGoes) {
    // With the two last digits it would be too large, not too small.
    const std::string longer = "0." + std::string(100, '0') + "1e500";
    const std::string_view text = std::string_view{longer}.substr(0, longer.size() - 2);
    const auto number = readDecimal<float>(text);
    ASSERT_TRUE(number);
    EXPECT_EQ(number->value, 0.0F);
    EXPECT_EQ(number->length, text.size());
}

TEST(Decimal, BeginsWithADigitUnlessWithASignOrAPoint) {
    for (int c = 0; c < 256; ++c) {
        const std::string text(1, static_cast<char>(c));
        EXPECT_EQ(readDecimal<double>(text).has_value(), c >= '0' && c <= '9') << c;
    }
}

}  // namespace
}  // namespace quillet::standin
