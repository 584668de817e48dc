// Numbers inside texts. The point is always the decimal sign, whatever the machine's settings are.

#include "server/values/formatting.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tessary::server {
namespace {

TextView withoutBlanks(TextView text) {
    const auto isBlank = [](char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// from_chars also knows infinity and NaN, which are no numbers here.
bool isNumberUnit(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || TextView(u"+-.eE").find(unit) != TextView::npos;
}

}  // namespace

bool parseNumber(TextView text, double& number) {
    text = withoutBlanks(text);
    if (text.starts_with(u'+') && !text.starts_with(u"+-"))
        text.remove_prefix(1);
    if (text.empty() || !std::all_of(text.begin(), text.end(), isNumberUnit))
        return false;
    const std::string digits(text.begin(), text.end());
    double parsed = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), parsed);
    if (error != std::errc{} || end != digits.data() + digits.size())
        return false;
    number = parsed;
    return true;
}

// 15 digits before the point are as many as a double holds for sure; longer numbers and very small ones read
// better with an exponent.
std::string formatNumber(double number) {
    const double size = std::abs(number);
    const bool plain = size == 0 || (size >= 1e-5 && size < 1e15);
    char digits[40];
    const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
    std::string text(digits, std::to_chars(std::begin(digits), std::end(digits), number, format).ptr);
    std::replace(text.begin(), text.end(), 'e', 'E');
    return number == 0 ? "0" : text;  // there is no minus zero for callers
}

}  // namespace tessary::server
