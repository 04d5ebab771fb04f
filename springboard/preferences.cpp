// SPDX-License-Identifier: MIT
#include "springboard/preferences.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <variant>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/decimal.h"
#include "platform/standin/plist/readings.h"
#include "platform/standin/plist/utf8.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "program/suggestion.h"
#include "program/usage_error.h"
#include "springboard/json.h"
#include "springboard/phone.h"

namespace quillet {

namespace fs = std::filesystem;
using standin::DeviceRoot;
using standin::Dictionary;
using standin::Value;

namespace {

Dictionary readFrom(const fs::path& file) {
    if (!standin::mayExist(file)) return {};
    if (auto preferences = standin::readDictionary(file)) return *std::move(preferences);
    throw std::runtime_error(file.string() + ": cannot be read as preferences: " +
                             standin::whyNoDictionary(file) + "; it is left as it is");
}

bool isKnown(std::string_view key) {
    return std::ranges::find(preferenceKeys, key) != preferenceKeys.end();
}

std::optional<bool> booleanIn(std::string_view word) {
    std::string lower{word};
    std::ranges::transform(lower, lower.begin(), [](unsigned char letter) {
        return static_cast<char>(std::tolower(letter));
    });
    if (lower == "true" || lower == "yes") return true;
    if (lower == "false" || lower == "no") return false;
    return std::nullopt;
}

template <class Integer>
std::optional<Integer> integerIn(std::string_view word) {
    Integer number = 0;
    const auto [end, error] = std::from_chars(word.begin(), word.end(), number);
    const bool isWhole = error == std::errc{} && end == word.end();
    return isWhole ? std::optional{number} : std::nullopt;
}

template <class Real>
std::optional<Real> realIn(std::string_view word) {
    const auto number = standin::readDecimal<Real>(word);
    const bool isWhole = number && number->length == word.size();
    return isWhole ? std::optional{number->value} : std::nullopt;
}

/// As any program's settings have it.
Value plainValue(std::string_view word) {
    if (const auto flag = booleanIn(word)) return *flag;
    if (const auto number = integerIn<std::int64_t>(word)) return *number;
    if (const auto number = integerIn<std::uint64_t>(word)) return *number;
    if (const auto number = realIn<double>(word)) return *number;
    return std::string{word};
}

bool isNumber(const Value& value) {
    return std::holds_alternative<std::int64_t>(value) ||
           std::holds_alternative<std::uint64_t>(value) || std::holds_alternative<double>(value);
}

std::string remarkOnVolume(const Value& value) {
    const auto volume = standin::floatValue(value);
    if (!volume) return {};
    if (!isNumber(value)) return "no number; the switch takes it for " + toLine(double{*volume});
    return *volume >= 0 && *volume <= 1 ? "" : "not from 0 to 1, where the device brings it";
}

std::string remarkOnChoice(const Value& value) {
    if (!std::holds_alternative<std::string>(value)) return {};
    const bool isYes = standin::boolValue(value).value_or(false);
    return std::string{"no boolean; the switch takes it for "} + (isYes ? "true" : "false");
}

}  // namespace

Dictionary readPreferences(const Options& options) {
    return readFrom(phoneOf(options).below(preferencesPath));
}

void changePreferences(const Options& options, const std::function<bool(Dictionary&)>& change) {
    const DeviceRoot root = phoneOf(options);
    const Turn turn = takeTurn(options, root.path());
    const fs::path file = root.below(preferencesPath);
    Dictionary preferences = readFrom(file);
    if (!change(preferences)) return;
    if (!standin::rewriteDictionary(file, preferences)) {
        throw std::runtime_error(file.string() + ": cannot be written");
    }
    tellJournal(options, root.path(), "changed");
}

Value preferenceIn(std::string_view key, std::string_view word) {
    if (!standin::isUTF8(key) || !standin::isUTF8(word)) {
        throw UsageError("not UTF-8: " + inQuotes(word));
    }
    const auto number = realIn<float>(word);
    if (!isKnown(key) || !number) return plainValue(word);
    if (key == volumeKey) return double{*number};
    return *number != 0;
}

std::string remarkOn(const std::string& key, const Value& value) {
    if (!isKnown(key)) {
        const auto hint = suggestion(key, {preferenceKeys.begin(), preferenceKeys.end()});
        return inQuotes(key) + " means nothing to the switch" + hint;
    }
    const std::string remark = !standin::boolValue(value)
                                   ? "neither boolean nor number nor string; it ends SpringBoard"
                               : key == volumeKey ? remarkOnVolume(value)
                                                  : remarkOnChoice(value);
    return remark.empty() ? "" : key + ": " + remark;
}

}  // namespace quillet
