#pragma once

// Names of symbol table records, dictionary entries and applications.

#include <string>
#include <string_view>

namespace drafthost {

// Upper-case form under which names are compared: Latin, Greek and Cyrillic letters, independent of any
// locale.
std::wstring foldCase(std::wstring_view name);
bool equalNames(std::wstring_view a, std::wstring_view b);

// 1 to 255 characters, no control characters, no leading or trailing blank, none of <>/\":;?*|,=` (a leading
// "*" of anonymous names is the caller's to allow).
enum class Anonymous { Refused, Allowed };
bool isValidSymbolName(std::wstring_view name, Anonymous anonymous = Anonymous::Refused);

// Matches a name against a list of patterns, comma-separated, without regard to case: * any characters, ? one
// character, # a digit, @ a letter, . no letter or digit, [abc] [a-c] [~abc] one character of (not of) a set,
// ~ at the start not, ` the next character as it is.
bool matchesPattern(std::wstring_view name, std::wstring_view patterns);

}  // namespace drafthost
