// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/standin/device/clock.h"
#include "platform/standin/device/host_variant.h"
#include "springboard/terminal.h"
#include "springboard/trace_format.h"

namespace quillet {

enum class Command {
    /// There is no command.
    none,
    state,
    flip,
    apply,
    watch,
    /// Prints Options::text.
    print,
};

/// What a command line asks for.
struct Options {
    Command command = Command::none;
    /// For flip: nothing is the tap. For apply it is always there.
    std::optional<std::int32_t> value;
    std::filesystem::path root;
    std::filesystem::path bundle;
    std::string machine = "iPhone6,1";
    /// Not to be chosen on a command line.
    standin::Clock::Kind clock = standin::Clock::Kind::real;
    standin::HostVariant host;
    bool traces = false;
    /// Empty for standard error.
    std::filesystem::path traceFile;
    TraceFormat traceFormat = TraceFormat::json;
    bool json = false;
    Color color = Color::automatic;
    /// What to say when nothing is to be done: the help, that of a command, the version.
    std::string text;
};

/// Reads a command line. Options may stand anywhere. Throws UsageError, or std::runtime_error when
/// the bundle is left to be found and cannot be.
Options parseOptions(int argc, char** argv);

/// `Quillet.bundle` beside the program that the symbolic link `program` leads to: an absolute path.
/// Throws std::runtime_error when the link cannot be read.
std::filesystem::path bundleBeside(const std::filesystem::path& program);

}  // namespace quillet
