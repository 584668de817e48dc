// Dates and times inside texts, and the calendar. The form does not depend on the machine's settings.

#include "server/values/formatting.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace tessary::server {
namespace {

constexpr std::chrono::sys_days dayZero = std::chrono::year{1899} / 12 / 30;
constexpr int secondsPerDay = 86400;
constexpr double firstDay = -657434, lastDay = 2958465;  // of the years 100 and 9999

// Before day zero the fraction still counts forward from midnight: -1.25 is six in the morning of 29 December
// 1899.
double daysOf(std::int64_t day, std::int64_t second) {
    const double fraction = static_cast<double>(second) / secondsPerDay;
    return static_cast<double>(day) + (day < 0 ? -fraction : fraction);
}

std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

struct Token {
    enum class Kind { number, word, mark } kind;
    Text text;       // word, in upper case
    int number = 0;  // number
    int digits = 0;  // number
    char16_t mark = 0;
};

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

bool isLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// Nothing for a text with something in it that no date has. Blanks and commas only separate.
std::vector<Token> tokensOf(TextView text) {
    constexpr std::size_t longestDate = 64;
    std::vector<Token> tokens;
    if (text.size() > longestDate)
        return {};
    for (std::size_t at = 0; at < text.size();) {
        const char16_t unit = text[at];
        if (isDigit(unit)) {
            Token token{Token::Kind::number, {}, 0, 0, 0};
            for (; at < text.size() && isDigit(text[at]) && token.digits < 5; ++at, ++token.digits)
                token.number = token.number * 10 + (text[at] - u'0');
            tokens.push_back(token);
        } else if (isLetter(unit)) {
            Token token{Token::Kind::word, {}, 0, 0, 0};
            for (; at < text.size() && isLetter(text[at]); ++at)
                token.text += static_cast<char16_t>(text[at] & ~0x20);
            tokens.push_back(token);
        } else if (TextView(u"/-.:").find(unit) != TextView::npos) {
            tokens.push_back({Token::Kind::mark, {}, 0, 0, unit});
            ++at;
        } else if (unit == u' ' || unit == u',') {
            ++at;
        } else {
            return {};
        }
    }
    return tokens;
}

// The number of the month, 0 for another word. Three letters or more of its English name are enough.
int monthOf(TextView word) {
    static constexpr TextView months[] = {u"JANUARY",   u"FEBRUARY", u"MARCH",    u"APRIL",
                                          u"MAY",       u"JUNE",     u"JULY",     u"AUGUST",
                                          u"SEPTEMBER", u"OCTOBER",  u"NOVEMBER", u"DECEMBER"};
    if (word.size() < 3)
        return 0;
    const auto found =
        std::find_if(std::begin(months), std::end(months), [&](TextView m) { return m.starts_with(word); });
    return found == std::end(months) ? 0 : static_cast<int>(found - months) + 1;
}

// Reads tokens in order; every read... fails without moving when something else stands there.
class DateReader {
public:
    explicit DateReader(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    bool read(Date& date) {
        bool hasDate = false, hasTime = false;
        while (at_ < tokens_.size()) {
            if (!hasTime && isTimeNext())
                hasTime = readTime();
            else if (!hasDate)
                hasDate = readDay();
            else
                return false;
            if (failed_)
                return false;
            // "2010-07-04T13:45"
            if (hasDate && !hasTime && isWord(0, u"T") && isNumber(1))
                ++at_;
        }
        if (!hasDate && !hasTime)
            return false;
        if (hasDate && !isOnCalendar())
            return false;
        date = dateOf(parts_);
        return isValidDate(date);
    }

private:
    bool isNumber(std::size_t ahead) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].kind == Token::Kind::number;
    }
    bool isMark(std::size_t ahead, char16_t mark) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].mark == mark;
    }
    bool isWord(std::size_t ahead, TextView word) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].kind == Token::Kind::word &&
               tokens_[at_ + ahead].text == word;
    }
    bool isHalfOfDay(std::size_t ahead) const { return isWord(ahead, u"AM") || isWord(ahead, u"PM"); }
    bool isTimeNext() const { return isNumber(0) && (isMark(1, u':') || isHalfOfDay(1)); }
    bool isMonthAt(std::size_t ahead) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].kind == Token::Kind::word &&
               monthOf(tokens_[at_ + ahead].text) != 0;
    }
    int month(std::size_t ahead) const { return monthOf(tokens_[at_ + ahead].text); }
    const Token& token(std::size_t ahead) const { return tokens_[at_ + ahead]; }

    // 13:45, 13:45:30, 1 PM, 1:45 PM ...
    bool readTime() {
        parts_.hour = tokens_[at_++].number;
        if (isMark(0, u':') && isNumber(1)) {
            parts_.minute = token(1).number;
            at_ += 2;
            if (isMark(0, u':') && isNumber(1)) {
                parts_.second = token(1).number;
                at_ += 2;
            }
        }
        if (isHalfOfDay(0)) {
            failed_ = parts_.hour < 1 || parts_.hour > 12;
            parts_.hour = parts_.hour % 12 + (isWord(0, u"PM") ? 12 : 0);
            ++at_;
        }
        failed_ = failed_ || parts_.hour > 23 || parts_.minute > 59 || parts_.second > 59;
        return true;
    }

    bool readDay() {
        failed_ = !(readThreeNumbers() || readWithMonthName());
        return true;
    }

    // 7/4/2010, 2010-07-04, 4.7.2010
    bool readThreeNumbers() {
        if (!isNumber(0) || !isNumber(2) || !isNumber(4))
            return false;
        const char16_t mark = token(1).mark;
        if (mark == u':' || !isMark(1, mark) || !isMark(3, mark) || mark == 0)
            return false;
        const Token first = token(0), second = token(2), third = token(4);
        at_ += 5;
        if (first.digits > 2)
            return setDay(first, second.number, third.number);
        // With points the day stands first, as where points are used.
        const bool dayFirst = mark == u'.' || first.number > 12;
        return dayFirst ? setDay(third, second.number, first.number)
                        : setDay(third, first.number, second.number);
    }

    // 4 Jul 2010, 4-Jul-2010, Jul 4 2010
    bool readWithMonthName() {
        if (isNumber(0) && isMark(1, u'-') && isMonthAt(2) && isMark(3, u'-') && isNumber(4)) {
            setDay(token(4), month(2), token(0).number);
            at_ += 5;
        } else if (isNumber(0) && isMonthAt(1) && isNumber(2)) {
            setDay(token(2), month(1), token(0).number);
            at_ += 3;
        } else if (isMonthAt(0) && isNumber(1) && isNumber(2)) {
            setDay(token(2), month(0), token(1).number);
            at_ += 3;
        } else {
            return false;
        }
        return true;
    }

    // Two digits stand for the years from 1930 to 2029.
    bool setDay(const Token& year, int month, int day) {
        parts_.year = year.digits > 2 ? year.number : year.number + (year.number < 30 ? 2000 : 1900);
        parts_.month = month;
        parts_.day = day;
        return true;
    }

    bool isOnCalendar() const {
        if (parts_.month < 1 || parts_.day < 1)
            return false;
        return (std::chrono::year{parts_.year} / parts_.month / parts_.day).ok();
    }

    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    DateParts parts_{1899, 12, 30, 0, 0, 0};
    bool failed_ = false;
};

}  // namespace

