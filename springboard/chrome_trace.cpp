// SPDX-License-Identifier: MIT
#include "springboard/chrome_trace.h"

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "program/wall_clock.h"
#include "springboard/json.h"
#include "springboard/trace_format.h"

namespace quillet {

using standin::TraceRecord;

namespace {

std::int64_t microsecondsOf(const TraceOrigin& origin, double time) {
    return origin.start + std::llround(time * double{microsecondsPerSecond});
}

/// An event of the process that `origin` names. The threads of a viewer are tracks.
Json eventOf(const TraceOrigin& origin, const char* phase, const std::string& name) {
    return {{"ph", phase}, {"name", name}, {"pid", origin.process}, {"tid", origin.process}};
}

Json callEvent(const TraceOrigin& origin, const char* phase, const TraceRecord& record,
               double time) {
    Json event = eventOf(
        origin, phase,
        record.receiver.empty() ? record.operation : record.receiver + ' ' + record.operation);
    event["cat"] = record.receiver.empty() ? "function" : "message";
    event["ts"] = microsecondsOf(origin, time);
    return event;
}

}  // namespace

std::string ChromeTrace::name() const {
    Json event = eventOf(origin_, "M", "process_name");
    event["args"] = {{"name", origin_.program}};
    Json labels = eventOf(origin_, "M", "process_labels");
    labels["args"] = {{"labels", origin_.model + ", " + origin_.host}};
    return toLine(event) + ",\n" + toLine(labels);
}

std::string ChromeTrace::begin(const TraceRecord& record) const {
    Json event = callEvent(origin_, "B", record, record.time);
    event["args"] = {{"call", callText(record)}};
    return toLine(event) + (record.lasts ? "" : ",\n" + end(record, 0));
}

std::string ChromeTrace::end(const TraceRecord& record, double duration) const {
    return toLine(callEvent(origin_, "E", record, record.time + duration));
}

}  // namespace quillet
