#include "host/lisp/machine.h"

#include "host/lisp/compiler.h"
#include "host/lisp/heap.h"
#include "host/lisp/symbol_table.h"

#include <algorithm>
#include <functional>

namespace drafthost::lisp {

namespace {

// Local variables are bounded apart from frames: 13 for each frame of the deepest recursion.
constexpr std::size_t bindingLimit = 256 * 1024;

// What *error* may use beyond the limits of the program.
constexpr std::size_t valueHeadroom = 4096;
constexpr std::size_t bindingHeadroom = 4096;
constexpr std::size_t frameHeadroom = 200;

}  // namespace

Machine::Machine(Interpreter& interpreter, const Limits& limits)
    : interpreter_(interpreter), values_(limits.valueStack + valueHeadroom),
      bindings_(bindingLimit + bindingHeadroom), frames_(limits.frames + frameHeadroom),
      top_(values_.begin()), valueLimit_(values_.begin() + limits.valueStack), bindingTop_(bindings_.begin()),
      bindingLimit_(bindings_.begin() + bindingLimit), frameLimit_(limits.frames),
      nativeBase_(static_cast<const char*>(__builtin_frame_address(0))), nativeLimit_(limits.nativeStack) {}

void Machine::setHeadroom(bool forErrorHandler) {
    const Limits& limits = interpreter_.limits();
    valueLimit_ = values_.begin() + limits.valueStack + (forErrorHandler ? valueHeadroom : 0);
    bindingLimit_ = bindings_.begin() + bindingLimit + (forErrorHandler ? bindingHeadroom : 0);
    frameLimit_ = limits.frames + (forErrorHandler ? frameHeadroom : 0);
}

Machine::Depth Machine::depth() const {
    return {static_cast<std::size_t>(top_ - values_.begin()),
            static_cast<std::size_t>(bindingTop_ - bindings_.begin()), frameCount_};
}

void Machine::restore(const Depth& depth) {
    unbindTo(bindings_.begin() + depth.bindings);
    top_ = values_.begin() + depth.values;
    frameCount_ = depth.frames;
}

void Machine::raiseHardError() {
    throw LispError(L"hard error occurred *** internal stack limit reached (simulated)",
                    ErrorKind::hardLimit);
}

void Machine::raiseWrongCount(std::size_t given, std::size_t wanted) {
    if (given < wanted) {
        raiseTooFewArguments();
    }
    raiseTooManyArguments();
}

void Machine::raiseText(Value text) {
    throw LispError(text.asString());
}

void Machine::addBuiltin(Symbol* name, BuiltinObject* builtin) {
    allBuiltins_.push_back(builtin);
    builtins_.emplace(name, builtin);
}

bool Machine::isOriginalBuiltin(const Symbol* name) const {
    const auto found = builtins_.find(name);
    return found != builtins_.end() && name->value == Value::object(found->second);
}

void Machine::markRoots(Heap& heap) const {
    std::for_each(values_.begin(), top_, [&](Value value) { heap.mark(value); });
    std::for_each(bindings_.begin(), bindingTop_, [&](const Binding& binding) { heap.mark(binding.hidden); });
    for (std::size_t index = 0; index < frameCount_; ++index) {
        heap.mark(Value::object(frames_.begin()[index].function));
    }
    for (BuiltinObject* builtin : allBuiltins_) {
        heap.mark(Value::object(builtin));
    }
}

// A compiled list may itself keep further lists alive, so this repeats until nothing new is reached.
void Machine::markCompiledLists(Heap& heap) {
    for (bool found = true; found;) {
        found = false;
        for (const auto& [list, function] : compiledLists_) {
            if (!function->marked && heap.isMarked(list)) {
                heap.mark(Value::object(function));
                found = true;
            }
        }
        heap.propagateMarks();
    }
    std::erase_if(compiledLists_, [&](const auto& entry) { return !heap.isMarked(entry.first); });
}

std::vector<std::wstring> Machine::backtrace() const {
    std::vector<std::wstring> names;
    for (std::size_t index = frameCount_; index-- > 0;) {
        const UserFunctionObject& function = *frames_.begin()[index].function;
        const bool isForm = !function.name && function.variables.empty();
        names.push_back(function.name ? function.name->name : isForm ? L"-form-" : L"-lambda-");
    }
    return names;
}

// --- finding what to call ---------------------------------------------------------------------------

UserFunctionObject* Machine::compiledList(Value list) {
    if (const auto found = compiledLists_.find(list.asPair()); found != compiledLists_.end()) {
        return found->second;
    }
    Value description = list;  // (parameters body...)
    if (list.car() == interpreter_.symbol(L"LAMBDA")) {
        description = list.cdr();
    }
    if (!description.isPair() || !description.car().isList()) {
        return nullptr;
    }
    UserFunctionObject* function =
        Compiler::compileFunction(interpreter_, nullptr, description.car(), description.cdr());
    compiledLists_.emplace(list.asPair(), function);
    return function;
}

Value Machine::resolveOrNil(Value function) {
    if (function.isSymbol()) {
        function = function.asSymbol()->value;
    }
    if (function.isPair()) {
        UserFunctionObject* compiled = compiledList(function);
        return compiled ? Value::object(compiled) : Value();
    }
    return function.isFunction() ? function : Value();
}

void Machine::raiseUndefined(Value function) {
    if (function.isSymbol() && function.asSymbol()->value.isNil()) {
        throw LispError(L"no function definition: " + function.asSymbol()->name);
    }
    raiseBadFunction(function.isSymbol() ? function.asSymbol()->value : function);
}

Value Machine::resolve(Value function) {
    const Value resolved = resolveOrNil(function);
    if (resolved.isNil()) {
        raiseUndefined(function);
    }
    return resolved;
}

// --- entering and leaving ---------------------------------------------------------------------------

void Machine::safePoint() {
    interpreter_.handlePoll();
}

void Machine::push(std::span<const Value> values) {
    if (values.size() > static_cast<std::size_t>(valueLimit_ - top_)) {
        raiseHardError();
    }
    top_ = std::copy(values.begin(), values.end(), top_);
}

inline const Word* Machine::enter(UserFunctionObject* function, std::size_t count, Value* top,
                                  const Word* returnTo) {
    if (count != function->parameterCount) [[unlikely]] {
        raiseWrongCount(count, function->parameterCount);
    }
    const std::size_t variables = function->variables.size();
    if (frameCount_ >= frameLimit_ || function->stackNeeded > static_cast<std::size_t>(valueLimit_ - top) ||
        variables > static_cast<std::size_t>(bindingLimit_ - bindingTop_)) [[unlikely]] {
        raiseHardError();
    }
    frames_.begin()[frameCount_++] = Frame{returnTo, function, bindingTop_};
    const Value* argument = top - count;
    Symbol* const* variable = function->variables.data();
    for (std::size_t index = 0; index < count; ++index) {
        bindTo(variable[index], argument[index]);
    }
    for (std::size_t index = count; index < variables; ++index) {
        bindTo(variable[index], Value());
    }
    top_ = top - count;
    if (interpreter_.pollFlags_.load(std::memory_order_relaxed)) [[unlikely]] {
        safePoint();
    }
    return function->code.data();
}

// Calls a built-in or external function with the values below `top`, which stay on the stack meanwhile.
inline Value Machine::invokeNative(Object* function, Value* top, std::size_t count) {
    top_ = top;
    const Arguments arguments(top - count, count);
    if (function->type == Type::builtin) {
        auto* builtin = static_cast<BuiltinObject*>(function);
        if (!builtin->accepts(count)) [[unlikely]] {
            raiseWrongCount(count, static_cast<std::size_t>(builtin->definition.minimumArguments));
        }
        return builtin->definition.function(interpreter_, arguments);
    }
    // a copy: the function may undefine itself
    const ExternalFunction callable = static_cast<ExternalObject*>(function)->function;
    return callable(interpreter_, arguments);
}

Value Machine::execute(UserFunctionObject* function, std::size_t count) {
    static const Word halt = static_cast<Word>(Operation::Halt);
    return run(enter(function, count, top_, &halt));
}

Value Machine::call(Value function, std::span<const Value> arguments) {
    checkNativeStack();
    const Value resolved = resolve(function);
    Value* const top = top_;
    push(arguments);
    Object* object = resolved.asObject();
    const Value result = object->type == Type::userFunction
                             ? execute(static_cast<UserFunctionObject*>(object), arguments.size())
                             : invokeNative(object, top_, arguments.size());
    top_ = top;
    return result;
}

Value Machine::evaluate(Value form) {
    checkNativeStack();
    if (form.isSymbol()) {
        return form.asSymbol()->value;
    }
    if (!form.isPair()) {
        return form;
    }
    return execute(Compiler::compileForm(interpreter_, form), 0);
}

// --- the operations that are inlined ----------------------------------------------------------------
//
// Each answers false when it is not for values of these types.

namespace {

// Integers wrap around at 32 bits.
struct AddOperation {
    static std::uint32_t combine(std::uint32_t left, std::uint32_t right) { return left + right; }
    static double combine(double left, double right) { return left + right; }
};

struct SubtractOperation {
    static std::uint32_t combine(std::uint32_t left, std::uint32_t right) { return left - right; }
    static double combine(double left, double right) { return left - right; }
};

struct MultiplyOperation {
    static std::uint32_t combine(std::uint32_t left, std::uint32_t right) { return left * right; }
    static double combine(double left, double right) { return left * right; }
};

template <class Function>
inline bool calculate(Value left, Value right, Value& result) {
    if (left.isInteger() && right.isInteger()) [[likely]] {
        const auto a = static_cast<std::uint32_t>(left.asInteger());
        const auto b = static_cast<std::uint32_t>(right.asInteger());
        result = Value::integer(static_cast<std::int32_t>(Function::combine(a, b)));
        return true;
    }
    if (left.isNumber() && right.isNumber()) {
        result = Value::real(Function::combine(left.asNumber(), right.asNumber()));
        return true;
    }
    return false;
}

template <class Comparison>
inline bool compare(Value left, Value right, bool& result) {
    if (left.isInteger() && right.isInteger()) [[likely]] {
        result = Comparison()(left.asInteger(), right.asInteger());
        return true;
    }
    if (left.isNumber() && right.isNumber()) {
        result = Comparison()(left.asNumber(), right.asNumber());
        return true;
    }
    return false;
}

inline bool increment(Value value, Value& result) {
    return value.isInteger() && calculate<AddOperation>(value, Value::integer(1), result);
}

inline bool decrement(Value value, Value& result) {
    return value.isInteger() && calculate<SubtractOperation>(value, Value::integer(1), result);
}

inline bool first(Value value, Value& result) {
    result = value.isPair() ? value.car() : value;
    return value.isList();
}

inline bool rest(Value value, Value& result) {
    result = value.isPair() ? value.cdr() : value;
    return value.isList();
}

inline bool second(Value value, Value& result) {
    return rest(value, result) && first(result, result);
}

inline bool third(Value value, Value& result) {
    return rest(value, result) && second(result, result);
}

inline Symbol* symbolAt(const Word* operand) {
    return reinterpret_cast<Symbol*>(*operand);
}

inline const Word* jump(const Word* distance) {
    return distance + 1 + static_cast<std::ptrdiff_t>(static_cast<std::int64_t>(*distance));
}

}  // namespace

// --- the evaluator ------------------------------------------------------------------------------------

// Direct-threaded: every operation ends by jumping to the next one's code. In the macros below, `ip` is
// at the operation itself. An inlined operation that cannot go the short way puts its operands on the stack
// and goes to `call`, with `callee` and `count` set and `next` at what follows.
Value Machine::run(const Word* ip) {
    static const void* const labels[] = {
#define DRAFTHOST_LISP_LABEL(name) &&name,
        DRAFTHOST_LISP_OPERATIONS(DRAFTHOST_LISP_LABEL)
#undef DRAFTHOST_LISP_LABEL
    };
    Value* top = top_;
    const Value truth = interpreter_.t();
    Symbol* callee = nullptr;
    std::size_t count = 0;
    const Word* next = nullptr;
    Value called;

#define DISPATCH() goto* labels[*ip]
#define GUARDED (symbolAt(ip + 1)->value.bits() == ip[2])
#define CALL_INSTEAD(operands, length)                                                                       \
    callee = symbolAt(ip + 1);                                                                               \
    count = (operands);                                                                                      \
    next = ip + (length);                                                                                    \
    goto call

// OPERANDS_* give the two operands of a binary operation in mode *; PUSH_* puts them on the stack.
#define OPERANDS_Stack top[-2], top[-1]
#define OPERANDS_StackConstant top[-1], Value::fromBits(ip[3])
#define OPERANDS_VariableConstant symbolAt(ip + 3)->value, Value::fromBits(ip[4])
#define OPERANDS_Variables symbolAt(ip + 3)->value, symbolAt(ip + 4)->value
#define PUSH_Stack
#define PUSH_StackConstant *top++ = Value::fromBits(ip[3]);
#define PUSH_VariableConstant                                                                                \
    *top++ = symbolAt(ip + 3)->value;                                                                        \
    *top++ = Value::fromBits(ip[4]);
#define PUSH_Variables                                                                                       \
    *top++ = symbolAt(ip + 3)->value;                                                                        \
    *top++ = symbolAt(ip + 4)->value;

// `used`: values the mode takes from the stack; `length`: words of the operation and its operands.
#define CALCULATE_MODE(name, mode, used, length)                                                             \
    name##mode : {                                                                                           \
        Value result;                                                                                        \
        if (GUARDED && calculate<name##Operation>(OPERANDS_##mode, result)) {                                \
            top -= (used);                                                                                   \
            *top++ = result;                                                                                 \
            ip += (length);                                                                                  \
            DISPATCH();                                                                                      \
        }                                                                                                    \
        PUSH_##mode CALL_INSTEAD(2, length);                                                                 \
    }
#define CALCULATE(name)                                                                                      \
    CALCULATE_MODE(name, Stack, 2, 3)                                                                        \
    CALCULATE_MODE(name, StackConstant, 1, 4)                                                                \
    CALCULATE_MODE(name, VariableConstant, 0, 5)                                                             \
    CALCULATE_MODE(name, Variables, 0, 5)

// `length` is that of the operation with its distance; the JumpIfNil behind it has two words.
#define BRANCH_MODE(name, comparison, mode, used, length)                                                    \
    Unless##name##mode : {                                                                                   \
        bool holds;                                                                                          \
        if (GUARDED && compare<comparison>(OPERANDS_##mode, holds)) {                                        \
            top -= (used);                                                                                   \
            ip = holds ? ip + (length) + 2 : jump(ip + (length)-1);                                          \
            DISPATCH();                                                                                      \
        }                                                                                                    \
        PUSH_##mode CALL_INSTEAD(2, length);                                                                 \
    }
#define COMPARE(name, comparison)                                                                            \
    BRANCH_MODE(name, comparison, Stack, 2, 4)                                                               \
    BRANCH_MODE(name, comparison, StackConstant, 1, 5)                                                       \
    BRANCH_MODE(name, comparison, VariableConstant, 0, 6)                                                    \
    BRANCH_MODE(name, comparison, Variables, 0, 6)                                                           \
    name##Stack : {                                                                                          \
        bool holds;                                                                                          \
        if (GUARDED && compare<comparison>(top[-2], top[-1], holds)) {                                       \
            --top;                                                                                           \
            top[-1] = holds ? truth : Value();                                                               \
            ip += 3;                                                                                         \
            DISPATCH();                                                                                      \
        }                                                                                                    \
        CALL_INSTEAD(2, 3);                                                                                  \
    }

