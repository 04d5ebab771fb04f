// SPDX-License-Identifier: MIT
#include "springboard/trace_diff.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>

#include "springboard/trace_format.h"

namespace quillet {

using standin::TraceRecord;
using standin::TraceValue;
using Side = DiffLine::Side;

namespace {

constexpr char someTime[] = "...";

/// Where a token stands among the arguments of a call; nothing when it has none.
std::optional<std::size_t> tokenPlace(const std::string& operation) {
    if (operation == "notify_register_check") return 1;
    constexpr std::array others = {"notify_check", "notify_get_state", "notify_set_state",
                                   "notify_cancel"};
    if (std::ranges::find(others, operation) != others.end()) return 0;
    return std::nullopt;
}

class Comparable {
public:
    std::string line(TraceRecord record) {
        const auto place = tokenPlace(record.operation);
        if (place && *place < record.arguments.size()) nameToken(record.arguments[*place]);
        if (record.operation == "runUntilDate:") record.arguments = {someTime};
        if (record.operation == "dateWithTimeIntervalSinceNow:") record.result = someTime;
        return std::string(2 * static_cast<std::size_t>(record.depth), ' ') + callText(record);
    }

private:
    void nameToken(TraceValue& token) {
        const auto* const number = std::get_if<std::uint64_t>(&token);
        if (number == nullptr) return;
        const std::string name = "t" + std::to_string(names_.size() + 1);
        token = names_.try_emplace(*number, name).first->second;
    }

    std::map<std::uint64_t, std::string> names_;
};

using Lines = std::vector<std::string>;

/// How long the longest common part of what two texts hold from each pair of lines on is.
class CommonLengths {
public:
    CommonLengths(std::span<const std::string> first, std::span<const std::string> second)
        : width_{second.size() + 1}, lengths_((first.size() + 1) * width_) {
        for (std::size_t i = first.size(); i-- > 0;) {
            for (std::size_t j = second.size(); j-- > 0;) {
                length(i, j) = first[i] == second[j] ? length(i + 1, j + 1) + 1
                                                     : std::max(length(i + 1, j), length(i, j + 1));
            }
        }
    }

    std::uint32_t& length(std::size_t i, std::size_t j) { return lengths_[i * width_ + j]; }

private:
    std::size_t width_;
    std::vector<std::uint32_t> lengths_;
};

/// More pairs of lines than that would take too much memory.
constexpr std::size_t mostPairs = std::size_t{1} << 24U;

void addAll(std::vector<DiffLine>& diff, Side side, std::span<const std::string> lines) {
    for (const std::string& line : lines) diff.push_back({side, line});
}

/// Adds what lies between the lines that both texts begin and end with.
void addMiddle(std::vector<DiffLine>& diff, std::span<const std::string> first,
               std::span<const std::string> second) {
    if ((first.size() + 1) * (second.size() + 1) <= mostPairs) {
        CommonLengths common{first, second};
        std::size_t i = 0;
        std::size_t j = 0;
        while (i < first.size() && j < second.size()) {
            if (first[i] == second[j]) {
                diff.push_back({Side::both, first[i++]});
                ++j;
            } else if (common.length(i + 1, j) >= common.length(i, j + 1)) {
                diff.push_back({Side::first, first[i++]});
            } else {
                diff.push_back({Side::second, second[j++]});
            }
        }
        first = first.subspan(i);
        second = second.subspan(j);
    }
    addAll(diff, Side::first, first);
    addAll(diff, Side::second, second);
}

char markOf(Side side) {
    if (side == Side::both) return ' ';
    return side == Side::first ? '-' : '+';
}

/// Whether one of the lines up to `context` away from `place` differs.
bool isShown(const std::vector<DiffLine>& diff, std::size_t place, std::size_t context) {
    const std::size_t begin = place - std::min(place, context);
    const std::size_t end = std::min(diff.size(), place + context + 1);
    return std::ranges::any_of(std::span{diff}.subspan(begin, end - begin),
                               [](const DiffLine& line) { return line.side != Side::both; });
}

}  // namespace

std::vector<std::string> comparableCalls(const ReadTrace& trace) {
    std::vector<std::string> lines;
    Comparable comparable;
    for (const TracedCall& call : trace.calls) lines.push_back(comparable.line(call.record));
    return lines;
}

std::vector<DiffLine> diffOf(const Lines& first, const Lines& second) {
    const std::size_t least = std::min(first.size(), second.size());
    std::size_t before = 0;
    while (before < least && first[before] == second[before]) ++before;
    std::size_t behind = 0;
    while (behind < least - before &&
           first[first.size() - 1 - behind] == second[second.size() - 1 - behind]) {
        ++behind;
    }
    const std::span<const std::string> all{first};
    const std::span<const std::string> others{second};
    std::vector<DiffLine> diff;
    addAll(diff, Side::both, all.first(before));
    addMiddle(diff, all.subspan(before, all.size() - before - behind),
              others.subspan(before, others.size() - before - behind));
    addAll(diff, Side::both, all.last(behind));
    return diff;
}

Lines hunksOf(const std::vector<DiffLine>& diff, std::size_t context) {
    Lines lines;
    std::size_t call = 1;
    bool follows = false;
    for (std::size_t i = 0; i < diff.size(); ++i) {
        const bool shows = isShown(diff, i, context);
        if (shows && !follows) lines.push_back("@@ call " + std::to_string(call));
        if (shows) lines.push_back(markOf(diff[i].side) + (' ' + diff[i].text));
        follows = shows;
        if (diff[i].side != Side::second) ++call;
    }
    return lines;
}

}  // namespace quillet
