// SPDX-License-Identifier: MIT
#include "tests/model/trace_world.h"

#include <string>

#include "tests/support/calls.h"

namespace quillet::test {

using standin::TraceRecord;
using standin::TraceValue;

namespace {

std::string lineOf(const ExpectedCall& call) {
    std::string line = call.receiver + (call.receiver.empty() ? "" : " ") + call.operation + "(";
    const char* separator = "";
    for (const auto& argument : call.arguments) {
        line += separator + (argument ? render(*argument) : "...");
        separator = ", ";
    }
    return line + (call.answers ? ") = ..." : ")");
}

bool matches(const ExpectedCall& call, const TraceRecord& record) {
    if (call.receiver != record.receiver || call.operation != record.operation) return false;
    if (call.answers != record.result.has_value()) return false;
    if (call.arguments.size() != record.arguments.size()) return false;
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        const auto& expected = call.arguments[i];
        if (expected && render(*expected) != render(record.arguments[i])) return false;
    }
    return true;
}

}  // namespace

bool TraceWorld::isNext(const char* operation) const {
    return !isAtEnd() && trace_[next_].operation == operation;
}

Reply TraceWorld::call(const ExpectedCall& call) {
    const std::string place = "call " + std::to_string(next_ + 1) + ": ";
    if (isAtEnd()) throw TraceEnds(place + "none, where must be " + lineOf(call));
    const TraceRecord& record = trace_[next_];
    if (!matches(call, record)) {
        throw Mismatch(place + render(record) + ", where must be " + lineOf(call));
    }
    ++next_;
    Reply reply{record.result.value_or(TraceValue{}), std::nullopt};
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        if (!call.arguments[i]) reply.filledIn = record.arguments[i];
    }
    return reply;
}

}  // namespace quillet::test
