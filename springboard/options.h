// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "platform/standin/device/clock.h"
#include "platform/standin/device/host_variant.h"
#include "program/terminal.h"
#include "springboard/trace_format.h"

namespace quillet {

/// What a command line asks for.
struct Options {
    /// What the command does. Empty when there is no command.
    std::function<void(const Options&)> run;
    /// The command and its words, as they were typed but without options.
    std::string command;
    /// Empty for the default. See rootOf.
    std::filesystem::path root;
    /// Empty for the one beside the program. See bundleOf.
    std::filesystem::path bundle;
    /// For this command, or for the phone that it makes. Nothing for what the device is.
    std::optional<std::string> machine;
    std::optional<standin::HostVariant> host;
    /// Not to be chosen on a command line.
    standin::Clock::Kind clock = standin::Clock::Kind::real;
    bool traces = false;
    /// Empty for standard error, "-" for standard output.
    std::filesystem::path traceFile;
    TraceFormat traceFormat = TraceFormat::json;
    /// Whether a flip is told step by step.
    bool explains = false;
    bool json = false;
    Color color = Color::automatic;
    /// The program's help.
    std::string help;
};

/// Reads a command line. Options may stand anywhere. Throws UsageError.
Options parseOptions(int argc, char** argv);

/// The root of the device that is meant. Throws UsageError when no default can be found.
std::filesystem::path rootOf(const Options& options);

/// The bundle that is meant, an absolute path. Throws std::runtime_error when it is left to be
/// found and cannot be.
std::filesystem::path bundleOf(const Options& options);

/// `Quillet.bundle` beside the program that the symbolic link `program` leads to: an absolute path.
/// Throws std::runtime_error when the link cannot be read.
std::filesystem::path bundleBeside(const std::filesystem::path& program);

}  // namespace quillet
