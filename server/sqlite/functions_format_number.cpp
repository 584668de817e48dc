#include "server/sqlite/functions_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tessary::server::functions {

namespace {

// 0.digits times ten to the point; no leading zeros, and no digits for zero.
struct Decimal {
    std::string digits;
    int point = 0;
};

Decimal decimalOf(double number) {
    char buffer[40];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::scientific).ptr;
    const std::string_view written(buffer, static_cast<std::size_t>(end - buffer));
    const std::size_t exponentAt = written.find('e');
    Decimal decimal;
    for (char c : written.substr(0, exponentAt)) {
        if (c != '.')
            decimal.digits += c;
    }
    int exponent = 0;
    const char* begin = buffer + exponentAt + (written[exponentAt + 1] == '+' ? 2 : 1);
    std::from_chars(begin, end, exponent);
    decimal.point = exponent + 1;
    if (number == 0)
        decimal = {};
    return decimal;
}

// Keeps so many digits; negative when even the first one is too far behind.
void roundAt(Decimal& decimal, int kept) {
    if (kept >= static_cast<int>(decimal.digits.size()))
        return;
    const bool up = kept >= 0 && decimal.digits[static_cast<std::size_t>(kept)] >= '5';
    decimal.digits.resize(static_cast<std::size_t>(std::max(kept, 0)));
    if (up) {
        std::size_t at = decimal.digits.size();
        while (at > 0 && decimal.digits[at - 1] == '9')
            decimal.digits[--at] = '0';
        if (at > 0) {
            ++decimal.digits[at - 1];
        } else {
            decimal.digits.insert(decimal.digits.begin(), '1');
            ++decimal.point;
        }
    }
    if (decimal.digits.find_first_not_of('0') == std::string::npos)
        decimal = {};
}

struct Token {
    enum class Kind { zero, digit, point, exponent, literal } kind;
    Text literal;  // also the E of an exponent
    bool signAlways = false;
    int exponentDigits = 0;
};

struct Section {
    std::vector<Token> tokens;
    int whole = 0, leastWhole = 0;        // digits before the point
    int fraction = 0, leastFraction = 0;  // behind it
    int shift = 0;  // of the decimal point: 2 for each %, -3 for each comma before the point
    bool grouped = false;
    bool hasExponent = false;
};

class SectionReader {
public:
    explicit SectionReader(TextView pattern) : pattern_(pattern) {}

    Section read() {
        while (at_ < pattern_.size())
            readToken();
        // Commas at the end of the whole digits divide, others group.
        if (!point_)
            section_.shift -= 3 * commas_;
        return std::move(section_);
    }

private:
    void readToken() {
        const char16_t c = pattern_[at_++];
        switch (c) {
            case u'0':
            case u'#': return addDigit(c == u'0');
            case u'.':
                if (!point_)
                    section_.shift -= 3 * commas_;
                if (point_)
                    return addLiteral(c);
                point_ = true;
                return section_.tokens.push_back({Token::Kind::point, {}});
            case u',':
                if (section_.whole > 0 && !point_)
                    ++commas_;
                return;
            case u'%': section_.shift += 2; return addLiteral(c);
            case u'E':
            case u'e': return addExponent(c);
            case u'\\':
                if (at_ < pattern_.size())
                    addLiteral(pattern_[at_++]);
                return;
            case u'"':
                while (at_ < pattern_.size() && pattern_[at_] != u'"')
                    addLiteral(pattern_[at_++]);
                ++at_;
                return;
            default: return addLiteral(c);
        }
    }

    void addDigit(bool zero) {
        section_.tokens.push_back({zero ? Token::Kind::zero : Token::Kind::digit, {}});
        if (point_) {
            ++section_.fraction;
            if (zero)
                section_.leastFraction = section_.fraction;
            return;
        }
        section_.grouped = section_.grouped || commas_ > 0;
        commas_ = 0;
        ++section_.whole;
        if (zero || section_.leastWhole > 0)
            ++section_.leastWhole;
    }

    void addExponent(char16_t letter) {
        const char16_t sign = at_ < pattern_.size() ? pattern_[at_] : u'\0';
        if ((sign != u'+' && sign != u'-') || section_.hasExponent)
            return addLiteral(letter);
        Token token{Token::Kind::exponent, Text(1, letter)};
        token.signAlways = sign == u'+';
        for (++at_; at_ < pattern_.size() && (pattern_[at_] == u'0' || pattern_[at_] == u'#'); ++at_)
            ++token.exponentDigits;
        section_.hasExponent = true;
        section_.tokens.push_back(std::move(token));
    }

