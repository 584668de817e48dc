#pragma once

// Letters and their case, the same in every locale.

#include <string>
#include <string_view>

namespace drafthost::lisp {

// Latin, Greek and Cyrillic letters; other characters stay as they are.
wchar_t toUpper(wchar_t character);
wchar_t toLower(wchar_t character);
std::wstring toUpper(std::wstring_view text);

bool isDigit(wchar_t character);
// ASCII letters, and everything beyond Latin-1's punctuation
bool isLetter(wchar_t character);

}  // namespace drafthost::lisp
