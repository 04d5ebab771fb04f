// SPDX-License-Identifier: MIT
#include <algorithm>
#include <sstream>
#include <string>

#include "springboard/timeline.h"

namespace quillet {

namespace {

// In pixels.
constexpr int border = 24;
constexpr int columnWidth = 15;
constexpr int rowHeight = 20;
constexpr int axisHeight = 26;
/// For words behind the last column.
constexpr int labelRoom = 220;

/// Without variables, which not all viewers know.
constexpr char style[] = R"(<style>
text { font: 13px ui-sans-serif, system-ui, sans-serif; fill: #1d1d1f; }
.heading { font-weight: 600; }
.faint { fill: #6e6e73; }
.wait { fill: #9a5b00; }
.back { fill: #ffffff; }
.burst { fill: #e3ecf8; }
.call { fill: #2563a8; }
.cut { stroke: #9a5b00; stroke-width: 1.5; fill: none; stroke-dasharray: 2 4; }
.lead { stroke: #b4b4ba; }
.inside { stroke: #9a5b00; stroke-dasharray: 2 3; }
@media (prefers-color-scheme: dark) {
  text { fill: #f2f2f7; }
  .faint { fill: #a1a1a8; }
  .wait { fill: #f0b35a; }
  .back { fill: #1c1c1e; }
  .burst { fill: #26364a; }
  .call { fill: #7fb2f0; }
  .lead { stroke: #636368; }
  .cut, .inside { stroke: #f0b35a; }
}
</style>
)";

std::string escaped(const std::string& text) {
    std::string xml;
    for (const char c : text) {
        if (c == '&') xml += "&amp;";
        if (c == '<') xml += "&lt;";
        if (c != '&' && c != '<') xml += c;
    }
    return xml;
}

int leftOf(std::size_t column) { return border + static_cast<int>(column) * columnWidth; }
int middleOf(std::size_t column) { return leftOf(column) + columnWidth / 2; }

class TimelineSVG {
public:
    explicit TimelineSVG(const Timeline& timeline) : timeline_{timeline} {}

    std::string document() {
        addText(border, "heading", timeline_.origin.empty() ? "A trace" : timeline_.origin);
        addText(border, "faint",
                std::to_string(timeline_.calls) + " calls in " + shortTime(timeline_.duration) +
                    ", " + shortTime(timeline_.waited) + " of it in waits");
        y_ += rowHeight / 2;
        addText(border, "heading", "True to scale");
        addStrip();
        y_ += rowHeight / 2;
        addText(border, "heading", "Waits cut, calls magnified");
        for (const Timeline::Line& line : timeline_.lines) addLine(line);
        const int width = leftOf(timeline_.strip.size()) + labelRoom;
        const int height = y_ + border;
        std::ostringstream document;
        document << R"(<svg xmlns="http://www.w3.org/2000/svg" role="img" width=")" << width
                 << R"(" height=")" << height << R"(" viewBox="0 0 )" << width << ' ' << height
                 << "\">\n<title>A trace on a line</title>\n"
                 << style << R"(<rect class="back" width="100%" height="100%"/>)" << '\n'
                 << body_.str() << "</svg>\n";
        return document.str();
    }

private:
    void addTextAt(int x, int y, const char* cls, const std::string& text) {
        body_ << "<text class=\"" << cls << "\" x=\"" << x << "\" y=\"" << y << "\">"
              << escaped(text) << "</text>\n";
    }

    /// In a row of its own.
    void addText(int x, const char* cls, const std::string& text) {
        addTextAt(x, y_ + 14, cls, text);
        y_ += rowHeight;
    }

    void addBox(const char* cls, int x, int y, int width, int height) {
        body_ << "<rect class=\"" << cls << "\" x=\"" << x << "\" y=\"" << y << "\" width=\""
              << width << "\" height=\"" << height << "\"/>\n";
    }

    void addStroke(const std::string& cls, int x, int y, int toX, int toY) {
        body_ << "<path class=\"" << cls << "\" d=\"M" << x << ' ' << y << 'L' << toX << ' ' << toY
              << "\"/>\n";
    }

    void addStrip() {
        const std::size_t columns = timeline_.strip.size();
        addBox("burst", border, y_, static_cast<int>(columns) * columnWidth, 10);
        for (std::size_t column = 0; column < columns; ++column) {
            if (timeline_.strip[column]) addBox("call", middleOf(column) - 1, y_, 3, 10);
        }
        y_ += 10;
        addTextAt(border, y_ + 14, "faint", "0");
        addText(leftOf(columns) - 40, "faint", shortTime(timeline_.duration));
    }

    void addLine(const Timeline::Line& line) {
        for (const Timeline::Burst& burst : line) {
            addTextAt(leftOf(burst.column), y_ + 14, "faint", shortTime(burst.end - burst.begin));
        }
        y_ += rowHeight;
        std::vector<const Timeline::Mark*> marks;
        for (const Timeline::Burst& burst : line) {
            addBurst(burst);
            for (const Timeline::Mark& mark : burst.marks) marks.push_back(&mark);
        }
        y_ += axisHeight;
        const int top = y_;
        for (; !marks.empty(); marks.pop_back()) {
            const Timeline::Mark& mark = *marks.back();
            addStroke(mark.isInWait ? "lead inside" : "lead", middleOf(mark.column), top,
                      middleOf(mark.column), y_ + 8);
            addLabel(mark);
        }
        y_ += rowHeight / 2;
    }

    void addBurst(const Timeline::Burst& burst) {
        const int x = leftOf(burst.column);
        const int width = static_cast<int>(burst.width) * columnWidth;
        addBox("burst", x, y_, width, axisHeight);
        for (const std::size_t column : burst.calls) {
            addBox("call", middleOf(column) - 1, y_ + 5, 3, axisHeight - 10);
        }
        if (burst.gap == 0) return;
        const int end = x + width + static_cast<int>(cutWidth) * columnWidth;
        addStroke("cut", x + width + 8, y_ + axisHeight / 2, x + width + 42, y_ + axisHeight / 2);
        addTextAt(x + width + 50, y_ + axisHeight / 2 + 4, "wait", shortTime(burst.gap));
        addStroke("cut", end - 42, y_ + axisHeight / 2, end - 8, y_ + axisHeight / 2);
    }

    void addLabel(const Timeline::Mark& mark) {
        const std::string label = mark.label + (mark.isInWait ? ", in the wait" : "");
        body_ << "<text x=\"" << middleOf(mark.column) + 5 << "\" y=\"" << y_ + 14 << "\">"
              << escaped(label) << " <tspan class=\"faint\">" << shortTime(mark.time)
              << "</tspan></text>\n";
        y_ += rowHeight;
    }

    const Timeline& timeline_;
    std::ostringstream body_;
    int y_ = border / 2;
};

}  // namespace

std::string timelineSVG(const Timeline& timeline) { return TimelineSVG{timeline}.document(); }

}  // namespace quillet