    void addLiteral(char16_t c) { section_.tokens.push_back({Token::Kind::literal, Text(1, c)}); }

    TextView pattern_;
    std::size_t at_ = 0;
    bool point_ = false;
    int commas_ = 0;
    Section section_;
};

std::vector<TextView> sectionsOf(TextView pattern) {
    std::vector<TextView> sections;
    std::size_t begin = 0;
    bool quoted = false;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] == u'\\' && !quoted)
            ++at;
        else if (pattern[at] == u'"')
            quoted = !quoted;
        else if (pattern[at] == u';' && !quoted) {
            sections.push_back(pattern.substr(begin, at - begin));
            begin = at + 1;
        }
    }
    sections.push_back(pattern.substr(begin));
    return sections;
}

Text exponentText(const Token& token, int exponent) {
    std::string digits = std::to_string(std::abs(exponent));
    const auto least = static_cast<std::size_t>(token.exponentDigits);
    if (digits.size() < least)
        digits.insert(0, least - digits.size(), '0');
    return token.literal + (exponent < 0 ? u"-" : token.signAlways ? u"+" : u"") + toText(digits);
}

// The digits of the number are dealt out to the places of the section, from the left; those that are too many
// stand at the first place.
Text filled(const Section& section, std::string whole, std::string fraction, int exponent) {
    const auto places = static_cast<std::size_t>(section.whole);
    Text text;
    std::size_t place = 0, fractionPlace = 0;
    bool behindPoint = false;
    const auto wholeDigits = [&](std::size_t begin, std::size_t end) {
        for (std::size_t at = begin; at < end; ++at) {
            text += static_cast<char16_t>(whole[at]);
            const std::size_t left = whole.size() - at - 1;
            if (section.grouped && left > 0 && left % 3 == 0)
                text += u',';
        }
    };
    for (const Token& token : section.tokens) {
        switch (token.kind) {
            case Token::Kind::zero:
            case Token::Kind::digit:
                if (behindPoint) {
                    if (fractionPlace < fraction.size())
                        text += static_cast<char16_t>(fraction[fractionPlace]);
                    ++fractionPlace;
                    break;
                }
                // How many digits belong to this place and those in front of it.
                ++place;
                if (whole.size() + place >= places) {
                    const std::size_t end = whole.size() + place - places;
                    wholeDigits(place == 1 || end == 0 ? 0 : end - 1, end);
                }
                break;
            case Token::Kind::point:
                if (places == 0)
                    text += toText(whole);
                behindPoint = true;
                text += u'.';
                break;
            case Token::Kind::exponent: text += exponentText(token, exponent); break;
            case Token::Kind::literal: text += token.literal; break;
        }
    }
    return text;
}

}  // namespace

Text formatNumber(double number, TextView pattern) {
    if (!std::isfinite(number))
        return textOf(number);
    const std::vector<TextView> sections = sectionsOf(pattern);
    const auto sectionFor = [&](std::size_t place) {
        return place < sections.size() && !sections[place].empty() ? place : std::size_t{0};
    };
    const std::size_t chosen = number < 0 ? sectionFor(1) : number == 0 ? sectionFor(2) : 0;
    const Section section = SectionReader(sections[chosen]).read();

    Decimal decimal = decimalOf(std::abs(number));
    decimal.point += decimal.digits.empty() ? 0 : section.shift;
    int exponent = 0;
    if (section.hasExponent && !decimal.digits.empty()) {
        const int whole = std::max(section.whole, 1);
        roundAt(decimal, whole + section.fraction);
        exponent = decimal.point - whole;
        decimal.point = whole;
    } else {
        roundAt(decimal, decimal.point + section.fraction);
    }
    std::string whole, fraction;
    for (int at = 0; at < decimal.point; ++at)
        whole += static_cast<std::size_t>(at) < decimal.digits.size()
                     ? decimal.digits[static_cast<std::size_t>(at)]
                     : '0';
    for (int at = decimal.point; at < decimal.point + section.fraction; ++at)
        fraction += at >= 0 && static_cast<std::size_t>(at) < decimal.digits.size()
                        ? decimal.digits[static_cast<std::size_t>(at)]
                        : '0';
    const auto leastWhole = static_cast<std::size_t>(section.leastWhole);
    if (whole.size() < leastWhole)
        whole.insert(0, leastWhole - whole.size(), '0');
    while (fraction.size() > static_cast<std::size_t>(section.leastFraction) && fraction.back() == '0')
        fraction.pop_back();
    const bool minus = number < 0 && chosen == 0 && !decimal.digits.empty();
    return (minus ? u"-" : u"") + filled(section, whole, fraction, exponent);
}

}  // namespace tessary::server::functions
