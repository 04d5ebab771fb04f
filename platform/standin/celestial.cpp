// SPDX-License-Identifier: MIT
#include "platform/celestial.h"

#include "platform/standin/device/device.h"
#include "platform/standin/runtime/instance.h"

namespace quillet {

using standin::Device;
using standin::Instance;
using standin::send;
using standin::TraceValue;

AVSystemController AVSystemController::sharedAVSystemController() {
    static standin::SharedInstance controller{"<AVSystemController>"};
    Device::current().trace.answer(controller.description(), "AVSystemController",
                                   "sharedAVSystemController");
    return standin::share<AVSystemController>(&controller);
}

BOOL AVSystemController::getVolume(float* volume, NSString forCategory) const {
    return send(*this, [&](const Instance& controller) -> BOOL {
        Device& device = Device::current();
        const auto found = device.hardware.volume(standin::text(forCategory));
        if (found) *volume = *found;
        device.trace.answer(found.has_value(), controller.description(), "getVolume:forCategory:",
                            found ? standin::toTrace(*found) : TraceValue{}, forCategory);
        return found.has_value();
    });
}

BOOL AVSystemController::setVolumeTo(float volume, NSString forCategory) const {
    return send(*this, [&](const Instance& controller) -> BOOL {
        Device& device = Device::current();
        const bool set = device.hardware.setVolume(standin::text(forCategory), volume);
        device.trace.answer(set, controller.description(), "setVolumeTo:forCategory:", volume,
                            forCategory);
        return set;
    });
}

}  // namespace quillet
