// SPDX-License-Identifier: MIT
#include <map>

#include "program/completion.h"

namespace quillet {

namespace {

/// Walks to the word that is completed. `command` becomes "/prefs/read", `place` the number of
/// other words behind it, and `awaited` the option whose argument is next. The shell takes "=" for
/// a word.
constexpr char bashWalk[] =
    R"(    local current=${COMP_WORDS[COMP_CWORD]} word command='' place=0 awaited='' i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ $word == = ]]; then
            awaited=${COMP_WORDS[i - 1]}
        elif [[ -n $awaited ]]; then
            awaited=''
        else
            case $word in
                @AWAITING@) awaited=$word ;;
                -*) ;;
                *)
                    case $place$command/$word in
                        @COMMANDS@) command+=/$word ;;
                        *) ((++place)) ;;
                    esac
                    ;;
            esac
        fi
    done
    if [[ $current == = ]]; then
        awaited=${COMP_WORDS[COMP_CWORD - 1]} current=''
    fi
)";

constexpr char bashEnd[] = R"(    [[ -z $files ]] || compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen $files -W "$words" -- "$current")
}
)";

void replaceAll(std::string& text, const std::string& mark, const std::string& words) {
    const std::size_t place = text.find(mark);
    text.replace(place, mark.size(), words);
}

std::string assignment(const OfferedArgument& argument) {
    if (argument.isFile) return "files=-f";
    if (argument.isFolder) return "files=-d";
    return "words=" + quoted(spaced(argument.words));
}

bool isOffered(const OfferedArgument& argument) {
    return argument.isFile || argument.isFolder || !argument.words.empty();
}

std::vector<std::string> namesOf(const std::vector<OfferedOption>& options) {
    std::vector<std::string> names;
    for (const OfferedOption& option : options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

std::string line(const std::string& pattern, const std::string& action) {
    return "            " + pattern + ") " + action + " ;;\n";
}

/// The cases of a script, gathered from all commands.
class BashCases {
public:
    explicit BashCases(const OfferedCommand& program) { addCommand(program, ""); }

    std::string commands;
    /// Options whose argument is the next word.
    std::string awaiting;
    std::map<std::string, std::string> arguments;
    std::string options;
    std::string words;

private:
    void addCommand(const OfferedCommand& command, const std::string& path) {
        for (const OfferedOption& option : command.options) addOption(option);
        if (!path.empty() && !command.options.empty()) {
            options += line(path, "words+=" + quoted(' ' + spaced(namesOf(command.options))));
        }
        addWords(command, path);
        for (const OfferedCommand& inner : command.commands) {
            const std::string innerPath = path + '/' + inner.name;
            commands += (commands.empty() ? "0" : " | 0") + innerPath;
            addCommand(inner, innerPath);
        }
    }

    void addOption(const OfferedOption& option) {
        if (!option.hasArgument) return;
        for (const std::string& name : option.names) {
            if (!option.isArgumentOptional) awaiting += (awaiting.empty() ? "" : " | ") + name;
            if (isOffered(option.argument)) arguments[name] = assignment(option.argument);
        }
    }

    void addWords(const OfferedCommand& command, const std::string& path) {
        std::vector<std::string> inner;
        for (const OfferedCommand& one : command.commands) inner.push_back(one.name);
        if (!inner.empty()) words += line('0' + path, "words=" + quoted(spaced(inner)));
        for (std::size_t i = 0; i < command.words.size(); ++i) {
            if (!isOffered(command.words[i])) continue;
            words += line(std::to_string(i) + path, assignment(command.words[i]));
        }
    }
};

}  // namespace

std::string bashCompletion(const OfferedCommand& program) {
    const BashCases cases{program};
    std::string walk = bashWalk;
    replaceAll(walk, "@AWAITING@", cases.awaiting);
    replaceAll(walk, "@COMMANDS@", cases.commands.empty() ? "''" : cases.commands);
    std::string arguments;
    for (const auto& [name, action] : cases.arguments) arguments += line(name, action);
    const std::string function = '_' + program.name;
    return "# bash completion for " + program.name + "\n" + function + "() {\n" + walk +
           "    local words='' files=''\n    if [[ -n $awaited ]]; then\n        case $awaited "
           "in\n" +
           arguments + "        esac\n    elif [[ $current == -* ]]; then\n        words=" +
           quoted(spaced(namesOf(program.options))) + "\n        case $command in\n" +
           cases.options + "        esac\n    else\n        case $place$command in\n" +
           cases.words + "        esac\n    fi\n" + bashEnd + "complete -F " + function + ' ' +
           program.name + '\n';
}

}  // namespace quillet
