// SPDX-License-Identifier: MIT
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/calendar.h"
#include "platform/standin/plist/decimal.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/utf8.h"
#include "platform/standin/plist/value_builder.h"
#include "platform/standin/plist/xml_scanner.h"

namespace quillet::standin {
namespace {

using Kind = XMLScanner::Kind;
using Container = ValueBuilder::Container;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

/// Takes a sign off the front. True for a minus.
bool takeSign(std::string_view& text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    return isNegative;
}

/// [+-] (digits | (0x|0X) hex digits), from the least signed to the greatest unsigned integer.
std::optional<Value> integerIn(std::string_view text) {
    const bool isNegative = takeSign(text);
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (isHex) text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    const char* const last = text.data() + text.size();
    const auto end = std::from_chars(text.data(), last, magnitude, isHex ? 16 : 10);
    if (end.ec != std::errc{} || end.ptr != last) return std::nullopt;
    if (!isNegative) return integerValue(magnitude);
    if (magnitude > std::uint64_t{1} << 63) return std::nullopt;
    return static_cast<std::int64_t>(-magnitude);
}

/// A decimal number, or [+-] (nan | inf | infinity) in letters of either case.
std::optional<Value> realIn(std::string_view text) {
    if (const auto number = readDecimal<double>(text)) {
        if (number->length != text.size()) return std::nullopt;
        return number->value;
    }
    const double sign = takeSign(text) ? -1.0 : 1.0;
    std::string word{text};
    for (char& c : word) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
    if (word == "nan") return std::numeric_limits<double>::quiet_NaN();
    if (word != "inf" && word != "infinity") return std::nullopt;
    return sign * std::numeric_limits<double>::infinity();
}

std::optional<Value> dateIn(std::string_view text) {
    if (const auto date = parseDate(text)) return *date;
    return std::nullopt;
}

std::optional<Value> dataIn(std::string_view text) {
    if (auto bytes = decodeBase64(text)) return Data{*std::move(bytes)};
    return std::nullopt;
}

std::optional<Value> flagIn(bool flag, std::string_view text) {
    if (!trimmed(text).empty()) return std::nullopt;
    return flag;
}

/// The value of an element other than a container, from its name and its text.
std::optional<Value> scalarOf(std::string_view name, std::string text) {
    if (name == "string") return text;
    if (name == "integer") return integerIn(trimmed(text));
    if (name == "real") return realIn(trimmed(text));
    if (name == "true") return flagIn(true, text);
    if (name == "false") return flagIn(false, text);
    if (name == "date") return dateIn(text);
    if (name == "data") return dataIn(text);
    return std::nullopt;
}

std::optional<Container> containerNamed(std::string_view name) {
    if (name == "dict") return Container::dictionary;
    if (name == "array") return Container::array;
    return std::nullopt;
}

/// document = [byte order mark] (value | <plist> value </plist>)
/// value    = <array> value… </array> | <dict> (key value)… </dict> | scalar
class XMLReader {
public:
    explicit XMLReader(std::string_view document) : scanner_{document} {}

    std::optional<Value> read() {
        for (;;) {
            const XMLScanner::Tag tag = scanner_.next();
            if (tag.kind == Kind::finished) return isInRoot_ ? std::nullopt : builder_.take();
            if (tag.kind == Kind::malformed || !take(tag)) return std::nullopt;
        }
    }

private:
    bool take(XMLScanner::Tag tag) {
        if (tag.name == "plist") return takeRoot(tag.kind);
        const auto container = containerNamed(tag.name);
        if (tag.kind == Kind::end) return container && builder_.close(*container);
        if (!container) return takeScalar(tag);
        return builder_.open(*container) && (tag.kind == Kind::start || builder_.close(*container));
    }

    bool takeRoot(Kind kind) {
        const bool isStart = kind == Kind::start && !isInRoot_ && builder_.isEmpty();
        const bool isEnd = kind == Kind::end && isInRoot_ && builder_.isComplete();
        isInRoot_ = isStart;
        return isStart || isEnd;
    }

    bool takeScalar(XMLScanner::Tag tag) {
        std::optional<std::string> text = tag.kind == Kind::empty ? "" : scanner_.text();
        if (!text) return false;
        if (tag.kind == Kind::start && scanner_.next().name != tag.name) return false;
        if (tag.name == "key") return builder_.addKey(*std::move(text));
        auto value = scalarOf(tag.name, *std::move(text));
        return value && builder_.add(*std::move(value));
    }

    XMLScanner scanner_;
    ValueBuilder builder_;
    bool isInRoot_ = false;
};

}  // namespace

std::optional<Value> readXMLPropertyList(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (!isUTF8(bytes)) return std::nullopt;
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    return XMLReader{bytes}.read();
}

}  // namespace quillet::standin
