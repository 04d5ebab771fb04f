// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/standin/device/host_variant.h"
#include "springboard/trace_format.h"

namespace quillet {

// What the arguments of the command line mean. Each throws UsageError for one that means nothing.

/// A path, the argument of `option`.
std::filesystem::path nonEmpty(const char* option, std::string_view argument);

/// A model, as uname can tell it: 1 to 255 bytes.
std::string machineName(std::string_view name);

standin::HostVariant hostVariant(std::string_view variant);

/// "json", "text" or "chrome".
TraceFormat traceFormat(std::string_view word);

/// A 32-bit signed number in decimal digits, perhaps with a sign.
std::int32_t number(std::string_view word);

/// 1 for "on", 0 for "off".
std::int32_t onOrOff(std::string_view word);

}  // namespace quillet
