// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "program/output.h"
#include "program/suggestion.h"
#include "program/usage_error.h"
#include "springboard/arguments.h"
#include "springboard/commands.h"
#include "springboard/plist_text.h"
#include "springboard/preferences.h"

namespace quillet {

namespace fs = std::filesystem;
using standin::Dictionary;
using standin::Value;

namespace {

constexpr char prefsFooter[] = R"(Keys that the switch looks for:
  ios-vibrate-pattern  leave vibration to the system (when absent: true)
  vibrate-when-off     vibrate once when muted (when absent: true)
  vibrate-when-on      vibrate once when unmuted (when absent: as before, and
                       vibrate-when-off counts as true)
  ringtone-volume      from 0 to 1: what an iPod goes back to; the switch
                       writes it itself

All but the volume are booleans. Without a command they are all shown, and
what else the file holds. A change counts from the next flip on. Of others'
keys none is lost, and the file keeps its form, XML or binary.
)";

constexpr char setFooter[] =
    R"(A boolean is true, false, yes or no, or a number: 0 is false. Under a key that
the switch does not look for, a number stays one; all else is a string.
)";

/// A key and what its value is to be.
struct Setting {
    std::string key;
    std::string word;
};

void printLine(const std::string& line) { print(line + '\n'); }

void tellUser(const std::string& remark) {
    if (!remark.empty()) std::cerr << "springboard: " << remark << '\n';
}

std::string inLine(const Value& value) {
    auto line = inJSON(value, Layout::line);
    if (!line) throw std::runtime_error("the preferences take too much memory as text");
    return *std::move(line);
}

void showPreferences(const Options& options) {
    const Dictionary preferences = readPreferences(options);
    if (options.json) return printLine(inLine(preferences));
    std::vector<std::pair<std::string, std::string>> rows;
    for (const std::string key : preferenceKeys) {
        const auto value = preferences.find(key);
        rows.emplace_back(key, value ? inLine(*value) : "absent");
    }
    for (const auto& [key, value] : preferences.entries()) {
        if (std::ranges::find(preferenceKeys, key) != preferenceKeys.end()) continue;
        rows.emplace_back(key, inLine(value));
    }
    std::size_t width = 0;
    for (const auto& [key, value] : rows) width = std::max(width, key.size());
    std::string text;
    for (const auto& [key, value] : rows) {
        text.append(key).append(width + 2 - key.size(), ' ').append(value).append("\n");
    }
    text.pop_back();
    printLine(text);
}

void readPreference(const Options& options, const std::string& key) {
    const Dictionary preferences = readPreferences(options);
    const auto value = preferences.find(key);
    if (!value) {
        std::vector<std::string> known;
        for (const auto& entry : preferences.entries()) known.push_back(entry.key);
        throw std::runtime_error("no such preference: " + inQuotes(key) + suggestion(key, known));
    }
    if (options.json) return printLine(inLine(Dictionary{{key, *value}}));
    const auto* const text = std::get_if<std::string>(&*value);
    printLine(text != nullptr ? *text : inLine(*value));
}

void setPreference(const Options& options, const Setting& setting) {
    const Value value = preferenceIn(setting.key, setting.word);
    changePreferences(options, [&](Dictionary& preferences) {
        preferences.set(setting.key, value);
        return true;
    });
    tellUser(remarkOn(setting.key, value));
}

void unsetPreference(const Options& options, const std::string& key) {
    bool isSet = false;
    changePreferences(options, [&](Dictionary& preferences) {
        isSet = preferences.find(key).has_value();
        preferences.erase(key);
        return isSet;
    });
    if (!isSet) tellUser("not set: " + inQuotes(key));
}

std::optional<std::string> inputOf(const fs::path& file) {
    if (file != "-") return standin::readFile(file, standin::maxSettingsSize);
    std::string bytes{std::istreambuf_iterator<char>{std::cin}, {}};
    const bool isTaken = !std::cin.bad() && bytes.size() <= standin::maxSettingsSize;
    return isTaken ? std::optional{std::move(bytes)} : std::nullopt;
}

Dictionary settingsIn(const fs::path& file) {
    const std::string name = file == "-" ? "standard input" : file.string();
    const auto bytes = inputOf(file);
    if (!bytes) throw std::runtime_error(name + ": cannot be read");
    const auto value = standin::readPropertyList(*bytes);
    const auto* const dictionary = value ? std::get_if<Dictionary>(&*value) : nullptr;
    if (dictionary != nullptr) return *dictionary;
    throw std::runtime_error(name + ": " + standin::whyNoDictionaryIn(*bytes));
}

void importPreferences(const Options& options, const fs::path& file) {
    const auto settings = settingsIn(file).entries();
    changePreferences(options, [&](Dictionary& preferences) {
        for (const auto& [key, value] : settings) preferences.set(key, value);
        return !settings.empty();
    });
    for (const auto& [key, value] : settings) tellUser(remarkOn(key, value));
}

void exportPreferences(const Options& options, const fs::path& file) {
    const auto text = standin::rewritePropertyList(readPreferences(options));
    if (!text) throw std::runtime_error("the preferences take too much memory as text");
    if (file == "-") {
        print(*text);
    } else if (!standin::writeFileAtomically(file, *text)) {
        throw std::runtime_error(file.string() + ": cannot be written");
    }
}

void offerKeys(CLI::App& command) {
    offer(command, "KEY", {preferenceKeys.begin(), preferenceKeys.end()});
}

/// A command with one word, by its name and its meaning.
template <class Run>
void addOne(CLI::App& prefs, const char* name, const char* meaning, Options& options,
            std::pair<const char*, const char*> word, Run run) {
    const auto argument = std::make_shared<std::string>();
    CLI::App& command = addCommand(prefs, name, meaning, options,
                                   [argument, run](auto& chosen) { run(chosen, *argument); });
    const bool isKey = std::string_view{word.first} == "KEY";
    addNeededWord(command, word.first, isKey ? "a key" : "a file", word.second,
                  [argument, name](auto& given) { *argument = nonEmpty(name, given).string(); });
    if (isKey) offerKeys(command);
}

void addSet(CLI::App& prefs, Options& options) {
    const auto setting = std::make_shared<Setting>();
    CLI::App& command =
        addCommand(prefs, "set", "set the value of KEY", options,
                   [setting](const Options& chosen) { setPreference(chosen, *setting); });
    addNeededWord(command, "KEY", "a key", "the key, which need not be there yet",
                  [setting](auto& word) { setting->key = nonEmpty("set", word).string(); });
    addNeededWord(command, "VALUE", "a value", "the value from now on",
                  [setting](auto& word) { setting->word = word; });
    offerKeys(command);
    explain(command, setFooter);
}

}  // namespace

void addPrefsCommands(CLI::App& app, Options& options) {
    CLI::App& prefs =
        addCommand(app, "prefs", "show the switch's preferences; commands of it change them",
                   options, showPreferences);
    addOne(prefs, "read", "print the value of KEY", options, {"KEY", "the key"}, readPreference);
    addSet(prefs, options);
    addOne(prefs, "unset", "remove KEY", options, {"KEY", "the key"}, unsetPreference);
    addOne(prefs, "import", "set what the property list in FILE holds", options,
           {"FILE", "XML or binary; - is standard input"}, importPreferences);
    addOne(prefs, "export", "write the preferences to FILE, as XML", options,
           {"FILE", "replaced if it is there; - is standard output"}, exportPreferences);
    explain(prefs, prefsFooter);
}

}  // namespace quillet
