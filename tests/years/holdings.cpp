// SPDX-License-Identifier: MIT
#include "tests/years/holdings.h"

#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "platform/standin/runtime/instance.h"
#include "tests/support/descriptors.h"

namespace quillet::test {

namespace {

std::ptrdiff_t linesIn(const char* file) {
    std::ifstream text{file};
    return std::count(std::istreambuf_iterator<char>{text}, {}, '\n');
}

}  // namespace

Holdings holdingsWith(const standin::Device& device) {
    return {mallinfo2().uordblks + mallinfo2().hblkhd,
            openDescriptors(),
            linesIn("/proc/self/maps"),
            device.tokens.count(),
            device.observers.count(),
            standin::Instance::live()};
}

}  // namespace quillet::test
