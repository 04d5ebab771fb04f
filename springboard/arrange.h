// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace quillet {

/// The type of an option whose argument may be left out.
inline constexpr char optionalFile[] = "[=FILE]";

/// Reads a command line as getopt_long(3) does, and puts it in order for `app`: the commands, their
/// options with each argument a word of its own, "--", all other words. Options may stand anywhere
/// before "--" and be shortened as long as one option begins so. An option of type optionalFile
/// takes its argument behind "=" only and gets an empty one where there is none.
///
/// Throws UsageError for what fits no command, option or place of `app`; CLI::CallForHelp or
/// CLI::CallForVersion at the option that asks for it.
std::vector<std::string> arrange(const CLI::App& app, const std::vector<std::string>& line);

}  // namespace quillet
