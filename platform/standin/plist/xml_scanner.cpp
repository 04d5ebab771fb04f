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

constexpr char tooShort[] = "an end of the file before that of the value";
constexpr char textBetweenTags[] = "text where a tag belongs";
constexpr char unfinished[] = "something without its end: a comment, a quotation, an instruction";
constexpr char unfinishedTag[] = "a tag without its end";
constexpr char unknownReference[] = "a reference to no character that is known";

/// What counts in a document type.
constexpr auto countInTypes = tableOf("<>[]\"'");

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
    if (start == std::string_view::npos) return fail(unfinished);
    next_ += start + token.size();
    return true;
}

std::size_t XMLScanner::tagBefore(const char* part) const {
    const std::string_view before{start_, offsetOf(part)};
    return std::min(before.rfind('<'), before.size());
}

/// The bytes up to the end, of which there are fewer than eight; see eightBytes.
std::uint64_t XMLScanner::lastBytes() const {
    std::array<char, 8> bytes{};
    rest().copy(bytes.data(), bytes.size());
    return xmlName({bytes.data(), bytes.size()});
}

/// Past the rest of a document type. What its internal subset declares is not used.
bool XMLScanner::skipDocumentType() {
    const auto counts = [](char c) { return countInTypes[static_cast<unsigned char>(c)]; };
    bool isInSubset = false;
    while ((next_ = std::find_if(next_, end_, counts)) != end_) {
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
    return fail(unfinished);
}

/// Past white space and what else may stand between tags. False when that is malformed.
bool XMLScanner::skipToTag() {
    skipWhiteSpace();
    while (*next_ == '<' && (next_[1] == '!' || next_[1] == '?')) {
        if (!skipMarkup()) return false;
        skipWhiteSpace();
    }
    return true;
}

/// Past a comment, a processing instruction or, before the first tag, a document type.
bool XMLScanner::skipMarkup() {
    if (consume("<!--")) return skipPast("-->");
    if (consume("<?")) return skipPast("?>");
    if (!isBeforeFirstTag_ || !consume("<!DOCTYPE")) return fail(textBetweenTags);
    isBeforeFirstTag_ = false;
    return skipDocumentType();
}

/// A name that is too long is 0.
XMLName XMLScanner::takeName() {
    const XMLName name = takeShortName();
    if (name != 0) return name;
    const auto endsName = [](char c) { return nameEnds[static_cast<unsigned char>(c)]; };
    next_ = std::find_if(next_, end_, endsName);
    return 0;
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
    const XMLName name = takeName();
    if (!skipAttributes()) return {Kind::malformed, 0};
    if (consume('>')) return {Kind::start, name};
    if (consume("/>")) return {Kind::empty, name};
    return malformed(unfinishedTag);
}

XMLScanner::Tag XMLScanner::endTag() {
    const XMLName name = takeName();
    return takeLateEnd() ? Tag{Kind::end, name} : malformed(unfinishedTag);
}

/// The tag at or after `start`, whatever it is like.
XMLScanner::Tag XMLScanner::otherTag(char* start) {
    next_ = start;
    if (!skipToTag()) return {Kind::malformed, 0};
    if (!consume('<')) return malformed(next_ == end_ ? tooShort : textBetweenTags);
    return consume('/') ? endTag() : startTag();
}

/// Takes what ends an end tag, after white space.
bool XMLScanner::takeLateEnd() {
    skipWhiteSpace();
    return consume('>');
}

bool XMLScanner::takeReference(char*& text) {
    const std::size_t size = rest().find(';');
    if (size == std::string_view::npos) return fail(unknownReference);
    const std::string_view name = rest().substr(0, size);
    const auto character =
        name.starts_with('#') ? characterNumber(name.substr(1)) : namedCharacter(name);
    if (!character) return fail(unknownReference);
    next_ += size + 1;
    text = putUTF8(text, *character);
    return true;
}

/// Takes what is no character of a text and puts down what it stands for. No markup is shorter than
/// that.
bool XMLScanner::takeMarkup(char*& text) {
    if (consume('&')) return takeReference(text);
    if (consume("<!--")) return skipPast("-->");
    if (isAt("<?xml") && isSpace(next_[5])) {
        return fail("an XML declaration inside a text");
    }
    if (consume("<?")) return skipPast("?>");
    if (!consume("<![CDATA[")) return fail("an element inside a text");
    const std::size_t size = rest().find("]]>");
    if (size == std::string_view::npos) return fail(unfinished);
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
        if (isAtEndTag()) {
            const std::string_view characters{start, static_cast<std::size_t>(text - start)};
            if (const std::size_t size = utf8Length(characters); size != characters.size()) {
                // Where nothing was moved, the place is that of the bytes, else of the whole text.
                next_ = text == next_ ? start + size : start;
                fail("bytes that are no text in UTF-8");
                return std::nullopt;
            }
            return Text{characters, isPlain(characters)};
        }
        if (!takeMarkup(text)) return std::nullopt;
    }
    fail(tooShort);
    return std::nullopt;
}

/// A text that begins at `start` and whose first characters alone are printing ones.
std::optional<XMLScanner::Text> XMLScanner::otherText(char* start) {
    const auto length = static_cast<std::size_t>(next_ - start);
    next_ = start + lengthOfLines({start, static_cast<std::size_t>(end_ - start)}, length);
    if (!isAtEndTag()) return markedText(start);
    return Text{{start, static_cast<std::size_t>(next_ - start)}, true};
}

}  // namespace quillet::standin
