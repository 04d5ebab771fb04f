// SPDX-License-Identifier: MIT
#include "springboard/plist_json.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <variant>

#include "springboard/plist_text.h"

namespace quillet {

namespace {

struct PlistToJSON {
    Json operator()(const auto& plain) const { return plain; }
    Json operator()(const standin::Data& data) const { return inWords(data); }
    Json operator()(const standin::Date& date) const { return inWords(date); }
    Json operator()(double real) const {
        return std::isfinite(real) ? Json(real) : Json(inWords(real));
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
