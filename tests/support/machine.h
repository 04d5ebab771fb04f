// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "platform/standin/device/device.h"
#include "tests/support/calls.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {

struct MachineOptions {
    std::string machine = "iPhone6,1";
    standin::HostVariant host = {};
    standin::Clock::Kind clock = standin::Clock::Kind::virtualTime;
    standin::OpenModule openModule = standin::openSharedObject;
};

/// A new device without any bundle, in a folder of its own, that writes down what is called.
class Machine {
public:
    explicit Machine(const MachineOptions& options = {});

    standin::Device& device() { return device_; }
    /// Holds the device's root, and is for the test to use.
    const std::filesystem::path& folder() const { return folder_.path(); }

    /// What was called since the device is there, or since the log was last cleared.
    CallLog& log() { return log_; }
    const Calls& calls() const { return log_.calls(); }

private:
    TemporaryFolder folder_;
    CallLog log_;
    standin::Device device_;
};

}  // namespace quillet::test
