// SPDX-License-Identifier: MIT
#include "springboard/commands.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "program/usage_error.h"

namespace quillet {

CLI::App& addCommand(CLI::App& parent, const char* name, const char* meaning, Options& options,
                     Run run) {
    CLI::App& added = *parent.add_subcommand(name, meaning);
    added.group("Commands")->footer(std::string{})->set_help_flag();
    // The last command of a line is called back before those that it belongs to.
    added.callback([&options, run = std::move(run)] {
        if (!options.run) options.run = run;
    });
    return added;
}

CLI::App& addGroup(CLI::App& parent, const char* name, const char* meaning, Options& options) {
    return addCommand(parent, name, meaning, options, [name = std::string{name}](const Options&) {
        throw UsageError(name + " needs a command; see \"springboard help " + name + '"');
    });
}

CLI::Option& addOption(CLI::App& app, const char* names, const char* type, const char* meaning,
                       const Take& take) {
    const auto takeOne = [take](const CLI::results_t& arguments) {
        take(arguments.front());
        return true;
    };
    CLI::Option& option = *app.add_option(names, takeOne, meaning);
    option.type_name(type)->take_last()->group("Options");
    return option;
}

CLI::Option& addFlag(CLI::App& app, const char* names, const char* meaning, bool& flag) {
    CLI::Option& option = *app.add_flag(names, flag, meaning);
    option.group("Options");
    return option;
}

CLI::Option& addWord(CLI::App& command, const char* name, const char* type, const char* meaning,
                     const Take& take) {
    CLI::Option& word = addOption(command, name, type, meaning, take);
    word.group("Words");
    return word;
}

CLI::Option& addWords(CLI::App& command, const char* name, const char* type, const char* meaning,
                      const std::function<void(const std::vector<std::string>&)>& take) {
    const auto takeAll = [take](const CLI::results_t& arguments) {
        take(arguments);
        return true;
    };
    CLI::Option& words = *command.add_option(name, takeAll, meaning);
    words.type_name(type)->expected(-1)->group("Words");
    return words;
}

}  // namespace quillet
