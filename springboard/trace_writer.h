// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/standin/device/trace.h"
#include "springboard/chrome_trace.h"
#include "springboard/trace_format.h"
#include "springboard/trace_origin.h"

namespace quillet {

/// Writes a trace as it comes, each call at once: a reader may follow it while the switch runs.
class TraceWriter {
public:
    /// Writes the first record. `file` is "-" for standard output, empty for standard error. Throws
    /// std::runtime_error when it cannot be opened.
    TraceWriter(const std::filesystem::path& file, TraceFormat format, const TraceOrigin& origin);
    ~TraceWriter();
    TraceWriter(const TraceWriter&) = delete;
    TraceWriter& operator=(const TraceWriter&) = delete;

    void begin(const standin::TraceRecord& record);
    void end(const standin::TraceRecord& record, double duration);
    /// Ends the document, where the format has an end. Nothing may follow.
    void finish();
    /// Whether all was written so far.
    bool isWritten() const { return stream_->good(); }

private:
    void addEvents(const std::string& events);
    void addLine(const std::string& line);

    TraceFormat format_;
    ChromeTrace chrome_;
    std::ofstream file_;
    std::ostream* stream_;
    bool isFirst_ = true;
    bool isFinished_ = false;
};

}  // namespace quillet
