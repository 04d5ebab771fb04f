// SPDX-License-Identifier: MIT
#include "program/completion.h"

namespace quillet {

namespace {

/// `text` between brackets.
std::string bracketed(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        if (letter == '[' || letter == ']' || letter == '\\') escaped += '\\';
        escaped += letter;
    }
    return '[' + escaped + ']';
}

/// "DIR:_files -/"
std::string actionFor(const OfferedArgument& argument) {
    std::string action = argument.name + ':';
    if (argument.isFile) return action + "_files";
    if (argument.isFolder) return action + "_files -/";
    return argument.words.empty() ? action + ' ' : action + '(' + spaced(argument.words) + ')';
}

/// Where the argument of an option stands: behind "=" or in the next word, behind a letter in the
/// next word.
const char* signFor(const OfferedOption& option, const std::string& name) {
    if (!option.hasArgument || !name.starts_with("--")) return "";
    return option.isArgumentOptional ? "=-" : "=";
}

std::string argumentFor(const OfferedOption& option) {
    if (!option.hasArgument) return "";
    return (option.isArgumentOptional ? "::" : ":") + actionFor(option.argument);
}

std::string specifications(const std::vector<OfferedOption>& options) {
    std::string text;
    for (const OfferedOption& option : options) {
        for (const std::string& name : option.names) {
            text += ' ' + quoted((option.mayRepeat ? "*" : "") + name + signFor(option, name) +
                                 bracketed(option.meaning) + argumentFor(option));
        }
    }
    return text;
}

std::string functionName(const std::string& parent, const OfferedCommand& command) {
    return parent + '_' + command.name;
}

/// A command that takes words. The options of all that it belongs to are in `common`.
std::string leaf(const OfferedCommand& command) {
    std::string text = "    _arguments -S $common" + specifications(command.options);
    for (std::size_t i = 0; i < command.words.size(); ++i) {
        text += ' ' + quoted(std::to_string(i + 1) + ':' + actionFor(command.words[i]));
    }
    return text + '\n';
}

/// A command, or the program, that takes a command.
std::string family(const OfferedCommand& command, const std::string& name) {
    std::string text = "    local curcontext=$curcontext state line\n    local -A opt_args\n";
    text += "    local -a commands\n    commands=(\n";
    for (const OfferedCommand& inner : command.commands) {
        text += "        " + quoted(inner.name + ':' + inner.meaning) + '\n';
    }
    text += "    )\n    common+=(" + specifications(command.options) + " )\n";
    text += "    _arguments -C -S $common '1:command:->command' '*::word:->word' && return\n";
    text += "    case $state in\n        command) _describe command commands ;;\n";
    text += "        word)\n            case $words[1] in\n";
    for (const OfferedCommand& inner : command.commands) {
        text += "                " + inner.name + ") " + functionName(name, inner) + " ;;\n";
    }
    return text + "            esac\n            ;;\n    esac\n";
}

/// Inner functions first.
std::string functions(const OfferedCommand& command, const std::string& name) {
    std::string text;
    for (const OfferedCommand& inner : command.commands) {
        text += functions(inner, functionName(name, inner));
    }
    const bool isFamily = !command.commands.empty();
    return text + name + "() {\n" + (isFamily ? family(command, name) : leaf(command)) + "}\n";
}

}  // namespace

std::string zshCompletion(const OfferedCommand& program) {
    const std::string name = '_' + program.name;
    const std::string whole = name + "_program";
    return "#compdef " + program.name + '\n' + functions(program, whole) + name +
           "() {\n    local -a common\n    " + whole + "\n}\n" + name + " \"$@\"\n";
}

}  // namespace quillet
