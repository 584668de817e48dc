#include "module/binding/number_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace tessary {

namespace {

constexpr int mostDecimals = 10;
// Digits of the largest double before the point, the decimals, a point and a digit for rounding.
constexpr std::size_t longestText = 309 + mostDecimals + 2;

// True when the number lies exactly between two neighbours of that many decimals. That takes a binary
// fraction of at most decimals + 1 places, whose decimal text then ends after decimals + 1 places too.
bool isTie(double magnitude, int decimals) {
    const double scaled = std::ldexp(magnitude, decimals + 1);
    if (scaled != std::floor(scaled)) {
        return false;
    }
    char text[longestText];
    const auto end =
        std::to_chars(text, text + sizeof text, magnitude, std::chars_format::fixed, decimals + 1).ptr;
    return end[-1] == '5';
}

// Magnitude as digits with a point before the decimals, ties rounded up.
std::string fixedText(double magnitude, int decimals) {
    // A tie is rounded up by rounding the next larger number, which has the same neighbours.
    const double rounded = isTie(magnitude, decimals) ? std::nextafter(magnitude, HUGE_VAL) : magnitude;
    char text[longestText];
    const auto end = std::to_chars(text, text + sizeof text, rounded, std::chars_format::fixed, decimals).ptr;
    return std::string(text, end);
}

void dropZeros(std::string& text) {
    if (text.find('.') == std::string::npos) {
        return;
    }
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
}

std::wstring widened(const std::string& ascii) {
    return std::wstring(ascii.begin(), ascii.end());
}

std::wstring nonFiniteText(double value) {
    if (std::isnan(value)) {
        return L"1.#QNAN";
    }
    return value < 0 ? L"-1.#INF" : L"1.#INF";
}

}  // namespace

std::wstring formatFixed(double value, int decimals, bool trimZeros) {
    if (!std::isfinite(value)) {
        return nonFiniteText(value);
    }
    decimals = std::clamp(decimals, 0, mostDecimals);
    std::string text = fixedText(std::fabs(value), decimals);
    const bool showsOnlyZeros = text.find_first_not_of("0.") == std::string::npos;
    if (showsOnlyZeros && value != 0.0) {
        return widened(text);
    }
    if (trimZeros) {
        dropZeros(text);
    }
    return widened(value < 0.0 ? "-" + text : text);
}

std::wstring formatFixedWithThousands(double value, int decimals) {
    std::wstring text = formatFixed(value, decimals, true);
    if (!std::isfinite(value)) {
        return text;
    }
    const std::size_t firstDigit = text.starts_with(L'-') ? 1 : 0;
    std::size_t position = std::min(text.find(L'.'), text.size());
    while (position > firstDigit + 3) {
        position -= 3;
        text.insert(position, 1, L',');
    }
    return text;
}

}  // namespace tessary
