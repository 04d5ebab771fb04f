// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"

namespace quillet {

/// A string as the platform's C functions take it: a plain pointer to the same object that
/// NSString refers to. Null is nil.
using CFStringRef = const struct CFString*;

/// An immutable string of Unicode characters.
class NSString : public Object {
public:
    using Object::Object;

    constexpr NSString() noexcept = default;
    /// A string with the characters of `utf8`, which must be valid UTF-8 and is copied.
    /// Implicit, so that a literal can stand wherever the platform takes a string.
    NSString(const char* utf8);
    /// Shares `string`, which may be null.
    explicit NSString(CFStringRef string) noexcept;

    /// The same object for a C function of the platform, owned by this reference.
    operator CFStringRef() const noexcept { return static_cast<CFStringRef>(instance()); }
};

}  // namespace quillet
