// SPDX-License-Identifier: MIT
#include "platform/celestial.h"

#include "platform/ios/references.h"

namespace quillet {

AVSystemController AVSystemController::sharedAVSystemController() {
    return sharing<AVSystemController>([::AVSystemController sharedAVSystemController]);
}

BOOL AVSystemController::getVolume(float* volume, NSString forCategory) const {
    return [object(*this) getVolume:volume forCategory:object(forCategory)] != NO;
}

BOOL AVSystemController::setVolumeTo(float volume, NSString forCategory) const {
    return [object(*this) setVolumeTo:volume forCategory:object(forCategory)] != NO;
}

}  // namespace quillet
