// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <vector>

#include "springboard/timeline.h"

namespace quillet {

namespace {

using Marks = std::vector<Timeline::Mark>;

constexpr char boldText[] = "\033[1m";
constexpr char dimText[] = "\033[2m";
constexpr char cyanText[] = "\033[36m";

class TimelineText {
public:
    TimelineText(const Timeline& timeline, bool isColored)
        : timeline_{timeline}, isColored_{isColored} {}

    std::string text() {
        if (!timeline_.origin.empty()) add(timeline_.origin);
        add(std::to_string(timeline_.calls) + " calls in " + shortTime(timeline_.duration) + ", " +
            shortTime(timeline_.waited) + " of it in waits");
        add("");
        add(painted(boldText, "True to scale:"));
        addStrip();
        add("");
        add(painted(boldText, "Waits cut, calls magnified:"));
        for (const Timeline::Line& line : timeline_.lines) addLine(line);
        return text_;
    }

private:
    void add(const std::string& line) { text_ += line + '\n'; }

    std::string painted(const char* color, const std::string& text) const {
        return isColored_ ? color + text + "\033[m" : text;
    }

    void addStrip() {
        std::string strip;
        for (const bool isCalled : timeline_.strip) strip += isCalled ? '#' : '.';
        add(strip);
        const std::string end = shortTime(timeline_.duration);
        add("0" + std::string(strip.size() - std::min(strip.size(), 1 + end.size()), ' ') + end);
    }

    void addLine(const Timeline::Line& line) {
        std::string lengths;
        std::string axis;
        Marks marks;
        for (const Timeline::Burst& burst : line) {
            const std::string length = shortTime(burst.end - burst.begin);
            lengths.resize(std::max(lengths.size(), burst.column), ' ');
            if (lengths.empty() || lengths.back() == ' ') lengths += length + ' ';
            addBurst(axis, burst);
            marks.insert(marks.end(), burst.marks.begin(), burst.marks.end());
        }
        add(painted(dimText, lengths.substr(0, lengths.find_last_not_of(' ') + 1)));
        add(axis);
        while (!marks.empty()) {
            addLabel(marks);
            marks.pop_back();
        }
    }

    static void addBurst(std::string& axis, const Timeline::Burst& burst) {
        axis.resize(burst.column, ' ');
        axis.resize(burst.column + burst.width, '-');
        for (const std::size_t column : burst.calls) axis[column] = '+';
        for (const Timeline::Mark& mark : burst.marks) axis[mark.column] = '|';
        if (burst.gap == 0) return;
        const std::string gap = shortTime(burst.gap);
        const std::size_t blanks = cutWidth - 4 - std::min(cutWidth - 4, gap.size());
        axis += "//" + std::string(blanks / 2, ' ') + gap + std::string(blanks - blanks / 2, ' ') +
                "//";
    }

    /// The word for the last mark; lines lead down to those before it.
    void addLabel(const Marks& marks) {
        const Timeline::Mark& last = marks.back();
        std::string row(last.column, ' ');
        for (const Timeline::Mark& mark : marks) {
            if (mark.column < row.size()) row[mark.column] = mark.isInWait ? ':' : '|';
        }
        const std::string label = last.label + (last.isInWait ? ", in the wait" : "");
        add(painted(dimText, row) + (last.isInWait ? painted(cyanText, label) : label) + ' ' +
            painted(dimText, shortTime(last.time)));
    }

    const Timeline& timeline_;
    bool isColored_;
    std::string text_;
};

}  // namespace

std::string timelineText(const Timeline& timeline, bool isColored) {
    return TimelineText{timeline, isColored}.text();
}

}  // namespace quillet
