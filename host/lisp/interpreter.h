#pragma once

// The AutoLISP of one open document: its names, its heap, and the evaluator.
//
// Lists are compiled to a small byte code when they are first evaluated (compiler.h) and run on an
// explicit value stack (machine.cpp). Variables are dynamically scoped. One interpreter is used by
// one thread; only requestCancel may be called from elsewhere.
//
// Collection happens only between instructions: at function entry and at loop ends. A built-in
// function can therefore hold Values in ordinary variables and allocate freely. Only one that calls
// back (call, evaluate, loadProgram) must keep what it still needs in a Root or a ListBuilder;
// its Arguments are on the stack and safe anyway.

#include "host/lisp/arguments.h"
#include "host/lisp/console.h"
#include "host/lisp/lisp_error.h"
#include "host/lisp/value.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <vector>

namespace drafthost::lisp {

class Heap;
class Interpreter;
class Machine;
class SymbolTable;

using BuiltinFunction = Value (*)(Interpreter& interpreter, Arguments arguments);
using ExternalFunction = std::function<Value(Interpreter& interpreter, Arguments arguments)>;

// maximumArguments of functions that take any number
inline constexpr int anyNumber = -1;

// One row of a table of built-in functions. The strings are literals: they must outlive the interpreter.
struct BuiltinDefinition {
    const wchar_t* name;  // as usually written, in lower case: L"strcat"
    BuiltinFunction function;
    int minimumArguments;
    int maximumArguments;          // anyNumber: no upper bound
    const wchar_t* documentation;  // L"(strcat [string ...]) -> joined string"
};

struct Limits {
    std::size_t frames = 20'000;                  // nested calls of user functions
    std::size_t valueStack = 512 * 1024;          // values
    std::size_t nativeStack = 1024 * 1024;        // bytes of the thread's stack, counted from the outermost
                                                  // evaluation; must fit the stack of the calling thread
    std::size_t stringLength = 64 * 1024 * 1024;  // characters of one string
};

// Totals since the interpreter was made, and the state after the last collection.
struct AllocationStatistics {
    std::uint64_t pairs = 0;
    std::uint64_t objects = 0;  // strings, functions, entity names...
    std::uint64_t collections = 0;
    std::uint64_t livePairs = 0;    // at the last collection
    std::uint64_t liveObjects = 0;  // at the last collection
    std::uint64_t heapBytes = 0;    // held now
};

// How an evaluation at top level ended. An error has then already been given to *error* or printed.
struct Outcome {
    bool succeeded = true;
    Value value;  // of the last form; nil after an error. Not rooted: use it before evaluating again
    ErrorKind errorKind = ErrorKind::ordinary;
    std::wstring message;  // empty when succeeded
};

enum class InputState {
    complete,    // can be evaluated
    incomplete,  // a parenthesis, string or comment is still open: ask for more
};

class Interpreter {
public:
    // The console and file access must outlive the interpreter. All functions of the language are
    // defined; those of the drawing and the editor are added by the host.
    explicit Interpreter(Console& console, const Limits& limits = {});
    Interpreter(Console& console, FileAccess& files, const Limits& limits = {});
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    // --- making values -------------------------------------------------------------------------
    Value cons(Value car, Value cdr);
    // raises "string too long" beyond Limits::stringLength
    Value string(std::wstring text);
    Value list(std::initializer_list<Value> elements) {
        return list(std::span(elements.begin(), elements.size()));
    }
    Value list(std::span<const Value> elements);
    // list of two or three reals
    Value point(double x, double y);
    Value point(double x, double y, double z);
    // (key . value)
    Value dotted(int key, Value value) { return cons(Value::integer(key), value); }
    Value entityName(std::uint64_t first, std::uint64_t second);
    Value selectionSet(std::shared_ptr<SelectionSetBase> set);
    Value caughtError(std::wstring message);
    // The interned symbol of a name in any case. The name nil gives nil.
    Value symbol(std::wstring_view name);
    Value t() const { return t_; }
    Value boolean(bool condition) const { return condition ? t_ : Value(); }
    // prints as nothing; what (princ) answers
    Value nullSymbol() const { return nullSymbol_; }

