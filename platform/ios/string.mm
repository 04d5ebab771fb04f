// SPDX-License-Identifier: MIT
#include "platform/string.h"

#include "platform/ios/references.h"

namespace quillet {

NSString::NSString(const char* utf8) : Object{Borrowed{}, [::NSString stringWithUTF8String:utf8]} {}

NSString::NSString(CFStringRef string) noexcept
    : Object{Borrowed{}, const_cast<CFString*>(string)} {}

}  // namespace quillet
