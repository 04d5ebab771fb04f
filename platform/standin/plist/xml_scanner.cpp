// SPDX-License-Identifier: MIT
#include "platform/standin/plist/xml_scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <utility>

#include "platform/standin/plist/utf8.h"

namespace quillet::standin {
namespace {

bool isWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

void trimFront(std::string_view& text) {
    while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
}

/// Takes what precedes the first character of a kind off the front of `text`.
template <class Predicate>
std::string_view takeUntil(std::string_view& text, Predicate isEnd) {
    const auto* const end = std::find_if(text.begin(), text.end(), isEnd);
    const std::string_view taken(text.begin(), end);
    text.remove_prefix(taken.size());
    return taken;
}

/// Takes `name = "value"` off the front of an XML declaration's content.
std::optional<std::pair<std::string_view, std::string_view>> takeAttribute(std::string_view& text) {
    const auto name = takeUntil(text, [](char c) { return isWhiteSpace(c) || c == '='; });
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

/// Compares with `lowerCase`, where only the letters A to Z have a lower case.
bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                      [](char c, char lower) {
                          return (c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c) == lower;
                      });
}

bool declaresUTF8(std::string_view attributes) {
    for (trimFront(attributes); !attributes.empty(); trimFront(attributes)) {
        const auto attribute = takeAttribute(attributes);
        if (!attribute) return false;
        const auto& [name, value] = *attribute;
        if (name == "encoding" && !equalsIgnoringCase(value, "utf-8") &&
            !equalsIgnoringCase(value, "us-ascii")) {
            return false;
        }
    }
    return true;
}

/// The character that a numeric reference's content stands for, without "#": "65" or "x41".
std::optional<std::uint32_t> characterNumber(std::string_view text) {
    const bool isHex = text.starts_with('x');
    if (isHex) text.remove_prefix(1);
    std::uint32_t number = 0;
    const char* const last = text.data() + text.size();
    const auto end = std::from_chars(text.data(), last, number, isHex ? 16 : 10);
    if (end.ec != std::errc{} || end.ptr != last) return std::nullopt;
    return number;
}

std::optional<std::uint32_t> namedCharacter(std::string_view name) {
    constexpr std::array<std::pair<std::string_view, char>, 5> names{
        {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
    for (const auto& [known, character] : names) {
        if (known == name) return static_cast<std::uint32_t>(character);
    }
    return std::nullopt;
}

}  // namespace

bool XMLScanner::consume(std::string_view token) {
    if (!rest_.starts_with(token)) return false;
    rest_.remove_prefix(token.size());
    return true;
}

bool XMLScanner::skipPast(std::string_view token) {
    const std::size_t start = rest_.find(token);
    if (start == rest_.npos) return false;
    rest_.remove_prefix(start + token.size());
    return true;
}

void XMLScanner::skipWhiteSpace() { trimFront(rest_); }

/// Past the rest of a processing instruction, which must not declare an unknown encoding.
bool XMLScanner::skipInstruction() {
    const std::size_t end = rest_.find("?>");
    if (end == rest_.npos) return false;
    std::string_view content = rest_.substr(0, end);
    rest_.remove_prefix(end + 2);
    const std::string_view target = takeUntil(content, isWhiteSpace);
    return target != "xml" || declaresUTF8(content);
}

/// Past the rest of a document type. What its internal subset declares is not used.
bool XMLScanner::skipDocumentType() {
    bool isInSubset = false;
    while (!rest_.empty()) {
        if (consume("<!--")) {
            if (!skipPast("-->")) return false;
            continue;
        }
        if (consume("<?")) {
            if (!skipPast("?>")) return false;
            continue;
        }
        const std::string_view character = rest_.substr(0, 1);
        rest_.remove_prefix(1);
        if (character == ">" && !isInSubset) return true;
        if (character == "[") isInSubset = true;
        if (character == "]") isInSubset = false;
        if ((character == "\"" || character == "'") && !skipPast(character)) return false;
    }
    return false;
}

/// Past what may stand between tags. False when it is malformed.
bool XMLScanner::skipMarkup() {
    for (;;) {
        skipWhiteSpace();
        if (!rest_.starts_with("<!") && !rest_.starts_with("<?")) return true;
        if (consume("<!--")) {
            if (!skipPast("-->")) return false;
        } else if (consume("<?")) {
            if (!skipInstruction()) return false;
        } else if (isBeforeFirstTag_ && consume("<!DOCTYPE")) {
            isBeforeFirstTag_ = false;
            if (!skipDocumentType()) return false;
        } else {
            return true;
        }
    }
}

std::string_view XMLScanner::takeName() {
    return takeUntil(rest_, [](char c) { return isWhiteSpace(c) || c == '/' || c == '>'; });
}

XMLScanner::Tag XMLScanner::startTag() {
    isBeforeFirstTag_ = false;
    const std::string_view name = takeName();
    bool isEmpty = false;
    while (!rest_.empty()) {
        const std::string_view character = rest_.substr(0, 1);
        rest_.remove_prefix(1);
        if (character == ">") return {isEmpty ? Kind::empty : Kind::start, name};
        if (character == "<") break;
        if ((character == "\"" || character == "'") && !skipPast(character)) break;
        isEmpty = character == "/";
    }
    return {Kind::malformed, {}};
}

XMLScanner::Tag XMLScanner::endTag() {
    const std::string_view name = takeName();
    skipWhiteSpace();
    if (!consume(">")) return {Kind::malformed, {}};
    return {Kind::end, name};
}

XMLScanner::Tag XMLScanner::next() {
    if (!skipMarkup()) return {Kind::malformed, {}};
    if (rest_.empty()) return {Kind::finished, {}};
    if (consume("</")) return endTag();
    if (consume("<")) return startTag();
    return {Kind::malformed, {}};
}

bool XMLScanner::appendReference(std::string& text) {
    const std::size_t end = rest_.find(';');
    if (end == rest_.npos) return false;
    const std::string_view name = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    const auto character =
        name.starts_with('#') ? characterNumber(name.substr(1)) : namedCharacter(name);
    return character && appendUTF8(text, *character);
}

bool XMLScanner::appendMarkup(std::string& text) {
    if (consume("&")) return appendReference(text);
    if (consume("<!--")) return skipPast("-->");
    if (consume("<?")) return skipInstruction();
    if (!consume("<![CDATA[")) return false;
    const std::size_t end = rest_.find("]]>");
    if (end == rest_.npos) return false;
    text.append(rest_.substr(0, end));
    rest_.remove_prefix(end + 3);
    return true;
}

std::optional<std::string> XMLScanner::text() {
    const auto isMarkup = [](char c) { return c == '<' || c == '&'; };
    std::string text;
    for (;;) {
        text.append(takeUntil(rest_, isMarkup));
        if (rest_.empty()) return std::nullopt;
        if (rest_.starts_with("</")) return text;
        if (!appendMarkup(text)) return std::nullopt;
    }
}

}  // namespace quillet::standin
