#pragma once

// Multiline text with format codes, taken apart into words, blanks and breaks.
//
// Codes are those in docs/text.md. Unknown codes are left out, unbalanced braces tolerated; any input is
// accepted and takes time in proportion to its length.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/text/outlines.h"

namespace drafthost::text {

// How a piece of text looks.
struct MTextFormat {
    double height = 1;  // of capitals, drawing units
    double widthFactor = 1;
    double oblique = 0;  // radians
    double tracking = 1;
    std::uint32_t font = 0;  // index in MTextContents::fonts
    int color = kOwnColor;   // colour index
    int trueColor = -1;      // 0x00RRGGBB, wins over color; -1: none
    enum Alignment : std::uint8_t {
        Bottom,
        Center,
        Top
    } alignment = Bottom;  // of small text on a line with tall text
    bool underlined = false, overlined = false, struck = false;

    static constexpr int kOwnColor = -1;  // the colour of the entity
};

struct ParagraphFormat {
    enum Alignment { Default, Left, Center, Right, Justified };
    Alignment alignment = Default;  // Default: as the attachment point says
    // In multiples of the entity's text height.
    double indent = 0;  // of the first line, beyond left
    double left = 0;
    double right = 0;
    std::vector<double> tabs;  // ascending
};

struct MTextToken {
    enum Kind : std::uint8_t { Word, Blanks, Tab, Stack, ParagraphEnd };
    Kind kind = Word;
    wchar_t stackType = 0;        // '/' with a bar, '#' with a slash, '^' without
    std::uint32_t format = 0;     // index in formats
    std::uint32_t paragraph = 0;  // index in paragraphs, for ParagraphEnd
    std::wstring text;            // word, blanks, or the upper part of a stack
    std::wstring lower;           // lower part of a stack
};

// The last token is the ParagraphEnd of the last paragraph, also when nothing follows a break; no tokens for
// empty text.
struct MTextContents {
    std::vector<TextFont> fonts;  // 0: the style's
    std::vector<MTextFormat> formats;
    std::vector<ParagraphFormat> paragraphs;
    std::vector<MTextToken> tokens;
};

// initial: the look without codes; its font index is 0. font: the style's font.
MTextContents parseMText(std::wstring_view text, const MTextFormat& initial, const TextFont& font);

// The text with the heights in its codes ("\\H2.5;") multiplied by the factor; relative ones ("\\H2x;") stay.
std::wstring scaleHeightCodes(std::wstring_view text, double factor);

}  // namespace drafthost::text
