// SPDX-License-Identifier: MIT
#include "packaging/ios/link/stub_library.h"

#include <charconv>
#include <vector>

#include "packaging/ios/link/bytes.h"

namespace quillet::linker {

namespace {

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \n") - first + 1);
}

/// What stands behind the first `key`, up to one of the characters of `end`; empty without the key.
std::string_view valueOf(std::string_view text, std::string_view key, const char* end) {
    const std::size_t found = text.find(key);
    if (found == std::string_view::npos) return {};
    text.remove_prefix(found + key.size());
    return trimmed(text.substr(0, text.find_first_of(end)));
}

/// The words of a list `key: [ one, two ]`.
std::vector<std::string> listOf(std::string_view text, std::string_view key) {
    std::vector<std::string> words;
    std::string_view list = valueOf(text, std::string{key} + ": [", "]");
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        words.emplace_back(trimmed(list.substr(0, comma)));
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return words;
}

std::uint32_t majorVersion(std::string_view text) {
    std::uint32_t number = 1;
    if (text.empty()) return number << 16;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), number);
    if (error != std::errc{} || end != text.end() || number > 0xFFFF) {
        refuse("a stub's version is no number: " + std::string{text});
    }
    return number << 16;
}

}  // namespace

StubLibrary readStubLibrary(std::string_view text) {
    StubLibrary library;
    library.name = valueOf(text, "install-name: ", "\n");
    if (library.name.empty()) refuse("a stub has no install-name");
    const std::size_t exports = text.find("\nexports:");
    if (exports == std::string_view::npos) refuse("a stub has no exports: " + library.name);
    for (const std::string_view section : {text.substr(0, exports), text.substr(exports)}) {
        if (valueOf(section, "targets: [", "]").find("armv7-ios") == std::string_view::npos) {
            refuse("a stub is not for armv7-ios: " + library.name);
        }
    }
    library.compatibilityVersion =
        majorVersion(valueOf(text.substr(0, exports), "compatibility-version: ", "\n"));
    for (std::string& symbol : listOf(text, "symbols")) library.symbols.insert(std::move(symbol));
    for (const std::string& name : listOf(text, "objc-classes")) {
        library.symbols.insert("_OBJC_CLASS_$_" + name);
        library.symbols.insert("_OBJC_METACLASS_$_" + name);
    }
    return library;
}

}  // namespace quillet::linker
