// SPDX-License-Identifier: MIT
#include "program/wall_clock.h"

#include <array>
#include <chrono>
#include <ctime>

namespace quillet {

namespace {

std::string formatted(const std::tm& time, const char* format) {
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &time)};
}

std::tm localTime(std::int64_t microseconds) {
    const std::time_t seconds = microseconds / microsecondsPerSecond;
    std::tm time{};
    localtime_r(&seconds, &time);
    return time;
}

/// ".456789", or less of it.
std::string fractionOf(std::int64_t microseconds, std::size_t digits) {
    const auto fraction = microseconds % microsecondsPerSecond;
    // The 1 keeps the zeros in front.
    return '.' + std::to_string(microsecondsPerSecond + fraction).substr(1, digits);
}

}  // namespace

std::int64_t timeNow() {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

std::string isoTime(std::int64_t microseconds) {
    const std::time_t seconds = microseconds / microsecondsPerSecond;
    std::tm time{};
    gmtime_r(&seconds, &time);
    return formatted(time, "%Y-%m-%dT%H:%M:%S") + fractionOf(microseconds, 6) + 'Z';
}

std::string timeOfDay(std::int64_t microseconds) {
    return formatted(localTime(microseconds), "%H:%M:%S") + fractionOf(microseconds, 3);
}

std::string dayOf(std::int64_t microseconds) {
    return formatted(localTime(microseconds), "%Y-%m-%d");
}

}  // namespace quillet
