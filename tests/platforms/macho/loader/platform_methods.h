// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace quillet::macho {

/// The code of a method of the platform's classes, with the arguments of the message: the
/// receiver, the selector and its own. `sign` is '+' for a message to the class, '-' for one to an
/// instance. Null when there is none.
const void* platformMethod(char sign, const std::string& cls, std::string_view selector);

/// Whether the platform has the class. It does when the class has a method of its own.
bool hasPlatformClass(const std::string& cls);

}  // namespace quillet::macho
