// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// Whether the date lies in the years 1 to 9999 of the Gregorian calendar.
bool isInCalendar(Date date);

/// The date in `text`, exactly "YYYY-MM-DDTHH:MM:SSZ". Nothing when there is no such second.
std::optional<Date> parseDate(std::string_view text);

/// The whole second that `date` falls in, as parseDate takes it. A date outside the calendar gives
/// the calendar's first or last second.
std::string formatDate(Date date);

}  // namespace quillet::standin
