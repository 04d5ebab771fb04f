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

struct CalendarDate {
    std::int64_t year;
    month inYear;
    day inMonth;
};

constexpr year_month_day withinACycle(CalendarDate date) {
    return year{static_cast<int>(date.year % cycleYears)} / date.inYear / date.inMonth;
}

constexpr seconds sinceEpoch(CalendarDate date) {
    return sys_days{withinACycle(date)} - epoch + date.year / cycleYears * cycle;
}

constexpr CalendarDate calendarDate(sys_days date) {
    const std::int64_t cycles = date.time_since_epoch() / cycle;
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

/// The number of two digits at `index`.
unsigned numberAt(std::string_view text, std::size_t index) {
    const auto digit = [&](std::size_t place) { return static_cast<unsigned>(text[place] - '0'); };
    return digit(index) * 10 + digit(index + 1);
}

/// Takes [-]digits off the front. Nothing when there are none, or too many of them.
std::optional<std::int64_t> takeYear(std::string_view& text) {
    std::int64_t number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc{} || number < -lastYear || number > lastYear) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end.ptr - text.data()));
    return number;
}

/// Writes `mark` and two digits.
char* putPart(char* text, char mark, unsigned number) {
    *text++ = mark;
    *text++ = static_cast<char>('0' + number / 10);
    *text++ = static_cast<char>('0' + number % 10);
    return text;
}

/// Writes four digits or more, after a minus if there is one.
char* putYear(char* text, std::int64_t number) {
    constexpr std::size_t digits = 10;
    if (number < 0) *text++ = '-';
    const std::int64_t magnitude = std::abs(number);
    for (std::int64_t least = 1000; least > std::max<std::int64_t>(magnitude, 1); least /= 10) {
        *text++ = '0';
    }
    return std::to_chars(text, text + digits, magnitude).ptr;
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
    const CalendarDate date{*number, month{numberAt(text, 1)}, day{numberAt(text, 4)}};
    const unsigned hour = numberAt(text, 7);
    const unsigned minute = numberAt(text, 10);
    const unsigned second = numberAt(text, 13);
    if (!withinACycle(date).ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return Date{inDouble(sinceEpoch(date) + seconds{(hour * 60 + minute) * 60 + second})};
}

char* formatDate(char* text, Date date) {
    const auto time = epoch + wholeSeconds(date);
    const auto midnight = std::chrono::floor<days>(time);
    const CalendarDate today = calendarDate(midnight);
    const auto second = static_cast<unsigned>((time - midnight).count());
    text = putYear(text, today.year);
    text = putPart(text, '-', static_cast<unsigned>(today.inYear));
    text = putPart(text, '-', static_cast<unsigned>(today.inMonth));
    text = putPart(text, 'T', second / 3600);
    text = putPart(text, ':', second / 60 % 60);
    text = putPart(text, ':', second % 60);
    *text++ = 'Z';
    return text;
}

}  // namespace quillet::standin
