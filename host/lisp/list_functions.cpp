// Making, taking apart and searching lists. Lists are never changed; results share tails where they can.

#include "host/lisp/language_functions.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace drafthost::lisp {

namespace {

// Raises for a list that ends with something other than nil.
Value properList(Interpreter& interpreter, Value list) {
    Value rest = list;
    while (rest.isPair()) {
        rest = rest.cdr();
    }
    if (!rest.isNil()) {
        throw LispError(L"bad list: " + interpreter.prin1ToString(list));
    }
    return list;
}

Value makeList(Interpreter& interpreter, Arguments arguments) {
    return interpreter.list(arguments.values());
}

Value makePair(Interpreter& interpreter, Arguments arguments) {
    return interpreter.cons(arguments[0], arguments[1]);
}

// (vl-list* 1 2 '(3)) -> (1 2 3): the last argument is the tail.
Value makeListWithTail(Interpreter& interpreter, Arguments arguments) {
    Value result = arguments[arguments.size() - 1];
    for (std::size_t index = arguments.size() - 1; index-- > 0;) {
        result = interpreter.cons(arguments[index], result);
    }
    return result;
}

Value append(Interpreter& interpreter, Arguments arguments) {
    ListBuilder result(interpreter);
    for (std::size_t index = 0; index + 1 < arguments.size(); ++index) {
        for (const Value element : elements(properList(interpreter, arguments.list(index)))) {
            result.append(element);
        }
    }
    if (!arguments.empty()) {
        result.finishWith(arguments.list(arguments.size() - 1));
    }
    return result.list();
}

Value reverse(Interpreter& interpreter, Arguments arguments) {
    Value result;
    for (const Value element : elements(properList(interpreter, arguments.list(0)))) {
        result = interpreter.cons(element, result);
    }
    return result;
}

Value length(Interpreter& interpreter, Arguments arguments) {
    return Value::integer(static_cast<std::int32_t>(lengthOf(properList(interpreter, arguments.list(0)))));
}

// nil, not an error, for a dotted list
Value listLength(Interpreter&, Arguments arguments) {
    std::int32_t count = 0;
    Value rest = arguments.list(0);
    for (; rest.isPair(); rest = rest.cdr()) {
        ++count;
    }
    return rest.isNil() ? Value::integer(count) : Value();
}

Value nth(Interpreter&, Arguments arguments) {
    std::int32_t index = arguments.integer(0);
    if (index < 0) {
        raiseBadArgumentValue(L"non-negative:", arguments[0]);
    }
    Value rest = arguments.list(1);
    for (; index > 0 && rest.isPair(); --index) {
        rest = rest.cdr();
    }
    return rest.isPair() ? rest.car() : Value();
}

Value last(Interpreter&, Arguments arguments) {
    Value rest = arguments.list(0);
    while (rest.isPair() && rest.cdr().isPair()) {
        rest = rest.cdr();
    }
    return rest.isPair() ? rest.car() : Value();
}

Value member(Interpreter& interpreter, Arguments arguments) {
    Value rest = arguments.list(1);
    while (rest.isPair() && !isEqual(arguments[0], rest.car(), 0, &interpreter)) {
        rest = rest.cdr();
    }
    return rest.isPair() ? rest : Value();
}

Value position(Interpreter& interpreter, Arguments arguments) {
    std::int32_t index = 0;
    for (const Value element : elements(arguments.list(1))) {
        if (isEqual(arguments[0], element, 0, &interpreter)) {
            return Value::integer(index);
        }
        ++index;
    }
    return Value();
}

Value associate(Interpreter& interpreter, Arguments arguments) {
    for (const Value entry : elements(arguments.list(1))) {
        if (!entry.isPair()) {
            throw LispError(L"bad association list: " + interpreter.prin1ToString(arguments[1]));
        }
        if (isEqual(arguments[0], entry.car(), 0, &interpreter)) {
            return entry;
        }
    }
    return Value();
}

Value substitute(Interpreter& interpreter, Arguments arguments) {
    ListBuilder result(interpreter);
    Value rest = arguments.list(2);
    for (; rest.isPair(); rest = rest.cdr()) {
        result.append(isEqual(arguments[1], rest.car(), 0, &interpreter) ? arguments[0] : rest.car());
    }
    result.finishWith(rest);
    return result.list();
}

Value removeAll(Interpreter& interpreter, Arguments arguments) {
    ListBuilder result(interpreter);
    for (const Value element : elements(properList(interpreter, arguments.list(1)))) {
        if (!isEqual(arguments[0], element, 0, &interpreter)) {
            result.append(element);
        }
    }
    return result.list();
}

Value isList(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments[0].isList());
}

