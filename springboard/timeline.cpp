// SPDX-License-Identifier: MIT
#include "springboard/timeline.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "springboard/steps.h"

namespace quillet {

using Mark = Timeline::Mark;
using Burst = Timeline::Burst;

namespace {

/// Where nothing happens for longer, in seconds, the line is cut. A file is written sooner.
constexpr double longestGap = 0.05;
constexpr std::size_t leastBurstWidth = 3;

/// The steps of a trace, in the order of their times.
class Replay {
public:
    std::vector<Step> steps(const ReadTrace& trace) {
        for (const TracedCall& call : trace.calls) {
            endThose(call.record.depth);
            add(reader_.begin(call.record));
            if (call.duration) open_.push_back(&call);
        }
        endThose(0);
        std::ranges::stable_sort(steps_, {}, &Step::time);
        return steps_;
    }

private:
    /// Ends the calls that last and in which one of that depth is not made.
    void endThose(int depth) {
        while (!open_.empty() && open_.back()->record.depth >= depth) {
            add(reader_.end(open_.back()->record, *open_.back()->duration));
            open_.pop_back();
        }
    }

    void add(const std::vector<Step>& steps) {
        steps_.insert(steps_.end(), steps.begin(), steps.end());
    }

    StepReader reader_;
    std::vector<const TracedCall*> open_;
    std::vector<Step> steps_;
};

/// The preferences are one mark; waits show as cuts.
std::vector<Mark> marksOf(const ReadTrace& trace) {
    std::vector<Mark> marks;
    const double begin = trace.calls.front().record.time;
    for (const Step& step : Replay{}.steps(trace)) {
        const bool isDecision = step.kind == Step::Kind::decision;
        const bool isFirst = marks.empty() || marks.back().label != "preferences";
        if (step.kind == Step::Kind::deed || (isDecision && isFirst)) {
            marks.push_back(
                {step.time - begin, 0, step.depth > 0, isDecision ? "preferences" : step.label});
        }
    }
    return marks;
}

/// When something was called or ended.
std::vector<double> timesOf(const ReadTrace& trace) {
    std::vector<double> times;
    const double begin = trace.calls.front().record.time;
    for (const TracedCall& call : trace.calls) {
        times.push_back(call.record.time - begin);
        if (call.duration) times.push_back(call.record.time + *call.duration - begin);
    }
    std::ranges::sort(times);
    return times;
}

std::vector<Burst> burstsOf(const std::vector<double>& times) {
    std::vector<Burst> bursts;
    for (const double time : times) {
        if (bursts.empty() || time - bursts.back().end > longestGap) {
            if (!bursts.empty()) bursts.back().gap = time - bursts.back().end;
            bursts.push_back({.begin = time, .end = time, .calls = {}, .marks = {}});
        }
        bursts.back().end = time;
    }
    return bursts;
}

std::size_t naturalWidth(const Burst& burst) {
    return std::max(leastBurstWidth, 2 * burst.marks.size() + 1);
}

/// Which column of a burst, whose own are set, a time falls into.
std::size_t columnOf(const Burst& burst, double time) {
    const double length = burst.end - burst.begin;
    const double part = length > 0 ? (time - burst.begin) / length : 0;
    return burst.column +
           static_cast<std::size_t>(std::lround(part * static_cast<double>(burst.width - 1)));
}

/// Gives the bursts of a line, which have their natural widths, all columns.
void stretch(Timeline::Line& line, std::size_t columns) {
    std::size_t natural = 0;
    for (const Burst& burst : line) natural += burst.width;
    const std::size_t room = columns - std::min(columns, (line.size() - 1) * cutWidth);
    std::size_t column = 0;
    for (Burst& burst : line) {
        burst.width = std::max(burst.width * room / natural, std::size_t{1});
        burst.column = column;
        column += burst.width + cutWidth;
    }
}

std::vector<Timeline::Line> linesOf(std::vector<Burst> bursts, std::size_t columns) {
    std::vector<Timeline::Line> lines(1);
    std::size_t taken = 0;
    for (Burst& burst : bursts) {
        burst.width = std::min(naturalWidth(burst), columns);
        if (!lines.back().empty() && taken + cutWidth + burst.width > columns) {
            lines.emplace_back();
            taken = 0;
        }
        taken += burst.width + (lines.back().empty() ? 0 : cutWidth);
        lines.back().push_back(std::move(burst));
    }
    for (Timeline::Line& line : lines) stretch(line, columns);
    return lines;
}

/// The burst in which something at `time` happened.
Burst& burstAt(std::vector<Burst>& bursts, double time) {
    const auto later = std::ranges::upper_bound(bursts, time, {}, &Burst::begin);
    return later == bursts.begin() ? *later : *(later - 1);
}

void place(Burst& burst, const std::vector<double>& times) {
    for (const double time : times) {
        if (time < burst.begin || time > burst.end) continue;
        const std::size_t column = columnOf(burst, time);
        if (burst.calls.empty() || burst.calls.back() != column) burst.calls.push_back(column);
    }
    for (Mark& mark : burst.marks) mark.column = columnOf(burst, mark.time);
}

double waitedIn(const ReadTrace& trace) {
    double waited = 0;
    for (const auto& [record, duration] : trace.calls) {
        const bool isRefresh = record.operation == "stateDidChangeForSwitchIdentifier:";
        if (record.depth == 0 && !isRefresh) waited += duration.value_or(0);
    }
    return waited;
}

}  // namespace

std::string shortTime(double seconds) {
    const bool isShort = seconds < 1;
    const double number = isShort ? seconds * 1000 : seconds;
    std::ostringstream text;
    text << std::fixed << std::setprecision(number < 9.95 ? 1 : 0) << number;
    return text.str() + (isShort ? " ms" : " s");
}

Timeline layOut(const ReadTrace& trace, std::size_t columns) {
    const std::vector<double> times = timesOf(trace);
    Timeline timeline{.origin = trace.origin,
                      .calls = trace.calls.size(),
                      .duration = times.back(),
                      .waited = waitedIn(trace),
                      .strip = std::vector<bool>(columns),
                      .lines = {}};
    const Burst whole{.end = timeline.duration, .width = columns, .calls = {}, .marks = {}};
    for (const double time : times) timeline.strip[columnOf(whole, time)] = true;
    std::vector<Burst> bursts = burstsOf(times);
    for (const Mark& mark : marksOf(trace)) burstAt(bursts, mark.time).marks.push_back(mark);
    timeline.lines = linesOf(std::move(bursts), columns);
    for (Timeline::Line& line : timeline.lines) {
        for (Burst& burst : line) place(burst, times);
    }
    return timeline;
}

}  // namespace quillet
