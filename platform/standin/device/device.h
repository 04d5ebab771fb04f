// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/standin/device/clock.h"
#include "platform/standin/device/complaints.h"
#include "platform/standin/device/device_facts.h"
#include "platform/standin/device/event_loop.h"
#include "platform/standin/device/hardware.h"
#include "platform/standin/device/host_variant.h"
#include "platform/standin/device/journal.h"
#include "platform/standin/device/new_phone.h"
#include "platform/standin/device/root.h"
#include "platform/standin/device/storage.h"
#include "platform/standin/device/trace.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/notifications/observers.h"
#include "platform/standin/notifications/tokens.h"
#include "platform/standin/runtime/instances.h"
#include "platform/standin/runtime/module.h"
#include "platform/standin/runtime/switch_framework.h"

namespace quillet::standin {

/// How a device is, beyond what its root says.
struct DeviceOptions {
    std::filesystem::path root;
    /// What the root holds if it is made for this device.
    std::vector<NewFile> newFiles = {};
    /// What this process takes the device for, and what it is if it is made for this process:
    /// nothing for what it is. See DeviceFacts.
    std::optional<std::string> machine = {};
    std::optional<HostVariant> host = {};
    Clock::Kind clock = Clock::Kind::real;
    OpenModule openModule = openSharedObject;
    /// Hears why files of the device's own could not be read or written. See Complaints.
    Complaints::Sink complain = {};
    /// By whom what happens to the device through this process is told in its journal; nobody by
    /// default.
    Journal::Author author = {};
};

/// The device as one process sees it, with all that the process owns. There is one at a time.
class Device {
public:
    /// Makes the root a new phone if it is absent or empty. Throws std::runtime_error when it
    /// cannot be used, and there is no device then.
    explicit Device(const DeviceOptions& options);
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// The device of this process, owned by whoever made it. Ends the process with a message when
    /// there is none. For the faces of the platform alone: whatever stands below them is handed
    /// what it uses.
    static Device& current() {
        if (current_ == nullptr) endWithoutOne();
        return *current_;
    }

    std::filesystem::path below(std::string_view devicePath) const {
        return root.below(devicePath);
    }

    // In the order in which they are made: each may refer to those above it.

    /// First, as the process begins here.
    Clock clock;
    DeviceRoot root;
    /// Whether the root was made for this process.
    bool isNew;
    /// As uname tells it.
    std::string machine;
    HostVariant host;
    Complaints complaints;
    Journal journal;
    Trace trace;
    Hardware hardware;
    NotificationTable notifications;
    Tokens tokens;
    Observers observers;
    EventLoop eventLoop;
    /// Handles that dlopen gave and dlclose has not taken back.
    int openLibraries = 0;
    Storage storage;
    SharedInstances shared;
    /// Last: what it has loaded goes before all that it uses.
    SwitchFramework framework;

private:
    [[noreturn]] static void endWithoutOne();
    Device(const DeviceOptions& options, const FoundPhone& phone);
    void beLike(const DeviceOptions& options);
    void mend();
    void tellStart();

    static Device* current_;
};

}  // namespace quillet::standin
