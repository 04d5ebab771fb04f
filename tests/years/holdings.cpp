// SPDX-License-Identifier: MIT
#include "tests/years/holdings.h"

#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/standin/runtime/instance.h"

namespace quillet::test {

namespace {

std::ptrdiff_t linesIn(const char* file) {
    std::ifstream text{file};
    return std::count(std::istreambuf_iterator<char>{text}, {}, '\n');
}

}  // namespace

Holdings holdingsWith(const standin::Device& device) {
    return {mallinfo2().uordblks + mallinfo2().hblkhd,
            std::distance(std::filesystem::directory_iterator{"/proc/self/fd"}, {}),
            linesIn("/proc/self/maps"),
            device.tokens.count(),
            device.observers.count(),
            standin::Instance::live()};
}

}  // namespace quillet::test
