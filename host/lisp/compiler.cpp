#include "host/lisp/compiler.h"

#include "host/lisp/heap.h"
#include "host/lisp/machine.h"
#include "host/lisp/printer.h"

#include <algorithm>
#include <optional>
#include <string>

namespace drafthost::lisp {

namespace {

Word wordOf(const Symbol* symbol) {
    return reinterpret_cast<Word>(symbol);
}

Operation withMode(Operation base, BinaryMode mode) {
    return static_cast<Operation>(static_cast<Word>(base) + static_cast<Word>(mode));
}

Operation withMode(Operation base, UnaryMode mode) {
    return static_cast<Operation>(static_cast<Word>(base) + static_cast<Word>(mode));
}

// Functions that compile to an instruction of their own when called with this many arguments.
enum class InlineKind : std::uint8_t { arithmetic, comparison, unary, construct };

struct InlinedFunction {
    std::wstring_view name;
    InlineKind kind;
    Operation operation;  // for a comparison, the one that leaves T or nil
    Operation branch;     // comparisons only
};

constexpr InlinedFunction inlinedFunctions[] = {
    {L"+", InlineKind::arithmetic, Operation::AddStack, {}},
    {L"-", InlineKind::arithmetic, Operation::SubtractStack, {}},
    {L"*", InlineKind::arithmetic, Operation::MultiplyStack, {}},
    {L"<", InlineKind::comparison, Operation::LessStack, Operation::UnlessLessStack},
    {L"<=", InlineKind::comparison, Operation::LessEqualStack, Operation::UnlessLessEqualStack},
    {L">", InlineKind::comparison, Operation::GreaterStack, Operation::UnlessGreaterStack},
    {L">=", InlineKind::comparison, Operation::GreaterEqualStack, Operation::UnlessGreaterEqualStack},
    {L"=", InlineKind::comparison, Operation::SameStack, Operation::UnlessSameStack},
    {L"/=", InlineKind::comparison, Operation::DifferentStack, Operation::UnlessDifferentStack},
    {L"1+", InlineKind::unary, Operation::IncrementStack, {}},
    {L"1-", InlineKind::unary, Operation::DecrementStack, {}},
    {L"NOT", InlineKind::unary, Operation::NotStack, {}},
    {L"NULL", InlineKind::unary, Operation::NotStack, {}},
    {L"CAR", InlineKind::unary, Operation::CarStack, {}},
    {L"CDR", InlineKind::unary, Operation::CdrStack, {}},
    {L"CADR", InlineKind::unary, Operation::CadrStack, {}},
    {L"CADDR", InlineKind::unary, Operation::CaddrStack, {}},
    {L"CONS", InlineKind::construct, Operation::ConsStack, {}},
};

const InlinedFunction* findInlined(const Symbol* head, const Machine& machine) {
    const auto found = std::ranges::find(inlinedFunctions, head->name, &InlinedFunction::name);
    return found != std::end(inlinedFunctions) && machine.isOriginalBuiltin(head) ? found : nullptr;
}

bool isProperListOfLength(Value list, std::size_t length) {
    for (; length > 0; --length, list = list.cdr()) {
        if (!list.isPair()) {
            return false;
        }
    }
    return list.isNil();
}

}  // namespace

Compiler::Compiler(Interpreter& interpreter, UserFunctionObject& target)
    : interpreter_(interpreter), target_(target) {}

UserFunctionObject* Compiler::compileForm(Interpreter& interpreter, Value form) {
    return compileFunction(interpreter, nullptr, Value(), interpreter.cons(form, Value()));
}

UserFunctionObject* Compiler::compileFunction(Interpreter& interpreter, Symbol* name, Value parameters,
                                              Value body) {
    auto* function = interpreter.heap().make<UserFunctionObject>(0);
    function->name = name;
    function->definition = interpreter.cons(parameters, body);
    bool locals = false;
    for (; parameters.isPair(); parameters = parameters.cdr()) {
        const Value element = parameters.car();
        if (!element.isSymbol()) {
            throw LispError(L"bad element in arglist: " + interpreter.prin1ToString(element));
        }
        if (element.asSymbol()->name == L"/") {
            locals = true;
            continue;
        }
        function->variables.push_back(element.asSymbol());
        function->parameterCount += !locals;
    }
    if (!parameters.isNil()) {
        throw LispError(L"bad element in arglist: " + interpreter.prin1ToString(parameters));
    }
    Compiler compiler(interpreter, *function);
    compiler.compileSequence(body, true);
    compiler.emit(Operation::Return);
    function->stackNeeded = static_cast<std::uint32_t>(function->code.size());
    return function;
}

void Compiler::emit(Operation operation, std::initializer_list<Word> operands) {
    target_.code.push_back(static_cast<Word>(operation));
    target_.code.insert(target_.code.end(), operands);
}

void Compiler::emitWords(Operation operation, const std::vector<Word>& operands) {
    target_.code.push_back(static_cast<Word>(operation));
    target_.code.insert(target_.code.end(), operands.begin(), operands.end());
}

void Compiler::emitConstant(Value value) {
    target_.constants.push_back(value);
    emit(Operation::Constant, {value.bits()});
}

void Compiler::emitJump(Operation operation, Label& label, std::initializer_list<Word> operandsBefore) {
    emit(operation, operandsBefore);
    label.uses.push_back(target_.code.size());
    target_.code.push_back(0);
}

void Compiler::bind(Label& label) {
    for (const std::size_t use : label.uses) {
        target_.code[use] = static_cast<Word>(position() - (use + 1));
    }
    label.uses.clear();
}

void Compiler::emitJumpBack(std::size_t to) {
    emit(Operation::JumpBack, {static_cast<Word>(to) - static_cast<Word>(position() + 2)});
}

void Compiler::emitRaise(std::wstring_view message) {
    const Value text = interpreter_.string(std::wstring(message));
    target_.constants.push_back(text);
    emit(Operation::Raise, {text.bits()});
}

const BuiltinObject* Compiler::specialFormOf(Value head) {
    if (!head.isSymbol() || head.asSymbol()->value.type() != Type::builtin) {
        return nullptr;
    }
    const auto* builtin = static_cast<const BuiltinObject*>(head.asSymbol()->value.asObject());
    return builtin->compile ? builtin : nullptr;
}

void Compiler::compile(Value form, bool wantValue) {
    if (form.isPair()) {
        interpreter_.machine().checkNativeStack();
        compileCall(form, wantValue);
    } else if (!wantValue) {
        return;
    } else if (form.isSymbol()) {
        emit(Operation::Variable, {wordOf(form.asSymbol())});
    } else {
        emitConstant(form);
    }
}

void Compiler::compileSequence(Value forms, bool wantValue) {
    if (!forms.isPair()) {
        if (wantValue) {
            emitConstant(Value());
        }
        return;
    }
    for (; forms.isPair(); forms = forms.cdr()) {
        compile(forms.car(), wantValue && !forms.cdr().isPair());
    }
}

int Compiler::compileArguments(Value arguments) {
    int count = 0;
    const Value all = arguments;
    for (; arguments.isPair(); arguments = arguments.cdr(), ++count) {
        compile(arguments.car(), true);
    }
    if (!arguments.isNil()) {
        std::wstring shown;
        printValue(all, PrintStyle::readable, shown, 1000);
        emitRaise(L"bad list: " + shown);
        return -1;
    }
    return count;
}

void Compiler::compileCall(Value form, bool wantValue) {
    const Value head = form.car();
    if (const BuiltinObject* special = specialFormOf(head)) {
        special->compile(*this, form, wantValue);
        return;
    }
    if (head.isSymbol()) {
        if (!compileInlined(form, head.asSymbol())) {
            const int count = compileArguments(form.cdr());
            emit(Operation::Call, {wordOf(head.asSymbol()), static_cast<Word>(std::max(count, 0))});
        }
    } else {
        compile(head, true);
        const int count = compileArguments(form.cdr());
        emit(Operation::CallValue, {static_cast<Word>(std::max(count, 0))});
    }
    if (!wantValue) {
        emit(Operation::Pop);
    }
}

std::vector<Word> Compiler::guard(Symbol* head) const {
    return {wordOf(head), head->value.bits()};
}

// Compiles what has to be evaluated first, and says where the operands are then.
Compiler::Operands Compiler::compileOperands(Value first, Value second) {
    if (first.isSymbol() && second.isSymbol()) {
        return {BinaryMode::Variables, {wordOf(first.asSymbol()), wordOf(second.asSymbol())}};
    }
    if (second.isNumber()) {
        if (first.isSymbol()) {
            return {BinaryMode::VariableConstant, {wordOf(first.asSymbol()), second.bits()}};
        }
        compile(first, true);
        return {BinaryMode::StackConstant, {second.bits()}};
    }
    compile(first, true);
    compile(second, true);
    return {BinaryMode::Stack, {}};
}

bool Compiler::compileInlined(Value form, Symbol* head) {
    const InlinedFunction* inlined = findInlined(head, interpreter_.machine());
    const Value arguments = form.cdr();
    if (!inlined || !isProperListOfLength(arguments, inlined->kind == InlineKind::unary ? 1 : 2)) {
        return false;
    }
    std::vector<Word> words = guard(head);
    if (inlined->kind == InlineKind::unary) {
        if (arguments.car().isSymbol()) {
            words.push_back(wordOf(arguments.car().asSymbol()));
            emitWords(withMode(inlined->operation, UnaryMode::Variable), words);
        } else {
            compile(arguments.car(), true);
            emitWords(inlined->operation, words);
        }
    } else if (inlined->kind == InlineKind::arithmetic) {
        const Operands operands = compileOperands(arguments.car(), arguments.cdr().car());
        words.insert(words.end(), operands.words.begin(), operands.words.end());
        emitWords(withMode(inlined->operation, operands.mode), words);
    } else {
        compile(arguments.car(), true);
        compile(arguments.cdr().car(), true);
        emitWords(inlined->operation, words);
    }
    return true;
}

// Emits a comparison that jumps to `label` when it fails; false when the form is none that can be inlined.
bool Compiler::jumpOnComparison(Value form, Label& label) {
    if (!form.car().isSymbol() || !isProperListOfLength(form.cdr(), 2)) {
        return false;
    }
    Symbol* head = form.car().asSymbol();
    const InlinedFunction* inlined = findInlined(head, interpreter_.machine());
    if (!inlined || inlined->kind != InlineKind::comparison) {
        return false;
    }
    interpreter_.machine().checkNativeStack();
    std::vector<Word> words = guard(head);
    const Operands operands = compileOperands(form.cdr().car(), form.cdr().cdr().car());
    words.insert(words.end(), operands.words.begin(), operands.words.end());
    emitWords(withMode(inlined->branch, operands.mode), words);
    label.uses.push_back(position());
    target_.code.push_back(0);
    emitJump(Operation::JumpIfNil, label);
    return true;
}

// `and` and `or` as conditions: no value is made. They mirror each other.
void Compiler::jumpOnJunction(Value forms, bool isAnd, bool sense, Label& label) {
    if (sense != isAnd) {  // any element decides, and then the jump is taken
        for (; forms.isPair(); forms = forms.cdr()) {
            jumpWhen(forms.car(), sense, label);
        }
        return;
    }
    Label decidedOtherwise;
    if (!forms.isPair()) {
        emitJump(Operation::Jump, label);
    }
    for (; forms.isPair(); forms = forms.cdr()) {
        if (forms.cdr().isPair()) {
            jumpWhen(forms.car(), !sense, decidedOtherwise);
        } else {
            jumpWhen(forms.car(), sense, label);
        }
    }
    bind(decidedOtherwise);
}

void Compiler::jumpWhen(Value form, bool sense, Label& label) {
    if (form.isPair()) {
        interpreter_.machine().checkNativeStack();
        if (const BuiltinObject* special = specialFormOf(form.car())) {
            const std::wstring_view name = special->definition.name;
            if (name == L"and" || name == L"or") {
                jumpOnJunction(form.cdr(), name == L"and", sense, label);
                return;
            }
        } else if (!sense) {
            if (jumpOnComparison(form, label)) {
                return;
            }
        } else {
            Label fails;
            if (jumpOnComparison(form, fails)) {
                emitJump(Operation::Jump, label);
                bind(fails);
                return;
            }
        }
    }
    compile(form, true);
    emitJump(sense ? Operation::JumpIfTrue : Operation::JumpIfNil, label);
}

}  // namespace drafthost::lisp
