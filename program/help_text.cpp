// SPDX-License-Identifier: MIT
#include "program/help_text.h"

#include <algorithm>

namespace quillet {

namespace {

constexpr std::size_t lineWidth = 80;
/// Terms that are longer have a line of their own.
constexpr std::size_t maxTermWidth = 18;

}  // namespace

std::string wrapped(std::string_view text, std::size_t indent) {
    std::string lines;
    while (indent + text.size() > lineWidth) {
        // The blank that the line ends before; behind a word that is too long, the next one.
        std::size_t blank = indent < lineWidth ? text.rfind(' ', lineWidth - indent) : 0;
        if (blank == 0 || blank == text.npos) blank = text.find(' ', 1);
        if (blank == text.npos) break;
        lines.append(text.substr(0, blank)).append("\n").append(indent, ' ');
        text.remove_prefix(blank + 1);
    }
    return lines.append(text) + '\n';
}

std::string helpTable(const std::string& heading, const std::vector<HelpRow>& rows) {
    if (rows.empty()) return "";
    std::size_t widest = 0;
    for (const auto& [term, meaning] : rows) {
        if (term.size() <= maxTermWidth) widest = std::max(widest, term.size());
    }
    const std::size_t indent = widest + 4;
    std::string text = '\n' + heading + ":\n";
    for (const auto& [term, meaning] : rows) {
        text += "  " + term;
        text += term.size() <= widest ? std::string(indent - 2 - term.size(), ' ')
                                      : '\n' + std::string(indent, ' ');
        text += wrapped(meaning, indent);
    }
    return text;
}

std::string helpFor(int descriptor, Color when, const std::string& help) {
    return hasColors(when, descriptor) ? withBoldHeadings(help) : help;
}

}  // namespace quillet