#define UNARY(name, function)                                                                                \
    name##Stack : {                                                                                          \
        Value result;                                                                                        \
        if (GUARDED && function(top[-1], result)) {                                                          \
            top[-1] = result;                                                                                \
            ip += 3;                                                                                         \
            DISPATCH();                                                                                      \
        }                                                                                                    \
        CALL_INSTEAD(1, 3);                                                                                  \
    }                                                                                                        \
    name##Variable : {                                                                                       \
        Value result;                                                                                        \
        if (GUARDED && function(symbolAt(ip + 3)->value, result)) {                                          \
            *top++ = result;                                                                                 \
            ip += 4;                                                                                         \
            DISPATCH();                                                                                      \
        }                                                                                                    \
        *top++ = symbolAt(ip + 3)->value;                                                                    \
        CALL_INSTEAD(1, 4);                                                                                  \
    }

    const auto negate = [truth](Value value, Value& result) {
        result = value.isNil() ? truth : Value();
        return true;
    };

    DISPATCH();

Constant:
    *top++ = Value::fromBits(ip[1]);
    ip += 2;
    DISPATCH();

Variable:
    *top++ = symbolAt(ip + 1)->value;
    ip += 2;
    DISPATCH();

Set:
    symbolAt(ip + 1)->value = top[-1];
    ip += 2;
    DISPATCH();

