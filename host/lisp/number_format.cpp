#include "host/lisp/number_format.h"

#include "host/lisp/printer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace drafthost::lisp {

namespace {

constexpr int mostDecimals = 16;
constexpr int mostFractionBits = 8;  // 1/256
constexpr double pi = std::numbers::pi;

// Beyond this a fraction of an inch is below the precision of the number.
constexpr double largestFractional = 1e15;

// 1.7e308 with 16 decimals
constexpr std::size_t longestNumber = 340;

std::wstring withDigits(double number, std::chars_format format, int decimals) {
    char digits[longestNumber];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, format, decimals).ptr;
    return std::wstring(digits, end);
}

void omitTrailingZeros(std::wstring& text) {
    if (text.find(L'.') != std::wstring::npos) {
        text.erase(text.find_last_not_of(L'0') + 1);
        if (text.back() == L'.') {
            text.pop_back();
        }
    }
}

// A number that rounds to nothing loses its sign.
bool roundsToZero(const std::wstring& digits) {
    return digits.find_first_of(L"123456789") == std::wstring::npos;
}

std::wstring decimal(double number, int decimals, ZeroSuppression zeros) {
    std::wstring text = withDigits(std::abs(number), std::chars_format::fixed, decimals);
    const bool negative = number < 0 && !roundsToZero(text);
    if (zeros.omitsTrailingZeros()) {
        omitTrailingZeros(text);
    }
    if (zeros.omitsLeadingZero() && text.size() > 1 && text[0] == L'0' && text[1] == L'.') {
        text.erase(0, 1);
    }
    return (negative ? L"-" : L"") + text;
}

std::wstring scientific(double number, int decimals, ZeroSuppression zeros) {
    std::wstring text = withDigits(number, std::chars_format::scientific, decimals);
    const std::size_t exponent = text.find(L'e');
    std::wstring mantissa = text.substr(0, exponent);
    if (zeros.omitsTrailingZeros()) {
        omitTrailingZeros(mantissa);
    }
    return mantissa + L"E" + text.substr(exponent + 1);
}

// A length rounded to a whole number of the smallest fraction, taken apart again.
struct Fraction {
    std::int64_t whole;
    std::int64_t numerator;
    std::int64_t denominator;
};

Fraction rounded(double length, int fractionBits) {
    const std::int64_t denominator = std::int64_t(1) << fractionBits;
    const std::int64_t parts = std::llround(length * static_cast<double>(denominator));
    Fraction result{parts / denominator, parts % denominator, denominator};
    while (result.numerator != 0 && result.numerator % 2 == 0) {
        result.numerator /= 2;
        result.denominator /= 2;
    }
    return result;
}

std::wstring fractionText(const Fraction& fraction, bool showZeroWhole) {
    const std::wstring part = fraction.numerator == 0 ? L""
                                                      : std::to_wstring(fraction.numerator) + L"/" +
                                                            std::to_wstring(fraction.denominator);
    if (fraction.whole == 0 && !showZeroWhole && !part.empty()) {
        return part;
    }
    return std::to_wstring(fraction.whole) + (part.empty() ? L"" : L" " + part);
}

std::wstring fractional(double length, int fractionBits) {
    const Fraction fraction = rounded(std::abs(length), fractionBits);
    const bool negative = length < 0 && (fraction.whole != 0 || fraction.numerator != 0);
    return (negative ? L"-" : L"") + fractionText(fraction, false);
}

// Feet and inches put together, leaving out what the suppression allows. `inches` without the mark.
std::wstring feetAndInches(bool negative, std::int64_t feet, const std::wstring& inches, bool inchesAreZero,
                           ZeroSuppression zeros) {
    const bool showFeet = feet != 0 || !zeros.omitsZeroFeet();
    const bool showInches = !inchesAreZero || !zeros.omitsZeroInches() || !showFeet;
    std::wstring text = negative && !(feet == 0 && inchesAreZero) ? L"-" : L"";
    if (showFeet) {
        text += std::to_wstring(feet) + L"'" + (showInches ? L"-" : L"");
    }
    return showInches ? text + inches + L"\"" : text;
}

std::wstring architectural(double length, int fractionBits, ZeroSuppression zeros) {
    Fraction inches = rounded(std::abs(length), fractionBits);
    const std::int64_t feet = inches.whole / 12;
    inches.whole %= 12;
    const bool zero = inches.whole == 0 && inches.numerator == 0;
    const bool showZeroWhole = feet != 0 || !zeros.omitsZeroFeet();
    return feetAndInches(length < 0, feet, fractionText(inches, showZeroWhole), zero, zeros);
}

