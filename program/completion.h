// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace quillet {

// What shells complete the command lines of a program with, as its help has it.

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
    /// It means something to give it several times.
    bool mayRepeat = false;
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

/// The shells that there is a script for: "bash", "zsh", "fish".
std::vector<std::string> shells();

/// The script by which `shell` completes command lines of `program`. Throws UsageError for a shell
/// that there is none for.
std::string completionScript(const OfferedCommand& program, const std::string& shell);

std::string bashCompletion(const OfferedCommand& program);
std::string zshCompletion(const OfferedCommand& program);
std::string fishCompletion(const OfferedCommand& program);

/// `meaning` as it is read in a line beside others.
std::string inShort(const std::string& meaning);

/// `text` as one word of any of the shells: in single quotes.
std::string quoted(const std::string& text);

/// "on off"
std::string spaced(const std::vector<std::string>& words);

}  // namespace quillet
