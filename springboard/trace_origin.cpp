// SPDX-License-Identifier: MIT
#include "springboard/trace_origin.h"

#include <array>
#include <ctime>

namespace quillet {

std::string wallClockText(std::chrono::system_clock::time_point time) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time);
    const auto seconds = std::chrono::floor<std::chrono::seconds>(milliseconds);
    const std::time_t whole = std::chrono::system_clock::to_time_t(seconds);
    std::tm parts{};
    gmtime_r(&whole, &parts);
    std::array<char, 32> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    const std::string fraction = std::to_string((milliseconds - seconds).count() + 1000);
    return std::string{text.data(), size} + '.' + fraction.substr(1) + 'Z';
}

}  // namespace quillet
