// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "platform/standin/runtime/instances.h"
#include "tests/support/machine.h"

namespace quillet::test {

/// A test on a new device without any bundle, whose time is virtual.
class OnADevice : public testing::Test, protected Machine {};

}  // namespace quillet::test
