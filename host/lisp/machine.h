#pragma once

// Runs byte code. Holds the three stacks of an interpreter: values (arguments and intermediate results),
// bindings (values that local variables hide) and frames (user functions being run).
//
// A user function calling another takes no native stack; a built-in function that calls back does,
// and checkNativeStack guards it.

#include "host/lisp/bytecode.h"
#include "host/lisp/functions.h"
#include "host/lisp/interpreter.h"

#include <cstddef>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace drafthost::lisp {

class Machine {
public:
    Machine(Interpreter& interpreter, const Limits& limits);
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    // Both raise LispError and leave the stacks as they were at the error.
    Value call(Value function, std::span<const Value> arguments);
    Value evaluate(Value form);

    // The depth of the stacks. restore undoes all bindings made since.
    struct Depth {
        std::size_t values;
        std::size_t bindings;
        std::size_t frames;
    };
    Depth depth() const;
    void restore(const Depth& depth);

    // The native stack is counted from here on.
    void setNativeStackBase(const void* address) { nativeBase_ = static_cast<const char*>(address); }
    const void* nativeStackBase() const { return nativeBase_; }
    // Raises the hard error when native recursion went too deep.
    void checkNativeStack() const {
        if (static_cast<std::size_t>(nativeBase_ - static_cast<const char*>(__builtin_frame_address(0))) >
                nativeLimit_ &&
            static_cast<const char*>(__builtin_frame_address(0)) < nativeBase_) {
            raiseHardError();
        }
    }
    // While *error* runs, it may go somewhat deeper than the program was allowed to.
    void setHeadroom(bool forErrorHandler);

    // A callable object for anything that can be called: functions themselves, symbols bound to one,
    // lambda lists. Raises "no function definition: ..." or "bad function: ...".
    Value resolve(Value function);
    // The same, nil instead of an error.
    Value resolveOrNil(Value function);

    // Remembers the object bound to a name of the language for isOriginalBuiltin.
    void addBuiltin(Symbol* name, BuiltinObject* builtin);
    bool isOriginalBuiltin(const Symbol* name) const;

    void markRoots(Heap& heap) const;
    // Keeps compiled lambda lists whose list is still reachable, forgets the others.
    void markCompiledLists(Heap& heap);

    // Names of the functions being run, innermost first.
    std::vector<std::wstring> backtrace() const;

private:
    struct Binding {
        Symbol* symbol;
        Value hidden;
    };
    struct Frame {
        const Word* returnTo;
        UserFunctionObject* function;
        Binding* bindings;
    };

    [[noreturn]] static void raiseHardError();
    [[noreturn]] static void raiseWrongCount(std::size_t given, std::size_t wanted);
    [[noreturn]] static void raiseUndefined(Value function);
    [[noreturn]] static void raiseText(Value text);
    void push(std::span<const Value> values);
    UserFunctionObject* compiledList(Value list);
    // Binds the `count` values below `top` and opens a frame. Answers the function's first instruction.
    const Word* enter(UserFunctionObject* function, std::size_t count, Value* top, const Word* returnTo);
    Value invokeNative(Object* function, Value* top, std::size_t count);
    Value execute(UserFunctionObject* function, std::size_t count);
    Value run(const Word* instruction);
    void safePoint();

    void bindTo(Symbol* symbol, Value value) {
        *bindingTop_++ = Binding{symbol, symbol->value};
        symbol->value = value;
    }
    void unbindTo(const Binding* depth) {
        while (bindingTop_ != depth) {
            --bindingTop_;
            bindingTop_->symbol->value = bindingTop_->hidden;
        }
    }

    Interpreter& interpreter_;
    // Memory of a stack, not touched before it is used.
    template <class T>
    class Storage {
    public:
        explicit Storage(std::size_t count)
            : bytes_(std::make_unique_for_overwrite<std::byte[]>(count * sizeof(T))) {}
        T* begin() const { return reinterpret_cast<T*>(bytes_.get()); }

    private:
        std::unique_ptr<std::byte[]> bytes_;
    };

    Storage<Value> values_;
    Storage<Binding> bindings_;
    Storage<Frame> frames_;
    Value* top_;
    Value* valueLimit_;
    Binding* bindingTop_;
    Binding* bindingLimit_;
    std::size_t frameCount_ = 0;
    std::size_t frameLimit_;
    const char* nativeBase_;
    std::size_t nativeLimit_;
    std::unordered_map<const Pair*, UserFunctionObject*> compiledLists_;
    std::unordered_map<const Symbol*, BuiltinObject*> builtins_;
    std::vector<BuiltinObject*> allBuiltins_;
};

}  // namespace drafthost::lisp
