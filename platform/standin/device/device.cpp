// SPDX-License-Identifier: MIT
#include "platform/standin/device/device.h"

#include <cstdio>
#include <cstdlib>

namespace quillet::standin {

namespace {

Device* currentDevice = nullptr;

}  // namespace

Device::Device(const DeviceOptions& options)
    : clock{options.clock},
      root{makeNewPhone(options.root, options.newFiles)},
      machine{options.machine},
      host{options.host},
      trace{clock},
      hardware{below(DeviceRoot::hardwarePath)},
      notifications{below(DeviceRoot::notificationsPath)},
      tokens{notifications},
      observers{notifications},
      eventLoop{clock, notifications, observers},
      framework{options.openModule, observers} {
    currentDevice = this;
}

Device::~Device() { currentDevice = nullptr; }

Device& Device::current() {
    if (currentDevice == nullptr) {
        std::fputs("the platform was called without a device\n", stderr);
        std::abort();
    }
    return *currentDevice;
}

}  // namespace quillet::standin