std::wstring engineering(double length, int decimals, ZeroSuppression zeros) {
    const double size = std::abs(length);
    std::int64_t feet = static_cast<std::int64_t>(size / 12);
    std::wstring inches = decimal(size - 12 * static_cast<double>(feet), decimals, zeros);
    if (inches.starts_with(L"12")) {  // rounded up to the next foot
        ++feet;
        inches = decimal(0, decimals, zeros);
    }
    return feetAndInches(length < 0, feet, inches, roundsToZero(inches), zeros);
}

// Degrees taken apart at the smallest unit that is shown.
std::wstring degreesMinutesSeconds(double degrees, int precision, ZeroSuppression zeros) {
    if (precision == 0) {
        return std::to_wstring(std::llround(degrees)) + L"d";
    }
    if (precision <= 2) {
        const std::int64_t minutes = std::llround(degrees * 60);
        return std::to_wstring(minutes / 60) + L"d" + std::to_wstring(minutes % 60) + L"'";
    }
    const int decimals = precision <= 4 ? 0 : precision - 4;
    const double scale = std::pow(10.0, decimals);
    const double seconds = std::round(degrees * 3600 * scale) / scale;
    const auto wholeMinutes = static_cast<std::int64_t>(seconds / 60);
    const double rest = std::max(0.0, seconds - 60 * static_cast<double>(wholeMinutes));
    return std::to_wstring(wholeMinutes / 60) + L"d" + std::to_wstring(wholeMinutes % 60) + L"'" +
           decimal(rest, decimals, zeros) + L"\"";
}

std::wstring surveyor(double degrees, int precision, ZeroSuppression zeros) {
    const double fromEast = std::fmod(degrees, 90);
    const int quadrant = static_cast<int>(degrees / 90) % 4;
    if (fromEast == 0) {
        static constexpr const wchar_t* directions[] = {L"E", L"N", L"W", L"S"};
        return directions[quadrant];
    }
    const double fromAxis = quadrant % 2 == 0 ? 90 - fromEast : fromEast;
    const bool north = quadrant < 2;
    const bool east = quadrant == 0 || quadrant == 3;
    return (north ? L"N " : L"S ") + degreesMinutesSeconds(fromAxis, precision, zeros) +
           (east ? L" E" : L" W");
}

double withinOneTurn(double radians) {
    const double rest = std::fmod(radians, 2 * pi);
    return rest < 0 ? rest + 2 * pi : rest;
}

}  // namespace

std::wstring formatLength(double length, LengthNotation notation, int precision, ZeroSuppression zeros) {
    if (!std::isfinite(length)) {
        return formatReal(length);
    }
    const int decimals = std::clamp(precision, 0, mostDecimals);
    const int bits = std::clamp(precision, 0, mostFractionBits);
    const bool huge = std::abs(length) > largestFractional;
    switch (huge ? LengthNotation::scientific : notation) {
        case LengthNotation::scientific:
            return huge && notation == LengthNotation::decimal ? decimal(length, decimals, zeros)
                                                               : scientific(length, decimals, zeros);
        case LengthNotation::engineering: return engineering(length, decimals, zeros);
        case LengthNotation::architectural: return architectural(length, bits, zeros);
        case LengthNotation::fractional: return fractional(length, bits);
        default: return decimal(length, decimals, zeros);
    }
}

std::wstring formatAngle(double radians, AngleNotation notation, int precision, ZeroSuppression zeros) {
    if (!std::isfinite(radians)) {
        return formatReal(radians);
    }
    const double angle = withinOneTurn(radians);
    const int decimals = std::clamp(precision, 0, mostDecimals);
    switch (notation) {
        case AngleNotation::degreesMinutesSeconds:
            return degreesMinutesSeconds(angle * 180 / pi, std::min(decimals, 8), zeros);
        case AngleNotation::grads: return decimal(angle * 200 / pi, decimals, zeros) + L"g";
        case AngleNotation::radians: return decimal(angle, decimals, zeros) + L"r";
        case AngleNotation::surveyor: return surveyor(angle * 180 / pi, std::min(decimals, 8), zeros);
        default: return decimal(angle * 180 / pi, decimals, zeros);
    }
}

// --- reading ------------------------------------------------------------------------------------------

namespace {

// Walks along a text; every take... answers whether it found what it looks for and moves on only then.
class Scanner {
public:
    explicit Scanner(std::wstring_view text) : rest_(text) {
        skipBlanks();
        while (!rest_.empty() && rest_.back() <= L' ') {
            rest_.remove_suffix(1);
        }
    }