    // --- names and functions -------------------------------------------------------------------
    // Each replaces what the name was before.
    void defineBuiltin(const wchar_t* name, BuiltinFunction function, int minimumArguments,
                       int maximumArguments, const wchar_t* documentation);
    void defineBuiltins(std::span<const BuiltinDefinition> table);
    // A function of a loaded add-in, of type EXRXSUBR. It checks its own arguments. `identifier` is
    // the add-in's own number, kept for externalIdentifier.
    void defineExternal(std::wstring_view name, int identifier, ExternalFunction function);
    // Sets the name to nil when it still is the external function; false when it is not.
    bool undefineExternal(std::wstring_view name);
    // nothing when the value is not an external function
    std::optional<int> externalIdentifier(Value function) const;

    // The rows of all built-in functions defined so far, special forms included, in order of definition.
    std::vector<BuiltinDefinition> builtins() const;

    Value symbolValue(std::wstring_view name);
    void setSymbolValue(std::wstring_view name, Value value);
    // The function bound to a name (built-in, external, user function, or a list beginning with
    // lambda's parameters that can be called); nil when there is none.
    Value findFunction(std::wstring_view name);
    // Names of all symbols with a value other than nil, sorted.
    std::vector<std::wstring> boundNames() const;

    // --- evaluating ----------------------------------------------------------------------------
    // These raise LispError; bindings and stack are then left as they were at the error, for
    // *error* to see, and are reset by whoever handles it: evaluateTopLevel and callTopLevel, or
    // (for code that wants to carry on) protectedCall.
    Value call(Value function, std::span<const Value> arguments);
    Value call(Value function, std::initializer_list<Value> arguments) {
        return call(function, std::span(arguments.begin(), arguments.size()));
    }
    Value evaluate(Value form);
    // Reads and evaluates all forms; answers the value of the last.
    Value loadProgram(std::wstring_view text, std::wstring_view sourceName);
    // Calls `body`; when it raises, bindings and stack are reset to what they are now and the error is passed
    // on as the answer's failure. *error* is not involved.
    struct Protected {
        bool succeeded = true;
        Value value;
        std::optional<LispError> error;
    };
    Protected protectedCall(Value function, std::span<const Value> arguments);

    // Evaluates program text or calls a function for the drafter: an error runs *error* when the
    // program has set one (with the bindings in effect at the error) and is printed as "; error: ..."
    // otherwise. Never raises. Nested use (from a built-in function) is allowed and handles its own errors.
    Outcome evaluateTopLevel(std::wstring_view text, std::wstring_view sourceName = {});
    Outcome callTopLevel(Value function, std::span<const Value> arguments);
    // The same for text typed at the prompt, printing each form's value with prin1 on a line of its own.
    Outcome evaluateAndPrint(std::wstring_view text);
    // Called after each form of the outermost evaluateTopLevel or evaluateAndPrint that went well.
    void setFormFinished(std::function<void()> listener) { formFinished_ = std::move(listener); }
    static InputState inputState(std::wstring_view text);

    // Ends the running evaluation with "Function cancelled" at its next safe point. Any thread or
    // signal handler. A request while nothing runs is dropped by the next top-level evaluation.
    void requestCancel();
    // For built-in functions with long loops of their own: raises when a cancel was requested.
    void pollCancel() {
        if (pollFlags_.load(std::memory_order_relaxed) & cancelFlag) {
            raisePendingCancel();
        }
    }

    // --- output --------------------------------------------------------------------------------
    Console& console() { return console_; }
    void print(std::wstring_view text);
    // Starts a new line unless the last text printed ended one.
    void freshLine();
    // printed as prin1 (strings quoted and escaped) or princ
    std::wstring prin1ToString(Value value);
    std::wstring princToString(Value value);
    // Prints the way an unhandled error is printed.
    void reportError(const LispError& error);

