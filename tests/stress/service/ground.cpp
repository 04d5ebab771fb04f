// SPDX-License-Identifier: MIT
#include "tests/stress/service/ground.h"

#include "platform/notify.h"
#include "tests/support/traced.h"

namespace quillet::test {

bool postIsFree(standin::Device& device) {
    const std::uint32_t before = device.notifications.findOrAdd(name)->posts;
    const bool isFree = systemCallsOf([] { notify_post(name); }).empty();
    return isFree && device.notifications.find(name)->posts == before + 1;
}

}  // namespace quillet::test
