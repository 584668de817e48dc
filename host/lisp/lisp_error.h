#pragma once

// The error that ends an evaluation, and the ways built-in functions raise it.

#include "host/lisp/value.h"

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace drafthost::lisp {

enum class ErrorKind : std::uint8_t {
    ordinary,
    exit,       // exit and quit
    cancelled,  // Interpreter::requestCancel, or the drafter pressed Esc at a prompt
    hardLimit,  // recursion too deep
    reader,     // the program text is malformed
};

// Carries the text that `*error*` receives, without the leading "; error: ".
class LispError : public std::exception {
public:
    explicit LispError(std::wstring message, ErrorKind kind = ErrorKind::ordinary);

    const std::wstring& message() const { return message_; }
    ErrorKind kind() const { return kind_; }

    // Where the text is malformed (reader errors of named sources only): name of the source and line
    // counted from 1; an empty name and 0 otherwise.
    const std::wstring& source() const { return source_; }
    int line() const { return line_; }
    void setLocation(std::wstring source, int line);

    // the message in UTF-8
    const char* what() const noexcept override { return narrow_.c_str(); }

private:
    std::wstring message_;
    std::string narrow_;
    std::wstring source_;
    int line_ = 0;
    ErrorKind kind_;
};

// "bad argument type: <predicate> <value>", for example predicate "stringp" or "numberp:" (the
// numeric predicates are written with the colon).
[[noreturn]] void raiseBadArgumentType(std::wstring_view predicate, Value value);
// "bad argument value: <requirement> <value>", for example requirement "positive"
[[noreturn]] void raiseBadArgumentValue(std::wstring_view requirement, Value value);
// "bad function: <value>"
[[noreturn]] void raiseBadFunction(Value value);
[[noreturn]] void raiseTooFewArguments();
[[noreturn]] void raiseTooManyArguments();
// "Function cancelled", kind cancelled: what a prompt raises when the drafter presses Esc
[[noreturn]] void raiseCancelled();

}  // namespace drafthost::lisp
