// SPDX-License-Identifier: MIT
#include "springboard/chrome_trace.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "program/wall_clock.h"
#include "springboard/trace_format.h"

namespace quillet {

using standin::TraceRecord;

namespace {

/// An event of the process that `origin` names. The threads of a viewer are tracks.
Json eventIn(const TraceOrigin& origin, const char* phase, const std::string& name) {
    return {{"ph", phase}, {"name", name}, {"pid", origin.process}, {"tid", origin.process}};
}

}  // namespace

Json ChromeTrace::eventOf(const char* phase, const TraceRecord& record, double time) {
    const bool isMessage = !record.receiver.empty();
    Json event =
        eventIn(origin_, phase, (isMessage ? record.receiver + ' ' : "") + record.operation);
    event["cat"] = isMessage ? "message" : "function";
    last_ = std::max<std::int64_t>(
        last_, origin_.start + std::llround(time * double{microsecondsPerSecond}));
    event["ts"] = last_;
    return event;
}

std::string ChromeTrace::name() const {
    Json process = eventIn(origin_, "M", "process_name");
    process["args"] = {{"name", origin_.program}};
    Json labels = eventIn(origin_, "M", "process_labels");
    labels["args"] = {{"labels", origin_.model + ", " + origin_.host}};
    Json thread = eventIn(origin_, "M", "thread_name");
    thread["args"] = {{"name", "main thread"}};
    return toLine(process) + ",\n" + toLine(labels) + ",\n" + toLine(thread);
}

std::string ChromeTrace::begin(const TraceRecord& record) {
    Json event = eventOf("B", record, record.time);
    event["args"] = {{"call", callText(record)}};
    return toLine(event) + (record.lasts ? "" : ",\n" + end(record, 0));
}

std::string ChromeTrace::end(const TraceRecord& record, double duration) {
    return toLine(eventOf("E", record, record.time + duration));
}

}  // namespace quillet
