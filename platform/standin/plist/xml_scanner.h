// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/plist/fault.h"
#include "platform/standin/plist/plain_text.h"
#include "platform/standin/plist/xml_prolog.h"

namespace quillet::standin {

/// A name of up to seven letters as a number, the first one in the lowest byte. Every other name
/// has 0 or a number that none of those has.
using XMLName = std::uint64_t;

constexpr XMLName xmlName(std::string_view letters) {
    XMLName name = 0;
    for (std::size_t i = letters.size(); i > 0; --i) {
        name = name << 8 | static_cast<unsigned char>(letters[i - 1]);
    }
    return name;
}

/// By character: whether it is one of `characters`.
constexpr std::array<bool, 256> tableOf(std::string_view characters) {
    std::array<bool, 256> table{};
    for (const char c : characters) table[static_cast<unsigned char>(c)] = true;
    return table;
}

/// One forward pass over an XML document in UTF-8: the tags between elements and the text within
/// one. Knows of no element's meaning; defines no entities but XML's own five. What most documents
/// hold is taken here, where the compiler can put it in its place; all else is in the source.
class XMLScanner {
public:
    enum class Kind { start, end, empty, malformed };
    struct Tag {
        Kind kind;
        /// 0 when it is malformed.
        XMLName name;
    };
    struct Text {
        std::string_view characters;
        /// That nothing in it needs to be escaped.
        bool isPlain = true;
    };

    /// Works on `document`, which must outlive the scanner, its tags and its texts: a text with
    /// references in it is put together in its own place.
    explicit XMLScanner(std::string& document)
        : start_{document.data()},
          next_{start_},
          end_{start_ + document.size()},
          isBeforeFirstTag_{!consume(xmlProlog)} {}

    /// The next tag, past white space, comments and processing instructions and, before the first
    /// tag, a document type. Attributes are skipped.
    Tag next() {
        skipWhiteSpace();
        char* const start = next_;
        const bool isTag = consume('<');
        const bool isEnd = consume('/');
        const XMLName name = takeShortName();
        if (!isTag || name == 0 || !consume('>')) return otherTag(start);
        isBeforeFirstTag_ = false;
        return {isEnd ? Kind::end : Kind::start, name};
    }

    /// The text up to the next end tag, which next() then gives. Nothing when it is malformed, is
    /// no UTF-8 or holds another element.
    std::optional<Text> text() {
        char* const start = next_;
        next_ += printingLength(rest());
        if (!isAtEndTag()) return otherText(start);
        return Text{{start, static_cast<std::size_t>(next_ - start)}, true};
    }

    /// Takes the end tag of `name`. False when something else comes next, or the name is 0.
    bool takeEnd(XMLName name) {
        if (name == 0 || !isAtEndTag()) return false;
        next_ += 2;
        return takeShortName() == name && (consume('>') || takeLateEnd());
    }

    static bool isSpace(char c) { return spaces[static_cast<unsigned char>(c)]; }

    /// What was malformed.
    Fault fault() const { return {offsetOf(next_), reason_}; }

    /// Where the tag begins that is the last one before `part` of the document, or before what
    /// comes next.
    std::size_t tagBefore(const char* part) const;
    std::size_t lastTag() const { return tagBefore(next_); }

private:
    std::size_t offsetOf(const char* part) const { return static_cast<std::size_t>(part - start_); }
    bool fail(const char* reason) {
        reason_ = reason;
        return false;
    }
    Tag malformed(const char* reason) {
        reason_ = reason;
        return {Kind::malformed, 0};
    }
    std::string_view rest() const { return {next_, static_cast<std::size_t>(end_ - next_)}; }
    bool isAt(std::string_view token) const {
        // Not starts_with(), which the compiler makes a call of.
        return rest().size() >= token.size() && std::memcmp(next_, token.data(), token.size()) == 0;
    }
    // What looks for a character finds the zero after the document, which is none of them.
    bool isAtEndTag() const { return next_[0] == '<' && next_[1] == '/'; }
    bool consume(char c) {
        if (*next_ != c) return false;
        ++next_;
        return true;
    }
    bool consume(std::string_view token) {
        if (!isAt(token)) return false;
        next_ += token.size();
        return true;
    }
    bool skipPast(std::string_view token);
    void skipWhiteSpace() {
        next_ += zeroBytes(eightBytes() ^ newLine);
        while (isSpace(*next_)) ++next_;
    }
    bool skipToTag();
    bool skipMarkup();
    bool skipDocumentType();
    /// The next eight bytes as a number, the first in its lowest byte; zeros stand for those beyond
    /// the end.
    std::uint64_t eightBytes() const {
        std::uint64_t bytes = 0;
        if (rest().size() < sizeof bytes) return lastBytes();
        std::memcpy(&bytes, next_, sizeof bytes);
        return std::endian::native == std::endian::big ? __builtin_bswap64(bytes) : bytes;
    }
    std::uint64_t lastBytes() const;
    /// How many of the first seven bytes are zero, the lowest being the first.
    static std::size_t zeroBytes(std::uint64_t bytes) {
        constexpr std::uint64_t inTheEighth = std::uint64_t{1} << 63U;
        return static_cast<std::size_t>(std::countr_zero(bytes | inTheEighth)) / 8;
    }
    /// Takes a name of up to seven letters. 0, and nothing is taken, when there is none.
    XMLName takeShortName() {
        const std::uint64_t bytes = eightBytes();
        const std::size_t letters = zeroBytes(~bytes & letterBits);
        if (!nameEnds[static_cast<unsigned char>(next_[letters])]) return 0;
        next_ += letters;
        return bytes & ((std::uint64_t{1} << 8 * letters) - 1);
    }
    XMLName takeName();
    Tag otherTag(char* start);
    Tag startTag();
    bool skipAttributes();
    Tag endTag();
    bool takeLateEnd();
    std::optional<Text> otherText(char* start);
    std::optional<Text> markedText(char* start);
    bool takeMarkup(char*& text);
    bool takeReference(char*& text);

    /// What most lines begin with, in the order of eightBytes().
    static constexpr std::uint64_t newLine = xmlName("\n\t\t\t\t\t\t\t");
    /// The bit that letters have and what ends a name has not.
    static constexpr std::uint64_t letterBits = 0x4040404040404040U;
    static constexpr auto spaces = tableOf(xmlSpaces);
    static constexpr auto nameEnds = tableOf("/> \t\r\n");

    char* start_;
    char* next_;
    char* end_;
    /// That no document type has been passed either.
    bool isBeforeFirstTag_;
    const char* reason_ = "";
};

}  // namespace quillet::standin
