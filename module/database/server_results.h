#pragma once

// Answers of the server as LISP results.

#include "module/binding/handler_status.h"
#include "module/binding/variant.h"

namespace tessary {

// A record or another array of name, value, name, value ... becomes the result ((name . value) ...) when the
// call succeeded; otherwise the server's error is reported and the result is nil.
HandlerStatus returnPairs(bool succeeded, const Variant& pairs);
HandlerStatus returnValues(bool succeeded, const Variant& values);
// Records with markers between them. No rows at all: nil.
HandlerStatus returnRecords(bool succeeded, const Variant& records);
HandlerStatus returnTruth(bool succeeded, bool truth = true);
HandlerStatus returnText(bool succeeded, const wchar_t* text);

}  // namespace tessary
