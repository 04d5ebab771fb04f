// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace quillet {

/// The script by which `shell`, "bash", "zsh" or "fish", completes command lines of the program
/// `app`. Throws UsageError for another shell.
std::string completionScript(const CLI::App& app, const std::string& shell);

// What completion offers: the program's description without the library that holds it.

/// For an argument of an option, or a word of a command.
struct OfferedArgument {
    /// As the help calls it.
    std::string name = {};
    std::vector<std::string> words = {};
    bool isFile = false;
    bool isFolder = false;
};

struct OfferedOption {
    /// "-h", "--help"
    std::vector<std::string> names = {};
    std::string meaning = {};
    bool hasArgument = false;
    /// The argument may be left out, and stands behind "=".
    bool isArgumentOptional = false;
    OfferedArgument argument = {};
};

/// The program or one of its commands.
struct OfferedCommand {
    std::string name = {};
    std::string meaning = {};
    /// Its own, not those of what it belongs to.
    std::vector<OfferedOption> options = {};
    std::vector<OfferedArgument> words = {};
    std::vector<OfferedCommand> commands = {};
};

OfferedCommand offersOf(const CLI::App& app);

// The scripts for `program`.

std::string bashCompletion(const OfferedCommand& program);
std::string zshCompletion(const OfferedCommand& program);
std::string fishCompletion(const OfferedCommand& program);

/// `text` as one word of any of the shells: in single quotes.
std::string quoted(const std::string& text);

/// "on off"
std::string spaced(const std::vector<std::string>& words);

}  // namespace quillet
