// SPDX-License-Identifier: MIT
#include "program/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include "program/usage_error.h"

namespace quillet {

namespace {

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

const std::vector<std::string>& colorWords() {
    static const std::vector<std::string> words = {"auto", "always", "never"};
    return words;
}

Color color(std::string_view word) {
    const auto& words = colorWords();
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end()) {
        throw UsageError("neither auto nor always nor never: " + inQuotes(word));
    }
    return static_cast<Color>(found - words.begin());
}

bool hasColors(Color when, int descriptor) {
    if (when != Color::automatic) return when == Color::always;
    const std::string_view terminal = environment("TERM");
    return isatty(descriptor) == 1 && !terminal.empty() && terminal != "dumb" &&
           environment("NO_COLOR").empty();
}

std::string printable(std::string_view text) {
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::iscntrl(byte) == 0) {
            shown += c;
            continue;
        }
        constexpr std::string_view digits = "0123456789abcdef";
        shown.append("\\x").append({digits[byte >> 4U], digits[byte & 0xFU]});
    }
    return shown;
}

std::string withBoldHeadings(const std::string& text) {
    std::string bold;
    std::istringstream lines{text};
    for (std::string line; std::getline(lines, line);) {
        const bool isHeading = line.ends_with(':') && !line.starts_with(' ');
        bold += isHeading ? "\033[1m" + line + "\033[m\n" : line + '\n';
    }
    return bold;
}

}  // namespace quillet
