// SPDX-License-Identifier: MIT
#include "platform/springboard_classes.h"

#include "platform/ios/objc_classes.h"
#include "platform/string.h"

namespace quillet {

namespace {

::Class hostClass(NSString name) { return NSClassFromString(object(name)); }

}  // namespace

SBRingerHUDController SBRingerHUDController::classInHost() {
    return SBRingerHUDController([hostClass("SBRingerHUDController") retain]);
}

SBRingerHUDController SBRingerHUDController::sharedInstance() const {
    return SBRingerHUDController([[object(*this) sharedInstance] retain]);
}

void SBRingerHUDController::activate(int state) const {
    // Asked of the runtime, not of the object: the host sees no message but this one, or none.
    if (!class_respondsToSelector(object_getClass(object(*this)), @selector(activate:))) return;
    [object(*this) activate:state];
}

SBMediaController SBMediaController::classInHost() {
    return SBMediaController([hostClass("SBMediaController") retain]);
}

SBMediaController SBMediaController::sharedInstance() const {
    return SBMediaController([[object(*this) sharedInstance] retain]);
}

void SBMediaController::setRingerMuted(BOOL muted) const {
    [object(*this) setRingerMuted:muted != NO];
}

}  // namespace quillet
