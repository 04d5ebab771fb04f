// SPDX-License-Identifier: MIT
#include "springboard/offers.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include "springboard/arrange.h"

namespace quillet {

namespace {

/// The words in `list`, which `separator` separates.
std::vector<std::string> split(const std::string& list, char separator) {
    std::vector<std::string> words;
    std::istringstream rest{list};
    for (std::string word; std::getline(rest, word, separator);) words.push_back(word);
    return words;
}

bool isWord(const std::string& text) {
    return std::ranges::none_of(text, [](unsigned char letter) { return std::isupper(letter); });
}

OfferedArgument argumentOf(const CLI::Option& option) {
    const bool isPlace = option.get_positional();
    OfferedArgument argument{.name = isPlace ? option.get_name() : option.get_type_name()};
    if (argument.name == optionalFile) argument.name = "FILE";
    const std::string& offered = option.get_default_str();
    argument.isFile = argument.name == "FILE" || offered == "FILE";
    argument.isFolder = argument.name == "DIR";
    if (!argument.isFile) argument.words = split(offered, ' ');
    if (isPlace && isWord(argument.name)) argument.words = split(argument.name, '|');
    return argument;
}

OfferedOption offerOf(const CLI::Option& option) {
    OfferedOption offer{.meaning = inShort(option.get_description())};
    for (const std::string& letter : option.get_snames()) offer.names.push_back('-' + letter);
    for (const std::string& name : option.get_lnames()) offer.names.push_back("--" + name);
    offer.hasArgument = option.get_items_expected_max() > 0;
    offer.isArgumentOptional = option.get_type_name() == optionalFile;
    if (offer.hasArgument) offer.argument = argumentOf(option);
    return offer;
}

/// For words that are the name of a command.
void offerCommands(OfferedCommand& program) {
    std::vector<std::string> names;
    for (const OfferedCommand& command : program.commands) names.push_back(command.name);
    for (OfferedCommand& command : program.commands) {
        for (OfferedArgument& word : command.words) {
            if (word.name == "COMMAND") word.words = names;
        }
    }
}

}  // namespace

OfferedCommand offersOf(const CLI::App& app) {
    OfferedCommand offers{.name = app.get_name(), .meaning = inShort(app.get_description())};
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_positional()) {
            offers.words.push_back(argumentOf(*option));
        } else {
            offers.options.push_back(offerOf(*option));
        }
    }
    for (const CLI::App* const command :
         app.get_subcommands([](const CLI::App*) { return true; })) {
        offers.commands.push_back(offersOf(*command));
    }
    offerCommands(offers);
    return offers;
}

}  // namespace quillet
