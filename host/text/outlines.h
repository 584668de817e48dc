#pragma once

// Outlines and measures of single runs of text.
//
// A run lies in a plane: the base line is the x axis, the pen starts at the origin, and capital letters are
// `size` high. TrueType faces give filled areas, taken from the platform unhinted in the face's design units;
// the stroke font gives lines. Advance widths are the sums of the characters' own (no kerning), so a run
// measures the same whole or in parts. Fonts and their glyphs are cached for the life of the process. Main
// thread only.

#include <string>
#include <string_view>
#include <vector>

#include "host/api/graphics.h"

namespace drafthost::text {

// What a text style or a format code asks for.
struct TextFont {
    std::wstring file{};    // "arial.ttf", "simplex.shx", "txt"; used when family is empty
    std::wstring family{};  // TrueType family
    bool bold = false;
    bool italic = false;
    bool operator==(const TextFont&) const = default;
};

// A font that was found; its members are in font.h.
class Font;
using FontRef = const Font*;  // never null, lives as long as the process

// A family, or a file name of a TrueType file, gives the platform's face, or the one the platform puts in its
// place when it is not installed. Every other file name (shape files, unknown names, none) gives the stroke
// font.
FontRef resolveFont(const TextFont& wanted);
FontRef resolveFont(const AcGiTextStyle& style);
FontRef strokeFont();

// Family of the face in use; empty for the stroke font. Differs from the one asked for after a substitution.
const std::wstring& fontFamily(FontRef font);
bool isStrokeFont(FontRef font);
// Lowest ink of the letters with descenders, below the base line; positive, for capitals of height 1.
double fontDescent(FontRef font);

struct InkBox {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    bool empty = true;
    void add(double x, double y);
    void add(const InkBox& other);
};

using Contour = std::vector<AcGePoint2d>;

// One character's shape.
struct GlyphOutline {
    // Filled: closed contours (the last point is not the first repeated), nonzero winding; the even-odd rule
    // gives the same area wherever a face's contours do not overlap. Not filled: open lines.
    bool filled = false;
    std::vector<Contour> contours;
};

struct GlyphRun {
    std::vector<GlyphOutline> glyphs;  // characters without ink have none
    double advance = 0;                // pen travel; negative for backward text
    InkBox ink;
};

struct RunMeasure {
    double advance = 0;
    InkBox ink;
};

// size: height of capitals. xScale: width factor. oblique: slant in radians, positive to the right.
// tracking: factor on the characters' advance widths, 1 for ordinary spacing.
// Curves are flattened to within kFlatness times size.
constexpr double kFlatness = 0.002;
GlyphRun layoutRun(FontRef font, std::wstring_view text, double size, double xScale = 1, double oblique = 0,
                   double tracking = 1);
RunMeasure measureRun(FontRef font, std::wstring_view text, double size, double xScale = 1,
                      double oblique = 0, double tracking = 1);

// The run as the style says, with its font, underline and overline; backward text runs along -x, upside-down
// text hangs below the base line.
GlyphRun layoutRun(const AcGiTextStyle& style, std::wstring_view text);
// Height above the base line of the lines that the style's flags and format codes draw, for capitals of
// height 1.
constexpr double kUnderline = -0.2;
constexpr double kOverline = 1.2;
constexpr double kStrikeLine = 0.5;

}  // namespace drafthost::text
