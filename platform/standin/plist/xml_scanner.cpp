// SPDX-License-Identifier: MIT
#include "platform/standin/plist/xml_scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

#include "platform/standin/plist/plain_text.h"
#include "platform/standin/plist/utf8.h"

namespace quillet::standin {
namespace {

/// By character: whether it is one of `characters`.
constexpr auto tableOf(std::string_view characters) {
    std::array<bool, 256> table{};
    for (const char c : characters) table[static_cast<unsigned char>(c)] = true;
    return table;
}

constexpr auto spaces = tableOf(" \t\r\n");
constexpr auto nameEnds = tableOf("/> \t\r\n");

bool isWhiteSpace(char c) { return spaces[static_cast<unsigned char>(c)]; }

bool endsName(char c) { return nameEnds[static_cast<unsigned char>(c)]; }

/// The character that a numeric reference's content stands for, without "#": "65" or "x41".
std::optional<std::uint32_t> characterNumber(std::string_view text) {
    constexpr std::uint32_t lastCodePoint = 0x10FFFF;
    const bool isHex = text.starts_with('x');
    if (isHex) text.remove_prefix(1);
    std::uint32_t number = 0;
    const char* const last = text.data() + text.size();
    const auto end = std::from_chars(text.data(), last, number, isHex ? 16 : 10);
    if (end.ec != std::errc{} || end.ptr != last || number > lastCodePoint) return std::nullopt;
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

/// Moves the bytes from `first` to `last` down to `text`, and `text` past them.
void moveTo(char*& text, const char* first, const char* last) {
    const auto size = static_cast<std::size_t>(last - first);
    if (text != first) std::memmove(text, first, size);
    text += size;
}

}  // namespace

bool XMLScanner::skipPast(std::string_view token) {
    const std::size_t start = rest().find(token);
    if (start == std::string_view::npos) return false;
    next_ += start + token.size();
    return true;
}

void XMLScanner::skipWhiteSpace() {
    while (next_ != end_ && isWhiteSpace(*next_)) ++next_;
}

/// Past the rest of a document type. What its internal subset declares is not used.
bool XMLScanner::skipDocumentType() {
    bool isInSubset = false;
    while (next_ != end_) {
        if (consume("<!--")) {
            if (!skipPast("-->")) return false;
            continue;
        }
        if (consume("<?")) {
            if (!skipPast("?>")) return false;
            continue;
        }
        const std::string_view character = rest().substr(0, 1);
        ++next_;
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
        if (!isAt("<!") && !isAt("<?")) return true;
        if (consume("<!--")) {
            if (!skipPast("-->")) return false;
        } else if (consume("<?")) {
            if (!skipPast("?>")) return false;
        } else if (isBeforeFirstTag_ && consume("<!DOCTYPE")) {
            isBeforeFirstTag_ = false;
            if (!skipDocumentType()) return false;
        } else {
            return true;
        }
    }
}

std::string_view XMLScanner::takeName() {
    const char* const start = next_;
    while (next_ != end_ && !endsName(*next_)) ++next_;
    return {start, static_cast<std::size_t>(next_ - start)};
}

/// Past the rest of a start tag, but for "/>" or ">".
bool XMLScanner::skipAttributes() {
    while (next_ != end_ && *next_ != '>' && *next_ != '<' && !isAt("/>")) {
        const std::string_view character = rest().substr(0, 1);
        ++next_;
        if ((character == "\"" || character == "'") && !skipPast(character)) return false;
    }
    return true;
}

XMLScanner::Tag XMLScanner::startTag() {
    isBeforeFirstTag_ = false;
    const std::string_view name = takeName();
    if (!isAt(">") && !skipAttributes()) return {Kind::malformed, {}};
    if (consume(">")) return {Kind::start, name};
    if (consume("/>")) return {Kind::empty, name};
    return {Kind::malformed, {}};
}

XMLScanner::Tag XMLScanner::endTag() {
    const std::string_view name = takeName();
    skipWhiteSpace();
    if (!consume(">")) return {Kind::malformed, {}};
    return {Kind::end, name};
}

XMLScanner::Tag XMLScanner::next() {
    if (!skipMarkup() || !consume("<")) return {Kind::malformed, {}};
    return consume("/") ? endTag() : startTag();
}

bool XMLScanner::takeEnd(std::string_view name) {
    const std::string_view text = rest();
    const std::size_t size = name.size() + 3;
    const bool isUsual = text.size() >= size && text.starts_with("</") &&
                         text.substr(2, name.size()) == name && text[size - 1] == '>';
    if (isUsual) next_ += size;
    return isUsual || (consume("</") && endTag().name == name);
}

bool XMLScanner::takeReference(char*& text) {
    const std::size_t size = rest().find(';');
    if (size == std::string_view::npos) return false;
    const std::string_view name = rest().substr(0, size);
    const auto character =
        name.starts_with('#') ? characterNumber(name.substr(1)) : namedCharacter(name);
    if (!character) return false;
    next_ += size + 1;
    text = putUTF8(text, *character);
    return true;
}

/// Takes what is no character of a text and puts down what it stands for. No markup is shorter than
/// that.
bool XMLScanner::takeMarkup(char*& text) {
    if (consume("&")) return takeReference(text);
    if (consume("<!--")) return skipPast("-->");
    if (isAt("<?xml") && rest().size() > 5 && isWhiteSpace(next_[5])) return false;
    if (consume("<?")) return skipPast("?>");
    if (!consume("<![CDATA[")) return false;
    const std::size_t size = rest().find("]]>");
    if (size == std::string_view::npos) return false;
    moveTo(text, next_, next_ + size);
    next_ += size + 3;
    return true;
}

/// A text that goes on here with more than plain characters.
std::optional<XMLScanner::Text> XMLScanner::markedText(char* start) {
    char* text = next_;
    while (next_ != end_) {
        const char* const run = next_;
        next_ = std::find_if(next_, end_, [](char c) { return c == '<' || c == '&'; });
        moveTo(text, run, next_);
        if (isAt("</")) {
            const std::string_view characters{start, static_cast<std::size_t>(text - start)};
            if (!isUTF8(characters)) return std::nullopt;
            return Text{characters, isPlain(characters)};
        }
        if (!takeMarkup(text)) return std::nullopt;
    }
    return std::nullopt;
}

std::optional<XMLScanner::Text> XMLScanner::text() {
    char* const start = next_;
    next_ += plainLength(rest());
    if (!isAt("</")) return markedText(start);
    return Text{{start, static_cast<std::size_t>(next_ - start)}, true};
}

}  // namespace quillet::standin
