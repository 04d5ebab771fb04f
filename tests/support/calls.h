// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/standin/device/trace.h"

namespace quillet::test {

/// Platform operations as lines such as `<SBMediaController> setRingerMuted:(true)`,
/// `notify_post("a.name") = 0`, in order.
using Calls = std::vector<std::string>;

/// A value as it stands in such a line. A real number has as few digits as its precision, single
/// where that holds it, needs to read it back.
std::string render(const standin::TraceValue& value);

/// All of a record: its time in seconds, then such a line, with tokens as they are.
std::string render(const standin::TraceRecord& record);

/// Writes down what a device's bundle calls.
class CallLog {
public:
    void add(const standin::TraceRecord& record);
    void clear();

    const Calls& calls() const { return calls_; }
    /// When each call was made, in seconds of the device's clock.
    const std::vector<double>& times() const { return times_; }

private:
    std::string argument(const standin::TraceRecord& record, std::size_t index);

    Calls calls_;
    std::vector<double> times_;
    std::map<std::int64_t, std::string> tokens_;
};

/// The lines of `calls` whose operation is one of `operations`.
Calls only(const Calls& calls, const std::vector<std::string>& operations);

}  // namespace quillet::test
