// SPDX-License-Identifier: MIT
#include "platform/string.h"

#include "platform/ios/objc_classes.h"

namespace quillet {

NSString::NSString(const char* utf8) : Object{[[::NSString stringWithUTF8String:utf8] retain]} {}

NSString::NSString(CFStringRef string) noexcept
    : Object{[reinterpret_cast<id>(const_cast<CFString*>(string)) retain]} {}

}  // namespace quillet
