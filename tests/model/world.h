// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/standin/device/trace.h"

namespace quillet::test {

/// A call that the switch has to make. An argument without a value is one that the call fills in,
/// or that may be anything.
struct ExpectedCall {
    std::string receiver;
    std::string operation;
    std::vector<std::optional<standin::TraceValue>> arguments;
    /// Whether the call has an answer.
    bool answers = false;
};

/// What comes of a call: its answer, and what it leaves in the argument that it fills in.
struct Reply {
    standin::TraceValue answer;
    std::optional<standin::TraceValue> filledIn;
};

/// All that is not the switch: what a model of the switch makes its calls to.
class World {
public:
    virtual ~World() = default;

    virtual Reply call(const ExpectedCall& call) = 0;

    /// Whether the switch's observer is called now, while a wait of the switch is under way.
    virtual bool callsObserver() = 0;

    /// Whether the instance of the indicator's class knows the message that is sent to it unasked.
    virtual bool takesActivate() = 0;
};

}  // namespace quillet::test
