// SPDX-License-Identifier: MIT
#include "platform/standin/device/device.h"

#include <gmock/gmock.h>
#include <signal.h>

namespace quillet::test {
namespace {

TEST(Device, WithoutOneThePlatformEndsTheProcessWithAMessage) {
    EXPECT_EXIT(standin::Device::current(), testing::KilledBySignal(SIGABRT),
                testing::Eq("the platform was called without a device\n"));
}

}  // namespace
}  // namespace quillet::test
