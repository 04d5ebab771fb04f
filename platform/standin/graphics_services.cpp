// SPDX-License-Identifier: MIT
#include "platform/graphics_services.h"

#include "platform/standin/device/device.h"
#include "platform/standin/runtime/instance.h"

namespace quillet {

void GSSendAppPreferencesChanged(CFStringRef applicationIdentifier, CFStringRef key) {
    standin::Device::current().trace.call("", "GSSendAppPreferencesChanged",
                                          standin::objectTrace(applicationIdentifier),
                                          standin::objectTrace(key));
}

}  // namespace quillet
