// SPDX-License-Identifier: MIT
#include "program/completion.h"

namespace quillet {

namespace {

std::string fishQuoted(const std::string& text) {
    std::string word = "'";
    for (const char letter : text) {
        if (letter == '\'' || letter == '\\') word += '\\';
        word += letter;
    }
    return word + '\'';
}

/// What is offered where an argument is awaited.
std::string fishOffer(const OfferedArgument& argument) {
    if (argument.isFile) return " -F";
    if (argument.isFolder) return " -a '(__fish_complete_directories)'";
    return argument.words.empty() ? "" : " -a " + fishQuoted(spaced(argument.words));
}

class FishScript {
public:
    explicit FishScript(const OfferedCommand& program)
        : begin_{"complete -c " + program.name}, text_{begin_ + " -f\n"} {
        add(program, "");
    }

    const std::string& text() const { return text_; }

private:
    void addLine(const std::string& condition, const std::string& rest) {
        text_ += begin_;
        if (!condition.empty()) text_ += " -n " + fishQuoted(condition);
        text_ += rest + '\n';
    }

    void addOption(const OfferedOption& option, const std::string& condition) {
        std::string rest;
        for (const std::string& name : option.names) {
            rest += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
        }
        if (option.hasArgument && !option.isArgumentOptional) {
            rest += option.argument.isFile ? " -r" : " -x";
        }
        if (option.hasArgument) rest += fishOffer(option.argument);
        addLine(condition, rest + " -d " + fishQuoted(option.meaning));
    }

    /// `condition` holds where the command is on the line.
    void add(const OfferedCommand& command, const std::string& condition) {
        std::vector<std::string> names;
        for (const OfferedCommand& inner : command.commands) names.push_back(inner.name);
        const std::string before = condition.empty() ? "" : condition + "; and ";
        const std::string seen = "__fish_seen_subcommand_from ";
        for (const OfferedOption& option : command.options) addOption(option, condition);
        for (const OfferedArgument& word : command.words) {
            if (const std::string offer = fishOffer(word); !offer.empty())
                addLine(condition, offer);
        }
        for (const OfferedCommand& inner : command.commands) {
            addLine(std::string{before}.append("not ").append(seen).append(spaced(names)),
                    " -a " + inner.name + " -d " + fishQuoted(inner.meaning));
            add(inner, before + seen + inner.name);
        }
    }

    std::string begin_;
    std::string text_;
};

}  // namespace

std::string fishCompletion(const OfferedCommand& program) {
    return "# fish completion for " + program.name + '\n' + FishScript{program}.text();
}

}  // namespace quillet