SetAndPop:
    symbolAt(ip + 1)->value = *--top;
    ip += 2;
    DISPATCH();

Pop:
    --top;
    ++ip;
    DISPATCH();

Replace:
    top[-1 - static_cast<std::ptrdiff_t>(ip[1])] = top[-1];
    --top;
    ip += 2;
    DISPATCH();

Jump:
    ip = jump(ip + 1);
    DISPATCH();

JumpBack:
    ip = jump(ip + 1);
    if (interpreter_.pollFlags_.load(std::memory_order_relaxed)) [[unlikely]] {
        top_ = top;
        safePoint();
    }
    DISPATCH();

JumpIfNil:
    ip = (--top)->isNil() ? jump(ip + 1) : ip + 2;
    DISPATCH();

JumpIfTrue:
    ip = (--top)->isNil() ? ip + 2 : jump(ip + 1);
    DISPATCH();

JumpIfTrueKeep:
    if (top[-1].isNil()) {
        --top;
        ip += 2;
    } else {
        ip = jump(ip + 1);
    }
    DISPATCH();

Call:
    callee = symbolAt(ip + 1);
    count = static_cast<std::size_t>(ip[2]);
    next = ip + 3;
call:
    called = callee->value;
    if (!called.isFunction()) [[unlikely]] {
        called = resolve(Value::symbol(callee));
    }
    if (called.asObject()->type == Type::userFunction) {
        ip = enter(static_cast<UserFunctionObject*>(called.asObject()), count, top, next);
        top = top_;
        DISPATCH();
    } else {
        const Value result = invokeNative(called.asObject(), top, count);
        top -= count;
        *top++ = result;
        ip = next;
        DISPATCH();
    }

