// SPDX-License-Identifier: MIT
#pragma once

#include "platform/string.h"

namespace quillet {

extern "C" {

/// Tells the application `applicationIdentifier` that its preference `key` has changed, and returns
/// without waiting for it; nothing calls back meanwhile. An application that is not there is not
/// told, and nobody learns of it. A null `key` is no key; both
/// strings stay the caller's.
void GSSendAppPreferencesChanged(CFStringRef applicationIdentifier, CFStringRef key);

}  // extern "C"

}  // namespace quillet
