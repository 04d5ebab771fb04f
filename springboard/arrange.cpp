// SPDX-License-Identifier: MIT
#include "springboard/arrange.h"

#include <algorithm>
#include <string_view>
#include <utility>

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

/// The long option of that name, or else the only one whose name begins so.
const CLI::Option* find(const CLI::App& app, std::string_view name) {
    std::vector<const CLI::Option*> candidates;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& known : option->get_lnames()) {
            if (known == name) return option;
            if (known.starts_with(name)) candidates.push_back(option);
        }
    }
    return candidates.size() == 1 ? candidates.front() : nullptr;
}

const CLI::Option& optionOf(const CLI::App& app, std::string_view word) {
    const bool isLong = word.starts_with("--");
    const std::string_view name = word.substr(0, word.find('='));
    const CLI::Option* const option = isLong ? find(app, name.substr(2)) : nullptr;
    if (option == nullptr) throw UsageError("no such option: " + inQuotes(word));
    return *option;
}

/// The command of `app` that has that name.
const CLI::App* commandOf(const CLI::App& app, const std::string& name) {
    const auto found =
        app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

bool isFlag(const CLI::Option& option) { return option.get_items_expected_max() == 0; }

class Arranger {
public:
    explicit Arranger(const CLI::App& app) : app_{app}, command_{&app} {}

    Words arrange(const Words& line) {
        Position word = line.begin();
        while (word != line.end() && *word != "--") {
            if (isOption(*word)) {
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
        } else if (isFlag(option)) {
            throwIfItAsks(option);
        } else if (option.get_type_name() == optionalFile) {
            options_.emplace_back();
        } else {
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

    void throwIfItAsks(const CLI::Option& option) const {
        if (&option == app_.get_help_ptr()) throw CLI::CallForHelp();
        if (&option == app_.get_version_ptr()) throw CLI::CallForVersion();
    }

    void addWord(const std::string& word) {
        const CLI::App* const command = words_.empty() ? commandOf(*command_, word) : nullptr;
        if (command == nullptr) {
            words_.push_back(word);
        } else {
            commands_.push_back(word);
            command_ = command;
        }
    }

    void checkWords() const {
        if (command_ == &app_) {
            throw UsageError(words_.empty() ? "no command given"
                                            : "no such command: " + inQuotes(words_.front()));
        }
        const auto places = command_->get_options(
            [](const CLI::Option* option) { return option->get_positional(); });
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

Words arrange(const CLI::App& app, const Words& line) { return Arranger{app}.arrange(line); }

}  // namespace quillet
