// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"
#include "platform/string.h"

namespace quillet {

/// A folder with a property list, resources and, for a loadable bundle, a module of code.
class NSBundle : public Object {
public:
    using Object::Object;

    /// The bundle whose module defines `cls`, shared with the platform. For a class that no
    /// bundle defines it is the host's own.
    static NSBundle bundleForClass(Class cls);

    /// The bundle's identifier, a reverse-domain string; nil when its property list gives none.
    NSString bundleIdentifier() const;
};

}  // namespace quillet
