// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/calendar.h"
#include "platform/standin/plist/decimal.h"
#include "platform/standin/plist/large_pages.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/tape_builder.h"
#include "platform/standin/plist/text_encoding.h"
#include "platform/standin/plist/value_on_tape.h"
#include "platform/standin/plist/xml_scanner.h"

namespace quillet::standin {
namespace {

using Enclosure = TapeBuilder::Enclosure;
using TagKind = XMLScanner::Kind;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && XMLScanner::isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && XMLScanner::isSpace(text.back())) text.remove_suffix(1);
    return text;
}

/// Takes a sign off the front. True for a minus.
bool takeSign(std::string_view& text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    return isNegative;
}

/// [+-] (digits | (0x|0X) hex digits), from the least signed to the greatest unsigned integer.
std::optional<Node> integerIn(std::string_view text) {
    const bool isNegative = takeSign(text);
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (isHex) text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    const char* const last = text.data() + text.size();
    const auto end = std::from_chars(text.data(), last, magnitude, isHex ? 16 : 10);
    if (end.ec != std::errc{} || end.ptr != last) return std::nullopt;
    if (!isNegative) return numberNode(magnitude);
    if (magnitude > std::uint64_t{1} << 63) return std::nullopt;
    return integerNode(static_cast<std::int64_t>(-magnitude));
}

/// A decimal number, or [+-] (nan | inf | infinity) in letters of either case.
std::optional<double> realIn(std::string_view text) {
    if (const auto number = readDecimal<double>(text)) {
        if (number->length != text.size()) return std::nullopt;
        return number->value;
    }
    const double sign = takeSign(text) ? -1.0 : 1.0;
    std::string word{text};
    // The bit that tells a small letter from its capital.
    for (char& c : word) c = static_cast<char>(c | 0x20);
    if (word == "nan") return std::numeric_limits<double>::quiet_NaN();
    if (word != "inf" && word != "infinity") return std::nullopt;
    return sign * std::numeric_limits<double>::infinity();
}

std::optional<Node> realNodeIn(std::string_view text) {
    const auto number = realIn(text);
    return number ? std::optional{realNode(Kind::real, *number)} : std::nullopt;
}

std::optional<Node> dateIn(std::string_view text) {
    const auto date = parseDate(text);
    return date ? std::optional{realNode(Kind::date, date->seconds)} : std::nullopt;
}

std::optional<Node> flagIn(bool flag, std::string_view text) {
    return trimmed(text).empty() ? std::optional{booleanNode(flag)} : std::nullopt;
}

/// The bytes take the place of the digits that they stand for.
Node dataNode(std::string_view digits) {
    auto* const bytes = const_cast<char*>(digits.data());
    return textNode(Kind::data, {bytes, decodeBase64(digits, bytes)});
}

/// The value of an element other than a string and a container, from its name and its text.
std::optional<Node> scalarOf(XMLName name, XMLScanner::Text text) {
    switch (name) {
        case xmlName("integer"):
            return integerIn(trimmed(text.characters));
        case xmlName("true"):
            return flagIn(true, text.characters);
        case xmlName("false"):
            return flagIn(false, text.characters);
        case xmlName("real"):
            return realNodeIn(trimmed(text.characters));
        case xmlName("date"):
            return dateIn(text.characters);
        case xmlName("data"):
            return dataNode(text.characters);
        default:
            return std::nullopt;
    }
}

/// Why there is no value in an element of that name that was well-formed, and in any of a name that
/// no property list has.
const char* reasonAgainst(XMLName name) {
    switch (name) {
        case xmlName("integer"):
            return "no integer that 64 bits hold";
        case xmlName("real"):
            return "no real number";
        case xmlName("date"):
            return "no date";
        case xmlName("true"):
        case xmlName("false"):
            return "a text in an element that has none";
        default:
            return "an element that no property list has";
    }
}

