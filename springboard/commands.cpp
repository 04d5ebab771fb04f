// SPDX-License-Identifier: MIT
#include "springboard/commands.h"

#include <CLI/CLI.hpp>
#include <utility>

namespace quillet {

CLI::Option& add(CLI::App& app, const char* names, const char* type, const char* meaning,
                 const Take& take) {
    const auto takeOne = [take](const CLI::results_t& arguments) {
        take(arguments.front());
        return true;
    };
    return *app.add_option(names, takeOne, meaning)->type_name(type)->take_last();
}

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
    CLI::App& group = addCommand(parent, name, meaning, options, {});
    group.require_subcommand();
    return group;
}

void explain(CLI::App& command, const char* footer) { command.footer(footer); }

void addOption(CLI::App& command, const char* names, const char* type, const char* meaning,
               const Take& take) {
    add(command, names, type, meaning, take).group("Options");
}

void addFlag(CLI::App& command, const char* names, const char* meaning,
             const std::function<void()>& take) {
    command.add_flag_callback(names, take, meaning)->group("Options");
}

void addWord(CLI::App& command, const char* name, const char* type, const char* meaning,
             const Take& take) {
    add(command, name, type, meaning, take).group("Words");
}

void addNeededWord(CLI::App& command, const char* name, const char* type, const char* meaning,
                   const Take& take) {
    add(command, name, type, meaning, take).required()->group("Words");
}

void addWords(CLI::App& command, const char* name, const char* type, const char* meaning,
              const std::function<void(const std::vector<std::string>&)>& take) {
    const auto takeAll = [take](const CLI::results_t& arguments) {
        take(arguments);
        return true;
    };
    command.add_option(name, takeAll, meaning)
        ->type_name(type)
        ->expected(1, -1)
        ->allow_extra_args()
        ->group("Words");
}

void offer(CLI::App& app, const char* name, const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words) list += (list.empty() ? "" : " ") + word;
    // Where CLI11 keeps what its own help, unlike ours, says of a default.
    app.get_option(name)->default_str(list);
}

void offerFiles(CLI::App& app, const char* name) { offer(app, name, {"FILE"}); }

}  // namespace quillet
