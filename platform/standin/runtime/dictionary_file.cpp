// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/dictionary_file.h"

#include <new>
#include <type_traits>
#include <utility>
#include <variant>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

namespace {

/// The answer of `attempt`, or of another one if that is nothing or there was no memory for it.
template <class Attempt>
auto insist(Attempt attempt) {
    constexpr int attempts = 2;
    std::invoke_result_t<Attempt> answer{};
    for (int made = 0; made < attempts && !answer; ++made) {
        try {
            answer = attempt();
        } catch (const std::bad_alloc&) {
            continue;
        }
    }
    return answer;
}

std::optional<Dictionary> readOnce(const std::filesystem::path& path) {
    auto bytes = readFile(path, maxSettingsSize);
    auto value = bytes ? readPropertyList(*std::move(bytes)) : std::nullopt;
    auto* const dictionary = value ? std::get_if<Dictionary>(&*value) : nullptr;
    return dictionary ? std::optional{std::move(*dictionary)} : std::nullopt;
}

bool writeOnce(const std::filesystem::path& path, const Value& dictionary, Form form) {
    const auto bytes = rewritePropertyList(dictionary, form);
    return bytes && writeFileAtomically(path, *bytes);
}

/// Nothing when the file that is there cannot be read.
std::optional<Form> formAt(const std::filesystem::path& path) {
    if (!mayExist(path)) return Form::xml;
    const auto bytes = readFile(path, maxSettingsSize);
    return bytes ? std::optional{formOf(*bytes)} : std::nullopt;
}

}  // namespace

std::optional<Dictionary> readDictionary(const std::filesystem::path& path) {
    return insist([&] { return readOnce(path); });
}

std::string whyNoDictionary(const std::filesystem::path& path) {
    try {
        const auto bytes = readFile(path, maxSettingsSize);
        if (!bytes) return faultOf(path, "more than 64 MB, or a fault of the disk");
        return whyNoDictionaryIn(*bytes);
    } catch (const std::bad_alloc&) {
        return "want of memory";
    }
}

std::string whyNoDictionaryIn(const std::string& bytes) {
    Fault fault;
    const auto value = readPropertyList(bytes, &fault);
    if (!value) return describe(fault, bytes);
    const bool isOne = std::holds_alternative<Dictionary>(*value);
    return isOne ? "want of memory, or a fault that has passed" : "it holds no dictionary";
}

bool writeDictionary(const std::filesystem::path& path, const Value& dictionary) {
    return insist([&] { return writeOnce(path, dictionary, Form::xml); });
}

bool rewriteDictionary(const std::filesystem::path& path, const Value& dictionary) {
    return insist([&] {
        const auto form = formAt(path);
        return form && writeOnce(path, dictionary, *form);
    });
}

}  // namespace quillet::standin
