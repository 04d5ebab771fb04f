// SPDX-License-Identifier: MIT
#include <plist/plist.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <pugixml.hpp>
#include <string>

#include "bench/engine.h"
#include "platform/standin/files/file.h"

namespace quillet::bench {
namespace {

/// The element after the key's, in a document's dictionary.
pugi::xml_node valueOf(const pugi::xml_node& dictionary, const char* key) {
    for (const pugi::xml_node& node : dictionary.children("key")) {
        if (std::strcmp(node.child_value(), key) == 0) return node.next_sibling();
    }
    return {};
}

bool pugixmlGet(const std::string& in) {
    pugi::xml_document document;
    return document.load_file(in.c_str()) &&
           valueOf(document.child("plist").child("dict"), keys[0]);
}

struct Text : pugi::xml_writer {
    std::string bytes;
    void write(const void* data, std::size_t size) override {
        bytes.append(static_cast<const char*>(data), size);
    }
};

bool pugixmlSet(const std::string& in, const std::string& out) {
    pugi::xml_document document;
    if (!document.load_file(in.c_str())) return false;
    for (const char* const key : keys) {
        pugi::xml_node value = valueOf(document.child("plist").child("dict"), key);
        if (!value) return false;
        value.set_name("false");
    }
    Text text;
    document.save(text);
    return standin::writeFileAtomically(out, text.bytes);
}

struct FreeNode {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, FreeNode>;

Node libplistRead(const std::string& in) {
    const auto bytes = standin::readFile(in);
    plist_t node = nullptr;
    if (bytes) {
        plist_from_memory(bytes->data(), static_cast<std::uint32_t>(bytes->size()), &node);
    }
    return Node{node};
}

bool libplistGet(const std::string& in) {
    const Node node = libplistRead(in);
    return node && plist_dict_get_item(node.get(), keys[0]) != nullptr;
}

bool libplistSet(const std::string& in, const std::string& out) {
    const Node node = libplistRead(in);
    if (!node) return false;
    for (const char* const key : keys) plist_dict_set_item(node.get(), key, plist_new_bool(0));
    char* text = nullptr;
    std::uint32_t size = 0;
    plist_to_xml(node.get(), &text, &size);
    const bool isWritten = standin::writeFileAtomically(out, {text, size});
    plist_to_xml_free(text);
    return isWritten;
}

[[maybe_unused]] const bool areAdded = [] {
    engines().insert(
        {{"pugixml", {pugixmlGet, pugixmlSet}}, {"libplist", {libplistGet, libplistSet}}});
    return true;
}();

}  // namespace
}  // namespace quillet::bench
