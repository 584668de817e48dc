// Arithmetic, and conversion between numbers and the other kinds of values.

#include "server/sqlite/functions_support.h"
#include "server/values/formatting.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <limits>

namespace tessary::server::functions {

namespace {

bool isWhole(const Value& value) {
    return std::holds_alternative<std::int32_t>(value);
}

double roundedToEven(double number) {
    return std::nearbyint(number);
}

[[noreturn]] void zeroDivision() {
    raise(ErrorCode::divisionByZero, u"Division by zero.");
}

// Texts are put together only when both are texts.
Value add(Arguments a) {
    const auto* left = std::get_if<Text>(&a[0]);
    const auto* right = std::get_if<Text>(&a[1]);
    if (left && right)
        return *left + *right;
    const double sum = finite(numberOf(a[0]) + numberOf(a[1]), u"+");
    return isWhole(a[0]) && isWhole(a[1]) ? wholeOrNumber(sum) : Value(sum);
}

Value divide(Arguments a) {
    const double divisor = numberOf(a[1]);
    if (divisor == 0)
        zeroDivision();
    return finite(numberOf(a[0]) / divisor, u"/");
}

// Both sides become whole numbers before they are divided.
Value integerDivide(Arguments a) {
    const double divisor = roundedToEven(numberOf(a[1]));
    if (divisor == 0)
        zeroDivision();
    return wholeOrNumber(finite(std::trunc(roundedToEven(numberOf(a[0])) / divisor), u"\\"));
}

Value modulo(Arguments a) {
    const double divisor = roundedToEven(numberOf(a[1]));
    if (divisor == 0)
        zeroDivision();
    return wholeOrNumber(finite(std::fmod(roundedToEven(numberOf(a[0])), divisor), u"Mod"));
}

Value power(Arguments a) {
    return finite(std::pow(numberOf(a[0]), numberOf(a[1])), u"^");
}

Value absolute(Arguments a) {
    const double number = std::abs(numberOf(a[0]));
    return isWhole(a[0]) ? wholeOrNumber(number) : Value(number);
}

Value sign(Arguments a) {
    const double number = numberOf(a[0]);
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

Value floorOf(Arguments a) {
    return isWhole(a[0]) ? a[0] : Value(std::floor(numberOf(a[0])));
}
Value fix(Arguments a) {
    return isWhole(a[0]) ? a[0] : Value(std::trunc(numberOf(a[0])));
}

// To the even neighbour when the number as it is written lies in the middle.
Value roundTo(Arguments a) {
    const std::int64_t places = a.size() > 1 ? wholeOf(a[1]) : 0;
    if (places < 0)
        raise(ErrorCode::invalidArgument, u"Round: the number of decimal places is negative.");
    const double number = numberOf(a[0]);
    if (isWhole(a[0]))
        return a[0];
    const double scale = std::pow(10.0, static_cast<double>(std::min<std::int64_t>(places, 300)));
    const double scaled = number * scale;
    // More places than the number has.
    if (!std::isfinite(scaled) || std::abs(scaled) > 9007199254740992.0)
        return number;
    // Most fractions are not exact: what is as good as a half is one.
    const double half = std::floor(scaled) + 0.5;
    const double doubt = std::abs(scaled) * 4 * std::numeric_limits<double>::epsilon();
    return roundedToEven(std::abs(scaled - half) <= doubt ? half : scaled) / scale;
}

Value squareRoot(Arguments a) {
    return finite(std::sqrt(numberOf(a[0])), u"Sqr");
}
Value exponential(Arguments a) {
    return finite(std::exp(numberOf(a[0])), u"Exp");
}
Value logarithm(Arguments a) {
    return finite(std::log(numberOf(a[0])), u"Log");
}
Value sine(Arguments a) {
    return finite(std::sin(numberOf(a[0])), u"Sin");
}
Value cosine(Arguments a) {
    return finite(std::cos(numberOf(a[0])), u"Cos");
}
Value tangent(Arguments a) {
    return finite(std::tan(numberOf(a[0])), u"Tan");
}
Value arcTangent(Arguments a) {
    return std::atan(numberOf(a[0]));
}

// &HFF and &O17 with the digits that the text has; without any 0.
double prefixedNumber(TextView text) {
    const int base = (text[1] | 0x20) == u'h' ? 16 : 8;
    double number = 0;
    for (char16_t c : text.substr(2)) {
        const char16_t lower = c | 0x20;
        const int digit = c >= u'0' && c <= u'9'           ? c - u'0'
                          : lower >= u'a' && lower <= u'f' ? lower - u'a' + 10
                                                           : base;
        if (digit >= base)
            break;
        number = number * base + digit;
    }
    return number;
}

// The number that a text begins with, 0 when it begins with none; blanks do not count.
Value val(Arguments a) {
    Text text = shownText(a[0]);
    std::erase_if(text, [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\n'; });
    if (text.size() > 2 && text[0] == u'&' && ((text[1] | 0x20) == u'h' || (text[1] | 0x20) == u'o'))
        return finite(prefixedNumber(text), u"Val");
    std::size_t end = 0;
    bool point = false, digits = false, exponent = false;
    for (; end < text.size() && end < 400; ++end) {
        const char16_t c = text[end];
        const bool afterExponent = end > 0 && (text[end - 1] | 0x20) == u'e';
        if (c >= u'0' && c <= u'9')
            digits = true;
        else if (c == u'.' && !point && !exponent)
            point = true;
        else if ((c | 0x20) == u'e' && digits && !exponent)
            exponent = true;
        else if (!((c == u'+' || c == u'-') && (end == 0 || afterExponent)))
            break;
    }
    // An exponent may have turned out to lack its digits.
    for (; end > 0; --end) {
        double number = 0;
        if (parseNumber(TextView(text).substr(0, end), number))
            return number;
    }
    return 0.0;
}

Value inBase(const Value& value, const char* format) {
    char digits[20];
    // Negative numbers as the 32 bits that they are.
    std::snprintf(digits, sizeof digits, format, static_cast<std::uint32_t>(wholeOf(value)));
    return toText(digits);
}
Value hexadecimal(Arguments a) {
    return inBase(a[0], "%" PRIX32);
}
Value octal(Arguments a) {
    return inBase(a[0], "%" PRIo32);
}

// A blank stands for the sign of numbers that have none.
Value str(Arguments a) {
    const double number = numberOf(a[0]);
    return (number < 0 ? u"" : u" ") + shownText(a[0]);
}

constexpr double largestLong = std::numeric_limits<std::int32_t>::max();

Value wholeWithin(const Value& value, double least, double most, TextView function) {
    const double number = roundedToEven(numberOf(value));
    if (!(number >= least && number <= most))
        raise(ErrorCode::conversion, Text(function) + u": overflow, " + textOf(value) + u" is too large.");
    return wholeOrNumber(number);
}

Value cbool(Arguments a) {
    return convertTo(FieldType::yesNo, a[0], u"CBool");
}
Value cbyte(Arguments a) {
    return wholeWithin(a[0], 0, 255, u"CByte");
}
Value cint(Arguments a) {
    return wholeWithin(a[0], -32768, 32767, u"CInt");
}
Value clng(Arguments a) {
    return wholeWithin(a[0], -largestLong - 1, largestLong, u"CLng");
}
Value cdbl(Arguments a) {
    return numberOf(a[0]);
}
Value csng(Arguments a) {
    return finite(static_cast<double>(static_cast<float>(numberOf(a[0]))), u"CSng");
}
Value ccur(Arguments a) {
    return convertTo(FieldType::currency, a[0], u"CCur");
}

Value number(Arguments a) {
    if (std::holds_alternative<Text>(a[0]))
        return numberOf(a[0]);
    return a[0];
}

// A text that is a number as that number; everything else as it is.
Value numberIf(Arguments a) {
    const auto* given = std::get_if<Text>(&a[0]);
    double parsed = 0;
    return given && parseNumber(*given, parsed) ? Value(parsed) : a[0];
}

Value dateIf(Arguments a) {
    const auto* given = std::get_if<Text>(&a[0]);
    Date date;
    return given && parseDate(*given, date) ? Value(date) : a[0];
}

Value dateNumber(Arguments a) {
    return std::holds_alternative<Text>(a[0]) ? Value(dateFrom(a[0])) : a[0];
}
Value text(Arguments a) {
    return shownText(a[0]);
}
// The seven digits that a single holds.
Value singleText(Arguments a) {
    const double number = numberOf(a[0]);
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.6e", number);
    double rounded = number;
    parseNumber(toText(digits), rounded);
    return textOf(rounded);
}
Value dateText(Arguments a) {
    return textOf(std::holds_alternative<Text>(a[0]) ? a[0] : Value(dateFrom(a[0])));
}
Value yesNo(Arguments a) {
    return convertTo(FieldType::yesNo, a[0], u"yes/no");
}

Value isNumeric(Arguments a) {
    const auto* given = std::get_if<Text>(&a[0]);
    double parsed = 0;
    return !isNull(a[0]) && (!given || parseNumber(*given, parsed));
}

Value isDate(Arguments a) {
    const auto* given = std::get_if<Text>(&a[0]);
    Date date;
    return given && parseDate(*given, date);
}

// ts_convert(value, FieldType, field's name)
Value convert(Arguments a) {
    const auto type = static_cast<FieldType>(std::get<std::int32_t>(a[1]));
    const bool toText = type == FieldType::text || type == FieldType::memo;
    return convertTo(type, toText ? Value(shownText(a[0])) : a[0], std::get<Text>(a[2]));
}

constexpr Function arithmetic[] = {
    {"ts_abs", 1, absolute},
    {"ts_add", 2, add},
    {"ts_atn", 1, arcTangent},
    {"ts_cos", 1, cosine},
    {"ts_divide", 2, divide},
    {"ts_exp", 1, exponential},
    {"ts_fix", 1, fix},
    {"ts_hex", 1, hexadecimal},
    {"ts_oct", 1, octal},
    {"ts_int", 1, floorOf},
    {"ts_integer_divide", 2, integerDivide},
    {"ts_log", 1, logarithm},
    {"ts_modulo", 2, modulo},
    {"ts_power", 2, power},
    {"ts_round", -1, roundTo},
    {"ts_sgn", 1, sign},
    {"ts_sin", 1, sine},
    {"ts_sqr", 1, squareRoot},
    {"ts_str", 1, str},
    {"ts_tan", 1, tangent},
    {"ts_val", 1, val},
};

constexpr Function conversions[] = {
    {"ts_cbool", 1, cbool},
    {"ts_cbyte", 1, cbyte},
    {"ts_ccur", 1, ccur},
    {"ts_cdbl", 1, cdbl},
    {"ts_cint", 1, cint},
    {"ts_clng", 1, clng},
    {"ts_convert", 3, convert},
    {"ts_csng", 1, csng},
    {"ts_date_if", 1, dateIf},
    {"ts_date_number", 1, dateNumber},
    {"ts_date_text", 1, dateText},
    {"ts_is_date", 1, isDate, false},
    {"ts_is_numeric", 1, isNumeric, false},
    {"ts_number", 1, number},
    {"ts_number_if", 1, numberIf},
    {"ts_single_text", 1, singleText},
    {"ts_text", 1, text},
    {"ts_yes_no", 1, yesNo},
};

}  // namespace

std::span<const Function> numberFunctions() {
    return arithmetic;
}

std::span<const Function> conversionFunctions() {
    return conversions;
}

}  // namespace tessary::server::functions
