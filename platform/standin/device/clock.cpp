// SPDX-License-Identifier: MIT
#include "platform/standin/device/clock.h"

#include <algorithm>
#include <thread>

namespace quillet::standin {

double Clock::now() const {
    if (isVirtual()) return virtualNow_;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void Clock::advanceTo(double time) {
    if (isVirtual()) {
        virtualNow_ = std::max(virtualNow_, time);
    } else {
        // Rounded up, so that no sleep is shorter than was asked for.
        const std::chrono::duration<double> left{time - now()};
        std::this_thread::sleep_for(std::chrono::ceil<std::chrono::nanoseconds>(left));
    }
}

}  // namespace quillet::standin
