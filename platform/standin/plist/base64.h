// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillet::standin {

/// The bytes that `text` stands for. White space may stand anywhere; the padding must be complete
/// and the bits that it leaves over must be zero. Nothing otherwise.
std::optional<std::string> decodeBase64(std::string_view text);

/// `bytes` in base64 with padding, on one line.
std::string encodeBase64(std::string_view bytes);

}  // namespace quillet::standin
