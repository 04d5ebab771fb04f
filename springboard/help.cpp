// SPDX-License-Identifier: MIT
#include "springboard/help.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <cctype>
#include <sstream>
#include <utility>
#include <vector>

namespace quillet {

namespace {

constexpr std::size_t lineWidth = 80;
/// Terms that are longer have a line of their own.
constexpr std::size_t maxTermWidth = 18;

/// A term and what it means.
using Row = std::pair<std::string, std::string>;
using Rows = std::vector<Row>;

/// `text` in lines, of which all but the first begin with `indent` blanks.
std::string wrapped(const std::string& text, std::size_t indent) {
    std::string lines;
    std::size_t column = indent;
    std::istringstream words{text};
    for (std::string word; words >> word;) {
        if (column > indent && column + 1 + word.size() > lineWidth) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (column > indent) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += word.size();
    }
    return lines + '\n';
}

std::string table(const std::string& heading, const Rows& rows) {
    if (rows.empty()) return "";
    std::size_t widest = 0;
    for (const auto& [term, meaning] : rows) {
        if (term.size() <= maxTermWidth) widest = std::max(widest, term.size());
    }
    const std::size_t indent = widest + 4;
    std::string text = '\n' + heading + ":\n";
    for (const auto& [term, meaning] : rows) {
        text += "  " + term;
        text += term.size() <= widest ? std::string(indent - 2 - term.size(), ' ')
                                      : '\n' + std::string(indent, ' ');
        text += wrapped(meaning, indent);
    }
    return text;
}

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
    std::vector<std::pair<std::string, Rows>> groups;
    for (const Member* const member : members) {
        const Row row = {termOf(*member), member->get_description()};
        const auto group =
            std::ranges::find(groups, member->get_group(), &decltype(groups)::value_type::first);
        if (group == groups.end()) {
            groups.push_back({member->get_group(), {row}});
        } else {
            group->second.push_back(row);
        }
    }
    std::string text;
    for (const auto& [name, rows] : groups) text += table(name, rows);
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
