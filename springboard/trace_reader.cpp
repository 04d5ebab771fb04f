// SPDX-License-Identifier: MIT
#include "springboard/trace_reader.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "springboard/trace_format.h"

namespace quillet {

namespace {

std::string originOf(const Json& json) {
    return json.at("program").get<std::string>() + ", process " +
           std::to_string(json.at("pid").get<int>()) + ", " + json.at("model").get<std::string>() +
           ", " + json.at("time").get<std::string>();
}

/// Of the last call of the trace that `end` can be the end of.
void endCall(std::vector<TracedCall>& calls, const Json& end) {
    const auto operation = end.at("op").get<std::string>();
    const auto duration = end.at("dur").get<double>();
    const int depth = end.value("depth", 0);
    const auto isBegin = [&](const TracedCall& call) {
        return !call.duration && call.record.depth == depth && call.record.operation == operation;
    };
    const auto begin = std::find_if(calls.rbegin(), calls.rend(), isBegin);
    if (begin == calls.rend()) return;
    begin->duration = duration;
    begin->record.lasts = true;
}

/// Throws nlohmann::json::exception when the object lacks what it must have.
void add(ReadTrace& trace, const Json& object) {
    if (object.contains("event")) {
        trace.origin = originOf(object);
    } else if (object.contains("dur")) {
        endCall(trace.calls, object);
    } else if (!object.contains("state")) {
        trace.calls.push_back({recordOf(object), {}});
    }
}

}  // namespace

ReadTrace readTrace(std::istream& stream, const std::string& name) {
    ReadTrace trace;
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        if (!line.starts_with('{')) continue;
        try {
            add(trace, Json::parse(line));
        } catch (const nlohmann::json::exception&) {
            if (stream.eof()) break;
            throw std::runtime_error(name + ": line " + std::to_string(number) +
                                     " is not of a trace");
        }
    }
    if (!trace.calls.empty()) return trace;
    throw std::runtime_error(name + ": holds no call of a trace in lines of JSON");
}

ReadTrace readTrace(const std::string& file) {
    if (file == "-") return readTrace(std::cin, "standard input");
    std::ifstream stream{file};
    if (!stream) throw std::system_error(errno, std::generic_category(), file);
    return readTrace(stream, file);
}

}  // namespace quillet
