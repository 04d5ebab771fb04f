// SPDX-License-Identifier: MIT
#include "platform/standin/plist/writer_xml.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/standin/plist/large_pages.h"
#include "platform/standin/plist/plain_text.h"
#include "platform/standin/plist/xml_prolog.h"
#include "platform/standin/plist/xml_sinks.h"

namespace quillet::standin {
namespace {

constexpr std::string_view start = "<plist version=\"1.0\">\n";
constexpr std::string_view end = "</plist>\n";

/// A line of data: 68 characters, which stand for 51 bytes.
constexpr std::size_t bytesInLine = 51;

/// By character: what stands for the control characters that XML cannot hold as they are.
constexpr auto controlReferences = [] {
    std::array<std::array<char, 5>, 32> references{};
    for (std::size_t c = 0; c < references.size(); ++c) {
        const auto ones = static_cast<char>('0' + c % 10);
        const auto tens = static_cast<char>('0' + c / 10);
        references[c] =
            c < 10 ? std::array{'&', '#', ones, ';', '\0'} : std::array{'&', '#', tens, ones, ';'};
    }
    return references;
}();

std::string_view escaped(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        default:
            return {controlReferences[static_cast<unsigned char>(c)].data(), c < 10 ? 4U : 5U};
    }
}

/// Puts a value's text into a sink. The same code measures and writes, so that the two agree.
template <class Sink>
class Writer {
public:
    explicit Writer(Sink& sink) : sink_{sink} {}

    void write(const Node& root) {
        sink_.put(xmlProlog);
        sink_.put(start);
        const Node* node = &root;
        do {
            if (!open_.empty() && open_.back().isDictionary) putKey(*node++);
            node = putValue(node);
            while (!open_.empty() && node == open_.back().end) close();
        } while (!open_.empty() && !sink_.isFull());
        sink_.put(end);
    }

private:
    /// A container that has been begun.
    struct Level {
        const Node* end;
        bool isDictionary;
    };

    /// Puts a value, of a container only its beginning. Returns the node after that.
    const Node* putValue(const Node* node) {
        sink_.putTabs(open_.size());
        switch (node->kind) {
            case Kind::boolean:
                sink_.put(node->integer != 0 ? "<true/>\n" : "<false/>\n");
                break;
            case Kind::integer:
                putInteger(node->integer);
                break;
            case Kind::unsignedInteger:
                putInteger(node->number);
                break;
            case Kind::real:
                putReal(node->real);
                break;
            case Kind::date:
                putDate({node->real});
                break;
            case Kind::uid:
                putUID(node->number);
                break;
            case Kind::string:
                sink_.put("<string>");
                putText(*node);
                sink_.put("</string>\n");
                break;
            case Kind::data:
                putData(node->text());
                break;
            case Kind::array:
                open(*node, "<array>\n", "<array/>\n");
                break;
            case Kind::dictionary:
                open(*node, "<dict>\n", "<dict/>\n");
                break;
        }
        return node + 1;
    }

    void putKey(const Node& node) {
        sink_.putTabs(open_.size());
        sink_.put("<key>");
        putText(node);
        sink_.put("</key>\n");
    }

    [[gnu::noinline]] void open(const Node& node, std::string_view tag, std::string_view emptyTag) {
        if (node.count == 0) return sink_.put(emptyTag);
        sink_.put(tag);
        open_.push_back({node.next(), node.kind == Kind::dictionary});
    }

    void close() {
        const bool isDictionary = open_.back().isDictionary;
        open_.pop_back();
        sink_.putTabs(open_.size());
        sink_.put(isDictionary ? "</dict>\n" : "</array>\n");
    }

    template <class Integer>
    void putInteger(Integer number) {
        sink_.put("<integer>");
        sink_.putNumber(number);
        sink_.put("</integer>\n");
    }

    [[gnu::noinline]] void putReal(double number) {
        sink_.put("<real>");
        if (std::isnan(number)) {
            sink_.put("nan");
        } else if (std::isinf(number)) {
            sink_.put(number < 0 ? "-infinity" : "+infinity");
        } else {
            sink_.putNumber(number);
        }
        sink_.put("</real>\n");
    }

    void putDate(Date date) {
        sink_.put("<date>");
        sink_.putDate(date);
        sink_.put("</date>\n");
    }

    [[gnu::noinline]] void putUID(std::uint64_t number) {
        sink_.put("<dict>\n");
        sink_.putTabs(open_.size() + 1);
        sink_.put("<key>CF$UID</key>\n");
        sink_.putTabs(open_.size() + 1);
        putInteger(number);
        sink_.putTabs(open_.size());
        sink_.put("</dict>\n");
    }

    [[gnu::noinline]] void putData(std::string_view bytes) {
        sink_.put("<data>\n");
        for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), bytesInLine))) {
            sink_.putTabs(open_.size());
            sink_.putBase64(bytes.substr(0, bytesInLine));
            sink_.put('\n');
        }
        sink_.putTabs(open_.size());
        sink_.put("</data>\n");
    }

    void putText(const Node& node) {
        if (node.isPlain) return sink_.put(node.text());
        putEscaped(node.text());
    }

    [[gnu::noinline]] void putEscaped(std::string_view text) {
        for (;;) {
            const auto* const end = std::find_if(text.begin(), text.end(), needsEscape);
            sink_.put(std::string_view{text.begin(), end});
            if (end == text.end()) return;
            sink_.put(escaped(*end));
            text.remove_prefix(static_cast<std::size_t>(end - text.begin()) + 1);
        }
    }

    Sink& sink_;
    std::vector<Level> open_;
};

/// Bytes, or more than the limit.
template <class Sink>
std::size_t sizeOf(const Node& root, std::size_t limit) {
    Sink measure{limit};
    Writer{measure}.write(root);
    return measure.size();
}

}  // namespace

std::optional<std::string> writeXML(const Node& root, std::size_t limit) {
    std::size_t size = sizeOf<Measure>(root, limit);
    if (size > limit) size = sizeOf<ExactMeasure>(root, limit);
    if (size > limit) return std::nullopt;
    std::string text;
    reserveLargePages(text, size + tabs.size());
    text.resize(size + tabs.size());
    Pen pen{text.data()};
    Writer{pen}.write(root);
    text.resize(static_cast<std::size_t>(pen.next() - text.data()));
    return text;
}

}  // namespace quillet::standin
