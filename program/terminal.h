// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillet {

/// When what is printed has colours: by itself means on a terminal.
enum class Color { automatic, always, never };

/// What people call them, in that order: "auto", "always", "never".
const std::vector<std::string>& colorWords();

/// The one of these words. Throws UsageError for any other.
Color color(std::string_view word);

/// Whether what goes to the file `descriptor` has colours. By itself a terminal has, unless it is
/// called "dumb" (TERM) or the user wants none (NO_COLOR is there and not empty).
bool hasColors(Color when, int descriptor);

/// `text` of unknown origin as a terminal shows it: "\x1b" and the like in place of control
/// characters, which it would obey.
std::string printable(std::string_view text);

/// `text` with its headings, lines without an indent that end with a colon, in bold.
std::string withBoldHeadings(const std::string& text);

}  // namespace quillet
