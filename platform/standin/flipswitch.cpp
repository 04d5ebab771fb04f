// SPDX-License-Identifier: MIT
#include "platform/flipswitch.h"

#include "platform/standin/device/device.h"
#include "platform/standin/flipswitch.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::Instance;
using standin::Told;

FSSwitchPanel FSSwitchPanel::sharedPanel() {
    Device& device = Device::current();
    Instance& panel = *device.shared.switchPanel;
    device.trace.message("FSSwitchPanel", "sharedPanel", Answer{panel});
    return standin::share<FSSwitchPanel>(&panel);
}

void FSSwitchPanel::stateDidChangeForSwitchIdentifier(NSString identifier) const {
    standin::send(*this, [&](const Instance& panel) {
        Device& device = Device::current();
        device.journal.add("refresh-asked");
        const auto refresh =
            device.trace.lastingMessage(panel, "stateDidChangeForSwitchIdentifier:", identifier);
        const auto state = device.framework.refresh(standin::text(identifier));
        if (state) device.journal.add("refreshed", Told{"state", int{*state}});
    });
}

}  // namespace quillet

namespace quillet::standin {

void* registerClass(const ClassDescription& description) {
    ModuleClass& cls = Device::current().framework.add(description);
    description.load();
    return word(cls);
}

}  // namespace quillet::standin
