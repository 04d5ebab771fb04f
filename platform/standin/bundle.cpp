// SPDX-License-Identifier: MIT
#include "platform/bundle.h"

#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::BundleFolder;
using standin::Device;

NSBundle NSBundle::bundleForClass(Class cls) {
    Device& device = Device::current();
    BundleFolder& bundle = device.framework.bundleOf(cls);
    device.trace.message("NSBundle", "bundleForClass:", cls, Answer{bundle});
    return standin::share<NSBundle>(&bundle);
}

NSString NSBundle::bundleIdentifier() const {
    return standin::send<BundleFolder>(*this, [](const BundleFolder& bundle) {
        const std::string identifier = bundle.identifier();
        const NSString answer = identifier.empty() ? NSString{} : standin::makeString(identifier);
        Device::current().trace.message(bundle, "bundleIdentifier", Answer{answer});
        return answer;
    });
}

}  // namespace quillet
