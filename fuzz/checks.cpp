// SPDX-License-Identifier: MIT
#include "fuzz/checks.h"

#include <iconv.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <variant>

#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/readings.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

void require(bool condition, const char* what) {
    if (!condition) throw std::logic_error(what);
}

/// Values are compared as texts, where NaN is itself.
std::optional<std::string> textOf(const std::optional<Value>& value) {
    return value ? rewritePropertyList(*value) : std::nullopt;
}

void checkForms(const std::string& bytes) {
    Fault faults[3];
    const auto value = readPropertyList(bytes, &faults[0]);
    const auto xml = readXMLPropertyList(bytes, &faults[1]);
    const auto binary = readBinaryPropertyList(bytes, &faults[2]);
    require(!xml || !binary, "the bytes are of one form at most");
    require(value.has_value() == (xml || binary), "a form that can be read is chosen");
    require(textOf(value) == textOf(xml ? xml : binary), "the value is the one of its form");
    require(value || *faults[0].reason != '\0', "a fault has a reason");
    require(xml || *faults[1].reason != '\0', "a fault of the XML form has a reason");
    require(binary || *faults[2].reason != '\0', "a fault of the binary form has a reason");
    // A byte of windows-1252 takes three in UTF-8.
    require(xml || faults[1].offset <= 3 * bytes.size(), "a fault lies in the text");
    require(binary || faults[2].offset <= bytes.size(), "a fault lies in the file");
}

/// One of iconv(3), which takes long to open.
class Conversion {
public:
    Conversion(const char* from, const char* to) : conversion_{iconv_open(to, from)} {}
    ~Conversion() { iconv_close(conversion_); }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    /// Nothing when the text cannot be converted.
    std::optional<std::string> of(std::string text) const {
        std::string result(4 * text.size(), '\0');
        char* input = text.data();
        char* output = result.data();
        std::size_t inputLeft = text.size();
        std::size_t outputLeft = result.size();
        const auto failed = static_cast<std::size_t>(-1);
        iconv(conversion_, nullptr, nullptr, nullptr, nullptr);
        if (iconv(conversion_, &input, &inputLeft, &output, &outputLeft) == failed) return {};
        result.resize(result.size() - outputLeft);
        return result;
    }

private:
    void* conversion_;
};

/// What a document reads as, of a malformed one the fault's place.
struct Reading {
    std::optional<std::string> text;
    std::size_t fault = 0;
    bool operator==(const Reading&) const = default;
};

Reading readingOf(const std::string& document) {
    Fault fault;
    const auto value = readXMLPropertyList(document, &fault);
    return {textOf(value), value ? 0 : fault.offset};
}

void requireThatMarksTellTheEncoding(const std::string& text) {
    static const std::array<Conversion, 4> conversions{{{"UTF-8", "UTF-16BE"},
                                                        {"UTF-8", "UTF-16LE"},
                                                        {"UTF-8", "UTF-32BE"},
                                                        {"UTF-8", "UTF-32LE"}}};
    const std::string mark = "\xEF\xBB\xBF";
    // A mark of UTF-16 and a zero are a mark of UTF-32.
    if (text.starts_with('\0')) return;
    const Reading expected = readingOf(mark + text);
    for (const Conversion& conversion : conversions) {
        const auto document = conversion.of(mark + text);
        if (!document) return;
        require(readingOf(*document) == expected, "a mark tells the encoding");
    }
}

/// A string of single bytes is the same by a declaration and converted.
void requireThatADeclarationTellsTheEncoding(const std::string& bytes) {
    static const std::array<Conversion, 2> conversions{
        {{"ISO-8859-1", "UTF-8"}, {"WINDOWS-1252", "UTF-8"}}};
    constexpr std::array names{"ISO-8859-1", "WINDOWS-1252"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto text = conversions[i].of(bytes);
        if (!text) continue;
        const auto declared = readXMLPropertyList("<?xml version='1.0' encoding='"s + names[i] +
                                                  "'?><string>" + bytes + "</string>");
        const auto plain = readXMLPropertyList("<string>" + *text + "</string>");
        require(textOf(declared) == textOf(plain), "a declaration tells the encoding");
    }
}

void checkEncodings(const std::string& bytes) {
    requireThatMarksTellTheEncoding(bytes);
    requireThatADeclarationTellsTheEncoding(bytes);
}

/// How many characters a decimal number has at the front of a text: [+-] digits [. digits]
/// [(e|E) [+-] digits].
std::size_t decimalLength(const char* text) {
    constexpr const char* digits = "0123456789";
    const char* at = text;
    if (*at == '+' || *at == '-') ++at;
    std::size_t count = std::strspn(at, digits);
    at += count;
    if (*at == '.') {
        const std::size_t fraction = std::strspn(at + 1, digits);
        count += fraction;
        at += 1 + fraction;
    }
    if (count == 0) return 0;
    if (*at == 'e' || *at == 'E') {
        const char* exponent = at + 1;
        if (*exponent == '+' || *exponent == '-') ++exponent;
        const std::size_t size = std::strspn(exponent, digits);
        if (size != 0) at = exponent + size;
    }
    return static_cast<std::size_t>(at - text);
}

float expectedNumber(const std::string& text) {
    const char* const number = text.c_str() + std::strspn(text.c_str(), " \t\n\v\f\r");
    return std::strtof(std::string{number, decimalLength(number)}.c_str(), nullptr);
}

