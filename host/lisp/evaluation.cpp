// Interpreter: calling, evaluating program text, and what happens after an error.

#include "host/lisp/heap.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/machine.h"
#include "host/lisp/reader.h"
#include "host/lisp/symbol_table.h"

#include <algorithm>
#include <new>
#include <utility>

namespace drafthost::lisp {

namespace {

// Turns whatever is being handled into a LispError; to be called in a catch block.
LispError currentError() {
    try {
        throw;
    } catch (const LispError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return LispError(L"insufficient memory");
    } catch (const std::exception& error) {
        const std::string_view text = error.what();
        return LispError(std::wstring(text.begin(), text.end()));
    }
}

}  // namespace

Value Interpreter::call(Value function, std::span<const Value> arguments) {
    return machine_->call(function, arguments);
}

Value Interpreter::evaluate(Value form) {
    return machine_->evaluate(form);
}

Value Interpreter::loadProgram(std::wstring_view text, std::wstring_view sourceName) {
    Reader reader(*this, text, sourceName);
    Value result;
    while (const std::optional<Value> form = reader.next()) {
        result = evaluate(*form);
    }
    return result;
}

Interpreter::Protected Interpreter::protectedCall(Value function, std::span<const Value> arguments) {
    const Machine::Depth depth = machine_->depth();
    Protected result;
    try {
        result.value = call(function, arguments);
    } catch (...) {
        result.succeeded = false;
        result.error = currentError();
        machine_->restore(depth);
    }
    return result;
}

Outcome Interpreter::guarded(const std::function<Value()>& body) {
    const Machine::Depth depth = machine_->depth();
    const void* const outerBase = machine_->nativeStackBase();
    if (topLevelDepth_ == 0) {
        machine_->setNativeStackBase(__builtin_frame_address(0));
        pollFlags_.fetch_and(~cancelFlag, std::memory_order_relaxed);
    }
    ++topLevelDepth_;
    Outcome outcome;
    try {
        outcome.value = body();
    } catch (...) {
        const LispError error = currentError();
        outcome.succeeded = false;
        outcome.errorKind = error.kind();
        outcome.message = error.message();
        handleError(error);
        machine_->restore(depth);
    }
    --topLevelDepth_;
    machine_->setNativeStackBase(outerBase);
    console_.flush();
    return outcome;
}

// The stacks are still as they were at the error, so that *error* sees the program's local variables.
void Interpreter::handleError(const LispError& error) {
    pollFlags_.fetch_and(~cancelFlag, std::memory_order_relaxed);
    const Value handler = findFunction(L"*ERROR*");
    if (handler.isNil()) {
        reportError(error);
        return;
    }
    machine_->setHeadroom(true);
    try {
        call(handler, {string(error.message())});
    } catch (...) {
        freshLine();
        print(L"; error: An error has occurred inside the *error* function: " + currentError().message() +
              L"\n");
    }
    machine_->setHeadroom(false);
}

void Interpreter::reportError(const LispError& error) {
    freshLine();
    print((error.kind() == ErrorKind::hardLimit ? L"; " : L"; error: ") + error.message() + L"\n");
    if (!error.source().empty()) {
        print(L"; in " + error.source() + L", line " + std::to_wstring(error.line()) + L"\n");
    }
}

void Interpreter::formFinished() {
    if (topLevelDepth_ == 1 && formFinished_)
        formFinished_();
}

Outcome Interpreter::evaluateTopLevel(std::wstring_view text, std::wstring_view sourceName) {
    return guarded([&] {
        Reader reader(*this, text, sourceName);
        Value result;
        while (const std::optional<Value> form = reader.next()) {
            result = evaluate(*form);
            formFinished();
        }
        return result;
    });
}

Outcome Interpreter::callTopLevel(Value function, std::span<const Value> arguments) {
    return guarded([&] { return call(function, arguments); });
}

Outcome Interpreter::evaluateAndPrint(std::wstring_view text) {
    return guarded([&] {
        Reader reader(*this, text);
        Value result;
        while (const std::optional<Value> form = reader.next()) {
            result = evaluate(*form);
            formFinished();
            print(prin1ToString(result) + L"\n");
        }
        return result;
    });
}

void Interpreter::requestCancel() {
    pollFlags_.fetch_or(cancelFlag, std::memory_order_relaxed);
}

void Interpreter::raisePendingCancel() {
    pollFlags_.fetch_and(~cancelFlag, std::memory_order_relaxed);
    raiseCancelled();
}

void Interpreter::handlePoll() {
    const std::uint32_t flags = pollFlags_.load(std::memory_order_relaxed);
    if (flags & cancelFlag) {
        raisePendingCancel();
    }
    if (flags & collectFlag) {
        collect();
        if (collectAtEverySafePoint_) {
            pollFlags_.fetch_or(collectFlag, std::memory_order_relaxed);
        }
    }
}

namespace {

// Where `|;` ends the comment that begins at `from`; npos when it does not end.
std::size_t endOfBlockComment(std::wstring_view text, std::size_t from) {
    const std::size_t end = text.find(L"|;", from + 2);
    return end == std::wstring_view::npos ? end : end + 2;
}

std::size_t endOfString(std::wstring_view text, std::size_t from) {
    for (std::size_t index = from + 1; index < text.size(); ++index) {
        if (text[index] == L'\\') {
            ++index;
        } else if (text[index] == L'"') {
            return index + 1;
        }
    }
    return std::wstring_view::npos;
}

}  // namespace

InputState Interpreter::inputState(std::wstring_view text) {
    int open = 0;
    for (std::size_t index = 0; index < text.size();) {
        const wchar_t character = text[index];
        if (character == L'"') {
            index = endOfString(text, index);
        } else if (text.substr(index, 2) == L";|") {
            index = endOfBlockComment(text, index);
        } else if (character == L';') {
            index = std::min(text.find(L'\n', index), text.size());
        } else {
            open += character == L'(' ? 1 : character == L')' ? -1 : 0;
            ++index;
            if (open < 0) {  // reading will report it
                return InputState::complete;
            }
        }
        if (index == std::wstring_view::npos) {
            return InputState::incomplete;
        }
    }
    return open > 0 ? InputState::incomplete : InputState::complete;
}

}  // namespace drafthost::lisp