    bool atEnd() const { return rest_.empty(); }
    void skipBlanks() {
        while (!rest_.empty() && rest_.front() <= L' ') {
            rest_.remove_prefix(1);
        }
    }
    bool take(wchar_t character) {
        const bool found = !rest_.empty() && (rest_.front() == character ||
                                              (rest_.front() | 0x20) == character);  // letters in either case
        if (found) {
            rest_.remove_prefix(1);
        }
        return found;
    }
    // digits with a point and an exponent, no sign
    std::optional<double> takeNumber() {
        const std::string digits(rest_.begin(), rest_.end());
        if (digits.empty() || !(digits[0] == '.' || (digits[0] >= '0' && digits[0] <= '9'))) {
            return std::nullopt;
        }
        double number = 0;
        const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (failure != std::errc()) {
            return std::nullopt;
        }
        rest_.remove_prefix(static_cast<std::size_t>(end - digits.data()));
        return number;
    }

private:
    std::wstring_view rest_;
};

// number [/ number], or number blank number / number
std::optional<double> takeMixedNumber(Scanner& scanner) {
    std::optional<double> whole = scanner.takeNumber();
    if (!whole) {
        return std::nullopt;
    }
    std::optional<double> numerator = whole;
    Scanner behindWhole = scanner;
    if (scanner.take(L'/')) {
        whole = 0;
    } else {
        const bool separated = scanner.take(L' ') || scanner.take(L'-');
        scanner.skipBlanks();
        numerator = scanner.takeNumber();
        if (!separated || !numerator || !scanner.take(L'/')) {
            scanner = behindWhole;
            return whole;
        }
    }
    const std::optional<double> denominator = scanner.takeNumber();
    if (!denominator || *denominator == 0) {
        return std::nullopt;
    }
    return *whole + *numerator / *denominator;
}

// [N | S] number d [number '] [number "] [E | W], the letters of the quadrant given by the caller
std::optional<double> takeDegrees(Scanner& scanner, AngleNotation notation) {
    const std::optional<double> first = scanner.takeNumber();
    if (!first) {
        return std::nullopt;
    }
    double value = *first;
    if (scanner.take(L'g')) {
        return value * pi / 200;
    }
    if (scanner.take(L'r')) {
        return value;
    }
    const bool inDegrees = scanner.take(L'd') || scanner.take(L'\x00b0');
    if (!inDegrees && notation == AngleNotation::grads) {
        return value * pi / 200;
    }
    if (!inDegrees && notation == AngleNotation::radians) {
        return value;
    }
    if (inDegrees) {
        const std::optional<double> minutes = scanner.takeNumber();
        if (minutes && !scanner.take(L'\'')) {
            return std::nullopt;
        }
        const std::optional<double> seconds = minutes ? scanner.takeNumber() : std::nullopt;
        if (seconds && !scanner.take(L'"')) {
            return std::nullopt;
        }
        value += minutes.value_or(0) / 60 + seconds.value_or(0) / 3600;
    }
    return value * pi / 180;
}

}  // namespace

std::wstring lengthAsTyped(std::wstring length) {
    if (const std::size_t feet = length.find(L"'-"); feet != std::wstring::npos) {
        length.erase(feet + 1, 1);
    }
    std::ranges::replace(length, L' ', L'-');
    return length;
}

std::wstring angleAsTyped(std::wstring angle) {
    std::erase(angle, L' ');
    return angle;
}

std::optional<double> parseLength(std::wstring_view text) {
    Scanner scanner(text);
    const bool negative = scanner.take(L'-');
    if (!negative) {
        scanner.take(L'+');
    }
    std::optional<double> length = takeMixedNumber(scanner);
    if (!length) {
        return std::nullopt;
    }
    if (scanner.take(L'\'')) {
        length = *length * 12;
        scanner.take(L'-');
        scanner.skipBlanks();
        if (!scanner.atEnd()) {
            const std::optional<double> inches = takeMixedNumber(scanner);
            if (!inches) {
                return std::nullopt;
            }
            length = *length + *inches;
            scanner.take(L'"');
        }
    } else {
        scanner.take(L'"');
    }
    return scanner.atEnd() ? std::optional(negative ? -*length : *length) : std::nullopt;
}

std::optional<double> parseAngle(std::wstring_view text, AngleNotation notation) {
    Scanner scanner(text);
    const bool negative = scanner.take(L'-');
    const bool north = scanner.take(L'n');
    const bool south = !north && scanner.take(L's');
    scanner.skipBlanks();
    if ((north || south) && scanner.atEnd()) {
        return north ? pi / 2 : 3 * pi / 2;
    }
    std::optional<double> angle = takeDegrees(scanner, notation);
    if (!north && !south) {
        if (!angle && scanner.take(L'e')) {
            angle = 0;
        } else if (!angle && scanner.take(L'w')) {
            angle = pi;
        }
        return angle && scanner.atEnd() ? std::optional(negative ? -*angle : *angle) : std::nullopt;
    }
    scanner.skipBlanks();
    const bool east = scanner.take(L'e');
    if (!angle || (!east && !scanner.take(L'w')) || !scanner.atEnd()) {
        return std::nullopt;
    }
    const double axis = north ? pi / 2 : 3 * pi / 2;
    return north == east ? axis - *angle : axis + *angle;
}

}  // namespace drafthost::lisp
