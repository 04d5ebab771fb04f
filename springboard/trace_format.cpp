// SPDX-License-Identifier: MIT
#include "springboard/trace_format.h"

#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
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

std::string textOf(const TraceValue& value) { return toLine(toJSON(value)); }

/// "name(argument, argument)"
std::string callOf(const TraceRecord& record) {
    std::string list;
    for (const TraceValue& argument : record.arguments) {
        list += (list.empty() ? "" : ", ") + textOf(argument);
    }
    return record.operation + '(' + list + ')';
}

/// "receiver part:argument part:argument"
std::string messageOf(const TraceRecord& record) {
    std::string message = record.receiver;
    std::string_view parts = record.operation;
    for (const TraceValue& argument : record.arguments) {
        const std::size_t end = parts.find(':') + 1;
        message += ' ' + std::string{parts.substr(0, end)} + textOf(argument);
        parts.remove_prefix(end);
    }
    return parts.empty() ? message : message + ' ' + std::string{parts};
}

/// "   0.503001"
std::string secondsOf(double time) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(6) << std::setw(11) << time;
    return text.str();
}

}  // namespace

Json toJSON(const TraceRecord& record) {
    Json object = {{"t", std::round(record.time * 1e6) / 1e6}, {"op", record.operation}};
    if (!record.receiver.empty()) object["receiver"] = record.receiver;
    object["args"] = Json::array();
    for (const TraceValue& argument : record.arguments) object["args"].push_back(toJSON(argument));
    if (record.result) object["result"] = toJSON(*record.result);
    return object;
}

std::string toText(const TraceRecord& record) {
    const std::string line = secondsOf(record.time) + "  " +
                             (record.receiver.empty() ? callOf(record) : messageOf(record));
    return record.result ? line + " = " + textOf(*record.result) : line;
}

}  // namespace quillet
