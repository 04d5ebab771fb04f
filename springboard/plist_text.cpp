// SPDX-License-Identifier: MIT
#include "springboard/plist_text.h"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/calendar.h"
#include "platform/standin/plist/tape.h"
#include "springboard/json.h"

namespace quillet {

namespace {

using standin::Array;
using standin::Kind;
using standin::Node;

std::string inBase64(std::string_view bytes) {
    std::string text(standin::base64Size(bytes.size()), '\0');
    standin::encodeBase64(bytes, text.data());
    return text;
}

std::string dateInWords(standin::Date date) {
    std::array<char, standin::maxDateSize> text;
    return {text.data(), standin::formatDate(text.data(), date)};
}

std::string realInWords(double number) {
    if (std::isnan(number)) return "nan";
    if (std::isinf(number)) return number < 0 ? "-infinity" : "+infinity";
    return Json(number).dump();
}

std::string inWords(const Node& node) {
    switch (node.kind) {
        case Kind::boolean:
            return node.integer != 0 ? "true" : "false";
        case Kind::integer:
            return std::to_string(node.integer);
        case Kind::unsignedInteger:
        case Kind::uid:
            return std::to_string(node.number);
        case Kind::real:
            return realInWords(node.real);
        case Kind::date:
            return dateInWords({node.real});
        case Kind::string:
            return std::string{node.text()};
        case Kind::data:
            return inBase64(node.text());
        default:
            return "";
    }
}

bool isStringInJSON(const Node& node) {
    return node.kind == Kind::string || node.kind == Kind::data || node.kind == Kind::date ||
           (node.kind == Kind::real && !std::isfinite(node.real));
}

class JSONWriter {
public:
    explicit JSONWriter(std::size_t limit) : limit_{limit} {}

    /// As much of the value as the limit allows.
    void write(const Node& root) {
        const Node* node = begin(root);
        while (!open_.empty() && !isFull()) {
            Level& level = open_.back();
            if (node == level.end) {
                close();
                continue;
            }
            text_ += level.isFirst ? "\n" : ",\n";
            level.isFirst = false;
            indent();
            if (level.isDictionary) text_ += quoted((node++)->text()) + ": ";
            node = begin(*node);
        }
        text_ += '\n';
    }

    bool isFull() const { return text_.size() > limit_; }
    std::string text() && { return std::move(text_); }

private:
    struct Level {
        const Node* end;
        bool isDictionary;
        bool isFirst = true;
    };

    static std::string quoted(std::string_view text) { return Json(text).dump(); }

    void indent() { text_.append(2 * open_.size(), ' '); }

    /// Puts a value, of a container only its beginning. Returns the node after that.
    const Node* begin(const Node& node) {
        const bool isDictionary = node.kind == Kind::dictionary;
        if (node.isContainer() && node.count == 0) {
            text_ += isDictionary ? "{}" : "[]";
        } else if (node.isContainer()) {
            text_ += isDictionary ? '{' : '[';
            open_.push_back({node.next(), isDictionary});
        } else if (node.kind == Kind::uid) {
            text_ += "{\"CF$UID\": " + inWords(node) + '}';
        } else {
            text_ += isStringInJSON(node) ? quoted(inWords(node)) : inWords(node);
        }
        return &node + 1;
    }

    void close() {
        const char end = open_.back().isDictionary ? '}' : ']';
        open_.pop_back();
        text_ += '\n';
        indent();
        text_ += end;
    }

    std::size_t limit_;
    std::string text_;
    std::vector<Level> open_;
};

}  // namespace

std::optional<std::string> inJSON(const standin::Value& value, std::size_t limit) {
    const Array holder{std::vector{value}};
    JSONWriter writer{limit};
    writer.write(*(&holder.head() + 1));
    if (writer.isFull()) return std::nullopt;
    return std::move(writer).text();
}

std::string inWords(const standin::Value& value) {
    const Array holder{std::vector{value}};
    return inWords(*(&holder.head() + 1));
}

}  // namespace quillet
