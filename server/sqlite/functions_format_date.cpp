#include "server/sqlite/functions_format.h"

#include "server/sqlite/functions_support.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tessary::server::functions {

namespace {

constexpr std::array<TextView, 12> monthNames = {u"January",   u"February", u"March",    u"April",
                                                 u"May",       u"June",     u"July",     u"August",
                                                 u"September", u"October",  u"November", u"December"};
constexpr std::array<TextView, 7> dayNames = {u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                              u"Thursday", u"Friday", u"Saturday"};
constexpr std::array<TextView, 5> halves = {u"AM/PM", u"am/pm", u"A/P", u"a/p", u"AMPM"};

Text padded(int number, std::size_t digits) {
    std::string text = std::to_string(number);
    if (text.size() < digits)
        text.insert(0, digits - text.size(), '0');
    return toText(text);
}

char16_t lower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

TextView halfOf(TextView half, bool morning) {
    if (half.size() == 3)
        return half.substr(morning ? 0 : 2, 1);
    if (half == u"AMPM")
        return morning ? u"AM" : u"PM";
    return half.substr(morning ? 0 : 3, 2);
}

class DateWriter {
public:
    DateWriter(Date date, TextView pattern) : date_(date), parts_(partsOf(date)), pattern_(pattern) {
        twelveHours_ =
            std::ranges::any_of(halves, [&](TextView half) { return pattern.find(half) != TextView::npos; });
    }

    Text write() {
        while (at_ < pattern_.size())
            writeToken();
        return std::move(text_);
    }

private:
    void writeToken() {
        for (TextView half : halves) {
            if (pattern_.substr(at_).starts_with(half)) {
                text_ += halfOf(half, parts_.hour < 12);
                at_ += half.size();
                return;
            }
        }
        const char16_t c = pattern_[at_];
        if (c == u'"') {
            const std::size_t end = std::min(pattern_.find(u'"', at_ + 1), pattern_.size());
            text_ += pattern_.substr(at_ + 1, end - at_ - 1);
            at_ = end + 1;
        } else if (c == u'\\') {
            text_ += pattern_.substr(at_ + 1, 1);
            at_ += 2;
        } else if (TextView(u"dmyhnsqwct").find(lower(c)) != TextView::npos) {
            std::size_t end = at_;
            while (end < pattern_.size() && lower(pattern_[end]) == lower(c))
                ++end;
            const std::size_t count = end - at_;
            at_ = end;
            writeField(lower(c), count);
        } else {
            text_ += c;
            ++at_;
        }
    }

    void writeField(char16_t letter, std::size_t count) {
        const bool afterHour = afterHour_;
        afterHour_ = letter == u'h';
        switch (letter) {
            case u'd': return writeDay(count);
            case u'm': return afterHour && count <= 2 ? number(parts_.minute, count) : writeMonth(count);
            case u'y':
                if (count == 1)
                    return number(part(u"y"), 1);
                return number(count == 2 ? parts_.year % 100 : parts_.year, count == 2 ? 2 : 4);
            case u'h': return number(twelveHours_ ? (parts_.hour + 11) % 12 + 1 : parts_.hour, count);
            case u'n': return number(parts_.minute, count);
            case u's': return number(parts_.second, count);
            case u'q': return number((parts_.month - 1) / 3 + 1, 1);
            case u'w': return number(part(count == 1 ? u"w" : u"ww"), 1);
            case u't': text_ += DateWriter(date_, u"h:nn:ss AM/PM").write(); return;
            default: text_ += textOf(date_); return;
        }
    }

    void writeDay(std::size_t count) {
        switch (count) {
            case 1:
            case 2: return number(parts_.day, count);
            case 3: text_ += dayNames[weekday()].substr(0, 3); return;
            case 4: text_ += dayNames[weekday()]; return;
            case 5: text_ += DateWriter(date_, u"m/d/yyyy").write(); return;
            default: text_ += DateWriter(date_, u"dddd, mmmm dd, yyyy").write(); return;
        }
    }

    void writeMonth(std::size_t count) {
        if (count <= 2)
            return number(parts_.month, count);
        const TextView name = monthNames[static_cast<std::size_t>(parts_.month - 1)];
        text_ += count == 3 ? name.substr(0, 3) : name;
    }

    void number(int value, std::size_t count) { text_ += padded(value, std::min<std::size_t>(count, 4)); }
    std::size_t weekday() const { return static_cast<std::size_t>(part(u"w") - 1); }
    int part(TextView interval) const { return datePart(interval, date_); }

    Date date_;
    DateParts parts_;
    TextView pattern_;
    std::size_t at_ = 0;
    bool twelveHours_ = false;
    bool afterHour_ = false;  // the last field was the hour
    Text text_;
};

}  // namespace

TextView monthName(int month) {
    return monthNames[static_cast<std::size_t>(month - 1)];
}

TextView dayName(int weekday) {
    return dayNames[static_cast<std::size_t>(weekday - 1)];
}

Text formatDate(Date date, TextView pattern) {
    return DateWriter(date, pattern).write();
}

}  // namespace tessary::server::functions