bool isScalar(XMLName name) {
    constexpr std::array names{xmlName("string"), xmlName("integer"), xmlName("real"),
                               xmlName("date"),   xmlName("true"),    xmlName("false"),
                               xmlName("data"),   xmlName("key")};
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::optional<Enclosure> enclosureNamed(XMLName name) {
    switch (name) {
        case xmlName("dict"):
            return Enclosure::dictionary;
        case xmlName("array"):
            return Enclosure::array;
        case xmlName("plist"):
            return Enclosure::wrapper;
        default:
            return std::nullopt;
    }
}

/// Puts an archive's identifier in place of a dictionary {"CF$UID": number}, if the last value is
/// one.
void settleUID(std::vector<Node>& nodes) {
    if (nodes.size() < 3) return;
    const std::size_t place = nodes.size() - 3;
    const Node& head = nodes[place];
    const Node& number = nodes[place + 2];
    if (head.kind != Kind::dictionary || head.size != 2) return;
    const bool isNumber = number.kind == Kind::unsignedInteger ||
                          (number.kind == Kind::integer && number.integer >= 0);
    if (nodes[place + 1].text() != "CF$UID" || !isNumber) return;
    nodes[place] = uidNode(number.number);
    nodes.resize(place + 1);
}

/// document = value, and whatever follows
/// value    = <plist> value </plist> | <array> value… </array> | <dict> (key value)… </dict> |
///            scalar
class XMLReader {
public:
    explicit XMLReader(std::string document)
        : tape_{std::make_shared<Tape>(std::move(document))},
          scanner_{tape_->file()},
          builder_{tape_->nodes, Counts::last} {}

    std::optional<Value> read() {
        // A value seldom takes less: room for as many as there may well be, used as it is needed.
        constexpr std::size_t usualSize = 24;
        reserveLargePages(tape_->nodes, tape_->file().size() / usualSize + 1);
        while (!builder_.isComplete()) {
            if (!take(scanner_.next())) return std::nullopt;
        }
        return valueAt(tape_, tape_->nodes.front());
    }

    Fault fault() const { return fault_; }

private:
    bool fail(Fault fault) {
        fault_ = fault;
        return false;
    }
    /// The fault is in the last tag.
    bool failAtTag(const char* reason) { return fail({scanner_.lastTag(), reason}); }

    bool take(XMLScanner::Tag tag) {
        if (tag.name == xmlName("key") || tag.name == xmlName("string")) return takeString(tag);
        if (tag.kind == TagKind::malformed) return fail(scanner_.fault());
        const auto enclosure = enclosureNamed(tag.name);
        if (!enclosure) return takeScalar(tag);
        if (tag.kind == TagKind::end) return close(*enclosure);
        if (!builder_.open(*enclosure)) return failAtTag(builder_.refusal());
        return tag.kind == TagKind::start || close(*enclosure);
    }

    bool close(Enclosure enclosure) {
        if (!builder_.close(enclosure)) return failAtTag(builder_.refusal());
        if (enclosure == Enclosure::dictionary) settleUID(tape_->nodes);
        return true;
    }

    /// The text of the element that the tag begins, up to its end; its end tag is taken.
    bool takeText(XMLScanner::Tag tag, XMLScanner::Text& text) {
        if (tag.kind == TagKind::empty) return true;
        if (tag.kind != TagKind::start) return failAtTag("an end without a start");
        const auto found = scanner_.text();
        if (!found) return failInText(tag);
        text = *found;
        return scanner_.takeEnd(tag.name) || failAtEnd(tag, text);
    }

    /// A key or a value of that kind.
    bool takeString(XMLScanner::Tag tag) {
        XMLScanner::Text text;
        if (!takeText(tag, text)) return false;
        const Node node = stringNode(text.characters, text.isPlain);
        const bool isTaken =
            tag.name == xmlName("key") ? builder_.addKey(node) : builder_.add(node);
        return isTaken || failBefore(text, builder_.refusal());
    }

    bool takeScalar(XMLScanner::Tag tag) {
        XMLScanner::Text text;
        if (!takeText(tag, text)) return false;
        const auto value = scalarOf(tag.name, text);
        if (!value) return failBefore(text, reasonAgainst(tag.name));
        return builder_.add(*value) || failBefore(text, builder_.refusal());
    }

    bool failInText(XMLScanner::Tag tag) {
        return isScalar(tag.name) ? fail(scanner_.fault()) : failAtTag(reasonAgainst(tag.name));
    }
    bool failAtEnd(XMLScanner::Tag tag, const XMLScanner::Text& text) {
        return isScalar(tag.name) ? failAtTag("an end tag that does not match")
                                  : failBefore(text, reasonAgainst(tag.name));
    }
    /// The fault is in the element whose text this is.
    bool failBefore(const XMLScanner::Text& text, const char* reason) {
        const char* const start = text.characters.data();
        return start == nullptr ? failAtTag(reason) : fail({scanner_.tagBefore(start), reason});
    }

    std::shared_ptr<Tape> tape_;
    XMLScanner scanner_;
    TapeBuilder builder_;
    Fault fault_;
};

}  // namespace

std::optional<Value> readXMLPropertyList(std::string bytes, Fault* fault) {
    auto document = bytes.size() > maxFileSize ? std::nullopt : documentInUTF8(std::move(bytes));
    if (!document) {
        if (fault != nullptr) *fault = {0, "an encoding that is not known, or too many bytes"};
        return std::nullopt;
    }
    XMLReader reader{*std::move(document)};
    auto value = reader.read();
    if (!value && fault != nullptr) *fault = reader.fault();
    return value;
}

}  // namespace quillet::standin
