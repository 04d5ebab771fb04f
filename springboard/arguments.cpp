// SPDX-License-Identifier: MIT
#include "springboard/arguments.h"

#include <charconv>

#include "program/usage_error.h"

namespace quillet {

namespace {

/// uname's field holds 255 bytes and a NUL.
constexpr std::size_t maxMachineLength = 255;

}  // namespace

std::filesystem::path nonEmpty(const char* option, std::string_view argument) {
    if (argument.empty()) throw UsageError(std::string{option} + " needs a name");
    return argument;
}

std::string machineName(std::string_view name) {
    if (name.empty() || name.size() > maxMachineLength) {
        throw UsageError("a model needs a name of 1 to 255 bytes");
    }
    return std::string{name};
}

standin::HostVariant hostVariant(std::string_view variant) {
    const auto host = standin::parseHostVariant(variant);
    if (!host) throw UsageError("no such host variant: " + inQuotes(variant));
    return *host;
}

TraceFormat traceFormat(std::string_view word) {
    if (word == "json") return TraceFormat::json;
    if (word == "text") return TraceFormat::text;
    if (word == "chrome") return TraceFormat::chrome;
    throw UsageError("no such trace format: " + inQuotes(word));
}

std::int32_t number(std::string_view word) {
    std::int32_t value = 0;
    const std::string_view digits = word.starts_with('+') ? word.substr(1) : word;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
    if (error != std::errc{} || end != digits.end() ||
        digits.starts_with('-') != (word[0] == '-')) {
        throw UsageError("not a 32-bit signed number: " + inQuotes(word));
    }
    return value;
}

std::int32_t onOrOff(std::string_view word) {
    if (word != "on" && word != "off") throw UsageError("neither on nor off: " + inQuotes(word));
    return word == "on" ? 1 : 0;
}

}  // namespace quillet
