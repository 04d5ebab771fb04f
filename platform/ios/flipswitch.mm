// SPDX-License-Identifier: MIT
#include "platform/flipswitch.h"

#include "platform/ios/references.h"

namespace quillet {

FSSwitchPanel FSSwitchPanel::sharedPanel() {
    return sharing<FSSwitchPanel>([::FSSwitchPanel sharedPanel]);
}

void FSSwitchPanel::stateDidChangeForSwitchIdentifier(NSString identifier) const {
    [object(*this) stateDidChangeForSwitchIdentifier:object(identifier)];
}

}  // namespace quillet