CallValue:
    count = static_cast<std::size_t>(ip[1]);
    called = resolve(top[-1 - static_cast<std::ptrdiff_t>(count)]);
    // the function's place on the stack becomes that of the last argument, so that the result ends up there
    {
        Value* const bottom = top - count - 1;
        std::copy(bottom + 1, top, bottom);
        --top;
    }
    if (called.asObject()->type == Type::userFunction) {
        ip = enter(static_cast<UserFunctionObject*>(called.asObject()), count, top, ip + 2);
        top = top_;
    } else {
        const Value result = invokeNative(called.asObject(), top, count);
        top -= count;
        *top++ = result;
        ip += 2;
    }
    DISPATCH();

Return : {
    const Frame& frame = frames_.begin()[--frameCount_];
    unbindTo(frame.bindings);
    ip = frame.returnTo;
    DISPATCH();
}

Halt : {
    const Value result = *--top;
    top_ = top;
    return result;
}

Raise:
    raiseText(Value::fromBits(ip[1]));

ForeachBegin:
    if (!top[-1].isList()) {
        raiseBadArgumentType(L"listp", top[-1]);
    }
    if (bindingTop_ == bindingLimit_) {
        raiseHardError();
    }
    bindTo(symbolAt(ip + 1), Value());
    ip += 2;
    DISPATCH();

