// Arithmetic. Integers are 32 bits wide and wrap around; an operation with a real answers a real.

#include "host/lisp/language_functions.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

namespace drafthost::lisp {

namespace {

Value checkedNumber(Value value) {
    if (!value.isNumber()) {
        raiseBadArgumentType(L"numberp:", value);
    }
    return value;
}

Value wrapped(std::int64_t number) {
    return Value::integer(static_cast<std::int32_t>(static_cast<std::uint64_t>(number)));
}

[[noreturn]] void raiseDivideByZero() {
    throw LispError(L"divide by zero");
}

[[noreturn]] void raiseUndefined(Interpreter& interpreter, Value argument) {
    throw LispError(L"function undefined for argument: " + interpreter.prin1ToString(argument));
}

// Combines the arguments from left to right: as integers while both sides are, as reals from then on.
template <class IntegerFunction, class RealFunction>
Value fold(Arguments arguments, IntegerFunction onIntegers, RealFunction onReals) {
    if (arguments.empty()) {
        return Value::integer(0);
    }
    Value result = checkedNumber(arguments[0]);
    for (const Value next : arguments.from(1)) {
        checkedNumber(next);
        result = result.isInteger() && next.isInteger()
                     ? wrapped(onIntegers(result.asInteger(), next.asInteger()))
                     : Value::real(onReals(result.asNumber(), next.asNumber()));
    }
    return result;
}

Value add(Interpreter&, Arguments arguments) {
    return fold(
        arguments, [](std::int64_t a, std::int64_t b) { return a + b; },
        [](double a, double b) { return a + b; });
}

Value multiply(Interpreter&, Arguments arguments) {
    return fold(
        arguments, [](std::int64_t a, std::int64_t b) { return a * b; },
        [](double a, double b) { return a * b; });
}

Value subtract(Interpreter&, Arguments arguments) {
    if (arguments.size() == 1) {
        const Value number = checkedNumber(arguments[0]);
        return number.isInteger() ? wrapped(-std::int64_t(number.asInteger()))
                                  : Value::real(-number.asReal());
    }
    return fold(
        arguments, [](std::int64_t a, std::int64_t b) { return a - b; },
        [](double a, double b) { return a - b; });
}

Value divide(Interpreter&, Arguments arguments) {
    return fold(
        arguments,
        [](std::int64_t a, std::int64_t b) {
            if (b == 0) {
                raiseDivideByZero();
            }
            return a / b;
        },
        [](double a, double b) {
            if (b == 0) {
                raiseDivideByZero();
            }
            return a / b;
        });
}

Value remainder(Interpreter&, Arguments arguments) {
    return fold(
        arguments,
        [](std::int64_t a, std::int64_t b) {
            if (b == 0) {
                raiseDivideByZero();
            }
            return a % b;
        },
        [](double a, double b) {
            if (b == 0) {
                raiseDivideByZero();
            }
            return std::fmod(a, b);
        });
}

Value increment(Interpreter&, Arguments arguments) {
    const Value number = checkedNumber(arguments[0]);
    return number.isInteger() ? wrapped(std::int64_t(number.asInteger()) + 1)
                              : Value::real(number.asReal() + 1);
}

Value decrement(Interpreter&, Arguments arguments) {
    const Value number = checkedNumber(arguments[0]);
    return number.isInteger() ? wrapped(std::int64_t(number.asInteger()) - 1)
                              : Value::real(number.asReal() - 1);
}

Value absolute(Interpreter&, Arguments arguments) {
    const Value number = checkedNumber(arguments[0]);
    return number.isInteger() ? wrapped(std::abs(std::int64_t(number.asInteger())))
                              : Value::real(std::abs(number.asReal()));
}

// The greatest or least argument; a real when any argument is one.
template <class Prefer>
Value extreme(Arguments arguments, Prefer prefer) {
    return fold(
        arguments, [prefer](std::int64_t a, std::int64_t b) { return prefer(b, a) ? b : a; },
        [prefer](double a, double b) { return prefer(b, a) ? b : a; });
}

Value maximum(Interpreter&, Arguments arguments) {
    return extreme(arguments, [](auto candidate, auto best) { return candidate > best; });
}

Value minimum(Interpreter&, Arguments arguments) {
    return extreme(arguments, [](auto candidate, auto best) { return candidate < best; });
}

Value greatestCommonDivisor(Interpreter&, Arguments arguments) {
    return wrapped(std::gcd(std::int64_t(arguments.integer(0)), std::int64_t(arguments.integer(1))));
}

Value bitwiseAnd(Interpreter&, Arguments arguments) {
    std::int32_t result = arguments.empty() ? 0 : -1;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        result &= arguments.integer(index);
    }
    return Value::integer(result);
}

Value bitwiseOr(Interpreter&, Arguments arguments) {
    std::int32_t result = 0;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        result |= arguments.integer(index);
    }
    return Value::integer(result);
}

