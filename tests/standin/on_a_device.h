// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "platform/standin/device/device.h"
#include "platform/standin/runtime/instances.h"
#include "tests/support/calls.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {

/// A test on a new device without any bundle, whose time is virtual.
class OnADevice : public testing::Test {
protected:
    OnADevice() {
        device_.trace.setSink([this](const standin::TraceRecord& record) { log_.add(record); });
    }

    standin::Device& device() { return device_; }
    const Calls& calls() const { return log_.calls(); }
    void forgetCalls() { log_.clear(); }
    std::filesystem::path folder() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
    CallLog log_;
    standin::Device device_{
        {.root = folder_.path() / "root", .clock = standin::Clock::Kind::virtualTime}};
};

}  // namespace quillet::test
