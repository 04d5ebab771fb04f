// SPDX-License-Identifier: MIT
#include "tests/stress/trace_file.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "springboard/trace_format.h"

namespace quillet::test {

using standin::TraceRecord;

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
