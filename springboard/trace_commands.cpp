// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "program/output.h"
#include "program/terminal.h"
#include "springboard/arguments.h"
#include "springboard/commands.h"
#include "springboard/timeline.h"
#include "springboard/trace_diff.h"
#include "springboard/trace_reader.h"

namespace quillet {

namespace {

constexpr std::size_t contextLines = 3;

/// The same line in the colour of its side.
std::string painted(const std::string& line) {
    if (line.starts_with('-')) return "\033[31m" + line + "\033[m";
    if (line.starts_with('+')) return "\033[32m" + line + "\033[m";
    return line.starts_with('@') ? "\033[36m" + line + "\033[m" : line;
}

/// Throws std::runtime_error when the calls of the two files differ, after it has printed where.
void printDiff(const std::string& first, const std::string& second, Color color) {
    const ReadTrace before = readTrace(first);
    const ReadTrace after = readTrace(second);
    const auto diff = diffOf(comparableCalls(before), comparableCalls(after));
    auto lines = hunksOf(diff, contextLines);
    if (lines.empty()) return;
    const auto head = [](const char* mark, const std::string& file, const ReadTrace& trace) {
        return mark + file + (trace.origin.empty() ? "" : ": " + trace.origin);
    };
    lines.insert(lines.begin(), {head("--- ", first, before), head("+++ ", second, after)});
    const bool isColored = hasColors(color, STDOUT_FILENO);
    for (const std::string& line : lines) std::cout << (isColored ? painted(line) : line) << '\n';
    finishOutput();
    const auto differs = [](const DiffLine& line) { return line.side != DiffLine::Side::both; };
    throw std::runtime_error("the traces differ in " +
                             std::to_string(std::ranges::count_if(diff, differs)) + " lines");
}

void addDiff(CLI::App& group, Options& options) {
    struct Files {
        std::string first;
        std::string second;
    };
    const auto files = std::make_shared<Files>();
    CLI::App& diff = addCommand(
        group, "diff", "show where the calls of two traces differ", options,
        [files](const Options& chosen) { printDiff(files->first, files->second, chosen.color); });
    addNeededWord(diff, "A", "two traces", "a trace in JSON, or - for standard input",
                  [files](auto& file) { files->first = file; });
    addNeededWord(diff, "B", "two traces", "another one",
                  [files](auto& file) { files->second = file; });
    offerFiles(diff, "A");
    offerFiles(diff, "B");
    explain(diff, R"(Times and the numbers of tokens do not count: they differ from run to run.
Calls that are made in others, as a refresh in a wait, are indented.

Exit status:
  0 when all calls are the same, in the same order; 1 when not
)");
}

void writeFile(const std::string& file, const std::string& text) {
    std::ofstream stream{file};
    if (!(stream << text << std::flush)) throw std::runtime_error(file + ": cannot be written");
}

void addTimeline(CLI::App& app, Options& options) {
    struct Asked {
        std::string file = "-";
        std::string picture;
    };
    const auto asked = std::make_shared<Asked>();
    CLI::App& timeline = addCommand(
        app, "timeline", "show a trace in JSON on a line: its waits cut, its calls magnified",
        options, [asked](const Options& chosen) {
            const Timeline laidOut = layOut(readTrace(asked->file), timelineColumns);
            if (!asked->picture.empty()) return writeFile(asked->picture, timelineSVG(laidOut));
            print(timelineText(laidOut, hasColors(chosen.color, STDOUT_FILENO)));
        });
    addWord(timeline, "FILE.trace", "a trace",
            "what --trace=FILE.trace has written (default: standard input)",
            [asked](auto& file) { asked->file = file; });
    addOption(timeline, "--svg", "OUT", "write a picture to this file instead, as SVG",
              [asked](auto& file) { asked->picture = nonEmpty("--svg", file); });
    offerFiles(timeline, "FILE.trace");
    offerFiles(timeline, "--svg");
    explain(timeline,
            R"(A strip shows all of it true to scale: "#" where something is called. Below it,
each burst of calls has a scale of its own, and "//500 ms//" stands for half a
second in which nothing was called. "+" is a call, "|" one that leads to a word.
What happens while the switch waits, as a refresh, hangs on ":".

Example:
  springboard --trace=- flip | springboard timeline
)");
}

}  // namespace

void addTraceCommands(CLI::App& app, Options& options) {
    CLI::App& trace =
        addGroup(app, "trace", "work with the traces that --trace has written", options);
    addDiff(trace, options);
    addTimeline(app, options);
}

}  // namespace quillet