bool expectedFlag(const std::string& text) {
    const char* at = text.c_str() + std::strspn(text.c_str(), " \t\n\v\f\r");
    if (*at == '+' || *at == '-') ++at;
    at += std::strspn(at, "0");
    return *at != '\0' && std::strchr("YyTt123456789", *at) != nullptr;
}

bool isSame(std::optional<float> number, float expected) {
    return number &&
           std::bit_cast<std::uint32_t>(*number) == std::bit_cast<std::uint32_t>(expected);
}

/// Whether no other float is nearer, nor as near and even. The C library's strtof is no judge of
/// that: glibc's rounds some numbers wrongly that lie below the normal floats.
bool isNearest(float read, double number) {
    // Half a unit in the last place above the largest float.
    constexpr double overflow = 0x1.ffffffp+127;
    if (std::signbit(read) != std::signbit(number)) return false;
    if (std::isinf(read)) return std::abs(number) >= overflow;
    const bool isEven = std::bit_cast<std::uint32_t>(read) % 2 == 0;
    const double distance = std::abs(number - double{read});
    const auto isFarther = [&](float other) {
        if (std::isinf(other)) return std::abs(number) < overflow;
        const double others = std::abs(number - double{other});
        return others > distance || (others == distance && isEven);
    };
    constexpr float infinity = std::numeric_limits<float>::infinity();
    return isFarther(std::nextafter(read, -infinity)) && isFarther(std::nextafter(read, infinity));
}

void requireReadings(double number) {
    const auto read = floatValue(number);
    require(read.has_value(), "a real has a number");
    require(std::isnan(number) ? std::isnan(*read) : isNearest(*read, number),
            "a real as a number");
    require(std::isnan(number) || boolValue(number) == (number != 0), "a real as a flag");
}

template <class Integer>
void requireReadings(Integer number) {
    const std::string digits = std::to_string(number);
    require(isSame(floatValue(number), std::strtof(digits.c_str(), nullptr)),
            "an integer as a number");
    require(boolValue(number) == (number != 0), "an integer as a flag");
}

void checkReadings(const std::string& bytes) {
    require(isSame(floatValue(bytes), expectedNumber(bytes)), "a text as a number");
    require(boolValue(bytes) == expectedFlag(bytes), "a text as a flag");
    if (bytes.size() < sizeof(std::uint64_t)) return;
    std::uint64_t bits = 0;
    std::memcpy(&bits, bytes.data(), sizeof bits);
    requireReadings(bits);
    requireReadings(std::bit_cast<std::int64_t>(bits));
    requireReadings(std::bit_cast<double>(bits));
}

/// Reads a text that was written, and writes it again. The value.
Value againOf(const std::string& text) {
    auto again = readXMLPropertyList(text);
    require(again.has_value(), "what was written can be read");
    require(writePropertyList(*again) == text, "what was read again is written as it was");
    return *std::move(again);
}

/// All bits of a number are kept here.
void requireBinary(const Value& value) {
    const auto bytes = rewritePropertyList(value, Form::binary);
    if (!bytes) return;
    const auto again = readBinaryPropertyList(*bytes);
    require(again.has_value(), "what was written in binary can be read");
    require(writePropertyList(*again, Form::binary) == *bytes,
            "what was read again is written in binary as it was");
}

/// Each entry but the changed one is as it was.
void requireOthers(const Dictionary& before, const Dictionary& after, const std::string& changed) {
    for (const Entry& entry : before.entries()) {
        if (entry.key == changed) continue;
        const auto value = after.find(entry.key);
        require(value && textOf(value) == textOf(entry.value), "other entries stay");
    }
}

/// A change reaches the copy that it is made on, and the file that is written of it.
void requireChanges(const Dictionary& dictionary, const std::string& key) {
    const auto before = textOf(dictionary);
    Dictionary changed = dictionary;
    changed.set(key, true);
    const std::size_t more = dictionary.find(key) ? 0 : 1;
    require(changed.size() == dictionary.size() + more, "a new entry is one more");
    require(changed.find(key) == Value{true}, "an entry can be found");
    requireOthers(dictionary, changed, key);
    if (const auto text = rewritePropertyList(changed)) {
        const Value again = againOf(*text);
        const auto* const read = std::get_if<Dictionary>(&again);
        require(read != nullptr && read->find(key) == Value{true}, "an entry is written");
    }
    changed.erase(key);
    require(changed.size() + 1 == dictionary.size() + more && !changed.find(key),
            "an entry can be taken out");
    for (const Entry& entry : dictionary.entries()) changed.erase(entry.key);
    require(changed.size() == 0, "all entries can be taken out");
    require(textOf(dictionary) == before, "a change leaves others as they were");
}

void checkRewrites(const std::string& bytes) {
    // A change copies what it does not concern: of many entries it would take long.
    constexpr std::size_t fewEntries = 50;
    const auto value = readPropertyList(bytes);
    if (!value) return;
    if (const auto text = rewritePropertyList(*value)) againOf(*text);
    requireBinary(*value);
    const auto* const dictionary = std::get_if<Dictionary>(&*value);
    if (dictionary == nullptr || dictionary->size() > fewEntries) return;
    requireChanges(*dictionary, "ringtone-volume");
    if (dictionary->size() != 0) requireChanges(*dictionary, dictionary->entries().front().key);
}

}  // namespace

std::span<const Check> checks() {
    static constexpr Check all[] = {{"forms", checkForms},
                                    {"encodings", checkEncodings},
                                    {"readings", checkReadings},
                                    {"rewrites", checkRewrites}};
    return all;
}

}  // namespace quillet::standin
