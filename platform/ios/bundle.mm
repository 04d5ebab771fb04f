// SPDX-License-Identifier: MIT
#include "platform/bundle.h"

#include "platform/ios/objc_classes.h"

namespace quillet {

NSBundle NSBundle::bundleForClass(Class cls) {
    return NSBundle([[::NSBundle bundleForClass:object(cls)] retain]);
}

NSString NSBundle::bundleIdentifier() const { return shared([object(*this) bundleIdentifier]); }

}  // namespace quillet
