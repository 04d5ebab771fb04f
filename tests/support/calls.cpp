// SPDX-License-Identifier: MIT
#include "tests/support/calls.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "tests/support/under_test.h"

namespace quillet::test {

using standin::TraceRecord;
using standin::TraceValue;

namespace {

std::string render(const TraceValue& value) {
    // Of the record's own rendering, just this value.
    TraceRecord record;
    record.arguments = {value};
    const std::string json = toJSON(record);
    const std::size_t begin = json.find('[') + 1;
    return json.substr(begin, json.rfind(']') - begin);
}

/// What a line says up to the arguments: the receiver, if there is one, and the operation.
std::string callOf(const std::string& line) { return line.substr(0, line.find('(')); }

/// The operation that a line is about.
std::string operationOf(const std::string& line) {
    const std::string call = callOf(line);
    return call.substr(call.rfind(' ') + 1);
}

/// Where a token stands among the arguments; -1 for an operation that has none.
int tokenIndex(const std::string& operation) {
    if (operation == "notify_register_check") return 1;
    static constexpr std::array withToken = {"notify_check", "notify_get_state", "notify_set_state",
                                             "notify_cancel"};
    return std::ranges::find(withToken, operation) == withToken.end() ? -1 : 0;
}

}  // namespace

/// Tokens are named in the order of their appearance, "t1" first: their numbers mean nothing.
std::string CallLog::argument(const TraceRecord& record, std::size_t index) {
    const TraceValue& value = record.arguments[index];
    const auto* const token = std::get_if<std::int64_t>(&value);
    if (token == nullptr || *token < 0 || tokenIndex(record.operation) != static_cast<int>(index)) {
        return render(value);
    }
    return tokens_.try_emplace(*token, "t" + std::to_string(tokens_.size() + 1)).first->second;
}

void CallLog::add(const TraceRecord& record) {
    std::string line = record.receiver.empty() ? "" : record.receiver + " ";
    line += record.operation;
    if (!isReported(line)) return;
    line += "(";
    for (std::size_t i = 0; i < record.arguments.size(); ++i) {
        line += (i == 0 ? "" : ", ") + argument(record, i);
    }
    line += ")";
    if (record.result) line += " = " + render(*record.result);
    calls_.push_back(std::move(line));
    times_.push_back(record.time);
}

void CallLog::clear() {
    calls_.clear();
    times_.clear();
    tokens_.clear();
}

Calls reported(const Calls& expected) {
    Calls lines;
    std::ranges::copy_if(expected, std::back_inserter(lines),
                         [](const std::string& line) { return isReported(callOf(line)); });
    return lines;
}

Calls only(const Calls& calls, const std::vector<std::string>& operations) {
    Calls lines;
    std::ranges::copy_if(calls, std::back_inserter(lines), [&](const std::string& line) {
        return std::ranges::find(operations, operationOf(line)) != operations.end();
    });
    return lines;
}

}  // namespace quillet::test
