// SPDX-License-Identifier: MIT
#include "springboard/trace_writer.h"

#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace quillet {

using standin::TraceRecord;

namespace {

constexpr std::string_view documentEnd = "\n]\n";

}  // namespace

TraceWriter::TraceWriter(const std::filesystem::path& file, TraceFormat format,
                         const TraceOrigin& origin)
    : format_{format}, chrome_{origin}, stream_{file.empty() ? &std::cerr : &std::cout} {
    if (!file.empty() && file != "-") {
        file_.open(file);
        if (!file_) throw std::runtime_error(file.string() + ": cannot be written");
        stream_ = &file_;
    }
    if (format_ == TraceFormat::chrome) {
        addEvents(chrome_.name());
    } else {
        addLine(format_ == TraceFormat::text ? toText(origin) : toLine(toJSON(origin)));
    }
}

TraceWriter::~TraceWriter() { finish(); }

void TraceWriter::begin(const TraceRecord& record) {
    if (format_ == TraceFormat::chrome) {
        addEvents(chrome_.begin(record));
    } else {
        addLine(format_ == TraceFormat::text ? toText(record) : toLine(toJSON(record)));
    }
}

void TraceWriter::end(const TraceRecord& record, double duration) {
    if (format_ == TraceFormat::chrome) {
        addEvents(chrome_.end(record, duration));
    } else {
        addLine(format_ == TraceFormat::text ? endToText(record, duration)
                                             : toLine(endToJSON(record, duration)));
    }
}

/// A file that can be sought in holds a whole document at any time, however the process ends: its
/// end is written with each event, and the next one takes its place.
void TraceWriter::addEvents(const std::string& events) {
    const bool isWhole = stream_ == &file_ && file_.tellp() >= 0;
    if (isWhole && !isFirst_) file_.seekp(-std::streamoff{documentEnd.size()}, std::ios::cur);
    *stream_ << (isFirst_ ? "[\n" : ",\n") + events + std::string{isWhole ? documentEnd : ""}
             << std::flush;
    isFirst_ = false;
    isFinished_ = isWhole;
}

void TraceWriter::addLine(const std::string& line) { *stream_ << line + '\n' << std::flush; }

void TraceWriter::finish() {
    if (format_ != TraceFormat::chrome || isFinished_) return;
    *stream_ << documentEnd << std::flush;
    isFinished_ = true;
}

}  // namespace quillet
