// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/standin/device/clock.h"
#include "platform/standin/device/event_loop.h"
#include "platform/standin/device/hardware.h"
#include "platform/standin/device/host_variant.h"
#include "platform/standin/device/root.h"
#include "platform/standin/device/trace.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/notifications/observers.h"
#include "platform/standin/notifications/tokens.h"
#include "platform/standin/runtime/module.h"
#include "platform/standin/runtime/switch_framework.h"

namespace quillet::standin {

/// How a device is, beyond what its root says.
struct DeviceOptions {
    std::filesystem::path root;
    /// The model, as uname tells it.
    std::string machine = "iPhone6,1";
    Host host = {};
    Clock::Kind clock = Clock::Kind::real;
    OpenModule openModule = openSharedObject;
};

/// The device as one process sees it, with all that the process owns. There is one at a time.
class Device {
public:
    /// Throws std::runtime_error when the root cannot be used.
    explicit Device(DeviceOptions options);
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    static Device& current();

    std::filesystem::path below(std::string_view devicePath) const {
        return root.below(devicePath);
    }

    /// `size` bytes, all zero, which the process keeps until it ends.
    void* allocate(std::size_t size);

    /// First, as the process begins here.
    Clock clock;
    DeviceRoot root;
    std::string machine;
    Host host;
    Trace trace;
    Hardware hardware;
    NotificationTable notifications;
    Tokens tokens;
    NotificationCenter center;
    RunLoop runLoop;
    /// Handles that dlopen gave and dlclose has not taken back.
    int openLibraries = 0;

private:
    std::vector<std::unique_ptr<std::byte[]>> allocations_;

public:
    /// The last member: what it has loaded goes before all that it uses.
    SwitchFramework framework;
};

}  // namespace quillet::standin
