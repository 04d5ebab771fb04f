// SPDX-License-Identifier: MIT
#include "springboard/plist_json.h"

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <variant>

#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/calendar.h"

namespace quillet {

namespace {

struct PlistToJSON {
    Json operator()(const auto& plain) const { return plain; }
    Json operator()(const standin::Data& data) const {
        std::string text(standin::base64Size(data.bytes.size()), '=');
        standin::encodeBase64(data.bytes, text.data());
        return text;
    }
    Json operator()(const standin::Date& date) const {
        std::array<char, standin::maxDateSize> text;
        return std::string(text.data(), standin::formatDate(text.data(), date));
    }
    Json operator()(const standin::UID& uid) const { return {{"CF$UID", uid.number}}; }
    Json operator()(const standin::Array& array) const {
        Json elements = Json::array();
        for (const standin::Value& element : array.elements()) elements.push_back(toJSON(element));
        return elements;
    }
    Json operator()(const standin::Dictionary& dictionary) const {
        Json members = Json::object();
        for (const auto& [key, value] : dictionary.entries()) members[key] = toJSON(value);
        return members;
    }
};

}  // namespace

Json toJSON(const standin::Value& value) {
    return std::visit(PlistToJSON{}, static_cast<const standin::Value::variant&>(value));
}

}  // namespace quillet