    // --- surroundings --------------------------------------------------------------------------
    FileAccess& files() { return *files_; }
    // The reader of the system variables that number formatting honours: LUNITS, LUPREC, AUNITS,
    // AUPREC, DIMZIN. Nothing means the default (2, 4, 0, 0, 0).
    void setVariableReader(std::function<std::optional<int>(std::wstring_view name)> reader);
    int integerVariable(std::wstring_view name, int fallback) const;

    // State the host's own built-in functions need (a document, an editor): one pointer per class,
    // not owned. attached raises std::logic_error when there is none.
    template <class T>
    void attach(T* state) {
        attached_[typeid(T)] = state;
    }
    template <class T>
    T& attached() const {
        return *static_cast<T*>(findAttached(typeid(T)));
    }
    template <class T>
    T* attachedOrNull() const {
        const auto found = attached_.find(typeid(T));
        return found == attached_.end() ? nullptr : static_cast<T*>(found->second);
    }

    // --- memory --------------------------------------------------------------------------------
    AllocationStatistics statistics() const;
    // Collect now; only where the caller holds no unrooted values. `everySafePoint` makes the
    // evaluator collect at each opportunity, for tests.
    void collect();
    void setCollectAtEverySafePoint(bool everySafePoint);

    const Limits& limits() const { return limits_; }
    Heap& heap() { return *heap_; }
    Machine& machine() { return *machine_; }
    SymbolTable& symbols() { return *symbols_; }

private:
    friend class Root;
    friend class Machine;

    static constexpr std::uint32_t collectFlag = 1;
    static constexpr std::uint32_t cancelFlag = 2;

    void* findAttached(std::type_index type) const;
    [[noreturn]] void raisePendingCancel();
    void handlePoll();
    Outcome guarded(const std::function<Value()>& body);
    void handleError(const LispError& error);
    void defineLanguage();

    Console& console_;
    std::unique_ptr<FileAccess> ownFiles_;
    FileAccess* files_;
    Limits limits_;
    std::atomic<std::uint32_t> pollFlags_{0};
    bool collectAtEverySafePoint_ = false;
    int topLevelDepth_ = 0;
    class Root* roots_ = nullptr;
    std::unique_ptr<Heap> heap_;
    std::unique_ptr<SymbolTable> symbols_;
    std::unique_ptr<Machine> machine_;
    Value t_;
    Value nullSymbol_;
    std::vector<BuiltinDefinition> builtins_;
    void formFinished();
    std::function<std::optional<int>(std::wstring_view)> variableReader_;
    std::function<void()> formFinished_;
    std::unordered_map<std::type_index, void*> attached_;
};

// Keeps a value alive while native code calls back into the evaluator. Strictly scoped.
//     Root kept(interpreter, value);  ...  use kept.get()
class Root {
public:
    explicit Root(Interpreter& interpreter, Value value = {})
        : interpreter_(interpreter), next_(interpreter.roots_), value_(value) {
        interpreter.roots_ = this;
    }
    ~Root() { interpreter_.roots_ = next_; }
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;

    Value get() const { return value_; }
    void set(Value value) { value_ = value; }
    const Root* next() const { return next_; }

private:
    Interpreter& interpreter_;
    Root* next_;
    Value value_;
};

// Builds a list front to back. Rooted, so elements may come from calls back into the evaluator.
class ListBuilder {
public:
    explicit ListBuilder(Interpreter& interpreter) : interpreter_(interpreter), list_(interpreter) {}

    void append(Value element) { appendPair(interpreter_.cons(element, Value())); }
    // Ends the list with something other than nil, or with another list (shared, not copied).
    void finishWith(Value tail) {
        if (last_) {
            last_->cdr = tail;
        } else {
            list_.set(tail);
        }
    }
    Value list() const { return list_.get(); }

private:
    void appendPair(Value pair) {
        if (last_) {
            last_->cdr = pair;
        } else {
            list_.set(pair);
        }
        last_ = pair.asPair();
    }

    Interpreter& interpreter_;
    Root list_;
    Pair* last_ = nullptr;
};

}  // namespace drafthost::lisp
