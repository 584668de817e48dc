#pragma once

// Turns forms into byte code.
//
// Which special forms and inlined functions a form uses is decided by what their names are bound to
// when it is compiled. A malformed special form compiles to an instruction that raises its error, so
// that the error comes when, and only when, the form is reached.

#include "host/lisp/bytecode.h"
#include "host/lisp/functions.h"
#include "host/lisp/interpreter.h"

#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace drafthost::lisp {

class Compiler {
public:
    // A place to jump to; bound once, jumped to from any number of places before.
    struct Label {
        std::vector<std::size_t> uses;
    };

    Compiler(Interpreter& interpreter, UserFunctionObject& target);

    // A function without parameters that evaluates `form`.
    static UserFunctionObject* compileForm(Interpreter& interpreter, Value form);
    // A function from its parameter list and body forms. Raises "bad element in arglist: ..." for a
    // parameter that is no symbol.
    static UserFunctionObject* compileFunction(Interpreter& interpreter, Symbol* name, Value parameters,
                                               Value body);

    Interpreter& interpreter() { return interpreter_; }

    // Emits code that leaves the form's value on the stack, or nothing when it is not wanted.
    void compile(Value form, bool wantValue);
    // The forms one after the other; the value is that of the last, nil when there is none.
    void compileSequence(Value forms, bool wantValue);
    // Emits code that jumps when the form's truth is `sense`; leaves nothing on the stack.
    void jumpWhen(Value form, bool sense, Label& label);

    void emit(Operation operation, std::initializer_list<Word> operands = {});
    void emitConstant(Value value);
    void emitJump(Operation operation, Label& label, std::initializer_list<Word> operandsBefore = {});
    void bind(Label& label);
    std::size_t position() const { return target_.code.size(); }
    // to an earlier position; a safe point
    void emitJumpBack(std::size_t to);
    void emitRaise(std::wstring_view message);

    // The special form a head symbol is bound to now; null when it is none.
    static const BuiltinObject* specialFormOf(Value head);

private:
    // What is known of the arguments of a call that may be inlined.
    struct Operands {
        BinaryMode mode;
        std::vector<Word> words;
    };

    void compileCall(Value form, bool wantValue);
    // Number of arguments, or -1 after having emitted an error for an improper list.
    int compileArguments(Value arguments);
    bool compileInlined(Value form, Symbol* head);
    bool jumpOnComparison(Value form, Label& label);
    void jumpOnJunction(Value forms, bool isAnd, bool sense, Label& label);
    Operands compileOperands(Value first, Value second);
    std::vector<Word> guard(Symbol* head) const;
    void emitWords(Operation operation, const std::vector<Word>& operands);

    Interpreter& interpreter_;
    UserFunctionObject& target_;
};

// The special forms (special_forms.cpp): rows as for other functions, and how each compiles.
struct SpecialForm {
    BuiltinDefinition definition;
    SpecialFormCompiler compile;
};
std::span<const SpecialForm> specialForms();

}  // namespace drafthost::lisp
