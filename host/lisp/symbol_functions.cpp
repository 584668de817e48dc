// Symbols, their values, and what values are.

#include "host/lisp/language_functions.h"

#include <string>
#include <vector>

namespace drafthost::lisp {

namespace {

Value setValue(Interpreter&, Arguments arguments) {
    return arguments.symbol(0)->value = arguments[1];
}

Value isBound(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(!arguments.symbol(0)->value.isNil());
}

Value typeOf(Interpreter& interpreter, Arguments arguments) {
    const Type type = arguments[0].type();
    return type == Type::nothing ? Value() : interpreter.symbol(typeName(type));
}

Value symbolName(Interpreter& interpreter, Arguments arguments) {
    return interpreter.string(arguments.symbol(0)->name);
}

Value valueOfSymbol(Interpreter&, Arguments arguments) {
    return arguments.symbol(0)->value;
}

Value isSymbol(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments[0].isSymbol());
}

// The list a function of defun-q is; nil for compiled functions.
Value definitionList(Interpreter&, Arguments arguments) {
    const Value value = arguments.symbol(0)->value;
    return value.isPair() ? value : Value();
}

Value setDefinitionList(Interpreter&, Arguments arguments) {
    arguments.symbol(0)->value = arguments.list(1);
    return arguments[0];
}

Value formatted(Interpreter& interpreter, Value format, const std::wstring& name) {
    const bool asString = format.isInteger() && format.asInteger() == 1;
    return asString ? interpreter.string(name) : interpreter.symbol(name);
}

// With a list of names: the same list with nil for those without a value.
Value atomsFamily(Interpreter& interpreter, Arguments arguments) {
    const Value format = Value::integer(arguments.integer(0));
    ListBuilder result(interpreter);
    if (arguments.size() == 1) {
        for (const std::wstring& name : interpreter.boundNames()) {
            result.append(formatted(interpreter, format, name));
        }
        return result.list();
    }
    for (const Value name : elements(arguments.list(1))) {
        if (!name.isString()) {
            raiseBadArgumentType(L"stringp", name);
        }
        const bool bound = !interpreter.symbolValue(name.asString()).isNil();
        result.append(
            bound ? formatted(interpreter, format, interpreter.symbol(name.asString()).asSymbol()->name)
                  : Value());
    }
    return result.list();
}

constexpr BuiltinDefinition table[] = {
    {L"atoms-family", atomsFamily, 1, 2,
     L"(atoms-family format [names]) -> bound symbols; format 1: as strings"},
    {L"boundp", isBound, 1, 1, L"(boundp symbol) -> T when the symbol has a value other than nil"},
    {L"defun-q-list-ref", definitionList, 1, 1, L"(defun-q-list-ref symbol) -> list a defun-q function is"},
    {L"defun-q-list-set", setDefinitionList, 2, 2, L"(defun-q-list-set symbol list) -> symbol; defines it"},
    {L"set", setValue, 2, 2, L"(set symbol value) -> value; assigns the symbol's variable"},
    {L"type", typeOf, 1, 1, L"(type value) -> INT, REAL, STR, SYM, LIST, SUBR, ...; nil for nil"},
    {L"vl-symbol-name", symbolName, 1, 1, L"(vl-symbol-name symbol) -> name in upper case"},
    {L"vl-symbol-value", valueOfSymbol, 1, 1, L"(vl-symbol-value symbol) -> its value"},
    {L"vl-symbolp", isSymbol, 1, 1, L"(vl-symbolp value) -> T for symbols other than nil"},
};

}  // namespace

std::span<const BuiltinDefinition> symbolFunctions() {
    return table;
}

}  // namespace drafthost::lisp
