// SPDX-License-Identifier: MIT
#include "platform/standin/device/trace.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "platform/standin/plist/utf8.h"
#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

namespace {

/// JSON is UTF-8; a text that is not keeps only its ASCII.
void appendString(std::string& json, std::string_view text) {
    static constexpr char digits[] = "0123456789abcdef";
    const bool isText = isUTF8(text);
    json += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += {'\\', c};
        } else if (byte < 0x20) {
            json += {'\\', 'u', '0', '0', digits[byte >> 4], digits[byte & 0xF]};
        } else if (byte >= 0x80 && !isText) {
            json += "\\ufffd";
        } else {
            json += c;
        }
    }
    json += '"';
}

template <class Number>
void appendNumber(std::string& json, Number number) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    json.append(digits.begin(), end);
}

/// JSON has no word for what is not finite.
void appendReal(std::string& json, double number) {
    const auto single = static_cast<float>(number);
    if (!std::isfinite(number)) {
        json += "null";
    } else if (double{single} == number) {
        appendNumber(json, single);
    } else {
        appendNumber(json, number);
    }
}

struct Append {
    std::string& json;
    void operator()(std::monostate) const { json += "null"; }
    void operator()(bool flag) const { json += flag ? "true" : "false"; }
    void operator()(double number) const { appendReal(json, number); }
    void operator()(const std::string& text) const { appendString(json, text); }
    void operator()(std::integral auto number) const { appendNumber(json, number); }
};

/// What stands for a property-list value: itself if it is plain, else a description.
struct Plain {
    const Instance& instance;
    TraceValue operator()(const auto& value) const {
        if constexpr (std::is_constructible_v<TraceValue, decltype(value)>) {
            return value;
        } else {
            return instance.description();
        }
    }
};

}  // namespace

std::string toJSON(const TraceRecord& record) {
    std::string json = "{\"t\": ";
    appendNumber(json, std::round(record.time * 1e6) / 1e6);
    json += ", \"op\": ";
    appendString(json, record.operation);
    if (!record.receiver.empty()) {
        json += ", \"receiver\": ";
        appendString(json, record.receiver);
    }
    json += ", \"args\": [";
    for (const TraceValue& argument : record.arguments) {
        if (&argument != record.arguments.data()) json += ", ";
        std::visit(Append{json}, argument);
    }
    json += ']';
    if (record.result) {
        json += ", \"result\": ";
        std::visit(Append{json}, *record.result);
    }
    return json + '}';
}

TraceValue toTrace(const Object& object) { return objectTrace(object.instance()); }

TraceValue toTrace(std::string_view text) { return std::string{text}; }

TraceValue objectTrace(const void* object) {
    if (object == nullptr) return {};
    const Instance& instance = *instanceOf(object);
    const Value* const value = instance.propertyListValue();
    return value != nullptr ? std::visit(Plain{instance}, *value) : instance.description();
}

TraceValue pointerTrace(const void* pointer) {
    return pointer == nullptr ? TraceValue{} : TraceValue{"<pointer>"};
}

}  // namespace quillet::standin
