// SPDX-License-Identifier: MIT
#include "springboard/arrange.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "springboard/suggestion.h"
#include "springboard/usage_error.h"

namespace quillet {

namespace {

using Words = std::vector<std::string>;
using Position = Words::const_iterator;

/// Negative numbers, and "-", are no options.
bool isOption(std::string_view word) {
    const bool isNumber = word.size() > 1 && word[1] >= '0' && word[1] <= '9';
    return word.starts_with('-') && word != "-" && !isNumber;
}

/// The option of that name, or else the only one whose long name begins so.
const CLI::Option* find(const CLI::App& app, const std::string& name) {
    std::vector<const CLI::Option*> candidates;
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_positional()) continue;
        if (option->check_name(name)) return option;
        if (("--" + option->get_lnames().front()).starts_with(name)) candidates.push_back(option);
    }
    return candidates.size() == 1 ? candidates.front() : nullptr;
}

const CLI::Option& optionOf(const CLI::App& app, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    if (const CLI::Option* const option = find(app, name)) return *option;
    Words known;
    for (const CLI::Option* const option : app.get_options()) {
        known.push_back("--" + option->get_lnames().front());
    }
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

bool isFlag(const CLI::Option& option) { return option.get_items_expected_max() == 0; }

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
        const CLI::Option& option = optionOf(app_, *word);
        const std::size_t sign = word->find('=');
        options_.push_back("--" + option.get_lnames().front());
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

    /// Whether the option at `word` has the name of a command, which then takes the line over.
    bool replacesCommand(const std::string& word) {
        const std::string& name = optionOf(app_, word).get_lnames().front();
        const CLI::App* const command = findCommand(app_, name);
        if (command == nullptr || word.find('=') != std::string::npos) return false;
        const bool takesCommand = !placesOf(*command).empty() && command_ != &app_;
        words_ = takesCommand ? Words{command_->get_name()} : Words{};
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
        if (command_ == &app_ && !words_.empty()) commandNamed(app_, words_.front());
        const auto places = placesOf(*command_);
        if (words_.size() > places.size()) {
            throw UsageError("unexpected word: " + inQuotes(words_[places.size()]));
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

const CLI::App& commandNamed(const CLI::App& app, const std::string& name) {
    if (const CLI::App* const command = findCommand(app, name)) return *command;
    Words known;
    for (const CLI::App* const command : commandsOf(app)) known.push_back(command->get_name());
    throw UsageError("no such command: " + inQuotes(name) + suggestion(name, known));
}

Words arrange(const CLI::App& app, const Words& line) { return Arranger{app}.arrange(line); }

}  // namespace quillet
