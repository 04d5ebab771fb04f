// SPDX-License-Identifier: MIT
#include "springboard/trace_format.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <variant>

namespace quillet {

using standin::TraceRecord;
using standin::TraceValue;

namespace {

struct ToJSON {
    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(const auto& plain) const { return plain; }
};

Json toJSON(const TraceValue& value) { return std::visit(ToJSON{}, value); }

}  // namespace

Json toJSON(const TraceRecord& record) {
    Json object = {{"t", std::round(record.time * 1e6) / 1e6}, {"op", record.operation}};
    if (!record.receiver.empty()) object["receiver"] = record.receiver;
    object["args"] = Json::array();
    for (const TraceValue& argument : record.arguments) object["args"].push_back(toJSON(argument));
    if (record.result) object["result"] = toJSON(*record.result);
    return object;
}

}  // namespace quillet
