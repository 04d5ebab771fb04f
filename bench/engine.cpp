// SPDX-License-Identifier: MIT
#include "bench/engine.h"

#include <utility>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/dictionary_file.h"

namespace quillet::bench {
namespace {

bool ourGet(const std::string& in) {
    const auto dictionary = standin::readDictionary(in);
    return dictionary && dictionary->find(keys[0]);
}

bool ourSet(const std::string& in, const std::string& out) {
    auto dictionary = standin::readDictionary(in);
    if (!dictionary) return false;
    for (const char* const key : keys) dictionary->set(key, false);
    const auto text = standin::rewritePropertyList(*std::move(dictionary));
    return text && standin::writeFileAtomically(out, *text);
}

bool floorGet(const std::string& in) { return standin::readFile(in).has_value(); }

bool floorSet(const std::string& in, const std::string& out) {
    const auto bytes = standin::readFile(in);
    if (!bytes) return false;
    const std::string copy(bytes->data(), bytes->size());
    return standin::writeFileAtomically(out, copy);
}

}  // namespace

Engines& engines() {
    static Engines all{{"ours", {ourGet, ourSet}}, {"floor", {floorGet, floorSet}}};
    return all;
}

}  // namespace quillet::bench
