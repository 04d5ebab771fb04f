// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ios/objc_classes.h"
#include "platform/object.h"

// The ways between a reference and the Objective-C object that it refers to.

namespace quillet {

/// The object that `reference` refers to, to send it a message.
inline id object(const Object& reference) { return static_cast<id>(reference.instance()); }

/// A reference to what `alloc` and `init…` answer, with the count that comes with it.
template <class Reference>
Reference owning(id object) {
    return Reference(Owned{}, object);
}

/// A reference to what any other message answers, which the pool of the host's call keeps, or
/// whoever was asked.
template <class Reference>
Reference sharing(id object) {
    return Reference(Borrowed{}, object);
}

}  // namespace quillet
