#pragma once

// Texts in DXF files: how bytes stand for characters.

#include <string>
#include <string_view>

namespace drafthost::exchange {

enum class TextEncoding {
    Utf8,         // AC1021 and later
    Windows1252,  // code page ANSI_1252
    Latin1  // any other code page: every byte is the character of its number, so that it is written back the
            // same
};

// The encoding of a file by its version ("AC1015") and code page ("ANSI_1252"); both may be empty.
TextEncoding encodingOf(std::string_view version, std::string_view codePage);
// True when the texts of that code page are not translated but kept as they are.
bool isForeignCodePage(std::string_view codePage);

// Texts of a file. Decodes \U+XXXX, and control characters written as a caret and a letter ("^J", and "^ "
// for the caret itself). A text that is not UTF-8 in a UTF-8 file is taken as Windows-1252; damaged is then
// set and otherwise left. A zero byte, which no text can hold, becomes U+FFFD.
std::wstring decodeText(std::string_view bytes, TextEncoding encoding, bool& damaged);

// How many bytes at the end are the beginning of a character that goes on elsewhere: of a UTF-8 sequence, of
// \U+XXXX, or a caret.
std::size_t cutCharacterLength(std::string_view bytes, TextEncoding encoding);

// The inverse: characters outside the encoding become \U+XXXX, control characters a caret and a letter.
std::string encodeText(std::wstring_view text, TextEncoding encoding);

}  // namespace drafthost::exchange
