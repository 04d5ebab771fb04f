// SPDX-License-Identifier: MIT
#include "springboard/plist_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/calendar.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/tape.h"
#include "platform/standin/plist/value_on_tape.h"
#include "springboard/json.h"

namespace quillet {

namespace {

using standin::Kind;
using standin::Node;
using standin::Tape;

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

/// The sink that only counts.
class Counter {
public:
    void put(std::string_view text) { size_ += text.size(); }
    std::size_t size() const { return size_; }

private:
    std::size_t size_ = 0;
};

/// What writes, to where room is made for all that has been counted.
class Text {
public:
    explicit Text(std::size_t size) { text_.reserve(size); }
    void put(std::string_view text) { text_ += text; }
    std::string text() && { return std::move(text_); }

private:
    std::string text_;
};

/// Puts a value's JSON into a sink. The same code measures and writes, so that the two agree.
template <class Sink>
class JSONWriter {
public:
    JSONWriter(Layout layout, Sink& sink) : isInLines_{layout == Layout::lines}, sink_{sink} {}

    void write(const Node& root) {
        const Node* node = begin(root);
        while (!open_.empty()) {
            Level& level = open_.back();
            if (node == level.end) {
                close();
                continue;
            }
            if (!level.isFirst) sink_.put(isInLines_ ? "," : ", ");
            level.isFirst = false;
            beginLine();
            if (level.isDictionary) {
                putQuoted((node++)->text());
                sink_.put(": ");
            }
            node = begin(*node);
        }
        if (isInLines_) sink_.put("\n");
    }

private:
    struct Level {
        const Node* end;
        bool isDictionary;
        bool isFirst = true;
    };

    void putQuoted(std::string_view text) { sink_.put(Json(text).dump()); }

    void beginLine() {
        if (!isInLines_) return;
        sink_.put("\n");
        for (std::size_t i = 0; i < open_.size(); ++i) sink_.put("  ");
    }

    /// Puts a value, of a container only its beginning. Returns the node after that.
    const Node* begin(const Node& node) {
        const bool isDictionary = node.kind == Kind::dictionary;
        if (node.isContainer()) {
            sink_.put(isDictionary ? "{" : "[");
            open_.push_back({node.next(), isDictionary});
        } else if (node.kind == Kind::uid) {
            sink_.put("{\"CF$UID\": " + inWords(node) + '}');
        } else if (isStringInJSON(node)) {
            putQuoted(inWords(node));
        } else {
            const bool isReal = node.kind == Kind::real;
            sink_.put(isReal && !isInLines_ ? toLine(node.real) : inWords(node));
        }
        return &node + 1;
    }

    void close() {
        const Level level = open_.back();
        open_.pop_back();
        if (!level.isFirst) beginLine();
        sink_.put(level.isDictionary ? "}" : "]");
    }

    bool isInLines_;
    Sink& sink_;
    std::vector<Level> open_;
};

/// Where the value is: on its own tape, or put on `tape`.
const Node& nodeOf(const standin::Value& value, Tape& tape) {
    if (const auto* const container = containerIn(value)) return container->head();
    append(tape, tape.nodes, value);
    return tape.nodes.front();
}

/// In bytes.
std::size_t roomFor(const standin::Value& value) {
    const auto* const container = containerIn(value);
    if (container == nullptr) return std::numeric_limits<std::size_t>::max();
    const std::size_t limit = standin::memoryLimit(container->tape()->size());
    return limit - std::min(limit, container->tape()->memory());
}

}  // namespace

std::optional<std::string> inJSON(const standin::Value& value, Layout layout) {
    Tape tape;
    const Node& root = nodeOf(value, tape);
    Counter counter;
    JSONWriter{layout, counter}.write(root);
    if (counter.size() > roomFor(value)) return std::nullopt;
    Text text{counter.size()};
    JSONWriter{layout, text}.write(root);
    return std::move(text).text();
}

std::string inWords(const standin::Value& value) {
    Tape tape;
    return inWords(nodeOf(value, tape));
}

}  // namespace quillet
