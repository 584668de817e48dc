// DATEADD, YEAR, WEEKDAY and so on. Weekdays are numbered from 1, which is Sunday unless another first day is
// given.

#include "server/sqlite/functions_support.h"
#include "server/values/formatting.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tessary::server::functions {

namespace {

constexpr double secondsPerDay = 86400;

Date checked(Date date, TextView function) {
    if (!isValidDate(date))
        raise(ErrorCode::invalidArgument,
              Text(function) + u": the date lies outside of the years 100 to 9999.");
    return date;
}

// Days and fraction of a day on a line without the bend at day zero.
double onLine(Date date) {
    const double day = std::trunc(date.days);
    return day + std::abs(date.days - day);
}

Date fromLine(double days) {
    const double day = std::floor(days);
    const double fraction = days - day;
    return {day < 0 ? day - fraction : day + fraction};
}

std::int64_t dayOf(Date date) {
    return static_cast<std::int64_t>(std::trunc(date.days));
}

std::int64_t secondsOf(Date date) {
    return std::llround(onLine(date) * secondsPerDay);
}

std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// The first day of the week: 1 is Sunday; 0, what the system has, is Sunday too.
std::int64_t firstDayOf(Arguments arguments, std::size_t place, TextView function) {
    if (arguments.size() <= place)
        return 1;
    const std::int64_t first = wholeOf(arguments[place]);
    if (first < 0 || first > 7)
        raise(ErrorCode::invalidArgument,
              Text(function) + u": the first day of the week is a number from 1 to 7.");
    return std::max<std::int64_t>(first, 1);
}

// Day zero was a Saturday.
int weekdayOf(std::int64_t day, std::int64_t first) {
    return static_cast<int>(((day + 7 - first) % 7 + 7) % 7 + 1);
}

std::int64_t weekStart(std::int64_t day, std::int64_t first) {
    return day - weekdayOf(day, first) + 1;
}

std::int64_t newYear(int year) {
    return dayOf(dateOf({year, 1, 1, 0, 0, 0}));
}

// The day that week 1 of the year begins on. kind 1: the week of January 1st, 2: the first with four days, 3:
// the first full one.
std::int64_t firstWeekStart(int year, std::int64_t first, std::int64_t kind) {
    const std::int64_t start = weekStart(newYear(year), first);
    const std::int64_t daysInYear = start + 7 - newYear(year);
    const bool counts = kind == 2 ? daysInYear >= 4 : kind == 3 ? daysInYear == 7 : true;
    return counts ? start : start + 7;
}

int weekOf(Date date, std::int64_t first, std::int64_t kind) {
    const std::int64_t day = dayOf(date);
    const int year = partsOf(date).year;
    std::int64_t start = firstWeekStart(year, first, kind);
    if (day < start)
        start = firstWeekStart(year - 1, first, kind);
    else if (kind > 1 && day >= firstWeekStart(year + 1, first, kind))
        start = firstWeekStart(year + 1, first, kind);
    return static_cast<int>((day - start) / 7 + 1);
}

enum class Interval { year, quarter, month, dayOfYear, day, weekday, week, hour, minute, second };

Interval intervalOf(const Value& value, TextView function) {
    static constexpr std::array<std::pair<TextView, Interval>, 10> intervals = {{
        {u"yyyy", Interval::year},
        {u"q", Interval::quarter},
        {u"m", Interval::month},
        {u"y", Interval::dayOfYear},
        {u"d", Interval::day},
        {u"w", Interval::weekday},
        {u"ww", Interval::week},
        {u"h", Interval::hour},
        {u"n", Interval::minute},
        {u"s", Interval::second},
    }};
    const Text name = textOf(value);
    const auto found =
        std::ranges::find_if(intervals, [&](const auto& interval) { return sameName(interval.first, name); });
    if (found == intervals.end())
        raise(ErrorCode::invalidArgument, Text(function) + u": there is no interval '" + name + u"'.");
    return found->second;
}

// A month later than January 31st is the last day of February.
Date monthsLater(Date date, double months) {
    DateParts parts = partsOf(date);
    const auto total =
        static_cast<std::int64_t>(parts.year) * 12 + parts.month - 1 + static_cast<std::int64_t>(months);
    parts.year = static_cast<int>(floorDivide(total, 12));
    parts.month = static_cast<int>(total - floorDivide(total, 12) * 12) + 1;
    const std::int64_t lastDay = dayOf(dateOf({parts.year, parts.month + 1, 0, 0, 0, 0})) -
                                 dayOf(dateOf({parts.year, parts.month, 0, 0, 0, 0}));
    parts.day = std::min(parts.day, static_cast<int>(lastDay));
    return dateOf(parts);
}

Value dateadd(Arguments a) {
    const Interval interval = intervalOf(a[0], u"DateAdd");
    const double count = std::trunc(numberOf(a[1]));
    const Date date = dateFrom(a[2]);
    if (!(std::abs(count) < 1e12))
        raise(ErrorCode::invalidArgument, u"DateAdd: the number of intervals is too large.");
    const auto months = [&](double each) {
        if (std::abs(count * each) > 200000)
            raise(ErrorCode::invalidArgument, u"DateAdd: the date lies outside of the years 100 to 9999.");
        return checked(monthsLater(date, count * each), u"DateAdd");
    };
    const auto seconds = [&](double each) {
        const double line = (static_cast<double>(secondsOf(date)) + count * each) / secondsPerDay;
        return checked(fromLine(line), u"DateAdd");
    };
    switch (interval) {
        case Interval::year: return months(12);
        case Interval::quarter: return months(3);
        case Interval::month: return months(1);
        case Interval::week: return checked(fromLine(onLine(date) + count * 7), u"DateAdd");
        case Interval::hour: return seconds(3600);
        case Interval::minute: return seconds(60);
        case Interval::second: return seconds(1);
        default: return checked(fromLine(onLine(date) + count), u"DateAdd");
    }
}

// How many borders of intervals lie between the dates.
Value datediff(Arguments a) {
    const Interval interval = intervalOf(a[0], u"DateDiff");
    const Date from = dateFrom(a[1]);
    const Date to = dateFrom(a[2]);
    const std::int64_t first = firstDayOf(a, 3, u"DateDiff");
    const DateParts one = partsOf(from);
    const DateParts other = partsOf(to);
    const std::int64_t years = other.year - one.year;
    const auto result = [](std::int64_t count) { return wholeOrNumber(static_cast<double>(count)); };
    const auto seconds = [&](std::int64_t each) {
        return result(floorDivide(secondsOf(to), each) - floorDivide(secondsOf(from), each));
    };
    switch (interval) {
        case Interval::year: return result(years);
        case Interval::quarter: return result(years * 4 + (other.month - 1) / 3 - (one.month - 1) / 3);
        case Interval::month: return result(years * 12 + other.month - one.month);
        case Interval::weekday: return result((dayOf(to) - dayOf(from)) / 7);
        case Interval::week: return result((weekStart(dayOf(to), first) - weekStart(dayOf(from), first)) / 7);
        case Interval::hour: return seconds(3600);
        case Interval::minute: return seconds(60);
        case Interval::second: return seconds(1);
        default: return result(dayOf(to) - dayOf(from));
    }
}

Value datepart(Arguments a) {
    const Date date = dateFrom(a[1]);
    const DateParts parts = partsOf(date);
    const std::int64_t first = firstDayOf(a, 2, u"DatePart");
    switch (intervalOf(a[0], u"DatePart")) {
        case Interval::year: return parts.year;
        case Interval::quarter: return (parts.month - 1) / 3 + 1;
        case Interval::month: return parts.month;
        case Interval::dayOfYear: return static_cast<std::int32_t>(dayOf(date) - newYear(parts.year) + 1);
        case Interval::day: return parts.day;
        case Interval::weekday: return weekdayOf(dayOf(date), first);
        case Interval::week: return weekOf(date, first, a.size() > 3 ? wholeOf(a[3]) : 1);
        case Interval::hour: return parts.hour;
        case Interval::minute: return parts.minute;
        default: return parts.second;
    }
}

int partArgument(const Value& value, TextView function) {
    const std::int64_t part = wholeOf(value);
    if (part < -10'000'000 || part > 10'000'000)
        raise(ErrorCode::invalidArgument, Text(function) + u": " + textOf(value) + u" is too large.");
    return static_cast<int>(part);
}

// Years of one or two digits lie between 1930 and 2029.
Value dateserial(Arguments a) {
    int year = partArgument(a[0], u"DateSerial");
    if (year >= 0 && year < 100)
        year += year < 30 ? 2000 : 1900;
    return checked(
        dateOf({year, partArgument(a[1], u"DateSerial"), partArgument(a[2], u"DateSerial"), 0, 0, 0}),
        u"DateSerial");
}

Value timeserial(Arguments a) {
    return checked(dateOf({1899, 12, 30, partArgument(a[0], u"TimeSerial"), partArgument(a[1], u"TimeSerial"),
                           partArgument(a[2], u"TimeSerial")}),
                   u"TimeSerial");
}

Value year(Arguments a) {
    return partsOf(dateFrom(a[0])).year;
}
Value month(Arguments a) {
    return partsOf(dateFrom(a[0])).month;
}
Value day(Arguments a) {
    return partsOf(dateFrom(a[0])).day;
}
Value hour(Arguments a) {
    return partsOf(dateFrom(a[0])).hour;
}
Value minute(Arguments a) {
    return partsOf(dateFrom(a[0])).minute;
}
Value second(Arguments a) {
    return partsOf(dateFrom(a[0])).second;
}
Value weekday(Arguments a) {
    return weekdayOf(dayOf(dateFrom(a[0])), firstDayOf(a, 1, u"Weekday"));
}
Value cdate(Arguments a) {
    return dateFrom(a[0]);
}
Value dateOnly(Arguments a) {
    return Date{std::trunc(dateFrom(a[0]).days)};
}
Value timeOnly(Arguments a) {
    const double days = dateFrom(a[0]).days;
    return Date{std::abs(days - std::trunc(days))};
}

// From a Julian day to a date of whole seconds.
Value now(Arguments a) {
    constexpr double julianDayZero = 2415018.5;
    return fromLine(std::floor((numberOf(a[0]) - julianDayZero) * secondsPerDay + 0.0005) / secondsPerDay);
}

constexpr Function table[] = {
    {"ts_cdate", 1, cdate},
    {"ts_dateadd", 3, dateadd},
    {"ts_datediff", -1, datediff},
    {"ts_date_of", 1, dateOnly},
    {"ts_datepart", -1, datepart},
    {"ts_dateserial", 3, dateserial},
    {"ts_datevalue", 1, dateOnly},
    {"ts_day", 1, day},
    {"ts_hour", 1, hour},
    {"ts_minute", 1, minute},
    {"ts_month", 1, month},
    {"ts_now", 1, now},
    {"ts_second", 1, second},
    {"ts_time_of", 1, timeOnly},
    {"ts_timeserial", 3, timeserial},
    {"ts_timevalue", 1, timeOnly},
    {"ts_weekday", -1, weekday},
    {"ts_year", 1, year},
};

}  // namespace

int datePart(TextView interval, Date date) {
    const Value arguments[] = {Text(interval), date};
    return std::get<std::int32_t>(datepart(arguments));
}

std::span<const Function> dateFunctions() {
    return table;
}

}  // namespace tessary::server::functions
