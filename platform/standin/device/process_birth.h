// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <string>

namespace quillet::standin {

/// When a process began, by the kernel's count: processes that had one number one after another
/// differ in it. Empty when there is no such process, or the kernel does not say.
std::string birthOf(pid_t process);

}  // namespace quillet::standin
