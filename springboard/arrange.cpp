// SPDX-License-Identifier: MIT
#include "springboard/arrange.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "program/suggestion.h"
#include "program/usage_error.h"

namespace quillet {

namespace {

using Words = std::vector<std::string>;
using Position = Words::const_iterator;

/// Negative numbers, and "-", are no options.
bool isOption(std::string_view word) {
    const bool isNumber = word.size() > 1 && word[1] >= '0' && word[1] <= '9';
    return word.starts_with('-') && word != "-" && !isNumber;
}

std::string longName(const CLI::Option& option) { return "--" + option.get_lnames().front(); }

/// The options that may stand behind `command`: its own, and those of what it belongs to.
std::vector<const CLI::Option*> optionsAt(const CLI::App* command) {
    std::vector<const CLI::Option*> options;
    for (; command != nullptr; command = command->get_parent()) {
        for (const CLI::Option* const option : command->get_options()) {
            if (!option->get_positional()) options.push_back(option);
        }
    }
    return options;
}

/// The option that `word` begins with: of that name, or else the only one whose long name begins
/// so.
const CLI::Option& optionOf(const CLI::App& command, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    std::vector<const CLI::Option*> candidates;
    Words known;
    for (const CLI::Option* const option : optionsAt(&command)) {
        if (option->check_name(name)) return *option;
        known.push_back(longName(*option));
        if (known.back().starts_with(name)) candidates.push_back(option);
    }
    if (candidates.size() == 1) return *candidates.front();
    throw UsageError("no such option: " + inQuotes(word) + suggestion(name, known));
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

/// The command of `app` that has that name, or null.
const CLI::App* findCommand(const CLI::App& app, const std::string& name) {
    const auto commands = commandsOf(app);
    const auto found = std::ranges::find(commands, name, &CLI::App::get_name);
    return found == commands.end() ? nullptr : *found;
}

/// Where a command takes words.
std::vector<const CLI::Option*> placesOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

/// Whether it is nothing without one of its commands.
bool isGroup(const CLI::App& command) { return command.get_require_subcommand_min() > 0; }

bool isFlag(const CLI::Option& option) { return option.get_items_expected_max() == 0; }

/// How many words a command takes at most.
std::size_t roomOf(const std::vector<const CLI::Option*>& places) {
    const bool isOpen = !places.empty() && places.back()->get_items_expected_max() > 1;
    return isOpen ? std::numeric_limits<std::size_t>::max() : places.size();
}

class Arranger {
public:
    explicit Arranger(const CLI::App& app) : app_{app}, command_{&app} {}

    Words arrange(const Words& line) {
        auto word = line.begin();
        while (word != line.end() && *word != "--") {
            if (isOption(*word) && replacesCommand(*word)) {
                word = line.end();
            } else if (isOption(*word)) {
                word = addOption(word, line.end());
            } else {
                addWord(*word++);
            }
        }
        if (word != line.end()) std::for_each(word + 1, line.end(), [&](auto& w) { addWord(w); });
        checkWords();
        return arranged();
    }

private:
    /// Takes the option at `word`, and its argument if that stands behind it. Answers what follows.
    Position addOption(Position word, Position end) {
        const CLI::Option& option = optionOf(*command_, *word);
        const std::size_t sign = word->find('=');
        options_.push_back(longName(option));
        if (sign != std::string::npos) {
            addJoined(option, *word, word->substr(sign + 1));
        } else if (option.get_type_name() == optionalFile) {
            options_.emplace_back();
        } else if (!isFlag(option)) {
            if (word + 1 == end)
                throw UsageError("option " + inQuotes(*word) + " needs an argument");
            options_.push_back(*++word);
        }
        return word + 1;
    }

    void addJoined(const CLI::Option& option, const std::string& word, std::string argument) {
        if (isFlag(option)) throw UsageError("option takes no argument: " + inQuotes(word));
        if (option.get_type_name() == optionalFile && argument.empty()) {
            throw UsageError(options_.back() + "=FILE needs a name");
        }
        options_.push_back(std::move(argument));
    }

    /// Whether the flag at `word` has the name of a command, which then takes the line over.
    bool replacesCommand(const std::string& word) {
        const CLI::Option& option = optionOf(*command_, word);
        const std::string& name = option.get_lnames().front();
        const CLI::App* const command = findCommand(app_, name);
        if (command == nullptr || !isFlag(option) || word.find('=') != std::string::npos)
            return false;
        words_ = placesOf(*command).empty() ? Words{} : commands_;
        commands_ = {name};
        command_ = command;
        return true;
    }

    void addWord(const std::string& word) {
        const CLI::App* const command = words_.empty() ? findCommand(*command_, word) : nullptr;
        if (command == nullptr) {
            words_.push_back(word);
        } else {
            commands_.push_back(word);
            command_ = command;
        }
    }

    void checkWords() const {
        const auto places = placesOf(*command_);
        if (!words_.empty() && places.empty() && !commandsOf(*command_).empty()) {
            commandNamed(*command_, {words_.front()});
        }
        if (words_.size() > roomOf(places)) {
            throw UsageError("unexpected word: " + inQuotes(words_[places.size()]));
        }
        if (isGroup(*command_)) {
            const std::string& name = commands_.back();
            throw UsageError(name + " needs a command; see \"springboard help " + name + '"');
        }
        for (std::size_t i = words_.size(); i < places.size(); ++i) {
            if (!places[i]->get_required()) continue;
            throw UsageError(commands_.back() + " needs " + places[i]->get_type_name());
        }
    }

    Words arranged() const {
        Words all = commands_;
        all.insert(all.end(), options_.begin(), options_.end());
        if (!words_.empty()) all.emplace_back("--");
        all.insert(all.end(), words_.begin(), words_.end());
        return all;
    }

    const CLI::App& app_;
    /// The last of commands_.
    const CLI::App* command_;
    Words commands_;
    Words options_;
    Words words_;
};

}  // namespace

const CLI::App& commandNamed(const CLI::App& app, const Words& names) {
    const CLI::App* command = &app;
    for (const std::string& name : names) {
        const auto commands = commandsOf(*command);
        command = findCommand(*command, name);
        if (command != nullptr) continue;
        Words known;
        for (const CLI::App* const other : commands) known.push_back(other->get_name());
        throw UsageError("no such command: " + inQuotes(name) + suggestion(name, known));
    }
    return *command;
}

Words arrange(const CLI::App& app, const Words& line) { return Arranger{app}.arrange(line); }

}  // namespace quillet
