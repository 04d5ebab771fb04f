// SPDX-License-Identifier: MIT
#include "platform/string.h"

#include "platform/ios/references.h"

namespace quillet {

NSString::NSString(const char* utf8)
    : Object{Owned{}, [[::NSString stringWithUTF8String:utf8] retain]} {}

NSString::NSString(CFStringRef string) noexcept
    : Object{Owned{}, [reinterpret_cast<id>(const_cast<CFString*>(string)) retain]} {}

}  // namespace quillet
