// SPDX-License-Identifier: MIT
#include "platform/celestial.h"

#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::Instance;
using standin::Told;

AVSystemController AVSystemController::sharedAVSystemController() {
    Device& device = Device::current();
    Instance& controller = *device.shared.volumeController;
    device.trace.message("AVSystemController", "sharedAVSystemController", Answer{controller});
    return standin::share<AVSystemController>(&controller);
}

BOOL AVSystemController::getVolume(float* volume, NSString forCategory) const {
    return standin::send(*this, [&](const Instance& controller) -> BOOL {
        Device& device = Device::current();
        const auto found = device.hardware.volume(standin::text(forCategory));
        if (found) *volume = *found;
        device.trace.message(controller, "getVolume:forCategory:", found, forCategory,
                             Answer{found.has_value()});
        return found.has_value();
    });
}

BOOL AVSystemController::setVolumeTo(float volume, NSString forCategory) const {
    return standin::send(*this, [&](const Instance& controller) -> BOOL {
        Device& device = Device::current();
        const bool isSet = device.hardware.setVolume(standin::text(forCategory), volume);
        device.trace.message(controller, "setVolumeTo:forCategory:", volume, forCategory,
                             Answer{isSet});
        const std::string_view category = standin::text(forCategory);
        if (isSet) device.journal.add("volume", Told{"category", category}, Told{"volume", volume});
        return isSet;
    });
}

}  // namespace quillet
