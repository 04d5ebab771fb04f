// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// The date in `text`, exactly "[-]YYYY-MM-DDTHH:MM:SSZ" in the Gregorian calendar, whose years may
/// have fewer or more digits, up to 2147483647; the year before 1 is 0. Nothing when there is no
/// such second.
std::optional<Date> parseDate(std::string_view text);

/// What formatDate writes at most, in bytes.
inline constexpr std::size_t maxDateSize = 27;

/// Writes the whole second that `date` falls in, as parseDate takes it, to `text`, which has room
/// for maxDateSize bytes, and returns where it ends. A date outside those years gives the first or
/// the last second of them; what is no number gives the first second of year 1.
char* formatDate(char* text, Date date);

}  // namespace quillet::standin
