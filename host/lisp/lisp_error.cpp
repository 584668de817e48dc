#include "host/lisp/lisp_error.h"

#include "host/lisp/printer.h"
#include "host/lisp/utf8.h"

#include <utility>

namespace drafthost::lisp {

namespace {

// Enough of a value to recognise it; a program's lists can be of any size.
constexpr std::size_t longestValueInMessage = 1000;

std::wstring shown(Value value) {
    std::wstring text;
    if (!printValue(value, PrintStyle::readable, text, longestValueInMessage)) {
        text += L"...";
    }
    return text;
}

}  // namespace

LispError::LispError(std::wstring message, ErrorKind kind)
    : message_(std::move(message)), narrow_(toUtf8(message_)), kind_(kind) {}

void LispError::setLocation(std::wstring source, int line) {
    source_ = std::move(source);
    line_ = line;
}

void raiseBadArgumentType(std::wstring_view predicate, Value value) {
    throw LispError(L"bad argument type: " + std::wstring(predicate) + L" " + shown(value));
}

void raiseBadArgumentValue(std::wstring_view requirement, Value value) {
    throw LispError(L"bad argument value: " + std::wstring(requirement) + L" " + shown(value));
}

void raiseBadFunction(Value value) {
    throw LispError(L"bad function: " + shown(value));
}

void raiseTooFewArguments() {
    throw LispError(L"too few arguments");
}

void raiseTooManyArguments() {
    throw LispError(L"too many arguments");
}

void raiseCancelled() {
    throw LispError(L"Function cancelled", ErrorKind::cancelled);
}

}  // namespace drafthost::lisp
