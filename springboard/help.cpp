// SPDX-License-Identifier: MIT
#include "springboard/help.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

#include "program/help_text.h"

namespace quillet {

namespace {

/// "--trace[=FILE]", "-h, --help"
std::string termOf(const CLI::Option& option) {
    if (option.get_positional()) {
        const std::string more = option.get_items_expected_max() > 1 ? "..." : "";
        return (option.get_required() ? option.get_name() : '[' + option.get_name() + ']') + more;
    }
    std::string term;
    for (const std::string& letter : option.get_snames()) term += '-' + letter + ", ";
    term += "--" + option.get_lnames().front();
    const std::string type = option.get_items_expected_max() == 0 ? "" : option.get_type_name();
    return type.empty() || type.starts_with('[') ? term + type : term + ' ' + type;
}

/// What may, or must, stand behind the name of a command that has commands.
std::string wordsBehind(const CLI::App& family, const std::string& words) {
    return family.get_require_subcommand_min() > 0 ? words : '[' + words + ']';
}

bool isFamily(const CLI::App& command) {
    return !command.get_subcommands([](const CLI::App*) { return true; }).empty();
}

/// "flip [on|off]", "plist COMMAND"
std::string termOf(const CLI::App& command) {
    std::string term = command.get_name();
    if (isFamily(command)) term += ' ' + wordsBehind(command, "COMMAND");
    for (const CLI::Option* const option : command.get_options()) {
        if (option->get_positional()) term += ' ' + termOf(*option);
    }
    return term;
}

std::string usageOf(const CLI::App& app) {
    if (app.get_parent() == nullptr) return app.get_name() + " [OPTION]... COMMAND [WORD]...";
    std::string usage =
        isFamily(app) ? app.get_name() + ' ' + wordsBehind(app, "COMMAND [WORD]...") : termOf(app);
    const CLI::App* parent = app.get_parent();
    for (; parent->get_parent() != nullptr; parent = parent->get_parent()) {
        usage.insert(0, parent->get_name() + ' ');
    }
    return parent->get_name() + " [OPTION]... " + usage;
}

/// Tables of what has a description, one for each group, in the order of the groups' first members.
template <class Member>
std::string tablesOf(const std::vector<const Member*>& members) {
    std::vector<std::pair<std::string, std::vector<HelpRow>>> groups;
    for (const Member* const member : members) {
        const HelpRow row = {termOf(*member), member->get_description()};
        const auto group =
            std::ranges::find(groups, member->get_group(), &decltype(groups)::value_type::first);
        if (group == groups.end()) {
            groups.push_back({member->get_group(), {row}});
        } else {
            group->second.push_back(row);
        }
    }
    std::string text;
    for (const auto& [name, rows] : groups) text += helpTable(name, rows);
    return text;
}

/// What stands in a table as a phrase, as a sentence.
std::string sentence(std::string phrase) {
    phrase[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(phrase[0])));
    return phrase.ends_with('.') ? phrase : phrase + '.';
}

}  // namespace

std::string helpOf(const CLI::App& app) {
    const std::string footer = app.get_footer();
    return "Usage: " + usageOf(app) + "\n\n" + wrapped(sentence(app.get_description()), 0) +
           tablesOf(app.get_subcommands([](const CLI::App*) { return true; })) +
           tablesOf(app.get_options()) + (footer.empty() ? "" : '\n' + footer);
}

}  // namespace quillet