Value bitwiseNot(Interpreter&, Arguments arguments) {
    return Value::integer(~arguments.integer(0));
}

// Bits of `function` say for which pairs of bits the result has a one: 1 for (1 1), 2 for (1 0), 4 for (0 1),
// 8 for (0 0).
Value boole(Interpreter&, Arguments arguments) {
    const auto function = static_cast<std::uint32_t>(arguments.integer(0));
    auto result = static_cast<std::uint32_t>(arguments.integer(1));
    for (std::size_t index = 2; index < arguments.size(); ++index) {
        const std::uint32_t a = result;
        const auto b = static_cast<std::uint32_t>(arguments.integer(index));
        result = (function & 1 ? a & b : 0) | (function & 2 ? a & ~b : 0) | (function & 4 ? ~a & b : 0) |
                 (function & 8 ? ~a & ~b : 0);
    }
    return Value::integer(static_cast<std::int32_t>(result));
}

Value shift(Interpreter&, Arguments arguments) {
    const auto bits = static_cast<std::uint32_t>(arguments.integer(0));
    const std::int64_t by = arguments.integer(1);
    if (by <= -32 || by >= 32) {
        return Value::integer(0);
    }
    return Value::integer(static_cast<std::int32_t>(by >= 0 ? bits << by : bits >> -by));
}

// Towards zero. A number beyond the integers stays a real without fraction.
Value fix(Interpreter&, Arguments arguments) {
    const Value number = checkedNumber(arguments[0]);
    if (number.isInteger()) {
        return number;
    }
    const double whole = std::trunc(number.asReal());
    const bool fits = whole >= std::numeric_limits<std::int32_t>::min() &&
                      whole <= std::numeric_limits<std::int32_t>::max();
    return fits ? Value::integer(static_cast<std::int32_t>(whole)) : Value::real(whole);
}

Value toReal(Interpreter&, Arguments arguments) {
    return Value::real(arguments.real(0));
}

Value sine(Interpreter&, Arguments arguments) {
    return Value::real(std::sin(arguments.real(0)));
}

Value cosine(Interpreter&, Arguments arguments) {
    return Value::real(std::cos(arguments.real(0)));
}

Value tangent(Interpreter&, Arguments arguments) {
    return Value::real(std::tan(arguments.real(0)));
}

Value arcTangent(Interpreter&, Arguments arguments) {
    const double numerator = arguments.real(0);
    return Value::real(arguments.has(1) ? std::atan2(numerator, arguments.real(1)) : std::atan(numerator));
}

Value squareRoot(Interpreter& interpreter, Arguments arguments) {
    const double number = arguments.real(0);
    if (number < 0) {
        raiseUndefined(interpreter, arguments[0]);
    }
    return Value::real(std::sqrt(number));
}

Value exponential(Interpreter&, Arguments arguments) {
    return Value::real(std::exp(arguments.real(0)));
}

Value logarithm(Interpreter& interpreter, Arguments arguments) {
    const double number = arguments.real(0);
    if (number <= 0) {
        raiseUndefined(interpreter, arguments[0]);
    }
    return Value::real(std::log(number));
}

