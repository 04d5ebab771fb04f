// SPDX-License-Identifier: MIT
//
// Any bytes are read, changed and written, and what was written is read and written again:
//
//     property_list_seeds SEEDS
//     property_list_fuzzer -dict=fuzz/property_list.dict -rss_limit_mb=1024 CORPUS SEEDS
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "platform/standin/plist/property_list.h"

namespace {

using namespace quillet::standin;

void require(bool condition) {
    if (!condition) __builtin_trap();
}

/// Compared as text, where dates have whole seconds, NaN is itself and entries have their order.
void requireThatItSurvivesARewrite(const Value& value) {
    const auto text = rewritePropertyList(value);
    if (!text) return;
    const auto again = readXMLPropertyList(*text);
    require(again.has_value());
    require(writePropertyList(*again) == *text);
}

/// All bits of a number are kept here, and entries have their order.
void requireThatItSurvivesInBinary(const Value& value) {
    const auto bytes = rewritePropertyList(value, Form::binary);
    if (!bytes) return;
    const auto again = readBinaryPropertyList(*bytes);
    require(again.has_value());
    require(writePropertyList(*again, Form::binary) == *bytes);
}

/// A change leaves the value that it was made on as it was.
void requireThatOthersKeepTheirs(const Dictionary& dictionary) {
    Dictionary changed = dictionary;
    changed.set("new", dictionary);
    require(changed.find("new") == Value{dictionary} || !(dictionary == dictionary));
    changed.erase("new");
    if (!dictionary.find("new")) require(changed.size() == dictionary.size());
    for (const Entry& entry : dictionary.entries()) changed.erase(entry.key);
    require(changed.size() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fault fault;
    const std::string bytes{reinterpret_cast<const char*>(data), size};
    const auto value = readPropertyList(bytes, &fault);
    if (!value) {
        require(*fault.reason != '\0');
        return 0;
    }
    requireThatItSurvivesARewrite(*value);
    requireThatItSurvivesInBinary(*value);
    const auto* const dictionary = std::get_if<Dictionary>(&*value);
    if (dictionary != nullptr && dictionary->size() < 100) requireThatOthersKeepTheirs(*dictionary);
    return 0;
}
