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
    // A class has been asked. An instance has not, and the runtime is asked in its place: the host
    // sees no message but this one, or none.
    const ::Class cls = object_getClass(object(*this));
    if (!class_isMetaClass(cls) && !class_respondsToSelector(cls, @selector(activate:))) return;
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