ForeachNext:
    if (top[-1].isPair()) {
        symbolAt(ip + 1)->value = top[-1].car();
        top[-1] = top[-1].cdr();
        ip += 3;
    } else {
        ip = jump(ip + 2);
    }
    DISPATCH();

ForeachEnd:
    unbindTo(bindingTop_ - 1);
    --top;
    ++ip;
    DISPATCH();

RepeatBegin:
    if (!top[-1].isInteger()) {
        raiseBadArgumentType(L"fixnump:", top[-1]);
    }
    ++ip;
    DISPATCH();

RepeatNext:
    if (const std::int32_t remaining = top[-1].asInteger(); remaining > 0) {
        top[-1] = Value::integer(remaining - 1);
        ip += 2;
    } else {
        --top;
        ip = jump(ip + 1);
    }
    DISPATCH();

ConsStack:
    if (GUARDED) {
        const Value pair = interpreter_.heap().cons(top[-2], top[-1]);
        --top;
        top[-1] = pair;
        ip += 3;
        DISPATCH();
    }
    CALL_INSTEAD(2, 3);

    CALCULATE(Add)
    CALCULATE(Subtract)
    CALCULATE(Multiply)
    COMPARE(Less, std::less<>)
    COMPARE(LessEqual, std::less_equal<>)
    COMPARE(Greater, std::greater<>)
    COMPARE(GreaterEqual, std::greater_equal<>)
    COMPARE(Same, std::equal_to<>)
    COMPARE(Different, std::not_equal_to<>)
    UNARY(Increment, increment)
    UNARY(Decrement, decrement)
    UNARY(Not, negate)
    UNARY(Car, first)
    UNARY(Cdr, rest)
    UNARY(Cadr, second)
    UNARY(Caddr, third)

#undef DISPATCH
#undef GUARDED
#undef CALL_INSTEAD
#undef OPERANDS_Stack
#undef OPERANDS_StackConstant
#undef OPERANDS_VariableConstant
#undef OPERANDS_Variables
#undef PUSH_Stack
#undef PUSH_StackConstant
#undef PUSH_VariableConstant
#undef PUSH_Variables
#undef CALCULATE_MODE
#undef CALCULATE
#undef BRANCH_MODE
#undef COMPARE
#undef UNARY
}

}  // namespace drafthost::lisp
