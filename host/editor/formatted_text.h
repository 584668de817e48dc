#pragma once

// Text of a printf format, the platform's kind: %s is a wide text, %S and %hs a narrow one.

#include <cstdarg>
#include <string>

namespace drafthost::editor {

// Modules also print texts that hold a % by chance, without arguments for it. Nobody can tell such a call
// from one with arguments, so every directive takes what lies in the place of its argument, and only what
// would do harm is kept from happening: a text that cannot be read prints as (null), %n stores nothing,
// directives behind the end of the stack and those that would print more than 64 MB stay as they are written.
std::wstring formatted(const wchar_t* format, va_list arguments);

}  // namespace drafthost::editor
