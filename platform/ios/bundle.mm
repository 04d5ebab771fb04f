// SPDX-License-Identifier: MIT
#include "platform/bundle.h"

#include "platform/ios/references.h"

namespace quillet {

NSBundle NSBundle::bundleForClass(Class cls) {
    return sharing<NSBundle>([::NSBundle bundleForClass:object(cls)]);
}

NSString NSBundle::bundleIdentifier() const {
    return sharing<NSString>([object(*this) bundleIdentifier]);
}

}  // namespace quillet
