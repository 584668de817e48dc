// FORMAT: which form a pattern has, and the forms that have names. What a pattern means for numbers and for
// dates is in functions_format_number.cpp and functions_format_date.cpp.

#include "server/sqlite/functions_format.h"
#include "server/sqlite/functions_support.h"

#include <algorithm>
#include <array>

namespace tessary::server::functions {

namespace {

struct NamedPattern {
    TextView name;
    TextView pattern;
};

constexpr std::array<NamedPattern, 5> numberPatterns = {{
    {u"Fixed", u"0.00"},
    {u"Standard", u"#,##0.00"},
    {u"Percent", u"0.00%"},
    {u"Scientific", u"0.00E+00"},
    {u"Currency", u"$#,##0.00;($#,##0.00)"},
}};

constexpr std::array<NamedPattern, 7> datePatterns = {{
    {u"General Date", u"c"},
    {u"Long Date", u"dddd, mmmm dd, yyyy"},
    {u"Medium Date", u"dd-mmm-yy"},
    {u"Short Date", u"m/d/yyyy"},
    {u"Long Time", u"h:nn:ss AM/PM"},
    {u"Medium Time", u"hh:nn AM/PM"},
    {u"Short Time", u"hh:nn"},
}};

struct NamedAnswers {
    TextView name, yes, no;
};
constexpr std::array<NamedAnswers, 3> answerPatterns = {
    {{u"Yes/No", u"Yes", u"No"}, {u"True/False", u"True", u"False"}, {u"On/Off", u"On", u"Off"}}};

template <class Table>
auto named(const Table& table, TextView name) {
    const auto found = std::ranges::find_if(table, [&](const auto& row) { return sameName(row.name, name); });
    return found == table.end() ? nullptr : &*found;
}

// Letters of a date, and no digits of a number, outside of quotes.
bool isDatePattern(TextView pattern) {
    bool date = false;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const char16_t c = pattern[at];
        if (c == u'"')
            at = std::min(pattern.find(u'"', at + 1), pattern.size());
        else if (c == u'\\')
            ++at;
        else if (c == u'0' || c == u'#')
            return false;
        else if (TextView(u"yYmMdDhHnNsSqQwWcCtT").find(c) != TextView::npos)
            date = true;
    }
    return date;
}

Value formattedText(const Text& text, TextView pattern) {
    if (pattern == u">" || pattern == u"<")
        return changedCase(text, pattern == u">");
    return text;
}

Value formatted(const Value& value, TextView pattern) {
    const auto* text = std::get_if<Text>(&value);
    Date date;
    double number = 0;
    if (const auto* answers = named(answerPatterns, pattern)) {
        if (text && !parseNumber(*text, number))
            return *text;
        return Text((text ? number : numberOf(value)) != 0 ? answers->yes : answers->no);
    }
    const auto* datePattern = named(datePatterns, pattern);
    if (datePattern || (!named(numberPatterns, pattern) && isDatePattern(pattern))) {
        if (text && !parseDate(*text, date))
            return *text;
        return formatDate(text ? date : dateFrom(value), datePattern ? datePattern->pattern : pattern);
    }
    if (text && !parseNumber(*text, number))
        return formattedText(*text, pattern);
    if (sameName(pattern, u"General Number"))
        return textOf(value);
    const auto* numberPattern = named(numberPatterns, pattern);
    return formatNumber(numberOf(value), numberPattern ? numberPattern->pattern : pattern);
}

// Null reads as the empty text.
Value format(Arguments a) {
    if (isNull(a[0]))
        return Text();
    const Text pattern = shownText(a[1]);
    return pattern.empty() ? shownText(a[0]) : formatted(a[0], pattern);
}

Value formatOfDate(Arguments a) {
    if (isNull(a[0]))
        return Text();
    const Text pattern = shownText(a[1]);
    return pattern.empty() ? textOf(dateFrom(a[0])) : formatted(a[0], pattern);
}

int wholeBetween(const Value& value, int most, TextView function) {
    const std::int64_t number = wholeOf(value);
    if (number < 1 || number > most)
        raise(ErrorCode::invalidArgument, Text(function) + u": there is no number " + textOf(value) + u".");
    return static_cast<int>(number);
}

// The name, or its first three letters.
Value shortened(TextView name, Arguments a) {
    return Text(a.size() > 1 && numberOf(a[1]) != 0 ? name.substr(0, 3) : name);
}

Value nameOfMonth(Arguments a) {
    return shortened(monthName(wholeBetween(a[0], 12, u"MonthName")), a);
}

// The third argument says which day is 1; 0 and none at all: Sunday.
Value nameOfWeekday(Arguments a) {
    const bool given = a.size() > 2 && wholeOf(a[2]) != 0;
    const int first = given ? wholeBetween(a[2], 7, u"WeekdayName") : 1;
    return shortened(dayName((wholeBetween(a[0], 7, u"WeekdayName") + first - 2) % 7 + 1), a);
}

constexpr Function table[] = {{"ts_format", 2, format, false},
                              {"ts_format_date", 2, formatOfDate, false},
                              {"ts_monthname", -1, nameOfMonth},
                              {"ts_weekdayname", -1, nameOfWeekday}};

}  // namespace

std::span<const Function> formatFunctions() {
    return table;
}

}  // namespace tessary::server::functions
