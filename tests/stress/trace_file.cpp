// SPDX-License-Identifier: MIT
#include "tests/stress/trace_file.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace quillet::test {

using standin::TraceRecord;
using standin::TraceValue;
using Json = nlohmann::json;

namespace {

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

TraceRecord recordOf(const Json& json) {
    TraceRecord record;
    record.time = json.at("t").get<double>();
    record.receiver = json.value("receiver", "");
    record.operation = json.at("op").get<std::string>();
    for (const Json& argument : json.at("args")) record.arguments.push_back(valueOf(argument));
    if (json.contains("result")) record.result = valueOf(json.at("result"));
    return record;
}

}  // namespace

std::vector<TraceRecord> readTrace(const std::string& text) {
    std::vector<TraceRecord> trace;
    std::istringstream lines{text.substr(0, text.rfind('\n') + 1)};
    for (std::string line; std::getline(lines, line);) {
        const Json json = Json::parse(line, nullptr, false);
        if (json.is_discarded()) throw std::runtime_error("no line of a trace: " + line);
        // The first line, and the ends of calls, are no calls.
        if (json.contains("args")) trace.push_back(recordOf(json));
    }
    return trace;
}

}  // namespace quillet::test
