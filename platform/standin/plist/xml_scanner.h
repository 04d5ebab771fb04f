// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/plist/fault.h"

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

/// One forward pass over an XML document in UTF-8: the tags between elements and the text within
/// one. Knows of no element's meaning; defines no entities but XML's own five.
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
        bool isPlain;
    };

    /// Works on `document`, which must outlive the scanner, its tags and its texts: a text with
    /// references in it is put together in its own place.
    explicit XMLScanner(std::string& document)
        : start_{document.data()}, next_{start_}, end_{start_ + document.size()} {}

    /// The next tag, past white space, comments and processing instructions and, before the first
    /// tag, a document type. Attributes are skipped.
    Tag next();

    /// The text up to the next end tag, which next() then gives. Nothing when it is malformed, is
    /// no UTF-8 or holds another element.
    std::optional<Text> text();

    /// Takes the end tag of `name`. False when something else comes next, or the name is 0.
    bool takeEnd(XMLName name);

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
    bool consume(std::string_view token) {
        if (!isAt(token)) return false;
        next_ += token.size();
        return true;
    }
    bool skipPast(std::string_view token);
    void skipWhiteSpace();
    bool skipToTag();
    bool skipMarkup();
    bool skipDocumentType();
    std::uint64_t eightBytes() const;
    std::uint64_t lastBytes() const;
    XMLName takeName();
    Tag startTag();
    bool skipAttributes();
    Tag endTag();
    std::optional<Text> markedText(char* start);
    bool takeMarkup(char*& text);
    bool takeReference(char*& text);

    char* start_;
    char* next_;
    char* end_;
    bool isBeforeFirstTag_ = true;
    const char* reason_ = "";
};

}  // namespace quillet::standin
