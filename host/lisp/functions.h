#pragma once

// The function objects of the language.

#include "host/lisp/interpreter.h"
#include "host/lisp/value.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace drafthost::lisp {

class Compiler;

// Compiles one form whose head is a special form; see compiler.h.
using SpecialFormCompiler = void (*)(Compiler& compiler, Value form, bool wantValue);

// A SUBR. Special forms are SUBRs too: inside a program they are compiled by `compile`; when they are
// called as a function (apply 'and ...) `function` is used.
struct BuiltinObject final : Object {
    BuiltinDefinition definition;
    SpecialFormCompiler compile;  // null for ordinary functions

    explicit BuiltinObject(const BuiltinDefinition& row, SpecialFormCompiler specialForm = nullptr)
        : Object(Type::builtin), definition(row), compile(specialForm) {}

    bool accepts(std::size_t count) const {
        return static_cast<int>(count) >= definition.minimumArguments &&
               (definition.maximumArguments == anyNumber ||
                static_cast<int>(count) <= definition.maximumArguments);
    }
};

// An EXRXSUBR.
struct ExternalObject final : Object {
    std::wstring name;
    int identifier;
    ExternalFunction function;

    ExternalObject(std::wstring upperName, int number, ExternalFunction callable)
        : Object(Type::external), name(std::move(upperName)), identifier(number),
          function(std::move(callable)) {}
};

// A USUBR: byte code with the symbols it binds. Text evaluated at top level is one without parameters.
struct UserFunctionObject final : Object {
    std::vector<std::uint64_t> code;  // bytecode.h
    std::vector<Value> constants;     // the values in the code, for the collector
    std::vector<Symbol*> variables;   // parameters, then locals
    std::uint32_t parameterCount = 0;
    std::uint32_t stackNeeded = 0;  // values of the stack the code uses at most
    Symbol* name = nullptr;         // null for lambda
    Value definition;               // (parameters body...) as written

    UserFunctionObject() : Object(Type::userFunction) {}
    void trace(Heap& heap) const override;
};

}  // namespace drafthost::lisp
