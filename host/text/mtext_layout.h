#pragma once

// Multiline text broken into lines and placed.
//
// Coordinates: the insertion point is the origin, x runs along the text, y up. Lengths are drawing units.
//
// Lines are broken at blanks when the next word does not fit the width; a word longer than the width
// overhangs. Blanks at a break are left out; blanks at the start and the end of a paragraph count. The
// distance between two base lines is 5/3 of the tallest text of the lower line times the spacing factor ("at
// least"), or of the entity's text height
// ("exactly").

#include "host/text/mtext_parser.h"

namespace drafthost::text {

struct MTextSpec {
    std::wstring_view contents;
    MTextFormat format;  // without codes; height is the entity's text height
    TextFont font;
    double width = 0;    // 0: lines are not broken
    int attachment = 1;  // 1 to 9, from top left along the rows to bottom right
    double spacingFactor = 1;
    bool exactSpacing = false;
};

// Text of one look on one line.
struct MTextPiece {
    AcGePoint2d start;  // left end of its base line
    std::wstring text;
    std::uint32_t format = 0;  // index in MTextLayout::formats
    double height = 0;         // of capitals
    double advance = 0;
    InkBox ink;  // where the insertion point is the origin
};

// A line under, over or through text, or in a fraction.
struct MTextRule {
    AcGePoint2d start, end;
    std::uint32_t format = 0;
    bool isFraction = false;
};

struct MTextLine {
    double left = 0, right = 0;
    double base = 0;
    double height = 0;  // of the tallest text, stacks included, above the base line
    std::size_t firstPiece = 0, pieceCount = 0;
};

struct MTextLayout {
    std::vector<TextFont> fonts;
    std::vector<MTextFormat> formats;
    std::vector<MTextPiece> pieces;
    std::vector<MTextRule> rules;
    std::vector<MTextLine> lines;  // empty for empty text
    double actualWidth = 0;        // widest line: its indentation and the advance widths on it
    double actualHeight = 0;       // from the top of the first line to the base line of the last
    double ascent = 0;   // of the first line: its tallest text, or its highest ink where that is higher
    double descent = 0;  // of the last line's ink below its base line; positive
    double boxLeft = 0, boxTop = 0;  // of the box that the attachment point belongs to
    double boxWidth = 0;  // the reference width, or the actual one without it; the box is actualHeight high
    InkBox extents;       // all lines: advance widths, heights, ink and rules
};

// Distance of base lines, in text heights.
constexpr double kLinePitch = 5.0 / 3.0;
// Distance of tab stops where the paragraph has none, in text heights.
constexpr double kTabDistance = 4;
// Round letters rise above the capitals and sink below the base line by this part of their height; ascent and
// descent leave it out.
constexpr double kOvershoot = 0.03;

MTextLayout layoutMText(const MTextSpec& spec);

}  // namespace drafthost::text
