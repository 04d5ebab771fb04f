// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace quillet::standin {

/// An XML document in UTF-8, without a byte-order mark, from one in the encoding that its mark or,
/// without one, its declaration tells: UTF-8, UTF-16 and UTF-32 with a mark, ISO-8859-1,
/// windows-1252. Nothing when the declaration is malformed or names another one. What is called
/// UTF-8 is passed on as it is.
std::optional<std::string> documentInUTF8(std::string document);

}  // namespace quillet::standin
