// SPDX-License-Identifier: MIT
#include "tests/stress/service/ground.h"

#include "platform/notify.h"
#include "tests/support/traced.h"

namespace quillet::test {

bool postIsFree(standin::Device& device) {
    const std::uint32_t before = device.notifications.findOrAdd(name)->posts;
    std::uint32_t made = 0;
    const bool isFree = becomesTrue([&] {
        ++made;
        return systemCallsOf([] { notify_post(name); }).empty();
    });
    return isFree && device.notifications.find(name)->posts == before + made;
}

}  // namespace quillet::test
