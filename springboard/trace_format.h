// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/standin/device/trace.h"
#include "springboard/json.h"
#include "springboard/trace_origin.h"

namespace quillet {

/// How a trace looks.
enum class TraceFormat {
    /// Lines of JSON.
    json,
    /// Lines for people.
    text,
    /// One document for viewers of traces, see chrome_trace.h.
    chrome,
};

/// The first record of a trace as an object: "event", "time", "pid", "program", "model", "host".
Json toJSON(const TraceOrigin& origin);

/// A trace's record as an object: "t" in seconds, to the millionth, "op", "receiver" of a message,
/// "args", "result" where there is one, "depth" of a call in another one that lasts, and "done":
/// false where the device could not do it.
Json toJSON(const standin::TraceRecord& record);

/// What toJSON makes such an object of, but for "done". Throws nlohmann::json::exception when it
/// lacks what it must have.
standin::TraceRecord recordOf(const Json& object);

/// The end of a call that lasted `duration` seconds: as the record itself, without "args" and
/// "result", with "t" when it ended and "dur".
Json endToJSON(const standin::TraceRecord& record, double duration);

// The same in lines for people, without the line's end.

std::string toText(const TraceOrigin& origin);

/// The time in seconds, then, indented by the depth, a message with each part of its name before
/// its argument, or a call of a function, and " = " and the result where there is one. Arguments
/// stand as in JSON.
std::string toText(const standin::TraceRecord& record);

/// "setVolumeTo:0.6 forCategory:"Ringtone" = true": what toText says of a record behind its time.
std::string callText(const standin::TraceRecord& record);

std::string endToText(const standin::TraceRecord& record, double duration);

}  // namespace quillet
