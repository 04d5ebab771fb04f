// SPDX-License-Identifier: MIT
#include "springboard/messages.h"

#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <nlohmann/json.hpp>

#include "springboard/json.h"

namespace quillet {

namespace {

void say(bool json, const char* event, const std::string& message, const std::string& text) {
    if (!json) {
        std::cerr << text << std::endl;
        return;
    }
    std::cerr << toLine({{"time", isoTime(timeNow())},
                         {"pid", getpid()},
                         {"event", event},
                         {"message", message}})
              << std::endl;
}

}  // namespace

std::string isoTime(std::int64_t microseconds) {
    const std::time_t seconds = microseconds / microsecondsPerSecond;
    std::tm time{};
    gmtime_r(&seconds, &time);
    std::array<char, 32> day{};
    std::strftime(day.data(), day.size(), "%Y-%m-%dT%H:%M:%S", &time);
    std::array<char, 16> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%06dZ",
                  static_cast<int>(microseconds % microsecondsPerSecond));
    return std::string{day.data()} + fraction.data();
}

std::int64_t timeNow() {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

void sayError(bool json, const std::string& text) {
    say(json, "error", text, "springboard: " + text);
}

void sayNote(bool json, const std::string& text) { say(json, "note", text, text); }

}  // namespace quillet
