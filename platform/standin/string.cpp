// SPDX-License-Identifier: MIT
#include "platform/string.h"

#include "platform/standin/runtime/instances.h"

namespace quillet {

NSString::NSString(const char* utf8) : NSString{standin::makeString(utf8)} {}

NSString::NSString(CFStringRef string) noexcept
    : Object{Owned{}, const_cast<void*>(static_cast<const void*>(string))} {
    standin::send(*this, [](standin::Instance& instance) { instance.retain(); });
}

}  // namespace quillet
