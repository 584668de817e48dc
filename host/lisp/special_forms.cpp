// The forms that do not evaluate all their arguments, as the compiler handles them.

#include "host/lisp/compiler.h"

namespace drafthost::lisp {

namespace {

Value argument(Value form, int index) {
    form = form.cdr();
    for (; index > 0 && form.isPair(); --index) {
        form = form.cdr();
    }
    return form.isPair() ? form.car() : Value();
}

void finishWithConstant(Compiler& compiler, Value value, bool wantValue) {
    if (wantValue) {
        compiler.emitConstant(value);
    }
}

// Emits the error a form with too few or too many arguments raises; false when the count is right.
bool emitWrongCount(Compiler& compiler, Value form, std::size_t minimum, std::size_t maximum) {
    const std::size_t count = lengthOf(form.cdr());
    if (count >= minimum && count <= maximum) {
        return false;
    }
    compiler.emitRaise(count < minimum ? L"too few arguments" : L"too many arguments");
    return true;
}

constexpr std::size_t anyCount = static_cast<std::size_t>(-1);

void compileQuote(Compiler& compiler, Value form, bool wantValue) {
    if (!emitWrongCount(compiler, form, 1, 1)) {
        finishWithConstant(compiler, argument(form, 0), wantValue);
    }
}

// A function object made now, as the constant it evaluates to.
void emitFunction(Compiler& compiler, Symbol* name, Value parameters, Value body) {
    try {
        compiler.emitConstant(
            Value::object(Compiler::compileFunction(compiler.interpreter(), name, parameters, body)));
    } catch (const LispError& error) {
        if (error.kind() == ErrorKind::hardLimit) {
            throw;
        }
        compiler.emitRaise(error.message());
    }
}

void compileLambda(Compiler& compiler, Value form, bool wantValue) {
    if (emitWrongCount(compiler, form, 1, anyCount)) {
        return;
    }
    emitFunction(compiler, nullptr, argument(form, 0), form.cdr().cdr());
    if (!wantValue) {
        compiler.emit(Operation::Pop);
    }
}

void compileFunctionForm(Compiler& compiler, Value form, bool wantValue) {
    const Value named = argument(form, 0);
    const bool isLambda = named.isPair() && named.car() == compiler.interpreter().symbol(L"LAMBDA");
    if (isLambda && named.cdr().isPair() && lengthOf(form.cdr()) == 1) {
        compileLambda(compiler, named, wantValue);
    } else {
        compileQuote(compiler, form, wantValue);
    }
}

Symbol* nameToDefine(Compiler& compiler, Value form) {
    if (emitWrongCount(compiler, form, 2, anyCount)) {
        return nullptr;
    }
    if (!argument(form, 0).isSymbol()) {
        compiler.emitRaise(L"bad argument type: symbolp " +
                           compiler.interpreter().prin1ToString(argument(form, 0)));
        return nullptr;
    }
    return argument(form, 0).asSymbol();
}

void finishDefinition(Compiler& compiler, Symbol* name, bool wantValue) {
    compiler.emit(Operation::SetAndPop, {reinterpret_cast<Word>(name)});
    finishWithConstant(compiler, Value::symbol(name), wantValue);
}

void compileDefun(Compiler& compiler, Value form, bool wantValue) {
    if (Symbol* name = nameToDefine(compiler, form)) {
        emitFunction(compiler, name, argument(form, 1), form.cdr().cdr().cdr());
        finishDefinition(compiler, name, wantValue);
    }
}

void compileDefunList(Compiler& compiler, Value form, bool wantValue) {
    if (Symbol* name = nameToDefine(compiler, form)) {
        compiler.emitConstant(form.cdr().cdr());
        finishDefinition(compiler, name, wantValue);
    }
}

void compileSetq(Compiler& compiler, Value form, bool wantValue) {
    Value rest = form.cdr();
    if (!rest.isPair()) {
        finishWithConstant(compiler, Value(), wantValue);
    }
    while (rest.isPair()) {
        const Value variable = rest.car();
        rest = rest.cdr();
        if (!variable.isSymbol() || !rest.isPair()) {
            compiler.emitRaise(L"syntax error");
            return;
        }
        compiler.compile(rest.car(), true);
        rest = rest.cdr();
        const bool keep = wantValue && !rest.isPair();
        compiler.emit(keep ? Operation::Set : Operation::SetAndPop,
                      {reinterpret_cast<Word>(variable.asSymbol())});
    }
}

void compileProgn(Compiler& compiler, Value form, bool wantValue) {
    compiler.compileSequence(form.cdr(), wantValue);
}

void compileIf(Compiler& compiler, Value form, bool wantValue) {
    if (emitWrongCount(compiler, form, 2, 3)) {
        return;
    }
    Compiler::Label otherwise;
    Compiler::Label end;
    compiler.jumpWhen(argument(form, 0), false, otherwise);
    compiler.compile(argument(form, 1), wantValue);
    compiler.emitJump(Operation::Jump, end);
    compiler.bind(otherwise);
    compiler.compile(argument(form, 2), wantValue);
    compiler.bind(end);
}

void compileCond(Compiler& compiler, Value form, bool wantValue) {
    Compiler::Label end;
    for (const Value clause : elements(form.cdr())) {
        if (!clause.isPair()) {
            compiler.emitRaise(L"bad argument type: consp " + compiler.interpreter().prin1ToString(clause));
            return;
        }
        if (!clause.cdr().isPair()) {  // (test): answers the test's value
            if (wantValue) {
                compiler.compile(clause.car(), true);
                compiler.emitJump(Operation::JumpIfTrueKeep, end);
            } else {
                compiler.jumpWhen(clause.car(), true, end);
            }
            continue;
        }
        Compiler::Label next;
        compiler.jumpWhen(clause.car(), false, next);
        compiler.compileSequence(clause.cdr(), wantValue);
        compiler.emitJump(Operation::Jump, end);
        compiler.bind(next);
    }
    finishWithConstant(compiler, Value(), wantValue);
    compiler.bind(end);
}

// `and` and `or` answer T, not the deciding value.
void compileJunction(Compiler& compiler, Value form, bool wantValue) {
    Compiler::Label fails;
    Compiler::Label end;
    compiler.jumpWhen(form, false, fails);
    finishWithConstant(compiler, compiler.interpreter().t(), wantValue);
    compiler.emitJump(Operation::Jump, end);
    compiler.bind(fails);
    finishWithConstant(compiler, Value(), wantValue);
    compiler.bind(end);
}

// The loops keep the value of the last form of the body in a place of the stack below their own state.
void compileBody(Compiler& compiler, Value forms, bool wantValue, Word distanceToResult) {
    if (wantValue && forms.isPair()) {
        compiler.compileSequence(forms, true);
        compiler.emit(Operation::Replace, {distanceToResult});
    } else {
        compiler.compileSequence(forms, false);
    }
}

void compileWhile(Compiler& compiler, Value form, bool wantValue) {
    if (emitWrongCount(compiler, form, 1, anyCount)) {
        return;
    }
    finishWithConstant(compiler, Value(), wantValue);
    Compiler::Label end;
    const std::size_t start = compiler.position();
    compiler.jumpWhen(argument(form, 0), false, end);
    compileBody(compiler, form.cdr().cdr(), wantValue, 1);
    compiler.emitJumpBack(start);
    compiler.bind(end);
}

void compileRepeat(Compiler& compiler, Value form, bool wantValue) {
    if (emitWrongCount(compiler, form, 1, anyCount)) {
        return;
    }
    finishWithConstant(compiler, Value(), wantValue);
    compiler.compile(argument(form, 0), true);
    compiler.emit(Operation::RepeatBegin);
    Compiler::Label end;
    const std::size_t start = compiler.position();
    compiler.emitJump(Operation::RepeatNext, end);
    compileBody(compiler, form.cdr().cdr(), wantValue, 2);
    compiler.emitJumpBack(start);
    compiler.bind(end);
}

void compileForeach(Compiler& compiler, Value form, bool wantValue) {
    if (emitWrongCount(compiler, form, 2, anyCount)) {
        return;
    }
    const Value variable = argument(form, 0);
    if (!variable.isSymbol()) {
        compiler.emitRaise(L"bad argument type: symbolp " + compiler.interpreter().prin1ToString(variable));
        return;
    }
    const Word symbol = reinterpret_cast<Word>(variable.asSymbol());
    finishWithConstant(compiler, Value(), wantValue);
    compiler.compile(argument(form, 1), true);
    compiler.emit(Operation::ForeachBegin, {symbol});
    Compiler::Label end;
    const std::size_t start = compiler.position();
    compiler.emitJump(Operation::ForeachNext, end, {symbol});
    compileBody(compiler, form.cdr().cdr().cdr(), wantValue, 2);
    compiler.emitJumpBack(start);
    compiler.bind(end);
    compiler.emit(Operation::ForeachEnd);
}

// --- the same as functions, for (apply 'and list) and the like -------------------------------------

Value callAnd(Interpreter& interpreter, Arguments arguments) {
    for (const Value value : arguments) {
        if (value.isNil()) {
            return Value();
        }
    }
    return interpreter.t();
}

Value callOr(Interpreter& interpreter, Arguments arguments) {
    for (const Value value : arguments) {
        if (value) {
            return interpreter.t();
        }
    }
    return Value();
}

Value callProgn(Interpreter&, Arguments arguments) {
    return arguments.empty() ? Value() : arguments[arguments.size() - 1];
}

Value callQuote(Interpreter&, Arguments arguments) {
    return arguments[0];
}

Value callIf(Interpreter&, Arguments arguments) {
    return arguments[0] ? arguments[1] : arguments[2];
}

// (apply 'setq '(a 1)): as if the form had been written
template <const wchar_t* name>
Value callAsForm(Interpreter& interpreter, Arguments arguments) {
    return interpreter.evaluate(
        interpreter.cons(interpreter.symbol(name), interpreter.list(arguments.values())));
}

constexpr wchar_t condName[] = L"cond";
constexpr wchar_t defunName[] = L"defun";
constexpr wchar_t defunListName[] = L"defun-q";
constexpr wchar_t foreachName[] = L"foreach";
constexpr wchar_t lambdaName[] = L"lambda";
constexpr wchar_t repeatName[] = L"repeat";
constexpr wchar_t setqName[] = L"setq";
constexpr wchar_t whileName[] = L"while";

constexpr SpecialForm table[] = {
    {{L"and", callAnd, 0, anyNumber,
      L"(and [form ...]) -> T when no form is nil; stops at the first that is"},
     compileJunction},
    {{condName, callAsForm<condName>, 0, anyNumber,
      L"(cond [(test form ...) ...]) -> value of the clause whose test is first not nil"},
     compileCond},
    {{defunName, callAsForm<defunName>, 2, anyNumber,
      L"(defun name ([parameter ...] [/ local ...]) form ...) -> name; defines a function"},
     compileDefun},
    {{defunListName, callAsForm<defunListName>, 2, anyNumber,
      L"(defun-q name (parameters) form ...) -> name; defines a function kept as a list"},
     compileDefunList},
    {{foreachName, callAsForm<foreachName>, 2, anyNumber,
      L"(foreach name list form ...) -> last value; evaluates the forms for each element"},
     compileForeach},
    {{L"function", callQuote, 1, 1, L"(function f) -> f; a lambda expression is compiled"},
     compileFunctionForm},
    {{L"if", callIf, 2, 3, L"(if test then [else]) -> value of then or else"}, compileIf},
    {{lambdaName, callAsForm<lambdaName>, 1, anyNumber,
      L"(lambda (parameters) form ...) -> function without a name"},
     compileLambda},
    {{L"or", callOr, 0, anyNumber,
      L"(or [form ...]) -> T when a form is not nil; stops at the first that is not"},
     compileJunction},
    {{L"progn", callProgn, 0, anyNumber, L"(progn [form ...]) -> last value"}, compileProgn},
    {{L"quote", callQuote, 1, 1, L"(quote form) -> form, not evaluated; written 'form"}, compileQuote},
    {{repeatName, callAsForm<repeatName>, 1, anyNumber,
      L"(repeat count form ...) -> last value; evaluates the forms count times"},
     compileRepeat},
    {{setqName, callAsForm<setqName>, 0, anyNumber,
      L"(setq [name form ...]) -> last value; assigns variables"},
     compileSetq},
    {{whileName, callAsForm<whileName>, 1, anyNumber,
      L"(while test form ...) -> last value; evaluates the forms while test is not nil"},
     compileWhile},
};

}  // namespace

std::span<const SpecialForm> specialForms() {
    return table;
}

}  // namespace drafthost::lisp
