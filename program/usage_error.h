// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace quillet {

/// A command line that makes no sense, in words for the user.
class UsageError : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// A word of the user's as messages show it.
inline std::string inQuotes(std::string_view word) { return '"' + std::string{word} + '"'; }

}  // namespace quillet
