// SPDX-License-Identifier: MIT
#include "platform/flipswitch.h"

#include "platform/ios/objc_classes.h"

namespace quillet {

FSSwitchPanel FSSwitchPanel::sharedPanel() {
    return FSSwitchPanel([[::FSSwitchPanel sharedPanel] retain]);
}

void FSSwitchPanel::stateDidChangeForSwitchIdentifier(NSString identifier) const {
    [object(*this) stateDidChangeForSwitchIdentifier:object(identifier)];
}

}  // namespace quillet
