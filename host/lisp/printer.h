#pragma once

// Values as text.

#include "host/lisp/value.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace drafthost::lisp {

enum class PrintStyle {
    readable,  // prin1: strings quoted, with escapes
    plain,     // princ
};

// Appends the text of `value` to `out`. When `out` would grow beyond `limit` characters the rest is cut off
// and false is answered. Nesting of any depth is safe.
bool printValue(Value value, PrintStyle style, std::wstring& out, std::size_t limit);

// Six significant digits, always with a decimal point: 1.0, 0.333333, 1.0e+06.
std::wstring formatReal(double number);

}  // namespace drafthost::lisp
