// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <string>

namespace quillet {

/// What ends a command with 1 when all that there is to say of it was said.
class AlreadySaid : public std::exception {};

/// Says something on standard error: `text` behind the program's name, or, as JSON, an object with
/// "time", "pid", "event" and "message".
void sayError(bool json, const std::string& text);

/// The same for what is no error, without the program's name.
void sayNote(bool json, const std::string& text);

}  // namespace quillet
