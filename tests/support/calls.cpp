// SPDX-License-Identifier: MIT
#include "tests/support/calls.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <iterator>

namespace quillet::test {

using standin::TraceRecord;
using standin::TraceValue;

namespace {

std::string digits(auto number) {
    std::array<char, 32> text;
    return {text.begin(), std::to_chars(text.begin(), text.end(), number).ptr};
}

struct Render {
    std::string operator()(std::monostate) const { return "null"; }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(std::integral auto number) const { return digits(number); }
    std::string operator()(double number) const {
        const auto single = static_cast<float>(number);
        return double{single} == number ? digits(single) : digits(number);
    }
    std::string operator()(const std::string& text) const { return '"' + text + '"'; }
};

/// A record whose arguments `argument` writes, each by its index.
template <class Argument>
std::string lineOf(const TraceRecord& record, Argument argument) {
    std::string line =
        (record.receiver.empty() ? "" : record.receiver + " ") + record.operation + "(";
    for (std::size_t i = 0; i < record.arguments.size(); ++i) {
        line += (i == 0 ? "" : ", ") + argument(i);
    }
    return line + ")" + (record.result ? " = " + render(*record.result) : "");
}

/// The operation that a line is about.
std::string operationOf(const std::string& line) {
    const std::string call = line.substr(0, line.find('('));
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

std::string render(const TraceValue& value) { return std::visit(Render{}, value); }

std::string render(const TraceRecord& record) {
    const auto argument = [&](std::size_t index) { return render(record.arguments[index]); };
    return render(record.time) + " " + lineOf(record, argument);
}

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
    calls_.push_back(lineOf(record, [&](std::size_t index) { return argument(record, index); }));
    times_.push_back(record.time);
}

void CallLog::clear() {
    calls_.clear();
    times_.clear();
    tokens_.clear();
}

Calls only(const Calls& calls, const std::vector<std::string>& operations) {
    Calls lines;
    std::ranges::copy_if(calls, std::back_inserter(lines), [&](const std::string& line) {
        return std::ranges::find(operations, operationOf(line)) != operations.end();
    });
    return lines;
}

}  // namespace quillet::test
