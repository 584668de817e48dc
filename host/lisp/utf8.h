#pragma once

// Conversion between UTF-8 and std::wstring (UTF-16 where wchar_t has 16 bits, UTF-32 elsewhere).

#include <string>
#include <string_view>

namespace drafthost::lisp {

// Lone surrogates become U+FFFD.
std::string toUtf8(std::wstring_view text);
// Malformed bytes are taken as Latin-1, so that text of old files survives.
std::wstring fromUtf8(std::string_view bytes);

}  // namespace drafthost::lisp