bool parseDate(TextView text, Date& date) {
    return DateReader(tokensOf(text)).read(date);
}

DateParts partsOf(Date date) {
    const double days = std::isnan(date.days) ? 0 : std::clamp(date.days, firstDay, lastDay + 1);
    const double whole = std::trunc(days);
    std::int64_t day = static_cast<std::int64_t>(whole);
    std::int64_t second = std::llround(std::abs(days - whole) * secondsPerDay);
    day += second / secondsPerDay;
    second %= secondsPerDay;
    const std::chrono::year_month_day calendar{dayZero + std::chrono::days{day}};
    const int time = static_cast<int>(second);
    return {static_cast<int>(calendar.year()),
            static_cast<int>(static_cast<unsigned>(calendar.month())),
            static_cast<int>(static_cast<unsigned>(calendar.day())),
            time / 3600,
            time / 60 % 60,
            time % 60};
}

Date dateOf(const DateParts& parts) {
    const std::int64_t months = std::int64_t{parts.year} * 12 + parts.month - 1;
    // The calendar below ends before the range of int does; what is clamped lies far outside of all valid
    // dates.
    const auto year = static_cast<int>(std::clamp<std::int64_t>(floorDivide(months, 12), -30000, 30000));
    const auto month = static_cast<unsigned>(months - floorDivide(months, 12) * 12 + 1);
    const std::chrono::sys_days first = std::chrono::year{year} / std::chrono::month{month} / 1;
    const std::int64_t seconds =
        std::int64_t{parts.hour} * 3600 + std::int64_t{parts.minute} * 60 + parts.second;
    const std::int64_t daysOver = floorDivide(seconds, secondsPerDay);
    const std::int64_t day = (first - dayZero).count() + parts.day - 1 + daysOver;
    return {daysOf(day, seconds - daysOver * secondsPerDay)};
}

bool isValidDate(Date date) {
    return date.days > firstDay - 1 && date.days < lastDay + 1;
}

// Midnight is left out after a day, and day zero before another time.
std::string formatDate(Date date) {
    const DateParts parts = partsOf(date);
    const bool hasTime = parts.hour != 0 || parts.minute != 0 || parts.second != 0;
    const bool hasDay = !hasTime || std::abs(date.days) >= 1;
    char day[40] = "", time[40] = "";
    if (hasDay)
        std::snprintf(day, sizeof day, "%d/%d/%d", parts.month, parts.day, parts.year);
    if (hasTime)
        std::snprintf(time, sizeof time, "%d:%02d:%02d %s", (parts.hour + 11) % 12 + 1, parts.minute,
                      parts.second, parts.hour < 12 ? "AM" : "PM");
    return std::string(day) + (hasDay && hasTime ? " " : "") + time;
}

}  // namespace tessary::server
