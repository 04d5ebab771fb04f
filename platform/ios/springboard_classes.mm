// SPDX-License-Identifier: MIT
#include "platform/springboard_classes.h"

#include "platform/ios/references.h"
#include "platform/string.h"

namespace quillet {

namespace {

::Class hostClass(NSString name) { return NSClassFromString(object(name)); }

}  // namespace

SBRingerHUDController SBRingerHUDController::classInHost() {
    return sharing<SBRingerHUDController>(hostClass("SBRingerHUDController"));
}

SBRingerHUDController SBRingerHUDController::sharedInstance() const {
    return sharing<SBRingerHUDController>([object(*this) sharedInstance]);
}

void SBRingerHUDController::activate(int state) const {
    // Asked of the runtime, not of the object: the host sees no message but this one, or none.
    if (!class_respondsToSelector(object_getClass(object(*this)), @selector(activate:))) return;
    [object(*this) activate:state];
}

SBMediaController SBMediaController::classInHost() {
    return sharing<SBMediaController>(hostClass("SBMediaController"));
}

SBMediaController SBMediaController::sharedInstance() const {
    return sharing<SBMediaController>([object(*this) sharedInstance]);
}

void SBMediaController::setRingerMuted(BOOL muted) const {
    [object(*this) setRingerMuted:muted != NO];
}

}  // namespace quillet
