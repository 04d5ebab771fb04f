// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "platform/object.h"
#include "platform/standin/device/clock.h"

namespace quillet::standin {

class Instance;

/// An argument or a result: null, flag, number or text. Objects without a text or a number stand
/// as a description such as "<NSMutableDictionary: 4 entries>".
using TraceValue =
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string>;

/// One platform operation that the bundle called.
struct TraceRecord {
    /// Seconds since the device's process began.
    double time = 0;
    /// The class that a message went to ("SBMediaController"), or its instance
    /// ("<SBMediaController>"). Empty for C functions.
    std::string receiver;
    std::string operation;
    /// In order. An out argument stands as what the call left in it, null if it left nothing.
    std::vector<TraceValue> arguments;
    std::optional<TraceValue> result;
    /// How many calls it is made in: those that last and have not ended yet.
    int depth = 0;
    /// Whether others may be made in it, and its end will be told.
    bool lasts = false;
    /// False when the device could not do what it was asked for.
    bool isDone = true;
};

TraceValue toTrace(const Object& object);
TraceValue toTrace(std::string_view text);

template <class Number>
requires std::is_arithmetic_v<Number> TraceValue toTrace(Number number) {
    if constexpr (std::is_same_v<Number, bool> || std::is_floating_point_v<Number>) {
        return number;
    } else if constexpr (std::is_signed_v<Number>) {
        return std::int64_t{number};
    } else {
        return std::uint64_t{number};
    }
}

/// The object that a plain pointer refers to; null for a null pointer.
struct ObjectAt {
    const void* object;
};
TraceValue toTrace(ObjectAt place);
TraceValue toTrace(const Instance& instance);

/// A pointer to who knows what: null, or "<pointer>".
struct Pointer {
    const void* address;
};
TraceValue toTrace(Pointer pointer);

inline TraceValue toTrace(const char* text) { return toTrace(std::string_view{text}); }
inline TraceValue toTrace(std::nullptr_t) { return {}; }

/// For embedders who look at what they trace in their own way.
template <std::same_as<TraceValue> Value>
TraceValue toTrace(Value value) {
    return value;
}

/// Null for nothing.
template <class Value>
TraceValue toTrace(const std::optional<Value>& value) {
    return value ? toTrace(*value) : TraceValue{};
}

/// The class of an instance as the receiver of a message.
struct ClassOf {
    const Instance& instance;
};

std::string receiverName(const Instance& instance);
std::string receiverName(ClassOf receiver);
inline std::string receiverName(std::string_view name) { return std::string{name}; }

/// What an operation answered, to stand behind its arguments.
template <class Result>
struct Answer {
    const Result& result;
};

template <class Result>
Answer(const Result&) -> Answer<Result>;

/// Whether an operation without an answer was done, to stand behind its arguments.
struct Done {
    bool isDone;
};

/// Hands every operation to a sink as it is called. While there is none that costs one comparison:
/// what its parts are is looked at for a sink only.
class Trace {
public:
    using Sink = std::function<void(TraceRecord)>;
    /// Hears of the end of a call that lasts, with its record and how long it took, in seconds.
    using EndSink = std::function<void(const TraceRecord&, double)>;

    /// A call that is under way: what is recorded until it goes was called in it.
    class Lasting {
    public:
        /// Null, and no record, while there is no sink.
        Lasting(Trace* trace, std::optional<TraceRecord> record);
        ~Lasting();
        Lasting(const Lasting&) = delete;
        Lasting& operator=(const Lasting&) = delete;

    private:
        Trace* trace_;
        std::optional<TraceRecord> record_;
    };

    /// `clock`, which gives the records their time, must outlive the trace.
    explicit Trace(const Clock& clock) : clock_{clock} {}

    /// The sinks must not throw, and are not to be changed while a call lasts.
    void setSink(Sink sink, EndSink endSink = {});

    /// Records a call of a C function: its name, its arguments and, where there is one, its Answer.
    template <class... Parts>
    void function(std::string_view name, const Parts&... parts) {
        message(std::string_view{}, name, parts...);
    }

    /// Records a message: the receiver (an instance, its ClassOf, or the name of a class), the
    /// selector, the arguments and, where there is one, the Answer.
    template <class Receiver, class... Parts>
    void message(const Receiver& receiver, std::string_view selector, const Parts&... parts) {
        if (sink_) sink_(recordOf(receiver, selector, parts...));
    }

    /// The same for a message that waits, or calls the bundle: it lasts until the answer goes.
    template <class Receiver, class... Parts>
    [[nodiscard]] Lasting lastingMessage(const Receiver& receiver, std::string_view selector,
                                         const Parts&... parts) {
        if (!sink_) return {nullptr, std::nullopt};
        TraceRecord record = recordOf(receiver, selector, parts...);
        record.lasts = true;
        sink_(record);
        return {this, std::move(record)};
    }

private:
    template <class Receiver, class... Parts>
    TraceRecord recordOf(const Receiver& receiver, std::string_view name, const Parts&... parts) {
        TraceRecord record;
        record.time = clock_.now();
        record.receiver = receiverName(receiver);
        record.operation = name;
        record.depth = depth_;
        (add(record, parts), ...);
        return record;
    }
    static void add(TraceRecord& record, const auto& argument) {
        record.arguments.push_back(toTrace(argument));
    }
    static void add(TraceRecord& record, const Done& done) { record.isDone = done.isDone; }
    template <class Result>
    static void add(TraceRecord& record, const Answer<Result>& answer) {
        record.result = toTrace(answer.result);
    }

    const Clock& clock_;
    Sink sink_;
    EndSink endSink_;
    int depth_ = 0;
};

}  // namespace quillet::standin
