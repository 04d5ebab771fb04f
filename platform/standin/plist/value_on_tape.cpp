// SPDX-License-Identifier: MIT
#include "platform/standin/plist/value_on_tape.h"

#include <cstddef>
#include <string>

namespace quillet::standin {
namespace {

/// A node for what is no container, which shares a text.
struct Single {
    Node operator()(bool flag) const { return booleanNode(flag); }
    Node operator()(std::int64_t number) const { return integerNode(number); }
    Node operator()(std::uint64_t number) const {
        Node node = integerNode(static_cast<std::int64_t>(number));
        node.kind = Kind::unsignedInteger;
        return node;
    }
    Node operator()(double number) const { return realNode(Kind::real, number); }
    Node operator()(const std::string& text) const { return textNode(Kind::string, text); }
    Node operator()(const Data& data) const { return textNode(Kind::data, data.bytes); }
    Node operator()(Date date) const { return realNode(Kind::date, date.seconds); }
    Node operator()(UID uid) const { return uidNode(uid.number); }
};

}  // namespace

Value valueAt(const std::shared_ptr<Tape>& tape, const Node& node) {
    const auto place = static_cast<std::size_t>(&node - tape->nodes.data());
    switch (node.kind) {
        case Kind::boolean:
            return node.integer != 0;
        case Kind::integer:
            return node.integer;
        case Kind::unsignedInteger:
            return node.number;
        case Kind::real:
            return node.real;
        case Kind::date:
            return Date{node.real};
        case Kind::uid:
            return UID{node.number};
        case Kind::string:
            return std::string{node.text()};
        case Kind::data:
            return Data{std::string{node.text()}};
        case Kind::array:
            return Array{tape, place};
        case Kind::dictionary:
            return Dictionary{tape, place};
    }
    return {};
}

const Container* containerIn(const Value& value) {
    const Container* const array = std::get_if<Array>(&value);
    return array != nullptr ? array : std::get_if<Dictionary>(&value);
}

void append(Tape& tape, std::vector<Node>& to, const Value& value) {
    const auto put = [&](const auto& content) {
        if constexpr (requires { content.head(); }) {
            tape.append(to, content.head());
        } else {
            tape.append(to, Single{}(content));
        }
    };
    std::visit(put, static_cast<const Value::variant&>(value));
}

}  // namespace quillet::standin
