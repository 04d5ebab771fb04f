// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/standin/device/host_variant.h"
#include "springboard/trace_format.h"

namespace quillet {

enum class Command { state, flip, apply, watch, help, version };

/// What a command line asks for.
struct Options {
    Command command = Command::help;
    /// For flip: nothing is the tap. For apply it is always there.
    std::optional<std::int32_t> value;
    std::filesystem::path root;
    std::filesystem::path bundle;
    std::string machine = "iPhone6,1";
    standin::HostVariant host;
    bool traces = false;
    /// Empty for standard error.
    std::filesystem::path traceFile;
    TraceFormat traceFormat = TraceFormat::json;
    bool json = false;
};

/// Reads a command line. Options may stand anywhere. Throws UsageError.
Options parseOptions(int argc, char** argv);

}  // namespace quillet
