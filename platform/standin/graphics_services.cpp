// SPDX-License-Identifier: MIT
#include "platform/graphics_services.h"

#include "platform/standin/device/device.h"

namespace quillet {

void GSSendAppPreferencesChanged(CFStringRef applicationIdentifier, CFStringRef key) {
    standin::Device::current().trace.function("GSSendAppPreferencesChanged",
                                              standin::ObjectAt{applicationIdentifier},
                                              standin::ObjectAt{key});
}

}  // namespace quillet