Value power(Interpreter& interpreter, Arguments arguments) {
    const double base = arguments.real(0);
    const double exponent = arguments.real(1);
    if (base == 0 && exponent < 0) {
        raiseDivideByZero();
    }
    if (base < 0 && exponent != std::trunc(exponent)) {
        raiseUndefined(interpreter, arguments[0]);
    }
    const double result = std::pow(base, exponent);
    const bool integers = arguments[0].isInteger() && arguments[1].isInteger() && exponent >= 0;
    if (integers && std::abs(result) <= std::numeric_limits<std::int32_t>::max()) {
        return Value::integer(static_cast<std::int32_t>(result));
    }
    return Value::real(result);
}

Value isZero(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments.real(0) == 0);
}

Value isNegative(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments.real(0) < 0);
}

Value isNumber(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments[0].isNumber());
}

constexpr BuiltinDefinition table[] = {
    {L"*", multiply, 0, anyNumber, L"(* [number ...]) -> product; 0 without arguments"},
    {L"+", add, 0, anyNumber, L"(+ [number ...]) -> sum"},
    {L"-", subtract, 0, anyNumber, L"(- [number ...]) -> first less the others; the negative of one"},
    {L"/", divide, 0, anyNumber, L"(/ [number ...]) -> first divided by the others; integers are truncated"},
    {L"1+", increment, 1, 1, L"(1+ number) -> number plus one"},
    {L"1-", decrement, 1, 1, L"(1- number) -> number less one"},
    {L"abs", absolute, 1, 1, L"(abs number) -> absolute value"},
    {L"atan", arcTangent, 1, 2, L"(atan number [divisor]) -> arc tangent in radians"},
    {L"boole", boole, 2, anyNumber, L"(boole function int ...) -> bitwise function of integers"},
    {L"cos", cosine, 1, 1, L"(cos radians) -> cosine"},
    {L"exp", exponential, 1, 1, L"(exp number) -> e raised to number"},
    {L"expt", power, 2, 2, L"(expt base power) -> power; an integer when both are and it fits"},
    {L"fix", fix, 1, 1, L"(fix number) -> integer, truncated towards zero"},
    {L"float", toReal, 1, 1, L"(float number) -> real"},
    {L"gcd", greatestCommonDivisor, 2, 2, L"(gcd int int) -> greatest common divisor"},
    {L"log", logarithm, 1, 1, L"(log number) -> natural logarithm"},
    {L"logand", bitwiseAnd, 0, anyNumber, L"(logand [int ...]) -> bitwise and"},
    {L"logior", bitwiseOr, 0, anyNumber, L"(logior [int ...]) -> bitwise or"},
    {L"lsh", shift, 2, 2, L"(lsh int count) -> shifted left; right when count is negative"},
    {L"max", maximum, 0, anyNumber, L"(max [number ...]) -> greatest; a real when any argument is"},
    {L"min", minimum, 0, anyNumber, L"(min [number ...]) -> least; a real when any argument is"},
    {L"minusp", isNegative, 1, 1, L"(minusp number) -> T when below zero"},
    {L"numberp", isNumber, 1, 1, L"(numberp value) -> T for integers and reals"},
    {L"rem", remainder, 0, anyNumber, L"(rem [number ...]) -> remainder, with the sign of the first"},
    {L"sin", sine, 1, 1, L"(sin radians) -> sine"},
    {L"sqrt", squareRoot, 1, 1, L"(sqrt number) -> square root, a real"},
    {L"tan", tangent, 1, 1, L"(tan radians) -> tangent"},
    {L"zerop", isZero, 1, 1, L"(zerop number) -> T when zero"},
    {L"~", bitwiseNot, 1, 1, L"(~ int) -> bitwise complement"},
};

}  // namespace

std::span<const BuiltinDefinition> numberFunctions() {
    return table;
}

}  // namespace drafthost::lisp
