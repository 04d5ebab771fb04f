// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/dictionary_file.h"

#include <utility>
#include <variant>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

std::optional<Dictionary> readDictionary(const std::filesystem::path& path) {
    auto bytes = readFile(path, maxSettingsSize);
    auto value = bytes ? readPropertyList(*std::move(bytes)) : std::nullopt;
    auto* const dictionary = value ? std::get_if<Dictionary>(&*value) : nullptr;
    return dictionary ? std::optional{std::move(*dictionary)} : std::nullopt;
}

}  // namespace quillet::standin
