// SPDX-License-Identifier: MIT
#pragma once

#include "platform/string.h"

namespace quillet {

extern "C" {

/// Tells the application `applicationIdentifier` that its preference `key` has changed.
void GSSendAppPreferencesChanged(CFStringRef applicationIdentifier, CFStringRef key);

}  // extern "C"

}  // namespace quillet
