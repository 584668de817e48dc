// Between numbers and text.

#include "host/lisp/language_functions.h"
#include "host/lisp/number_format.h"

#include <charconv>
#include <limits>
#include <optional>
#include <string>

namespace drafthost::lisp {

namespace {

// The number a text begins with; 0 when it begins with none. An exponent counts, as in a real constant.
double leadingNumber(const std::wstring& text) {
    const std::size_t start = text.find_first_not_of(L" \t\n\r");
    if (start == std::wstring::npos) {
        return 0;
    }
    const std::size_t from = start + (text[start] == L'+');
    const std::size_t end = text.find_first_not_of(L"+-.0123456789eE", from);
    const std::wstring_view number =
        std::wstring_view(text).substr(from, end == std::wstring::npos ? end : end - from);
    const std::string digits(number.begin(), number.end());
    double result = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), result);
    return result;
}

Value textToReal(Interpreter&, Arguments arguments) {
    return Value::real(leadingNumber(arguments.string(0)));
}

// Digits behind a point are ignored; beyond the integers the nearest one is answered.
Value textToInteger(Interpreter&, Arguments arguments) {
    const std::wstring& text = arguments.string(0);
    const double number = leadingNumber(text.substr(0, text.find_first_of(L".eE")));
    constexpr double lowest = std::numeric_limits<std::int32_t>::min();
    constexpr double highest = std::numeric_limits<std::int32_t>::max();
    return Value::integer(static_cast<std::int32_t>(number < lowest    ? lowest
                                                    : number > highest ? highest
                                                                       : number));
}

Value integerToText(Interpreter& interpreter, Arguments arguments) {
    return interpreter.string(std::to_wstring(arguments.integer(0)));
}

ZeroSuppression zeroSuppression(const Interpreter& interpreter) {
    return {interpreter.integerVariable(L"DIMZIN", 0)};
}

bool showsAsTyped(const Interpreter& interpreter) {
    return interpreter.integerVariable(L"UNITMODE", 0) == 1;
}

// A notation or precision that is missing, or negative, comes from the drawing's system variable.
int setting(const Interpreter& interpreter, Arguments arguments, std::size_t index,
            std::wstring_view variable, int fallback) {
    const int given = arguments.integerOr(index, -1);
    return given >= 0 ? given : interpreter.integerVariable(variable, fallback);
}

LengthNotation lengthNotation(const Interpreter& interpreter, Arguments arguments, std::size_t index) {
    const int mode = setting(interpreter, arguments, index, L"LUNITS", 2);
    if (mode < 1 || mode > 5) {
        raiseBadArgumentValue(L"units mode", Value::integer(mode));
    }
    return static_cast<LengthNotation>(mode);
}

AngleNotation angleNotation(const Interpreter& interpreter, Arguments arguments, std::size_t index) {
    const int mode = setting(interpreter, arguments, index, L"AUNITS", 0);
    if (mode > 4) {
        raiseBadArgumentValue(L"units mode", Value::integer(mode));
    }
    return static_cast<AngleNotation>(mode);
}

Value lengthToText(Interpreter& interpreter, Arguments arguments) {
    const double length = arguments.real(0);
    const LengthNotation notation = lengthNotation(interpreter, arguments, 1);
    const int precision = setting(interpreter, arguments, 2, L"LUPREC", 4);
    std::wstring text = formatLength(length, notation, precision, zeroSuppression(interpreter));
    return interpreter.string(showsAsTyped(interpreter) ? lengthAsTyped(std::move(text)) : text);
}

Value angleToText(Interpreter& interpreter, Arguments arguments) {
    const double radians = arguments.real(0);
    const AngleNotation notation = angleNotation(interpreter, arguments, 1);
    const int precision = setting(interpreter, arguments, 2, L"AUPREC", 0);
    std::wstring text = formatAngle(radians, notation, precision, zeroSuppression(interpreter));
    return interpreter.string(showsAsTyped(interpreter) ? angleAsTyped(std::move(text)) : text);
}

Value realOrNil(std::optional<double> number) {
    return number ? Value::real(*number) : Value();
}

Value textToLength(Interpreter& interpreter, Arguments arguments) {
    lengthNotation(interpreter, arguments, 1);
    return realOrNil(parseLength(arguments.string(0)));
}

Value textToAngle(Interpreter& interpreter, Arguments arguments) {
    return realOrNil(parseAngle(arguments.string(0), angleNotation(interpreter, arguments, 1)));
}

constexpr BuiltinDefinition table[] = {
    {L"angtof", textToAngle, 1, 2, L"(angtof text [units]) -> angle in radians or nil"},
    {L"angtos", angleToText, 1, 3, L"(angtos radians [units [precision]]) -> angle as text; units 0 to 4"},
    {L"atof", textToReal, 1, 1, L"(atof text) -> real the text begins with"},
    {L"atoi", textToInteger, 1, 1, L"(atoi text) -> integer the text begins with"},
    {L"distof", textToLength, 1, 2, L"(distof text [units]) -> length or nil"},
    {L"itoa", integerToText, 1, 1, L"(itoa int) -> decimal digits"},
    {L"rtos", lengthToText, 1, 3, L"(rtos length [units [precision]]) -> length as text; units 1 to 5"},
};

}  // namespace

std::span<const BuiltinDefinition> conversionFunctions() {
    return table;
}

}  // namespace drafthost::lisp
