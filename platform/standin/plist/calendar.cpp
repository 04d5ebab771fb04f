// SPDX-License-Identifier: MIT
#include "platform/standin/plist/calendar.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace quillet::standin {
namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr std::int64_t lastYear = std::numeric_limits<std::int32_t>::max();

/// The calendar repeats itself after so many years: what the library's years cannot reach is
/// reckoned in those that they can.
constexpr std::int64_t cycleYears = 400;
constexpr days cycle{146097};

constexpr sys_days epoch = year{2001} / month{1} / day{1};

constexpr std::int64_t floorOfQuotient(std::int64_t number, std::int64_t divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

struct CalendarDate {
    std::int64_t year;
    month inYear;
    day inMonth;
};

constexpr year_month_day withinACycle(CalendarDate date) {
    const auto rest = date.year - floorOfQuotient(date.year, cycleYears) * cycleYears;
    return year{static_cast<int>(rest)} / date.inYear / date.inMonth;
}

constexpr seconds sinceEpoch(CalendarDate date) {
    const std::int64_t cycles = floorOfQuotient(date.year, cycleYears);
    return sys_days{withinACycle(date)} - epoch + cycles * cycle;
}

constexpr CalendarDate calendarDate(sys_days date) {
    const std::int64_t cycles = floorOfQuotient(date.time_since_epoch() / days{1}, cycle / days{1});
    const year_month_day rest{date - cycles * cycle};
    return {static_cast<int>(rest.year()) + cycles * cycleYears, rest.month(), rest.day()};
}

constexpr seconds firstSecond = sinceEpoch({-lastYear, month{1}, day{1}});
constexpr seconds lastSecond = sinceEpoch({lastYear + 1, month{1}, day{1}}) - seconds{1};
constexpr seconds forNoNumber = sinceEpoch({1, month{1}, day{1}});

constexpr double inDouble(seconds time) { return static_cast<double>(time.count()); }

bool hasShape(std::string_view text, std::string_view shape) {
    const auto fits = [](char c, char expected) {
        return expected == 'd' ? c >= '0' && c <= '9' : c == expected;
    };
    return std::equal(text.begin(), text.end(), shape.begin(), shape.end(), fits);
}

/// The number in `text`, which holds digits only.
unsigned numberIn(std::string_view text) {
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// Takes [-]digits off the front. Nothing when there are none, or too many of them.
std::optional<std::int64_t> takeYear(std::string_view& text) {
    std::int64_t number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc{} || number < -lastYear || number > lastYear) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end.ptr - text.data()));
    return number;
}

std::string padded(std::uint64_t number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

std::string yearText(std::int64_t number) {
    return (number < 0 ? "-" : "") + padded(static_cast<std::uint64_t>(std::abs(number)), 4);
}

seconds wholeSeconds(Date date) {
    if (std::isnan(date.seconds)) return forNoNumber;
    if (date.seconds < inDouble(firstSecond)) return firstSecond;
    if (date.seconds >= inDouble(lastSecond)) return lastSecond;
    return seconds{static_cast<seconds::rep>(std::floor(date.seconds))};
}

}  // namespace

std::optional<Date> parseDate(std::string_view text) {
    const auto number = takeYear(text);
    if (!number || !hasShape(text, "-dd-ddTdd:dd:ddZ")) return std::nullopt;
    const CalendarDate date{*number, month{numberIn(text.substr(1, 2))},
                            day{numberIn(text.substr(4, 2))}};
    const unsigned hour = numberIn(text.substr(7, 2));
    const unsigned minute = numberIn(text.substr(10, 2));
    const unsigned second = numberIn(text.substr(13, 2));
    if (!withinACycle(date).ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return Date{inDouble(sinceEpoch(date) + seconds{(hour * 60 + minute) * 60 + second})};
}

std::string formatDate(Date date) {
    const auto time = epoch + wholeSeconds(date);
    const auto midnight = std::chrono::floor<days>(time);
    const CalendarDate today = calendarDate(midnight);
    const auto second = static_cast<unsigned>((time - midnight).count());
    return yearText(today.year) + '-' + padded(static_cast<unsigned>(today.inYear), 2) + '-' +
           padded(static_cast<unsigned>(today.inMonth), 2) + 'T' + padded(second / 3600, 2) + ':' +
           padded(second / 60 % 60, 2) + ':' + padded(second % 60, 2) + 'Z';
}

}  // namespace quillet::standin