Value isPair(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments[0].isPair());
}

Value isAtom(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(!arguments[0].isPair());
}

Value sortStrings(Interpreter& interpreter, Arguments arguments) {
    std::vector<Value> strings;
    for (const Value element : elements(arguments.list(0))) {
        if (!element.isString()) {
            raiseBadArgumentType(L"stringp", element);
        }
        strings.push_back(element);
    }
    std::ranges::stable_sort(strings, std::less<>(),
                             [](Value text) -> const std::wstring& { return text.asString(); });
    return interpreter.list(strings);
}

Value listToString(Interpreter& interpreter, Arguments arguments) {
    std::wstring text;
    for (const Value code : elements(properList(interpreter, arguments.list(0)))) {
        if (!code.isInteger()) {
            raiseBadArgumentType(L"fixnump:", code);
        }
        if (code.asInteger() < 0 || code.asInteger() > 0xFFFF) {
            raiseBadArgumentValue(L"character code", code);
        }
        text += static_cast<wchar_t>(code.asInteger());
    }
    return interpreter.string(std::move(text));
}

constexpr BuiltinDefinition table[] = {
    {L"acad_strlsort", sortStrings, 1, 1, L"(acad_strlsort strings) -> sorted list"},
    {L"append", append, 0, anyNumber, L"(append [list ...]) -> one list of all elements"},
    {L"assoc", associate, 2, 2, L"(assoc key pairs) -> first element whose car is equal to key"},
    {L"atom", isAtom, 1, 1, L"(atom value) -> T unless a non-empty list"},
    {L"cons", makePair, 2, 2, L"(cons first rest) -> list, or dotted pair when rest is an atom"},
    {L"last", last, 1, 1, L"(last list) -> last element"},
    {L"length", length, 1, 1, L"(length list) -> number of elements"},
    {L"list", makeList, 0, anyNumber, L"(list [value ...]) -> list of the values"},
    {L"listp", isList, 1, 1, L"(listp value) -> T for lists and nil"},
    {L"member", member, 2, 2, L"(member value list) -> rest of the list from the first equal element"},
    {L"nth", nth, 2, 2, L"(nth index list) -> element, counted from 0; nil behind the end"},
    {L"reverse", reverse, 1, 1, L"(reverse list) -> elements in reverse"},
    {L"subst", substitute, 3, 3, L"(subst new old list) -> list with the equal elements replaced"},
    {L"vl-consp", isPair, 1, 1, L"(vl-consp value) -> T for a non-empty list or dotted pair"},
    {L"vl-list*", makeListWithTail, 1, anyNumber, L"(vl-list* value ... tail) -> list ending with tail"},
    {L"vl-list->string", listToString, 1, 1, L"(vl-list->string codes) -> string of the character codes"},
    {L"vl-list-length", listLength, 1, 1,
     L"(vl-list-length list) -> number of elements; nil for a dotted list"},
    {L"vl-position", position, 2, 2, L"(vl-position value list) -> index of the first equal element or nil"},
    {L"vl-remove", removeAll, 2, 2, L"(vl-remove value list) -> list without the equal elements"},
};

}  // namespace

std::span<const BuiltinDefinition> listFunctions() {
    return table;
}

}  // namespace drafthost::lisp
