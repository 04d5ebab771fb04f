// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace quillet {

/// The type of an option whose argument may be left out.
inline constexpr char optionalFile[] = "[=FILE]";

/// The command of `app` that has that name, and of that command the one that has the next name, and
/// so on. Throws UsageError where there is none.
const CLI::App& commandNamed(const CLI::App& app, const std::vector<std::string>& names);

/// Reads a command line as getopt_long(3) does, and puts it in order for `app`: the commands, their
/// options with each argument a word of its own, "--", all other words. Options may stand anywhere
/// before "--", those of a command behind it, and be shortened as long as one option begins so. An
/// option of type optionalFile takes its argument behind "=" only and gets an empty one where there
/// is none. A flag with the name of a command, such as "--help", stands for it, with the
/// commands before it as its words where it takes some, and ends the line. A line without any word
/// is left without a command.
///
/// Throws UsageError for what fits no command, option or place of `app`.
std::vector<std::string> arrange(const CLI::App& app, const std::vector<std::string>& line);

}  // namespace quillet
