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

bool writeOnce(const std::filesystem::path& path, const Value& dictionary) {
    const auto text = rewritePropertyList(dictionary);
    return text && writeFileAtomically(path, *text);
}

}  // namespace

std::optional<Dictionary> readDictionary(const std::filesystem::path& path) {
    return insist([&] { return readOnce(path); });
}

bool writeDictionary(const std::filesystem::path& path, const Value& dictionary) {
    return insist([&] { return writeOnce(path, dictionary); });
}

}  // namespace quillet::standin
