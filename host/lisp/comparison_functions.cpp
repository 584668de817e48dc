// Comparison of values. = and the like take numbers and strings in chains: (< 1 2 3).

#include "host/lisp/language_functions.h"

#include <functional>

namespace drafthost::lisp {

namespace {

[[noreturn]] void raiseIncomparable(Interpreter& interpreter, Value left, Value right) {
    throw LispError(L"bad argument type for compare: " + interpreter.prin1ToString(left) + L" " +
                    interpreter.prin1ToString(right));
}

bool areSame(Value left, Value right) {
    if (left.isNumber() && right.isNumber()) {
        return left.asNumber() == right.asNumber();
    }
    if (left.isString() && right.isString()) {
        return left.asString() == right.asString();
    }
    return isEq(left, right);
}

template <class Relation>
bool related(Interpreter& interpreter, Value left, Value right) {
    if (left.isInteger() && right.isInteger()) {
        return Relation()(left.asInteger(), right.asInteger());
    }
    if (left.isNumber() && right.isNumber()) {
        return Relation()(left.asNumber(), right.asNumber());
    }
    if (left.isString() && right.isString()) {
        return Relation()(left.asString(), right.asString());
    }
    raiseIncomparable(interpreter, left, right);
}

template <class Test>
Value chain(Interpreter& interpreter, Arguments arguments, Test test) {
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        if (!test(arguments[index - 1], arguments[index])) {
            return Value();
        }
    }
    return interpreter.t();
}

Value same(Interpreter& interpreter, Arguments arguments) {
    return chain(interpreter, arguments, areSame);
}

// Compares neighbours only: (/= 1 2 1) is T.
Value different(Interpreter& interpreter, Arguments arguments) {
    return chain(interpreter, arguments, [](Value left, Value right) { return !areSame(left, right); });
}

template <class Relation>
Value ordered(Interpreter& interpreter, Arguments arguments) {
    return chain(interpreter, arguments,
                 [&](Value left, Value right) { return related<Relation>(interpreter, left, right); });
}

Value identical(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(isEq(arguments[0], arguments[1]));
}

Value equal(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(isEqual(arguments[0], arguments[1], arguments.realOr(2, 0.0), &interpreter));
}

Value isNil(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments[0].isNil());
}

constexpr BuiltinDefinition table[] = {
    {L"/=", different, 1, anyNumber, L"(/= value ...) -> T when no two neighbours are the same"},
    {L"<", ordered<std::less<>>, 1, anyNumber, L"(< value ...) -> T when each is below the next"},
    {L"<=", ordered<std::less_equal<>>, 1, anyNumber, L"(<= value ...) -> T when none is above the next"},
    {L"=", same, 1, anyNumber, L"(= value ...) -> T for the same numbers, strings or atoms"},
    {L">", ordered<std::greater<>>, 1, anyNumber, L"(> value ...) -> T when each is above the next"},
    {L">=", ordered<std::greater_equal<>>, 1, anyNumber, L"(>= value ...) -> T when none is below the next"},
    {L"eq", identical, 2, 2, L"(eq a b) -> T for the same object"},
    {L"equal", equal, 2, 3, L"(equal a b [fuzz]) -> T for the same structure; numbers may differ by fuzz"},
    {L"not", isNil, 1, 1, L"(not value) -> T for nil"},
    {L"null", isNil, 1, 1, L"(null value) -> T for nil"},
};

}  // namespace

std::span<const BuiltinDefinition> comparisonFunctions() {
    return table;
}

}  // namespace drafthost::lisp
