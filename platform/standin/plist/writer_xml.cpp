// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <vector>

#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/calendar.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::standin {
namespace {

constexpr std::string_view prolog =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view epilog = "</plist>\n";
constexpr std::size_t base64LineLength = 68;

bool needsEscape(char c) {
    const bool isControl = static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n';
    return isControl || c == '&' || c == '<' || c == '>';
}

std::string escaped(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        default:
            return "&#" + std::to_string(static_cast<int>(c)) + ';';
    }
}

/// The shortest decimal number that reads back as `number`, or a word.
std::string realText(double number) {
    if (std::isnan(number)) return "nan";
    if (std::isinf(number)) return number < 0 ? "-infinity" : "+infinity";
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end.ptr};
}

/// Writes a value with a stack of its own in place of recursion.
class Writer {
public:
    std::string write(const Value& value) {
        text_ = prolog;
        std::visit(*this, value);
        while (!open_.empty()) step();
        text_ += epilog;
        return std::move(text_);
    }

    void operator()(bool flag) { line(flag ? "<true/>" : "<false/>"); }
    void operator()(std::int64_t number) { element("integer", std::to_string(number)); }
    void operator()(std::uint64_t number) { element("integer", std::to_string(number)); }
    void operator()(double number) { element("real", realText(number)); }
    void operator()(const std::string& text) { element("string", text); }
    void operator()(Date date) { element("date", formatDate(date)); }

    void operator()(const Data& data) {
        const std::string digits = encodeBase64(data.bytes);
        line("<data>");
        for (std::size_t i = 0; i < digits.size(); i += base64LineLength) {
            line(std::string_view{digits}.substr(i, base64LineLength));
        }
        line("</data>");
    }

    void operator()(const Array& array) {
        if (array.empty()) return line("<array/>");
        line("<array>");
        open_.push_back({&array, nullptr, 0});
    }

    void operator()(const Dictionary& dictionary) {
        if (dictionary.entries().empty()) return line("<dict/>");
        line("<dict>");
        open_.push_back({nullptr, &dictionary.entries(), 0});
    }

private:
    /// A container that has been begun: one of the two, and how much of it has been written.
    struct Level {
        const Array* array;
        const std::vector<Entry>* entries;
        std::size_t written;
    };

    void step() {
        Level& level = open_.back();
        const std::size_t index = level.written++;
        if (level.array != nullptr) {
            if (index == level.array->size()) return close("</array>");
            std::visit(*this, (*level.array)[index]);
        } else {
            if (index == level.entries->size()) return close("</dict>");
            const Entry& entry = (*level.entries)[index];
            element("key", entry.key);
            std::visit(*this, entry.value);
        }
    }

    void close(std::string_view tag) {
        open_.pop_back();
        line(tag);
    }

    void line(std::string_view content) {
        text_.append(open_.size(), '\t').append(content) += '\n';
    }

    void element(std::string_view name, std::string_view content) {
        text_.append(open_.size(), '\t').append("<").append(name) += '>';
        appendEscaped(content);
        text_.append("</").append(name).append(">\n");
    }

    void appendEscaped(std::string_view content) {
        for (;;) {
            const auto* const end = std::find_if(content.begin(), content.end(), needsEscape);
            text_.append(content.begin(), end);
            if (end == content.end()) return;
            text_ += escaped(*end);
            content.remove_prefix(static_cast<std::size_t>(end - content.begin()) + 1);
        }
    }

    std::string text_;
    std::vector<Level> open_;
};

}  // namespace

std::string writePropertyList(const Value& value) { return Writer{}.write(value); }

}  // namespace quillet::standin
