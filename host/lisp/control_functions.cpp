// Evaluation, errors, loading.

#include "host/lisp/language_functions.h"
#include "host/lisp/machine.h"

#include <filesystem>
#include <string>
#include <vector>

namespace drafthost::lisp {

namespace {

Value evaluate(Interpreter& interpreter, Arguments arguments) {
    return interpreter.evaluate(arguments[0]);
}

[[noreturn]] Value leave(Interpreter&, Arguments) {
    throw LispError(L"quit / exit abort", ErrorKind::exit);
}

[[noreturn]] Value exitWithError(Interpreter&, Arguments arguments) {
    throw LispError(arguments.string(0), ErrorKind::exit);
}

// There is one name space here, so nothing waits for the value.
[[noreturn]] Value exitWithValue(Interpreter& interpreter, Arguments arguments) {
    leave(interpreter, arguments);
}

Value catchAll(Interpreter& interpreter, Arguments arguments) {
    std::vector<Value> values;
    if (arguments.size() > 1) {
        for (const Value element : elements(arguments.list(1))) {
            values.push_back(element);
        }
    }
    Interpreter::Protected result = interpreter.protectedCall(arguments[0], values);
    return result.succeeded ? result.value : interpreter.caughtError(result.error->message());
}

Value isCaughtError(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(arguments[0].isCaughtError());
}

Value caughtMessage(Interpreter& interpreter, Arguments arguments) {
    if (!arguments[0].isCaughtError()) {
        raiseBadArgumentType(L"vl-catch-all-apply-error-p", arguments[0]);
    }
    return interpreter.string(static_cast<CaughtErrorObject*>(arguments[0].asObject())->message);
}

// What `load` does for a file that is not there: a second argument is answered, or called when it is a
// function.
Value loadFallback(Interpreter& interpreter, Arguments arguments) {
    if (arguments.size() < 2) {
        throw LispError(L"LOAD failed: " + interpreter.prin1ToString(arguments[0]));
    }
    return arguments[1].isFunction() ? interpreter.call(arguments[1], {}) : arguments[1];
}

Value load(Interpreter& interpreter, Arguments arguments) {
    const auto path = interpreter.files().resolveProgram(arguments.string(0));
    const auto text = path ? interpreter.files().readText(*path) : std::nullopt;
    if (!text) {
        return loadFallback(interpreter, arguments);
    }
    return interpreter.loadProgram(*text, path->filename().wstring());
}

Value nothing(Interpreter&, Arguments) {
    return Value();
}

// The functions being run, innermost first.
Value backtrace(Interpreter& interpreter, Arguments) {
    interpreter.freshLine();
    int level = 0;
    for (const std::wstring& name : interpreter.machine().backtrace()) {
        interpreter.print(L"[" + std::to_wstring(++level) + L"] " + name + L"\n");
    }
    return Value();
}

Value getEnvironment(Interpreter& interpreter, Arguments arguments) {
    const auto value = interpreter.files().environment(arguments.string(0));
    return value ? interpreter.string(*value) : Value();
}

Value setEnvironment(Interpreter& interpreter, Arguments arguments) {
    interpreter.files().setEnvironment(arguments.string(0), arguments.string(1));
    return arguments[1];
}

Value collectGarbage(Interpreter& interpreter, Arguments) {
    interpreter.collect();
    return Value();
}

constexpr BuiltinDefinition table[] = {
    {L"eval", evaluate, 1, 1, L"(eval form) -> value of the form"},
    {L"exit", leave, 0, 0, L"(exit) ends the program with the error \"quit / exit abort\""},
    {L"gc", collectGarbage, 0, 0, L"(gc) -> nil; frees memory that is no longer reachable"},
    {L"getenv", getEnvironment, 1, 1, L"(getenv name) -> value of an environment variable or nil"},
    {L"load", load, 1, 2, L"(load file [onfailure]) -> last value; evaluates a program file"},
    {L"quit", leave, 0, 0, L"(quit) ends the program with the error \"quit / exit abort\""},
    {L"setenv", setEnvironment, 2, 2, L"(setenv name value) -> value; sets an environment variable"},
    {L"vl-bt", backtrace, 0, 0, L"(vl-bt) -> nil; prints the functions being run"},
    {L"vl-catch-all-apply", catchAll, 1, 2,
     L"(vl-catch-all-apply f [list]) -> value of f, or an error object"},
    {L"vl-catch-all-error-message", caughtMessage, 1, 1, L"(vl-catch-all-error-message error) -> its text"},
    {L"vl-catch-all-error-p", isCaughtError, 1, 1, L"(vl-catch-all-error-p value) -> T for an error object"},
    {L"vl-exit-with-error", exitWithError, 1, 1,
     L"(vl-exit-with-error text) ends the program with this error"},
    {L"vl-exit-with-value", exitWithValue, 1, 1, L"(vl-exit-with-value value) ends the program"},
    {L"vl-load-com", nothing, 0, 0, L"(vl-load-com) -> nil; nothing has to be loaded"},
};

}  // namespace

std::span<const BuiltinDefinition> controlFunctions() {
    return table;
}

}  // namespace drafthost::lisp
