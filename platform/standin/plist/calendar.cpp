// SPDX-License-Identifier: MIT
#include "platform/standin/plist/calendar.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>

namespace quillet::standin {
namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days epoch = year{2001} / month{1} / day{1};

constexpr seconds sinceEpoch(sys_days date) { return date - epoch; }

constexpr seconds firstSecond = sinceEpoch(year{1} / month{1} / day{1});
constexpr seconds lastSecond = sinceEpoch(year{10000} / month{1} / day{1}) - seconds{1};

constexpr double inDouble(seconds time) { return static_cast<double>(time.count()); }

bool hasShape(std::string_view text) {
    constexpr std::string_view shape = "dddd-dd-ddTdd:dd:ddZ";
    if (text.size() != shape.size()) return false;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (shape[i] == 'd' ? !isDigit : text[i] != shape[i]) return false;
    }
    return true;
}

/// The number in `text`, which holds digits only.
unsigned numberIn(std::string_view text) {
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string padded(unsigned number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return std::string(width - digits.size(), '0') + digits;
}

seconds wholeSeconds(Date date) {
    if (!(date.seconds >= inDouble(firstSecond))) return firstSecond;
    if (date.seconds >= inDouble(lastSecond)) return lastSecond;
    return seconds{static_cast<seconds::rep>(std::floor(date.seconds))};
}

}  // namespace

bool isInCalendar(Date date) {
    return date.seconds >= inDouble(firstSecond) && date.seconds < inDouble(lastSecond) + 1;
}

std::optional<Date> parseDate(std::string_view text) {
    if (!hasShape(text)) return std::nullopt;
    const year_month_day date{year{static_cast<int>(numberIn(text.substr(0, 4)))},
                              month{numberIn(text.substr(5, 2))}, day{numberIn(text.substr(8, 2))}};
    const unsigned hour = numberIn(text.substr(11, 2));
    const unsigned minute = numberIn(text.substr(14, 2));
    const unsigned second = numberIn(text.substr(17, 2));
    if (date.year() < year{1} || !date.ok() || hour > 23 || minute > 59 || second > 59) {
        return std::nullopt;
    }
    return Date{inDouble(sinceEpoch(date) + seconds{(hour * 60 + minute) * 60 + second})};
}

std::string formatDate(Date date) {
    const auto time = epoch + wholeSeconds(date);
    const auto midnight = std::chrono::floor<days>(time);
    const year_month_day today{midnight};
    const auto second = static_cast<unsigned>((time - midnight).count());
    return padded(static_cast<unsigned>(static_cast<int>(today.year())), 4) + '-' +
           padded(static_cast<unsigned>(today.month()), 2) + '-' +
           padded(static_cast<unsigned>(today.day()), 2) + 'T' + padded(second / 3600, 2) + ':' +
           padded(second / 60 % 60, 2) + ':' + padded(second % 60, 2) + 'Z';
}

}  // namespace quillet::standin
