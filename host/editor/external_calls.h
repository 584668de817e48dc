#pragma once

// Calls of modules' functions from LISP. Arguments stay LISP values until the function asks for them as a
// value list; the result is a LISP value from the start. Calls nest.

#include <string>

#include "host/api/resbuf.h"
#include "host/lisp/interpreter.h"

namespace drafthost {
class Document;
class Host;
struct ModuleFunction;
}  // namespace drafthost

namespace drafthost::editor {

class ExternalCalls {
public:
    explicit ExternalCalls(Host& host) : host_(host) {}

    // Raises a LISP error when the function answers RSERR, throws, or faults.
    lisp::Value call(Document& document, const ModuleFunction& function, lisp::Interpreter& interpreter,
                     lisp::Arguments arguments);

    struct Call {
        Document& document;
        lisp::Interpreter& interpreter;
        lisp::Arguments arguments;
        short number;
        lisp::Root result;
        resbuf* argumentList = nullptr;  // handed out and not yet released
        Call* outer;
    };
    // The innermost running call; null for none.
    Call* running() const { return running_; }

    // Of acutRelRb: the list is gone.
    void listReleased(const resbuf* list);

private:
    class CallScope;
    int run(const ModuleFunction& function) const;

    Host& host_;
    Call* running_ = nullptr;
};

}  // namespace drafthost::editor
