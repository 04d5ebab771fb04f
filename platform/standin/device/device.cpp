// SPDX-License-Identifier: MIT
#include "platform/standin/device/device.h"

#include <cstdio>
#include <cstdlib>

namespace quillet::standin {

namespace {

Device* currentDevice = nullptr;

}  // namespace

Device::Device(const DeviceOptions& options)
    : Device{options, makeNewPhone(options.root, options.newFiles,
                                   {options.machine.value_or(DeviceFacts{}.machine),
                                    options.host.value_or(HostVariant{})})} {}

Device::Device(const DeviceOptions& options, const FoundPhone& phone)
    : clock{options.clock},
      root{phone.path},
      isNew{phone.isNew},
      trace{clock},
      hardware{below(DeviceRoot::hardwarePath)},
      notifications{below(DeviceRoot::notificationsPath)},
      tokens{notifications},
      observers{notifications},
      eventLoop{clock, notifications, observers},
      framework{options.openModule, observers} {
    const DeviceFacts facts = readFacts(below(DeviceRoot::factsPath));
    machine = options.machine.value_or(facts.machine);
    host = options.host.value_or(facts.host);
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
