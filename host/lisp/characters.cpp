#include "host/lisp/characters.h"

#include <algorithm>

namespace drafthost::lisp {

namespace {

// Capital letters `first` to `last`, and how far behind each its small letter stands. Where the distance is
// 1, capitals and small letters alternate.
struct CapitalRange {
    wchar_t first;
    wchar_t last;
    int distance;
};

constexpr CapitalRange capitalRanges[] = {
    {L'A', L'Z', 32},     {0xC0, 0xD6, 32},     {0xD8, 0xDE, 32},     {0x0100, 0x012E, 1},
    {0x0132, 0x0136, 1},  {0x0139, 0x0147, 1},  {0x014A, 0x0176, 1},  {0x0178, 0x0178, -121},
    {0x0179, 0x017D, 1},  {0x0386, 0x0386, 38}, {0x0388, 0x038A, 37}, {0x038C, 0x038C, 64},
    {0x038E, 0x038F, 63}, {0x0391, 0x03A1, 32}, {0x03A3, 0x03AB, 32}, {0x0400, 0x040F, 80},
    {0x0410, 0x042F, 32}, {0x0460, 0x0480, 1},  {0x048A, 0x04BE, 1},  {0x04D0, 0x052E, 1},
    {0x1E00, 0x1E94, 1},  {0x1EA0, 0x1EFE, 1},
};

// The small letter of a capital, or the capital of a small letter; other characters themselves.
wchar_t changed(wchar_t character, bool fromCapital) {
    const int code = static_cast<int>(character);
    for (const auto& [first, last, distance] : capitalRanges) {
        const int capital = fromCapital ? code : code - distance;
        const bool inRange = capital >= static_cast<int>(first) && capital <= static_cast<int>(last);
        if (inRange && (distance != 1 || (capital - static_cast<int>(first)) % 2 == 0)) {
            return static_cast<wchar_t>(fromCapital ? code + distance : capital);
        }
    }
    return character;
}

}  // namespace

wchar_t toUpper(wchar_t character) {
    if (character < 0x80) {
        return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - 32) : character;
    }
    return changed(character, false);
}

wchar_t toLower(wchar_t character) {
    if (character < 0x80) {
        return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + 32) : character;
    }
    return changed(character, true);
}

std::wstring toUpper(std::wstring_view text) {
    std::wstring result(text);
    std::ranges::transform(result, result.begin(), [](wchar_t character) { return toUpper(character); });
    return result;
}

bool isDigit(wchar_t character) {
    return character >= L'0' && character <= L'9';
}

bool isLetter(wchar_t character) {
    if (character < 0x80) {
        const int lower = character | 0x20;
        return lower >= L'a' && lower <= L'z';
    }
    return character >= 0xC0 && character != 0xD7 && character != 0xF7;
}

}  // namespace drafthost::lisp
