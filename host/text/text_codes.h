#pragma once

// Codes inside texts that stand for characters or switch lines on and off: "%%d", "%%u", "\U+00B0".

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace drafthost::text {

struct TextCode {
    enum Kind { Character, Nothing, Underline, Overline, Strike };  // the last three switch
    Kind kind = Nothing;
    wchar_t character = 0;
    std::size_t length = 0;  // of the code in the text
};

// The code that the text begins with, if it begins with one:
//   %%d degree, %%p plus-minus, %%c diameter, %%% per cent, %%nnn the character with that decimal number,
//   %%u %%o %%k underline, overline, strike line on or off.
// Letters may be capitals. Other pairs of per cent signs are no codes.
std::optional<TextCode> percentCode(std::wstring_view text);
// "\U+XXXX", a UTF-16 unit in hexadecimal digits; "\M+nXXXX", a character of a code page, which is left out.
std::optional<TextCode> escapedCharacter(std::wstring_view text);

struct LineRun {
    std::wstring text;
    bool underlined = false;
    bool overlined = false;
    bool struck = false;
};

// Single-line text without its codes, split where lines go on or off; runs are never empty. Control
// characters are left out.
std::vector<LineRun> parseLineCodes(std::wstring_view text);

}  // namespace drafthost::text
