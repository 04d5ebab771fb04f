// SPDX-License-Identifier: MIT
#include "springboard/trace_format.h"

#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <variant>

#include "program/wall_clock.h"

namespace quillet {

using standin::TraceRecord;
using standin::TraceValue;

namespace {

struct ToJSON {
    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(const auto& plain) const { return plain; }
};

TraceValue valueOf(const Json& json) {
    switch (json.type()) {
        case Json::value_t::boolean:
            return json.get<bool>();
        case Json::value_t::number_integer:
            return json.get<std::int64_t>();
        case Json::value_t::number_unsigned:
            return json.get<std::uint64_t>();
        case Json::value_t::number_float:
            return json.get<double>();
        case Json::value_t::string:
            return json.get<std::string>();
        default:
            return {};
    }
}

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

std::string millionths(double seconds, int width) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(6) << std::setw(width) << seconds;
    return text.str();
}

/// "   0.503001  ", and two blanks more for each call around this one.
std::string marginOf(double time, int depth) {
    return millionths(time, 11) + std::string(2 + 2 * static_cast<std::size_t>(depth), ' ');
}

double toTheMillionth(double seconds) { return std::round(seconds * 1e6) / 1e6; }

/// What both ends of a call say first.
Json headOf(const TraceRecord& record, double time) {
    Json object = {{"t", toTheMillionth(time)}, {"op", record.operation}};
    if (!record.receiver.empty()) object["receiver"] = record.receiver;
    return object;
}

}  // namespace

Json toJSON(const TraceOrigin& origin) {
    return {{"event", "trace"},          {"time", isoTime(origin.start)}, {"pid", origin.process},
            {"program", origin.program}, {"model", origin.model},         {"host", origin.host}};
}

Json toJSON(const TraceRecord& record) {
    Json object = headOf(record, record.time);
    object["args"] = Json::array();
    for (const TraceValue& argument : record.arguments) object["args"].push_back(toJSON(argument));
    if (record.result) object["result"] = toJSON(*record.result);
    if (record.depth > 0) object["depth"] = record.depth;
    if (!record.isDone) object["done"] = false;
    return object;
}

TraceRecord recordOf(const Json& object) {
    TraceRecord record;
    record.time = object.at("t").get<double>();
    record.receiver = object.value("receiver", "");
    record.operation = object.at("op").get<std::string>();
    record.depth = object.value("depth", 0);
    for (const Json& argument : object.at("args")) record.arguments.push_back(valueOf(argument));
    if (object.contains("result")) record.result = valueOf(object.at("result"));
    return record;
}

Json endToJSON(const TraceRecord& record, double duration) {
    Json object = headOf(record, record.time + duration);
    object["dur"] = toTheMillionth(duration);
    if (record.depth > 0) object["depth"] = record.depth;
    return object;
}

std::string toText(const TraceOrigin& origin) {
    return "# " + isoTime(origin.start) + ' ' + origin.program + ", process " +
           std::to_string(origin.process) + ", " + origin.model + ", " + origin.host;
}

std::string callText(const TraceRecord& record) {
    const std::string call = record.receiver.empty() ? callOf(record) : messageOf(record);
    return record.result ? call + " = " + textOf(*record.result) : call;
}

std::string toText(const TraceRecord& record) {
    const std::string done = record.isDone ? "" : "  (not done)";
    return marginOf(record.time, record.depth) + callText(record) + done;
}

std::string endToText(const TraceRecord& record, double duration) {
    return marginOf(record.time + duration, record.depth) + "end of " + record.operation +
           " after " + millionths(duration, 0) + " s";
}

}  // namespace quillet
