// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "program/terminal.h"

namespace quillet {

// What programs say of themselves, within 80 columns.

/// `text` in lines, with a line's end behind the last, of which all but the first begin with
/// `indent` blanks: as many as stand before `text`. A word that is too long stays whole.
std::string wrapped(std::string_view text, std::size_t indent);

/// A term of a help, and what it means.
using HelpRow = std::pair<std::string, std::string>;

/// The rows behind an empty line and their heading. Nothing when there are none.
std::string helpTable(const std::string& heading, const std::vector<HelpRow>& rows);

/// A help as it goes to the file `descriptor`: its headings in bold where that has colours.
std::string helpFor(int descriptor, Color when, const std::string& help);

}  // namespace quillet
