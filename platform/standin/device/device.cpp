// SPDX-License-Identifier: MIT
#include "platform/standin/device/device.h"

#include <utility>

namespace quillet::standin {

namespace {

Device* currentDevice = nullptr;

}  // namespace

Device::Device(DeviceOptions options)
    : clock{options.clock},
      root{options.root},
      machine{std::move(options.machine)},
      host{options.host},
      hardware{below(DeviceRoot::hardwarePath)},
      notifications{below(DeviceRoot::notificationsPath)},
      tokens{notifications},
      center{notifications},
      runLoop{clock, notifications, center},
      framework{options.openModule} {
    currentDevice = this;
}

Device::~Device() { currentDevice = nullptr; }

Device& Device::current() { return *currentDevice; }

void* Device::allocate(std::size_t size) {
    return allocations_.emplace_back(std::make_unique<std::byte[]>(size)).get();
}

}  // namespace quillet::standin
