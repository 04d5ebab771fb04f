// SPDX-License-Identifier: MIT
#include "platform/standin/plist/text_encoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/standin/plist/utf8.h"
#include "platform/standin/plist/xml_prolog.h"

namespace quillet::standin {
namespace {

using namespace std::string_view_literals;

void trimFront(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(xmlSpaces), text.size()));
}

/// Takes `name = "value"` off the front of an XML declaration's content.
std::optional<std::pair<std::string_view, std::string_view>> takeAttribute(std::string_view& text) {
    const std::string_view name = text.substr(0, text.find_first_of(" \t\r\n="));
    text.remove_prefix(name.size());
    trimFront(text);
    if (!text.starts_with('=')) return std::nullopt;
    text.remove_prefix(1);
    trimFront(text);
    if (!text.starts_with('"') && !text.starts_with('\'')) return std::nullopt;
    const std::size_t end = text.find(text.front(), 1);
    if (end == text.npos) return std::nullopt;
    const std::string_view value = text.substr(1, end - 1);
    text.remove_prefix(end + 1);
    return std::pair{name, value};
}

/// What follows "<?xml" up to "?>"; empty when the document does not begin with a declaration.
std::string_view declarationOf(std::string_view document) {
    constexpr std::string_view start = "<?xml";
    if (!document.starts_with(start)) return {};
    document.remove_prefix(start.size());
    if (document.empty() || xmlSpaces.find(document.front()) == xmlSpaces.npos) return {};
    return document.substr(0, document.find("?>"));
}

/// The encoding that a document without a byte-order mark declares; nothing when its declaration is
/// malformed.
std::optional<std::string> declaredEncoding(std::string_view document) {
    std::string encoding = "utf-8";
    std::string_view attributes = declarationOf(document);
    for (trimFront(attributes); !attributes.empty(); trimFront(attributes)) {
        const auto attribute = takeAttribute(attributes);
        if (!attribute) return std::nullopt;
        if (attribute->first == "encoding") encoding = attribute->second;
    }
    const auto lower = [](char c) {
        return static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
    };
    std::transform(encoding.begin(), encoding.end(), encoding.begin(), lower);
    return encoding;
}

template <std::size_t count>
bool isOneOf(std::string_view name, const std::array<std::string_view, count>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Where windows-1252 differs from ISO-8859-1: 0x80 to 0x9F.
constexpr std::array<std::uint16_t, 32> windowsCharacters{
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

std::string fromSingleBytes(std::string_view bytes, bool isWindows) {
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool differs = isWindows && byte >= 0x80 && byte <= 0x9F;
        appendUTF8(text, differs ? windowsCharacters[byte - 0x80U] : byte);
    }
    return text;
}

std::string fromUTF16(std::string_view bytes, HighByte order) {
    std::string text;
    appendUTF16(text, bytes, order);
    return text;
}

std::string fromUTF32(std::string_view bytes, HighByte order) {
    std::string text;
    text.reserve(bytes.size());
    for (; bytes.size() >= 4; bytes.remove_prefix(4)) {
        std::uint32_t character = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const char byte = bytes[order == HighByte::first ? i : 3 - i];
            character = character << 8 | static_cast<unsigned char>(byte);
        }
        appendUTF8(text, character);
    }
    return text;
}

}  // namespace

std::optional<std::string> documentInUTF8(std::string document) {
    constexpr std::array utf8Names{"utf-8"sv, "utf8"sv, "us-ascii"sv, "ascii"sv};
    constexpr std::array latin1Names{"iso-8859-1"sv, "iso8859-1"sv, "iso_8859-1"sv, "latin1"sv};
    constexpr std::array windowsNames{"windows-1252"sv, "cp1252"sv};
    const std::string_view bytes = document;
    // A mark of UTF-32 begins like one of UTF-16, and so is looked for first.
    if (bytes.starts_with("\0\0\xFE\xFF"sv)) return fromUTF32(bytes.substr(4), HighByte::first);
    if (bytes.starts_with("\xFF\xFE\0\0"sv)) return fromUTF32(bytes.substr(4), HighByte::last);
    if (bytes.starts_with("\xFE\xFF")) return fromUTF16(bytes.substr(2), HighByte::first);
    if (bytes.starts_with("\xFF\xFE")) return fromUTF16(bytes.substr(2), HighByte::last);
    if (bytes.starts_with("\xEF\xBB\xBF")) return document.erase(0, 3);
    if (bytes.starts_with(xmlProlog)) return document;
    const auto encoding = declaredEncoding(bytes);
    if (!encoding) return std::nullopt;
    if (isOneOf(*encoding, utf8Names)) return document;
    if (isOneOf(*encoding, latin1Names)) return fromSingleBytes(bytes, false);
    if (isOneOf(*encoding, windowsNames)) return fromSingleBytes(bytes, true);
    return std::nullopt;
}

}  // namespace quillet::standin
