#pragma once

// The stroke font's drawings.
//
// Drawn on a grid where capitals are 12 high, small letters 8, descenders reach to -4 and x starts at 0. A
// drawing is a list of blank-separated items:
//   x,y                      the pen draws to the point (the first one of a stroke: starts there)
//   (cx,cy,rx,ry,from,to)    elliptical arc between angles in degrees, joined to the stroke; to < from runs
//   clockwise [c,scale,dx,dy]          the drawing of character c, scaled and moved, as strokes of its own ;
//   ends the stroke

#include <span>
#include <string_view>

namespace drafthost::text {

constexpr double kStrokeCapHeight = 12;
constexpr double kStrokeSmallHeight = 8;
constexpr double kStrokeGap = 3;  // between a drawing's right edge and the next character

struct StrokeGlyph {
    char32_t character;
    double width;  // of the drawing; the advance is this plus the gap
    std::string_view drawing;
};

// A mark added to letters. Marks are drawn about x = 0: above from y = 0 upwards, below from y = 0 downwards.
struct StrokeAccent {
    std::string_view drawing;
    bool above;
    std::u32string_view letters;  // with the accent
    std::u32string_view bases;    // the letters that they are made of, in the same order
};

std::span<const StrokeGlyph> strokeGlyphs();
std::span<const StrokeAccent> strokeAccents();

// Shown for characters that have no drawing.
constexpr StrokeGlyph kMissingStrokeGlyph = {0, 7, "0,0 7,0 7,12 0,12 0,0"};

}  // namespace drafthost::text
