// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillet::standin {

/// One forward pass over an XML document in UTF-8: the tags between elements and the text within
/// one. Knows of no element's meaning; defines no entities but XML's own five.
class XMLScanner {
public:
    enum class Kind { start, end, empty, finished, malformed };
    struct Tag {
        Kind kind;
        /// A part of the document. Empty when the document is finished or malformed.
        std::string_view name;
    };

    /// Shares `document`, whose bytes must outlive the scanner and its tags.
    explicit XMLScanner(std::string_view document) : rest_{document} {}

    /// The next tag, past white space, comments and processing instructions and, before the first
    /// tag, a document type. Attributes are skipped.
    Tag next();

    /// The text up to the next end tag, which next() then gives. Nothing when it is malformed or
    /// holds another element.
    std::optional<std::string> text();

private:
    bool consume(std::string_view token);
    bool skipPast(std::string_view token);
    void skipWhiteSpace();
    bool skipMarkup();
    bool skipInstruction();
    bool skipDocumentType();
    bool appendMarkup(std::string& text);
    bool appendReference(std::string& text);
    std::string_view takeName();
    Tag startTag();
    Tag endTag();

    std::string_view rest_;
    bool isBeforeFirstTag_ = true;
};

}  // namespace quillet::standin
