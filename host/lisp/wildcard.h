#pragma once

// The wildcard patterns of wcmatch and selection filters.

#include <string_view>

namespace drafthost::lisp {

// # a digit, @ a letter, . neither of both, * any characters, ? one character, [..] and [~..] one (not) of
// a set with ranges, ` the next character itself, ~ at the start: anything but, comma: alternatives.
// Letters match with their case.
bool matchesWildcard(std::wstring_view text, std::wstring_view pattern);

// File name patterns: only * and ? are special.
bool matchesFilePattern(std::wstring_view name, std::wstring_view pattern);

}  // namespace drafthost::lisp
