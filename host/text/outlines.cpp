#include "host/text/outlines.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <map>
#include <tuple>

#include "host/text/font.h"

namespace drafthost::text {

void InkBox::add(double x, double y) {
    if (empty) {
        *this = {x, y, x, y, false};
        return;
    }
    minX = std::min(minX, x);
    minY = std::min(minY, y);
    maxX = std::max(maxX, x);
    maxY = std::max(maxY, y);
}

void InkBox::add(const InkBox& other) {
    if (other.empty) {
        return;
    }
    add(other.minX, other.minY);
    add(other.maxX, other.maxY);
}

void measureInk(Glyph& glyph) {
    for (const Contour& contour : glyph.outline.contours) {
        for (const AcGePoint2d& point : contour) {
            glyph.ink.add(point.x, point.y);
        }
    }
}

char32_t takeCharacter(std::wstring_view& text) {
    const auto isHigh = [](wchar_t unit) { return unit >= 0xD800 && unit < 0xDC00; };
    const auto isLow = [](wchar_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
    const wchar_t first = text.front();
    text.remove_prefix(1);
    if (!isHigh(first) || text.empty() || !isLow(text.front())) {
        return static_cast<char32_t>(first);
    }
    const wchar_t second = text.front();
    text.remove_prefix(1);
    return 0x10000u + ((static_cast<char32_t>(first) - 0xD800u) << 10) +
           (static_cast<char32_t>(second) - 0xDC00u);
}

const Glyph& Font::glyph(char32_t character) const {
    const auto found = glyphs_.find(character);
    if (found != glyphs_.end()) {
        return found->second;
    }
    Glyph made = makeGlyph(character);
    measureInk(made);
    return glyphs_.emplace(character, std::move(made)).first->second;
}

double Font::descent() const {
    const InkBox& ink = glyph(U'p').ink;
    return ink.empty ? 0 : std::max(0.0, -ink.minY);
}

namespace {

// The fonts in use, made when first asked for and kept until the process ends.
struct FontLibrary {
    using Key = std::tuple<std::wstring, bool, bool>;  // family in lower case, bold, italic
    std::unique_ptr<Font> stroke = makeStrokeFont();
    std::map<Key, std::unique_ptr<Font>> faces;  // null: no outline face was found, the stroke font is used
};

FontLibrary& library() {
    static FontLibrary fonts;
    return fonts;
}

std::wstring lowered(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](wchar_t unit) {
        return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(unit)));
    });
    return result;
}

bool isTrueTypeFile(const std::wstring& file) {
    static constexpr std::array<std::wstring_view, 3> kExtensions = {L".ttf", L".ttc", L".otf"};
    const std::wstring name = lowered(file);
    return std::any_of(kExtensions.begin(), kExtensions.end(),
                       [&](std::wstring_view extension) { return name.ends_with(extension); });
}

FontRef faceOf(const std::wstring& family, bool bold, bool italic) {
    FontLibrary& fonts = library();
    const auto [entry, isNew] = fonts.faces.try_emplace({lowered(family), bold, italic});
    if (isNew) {
        entry->second = openTrueTypeFont(family, bold, italic);
    }
    return entry->second ? entry->second.get() : fonts.stroke.get();
}

// Where a glyph's points go in the run: scaled, slanted, moved by the pen.
struct GlyphPlacement {
    double xScale, yScale, slant, pen;
    AcGePoint2d operator()(const AcGePoint2d& point) const {
        return {pen + point.x * xScale + point.y * yScale * slant, point.y * yScale};
    }
    void addInk(const InkBox& glyph, InkBox& run) const {
        for (const double x : {glyph.minX, glyph.maxX}) {
            for (const double y : {glyph.minY, glyph.maxY}) {
                const AcGePoint2d corner = (*this)({x, y});
                run.add(corner.x, corner.y);
            }
        }
    }
};

// Calls use(glyph, placement) for each character and returns the run's advance.
template <class Use>
double walkRun(FontRef font, std::wstring_view text, double size, double xScale, double oblique,
               double tracking, Use use) {
    GlyphPlacement placement{size * xScale, size, oblique == 0 ? 0 : std::tan(oblique), 0};
    while (!text.empty()) {
        const Glyph& glyph = font->glyph(takeCharacter(text));
        use(glyph, placement);
        placement.pen += glyph.advance * placement.xScale * tracking;
    }
    return placement.pen;
}

void addRule(GlyphRun& run, double height, double length) {
    run.glyphs.push_back({false, {{{0, height}, {length, height}}}});
    run.ink.add(0, height);
    run.ink.add(length, height);
}

// Turns the run over: x or y of every point changes its sign.
void mirrorRun(GlyphRun& run, double signX, double signY) {
    InkBox ink;
    for (GlyphOutline& glyph : run.glyphs) {
        for (Contour& contour : glyph.contours) {
            for (AcGePoint2d& point : contour) {
                point = {point.x * signX, point.y * signY};
            }
        }
    }
    if (!run.ink.empty) {
        ink.add(run.ink.minX * signX, run.ink.minY * signY);
        ink.add(run.ink.maxX * signX, run.ink.maxY * signY);
    }
    run.ink = ink;
    run.advance *= signX;
}

}  // namespace

FontRef strokeFont() {
    return library().stroke.get();
}

FontRef resolveFont(const TextFont& wanted) {
    if (!wanted.family.empty()) {
        return faceOf(wanted.family, wanted.bold, wanted.italic);
    }
    if (!isTrueTypeFile(wanted.file)) {
        return strokeFont();
    }
    const std::size_t folder = wanted.file.find_last_of(L"\\/");
    const TextFont face =
        faceOfFile(std::wstring_view(wanted.file).substr(folder == std::wstring::npos ? 0 : folder + 1));
    return faceOf(face.family, face.bold || wanted.bold, face.italic || wanted.italic);
}

FontRef resolveFont(const AcGiTextStyle& style) {
    const auto textOf = [](const ACHAR* text) { return std::wstring(text ? text : L""); };
    return resolveFont(TextFont{textOf(style.fontFile), textOf(style.typeface), style.bold, style.italic});
}

const std::wstring& fontFamily(FontRef font) {
    return font->family();
}
bool isStrokeFont(FontRef font) {
    return font->family().empty();
}
double fontDescent(FontRef font) {
    return font->descent();
}

GlyphRun layoutRun(FontRef font, std::wstring_view text, double size, double xScale, double oblique,
                   double tracking) {
    GlyphRun run;
    const auto place = [&run](const Glyph& glyph, const GlyphPlacement& placement) {
        if (glyph.outline.contours.empty()) {
            return;
        }
        GlyphOutline& placed = run.glyphs.emplace_back(glyph.outline);
        for (Contour& contour : placed.contours) {
            for (AcGePoint2d& point : contour) {
                point = placement(point);
                run.ink.add(point.x, point.y);
            }
        }
    };
    run.advance = walkRun(font, text, size, xScale, oblique, tracking, place);
    return run;
}

RunMeasure measureRun(FontRef font, std::wstring_view text, double size, double xScale, double oblique,
                      double tracking) {
    RunMeasure measure;
    const auto addInk = [&measure](const Glyph& glyph, const GlyphPlacement& placement) {
        if (!glyph.ink.empty) {
            placement.addInk(glyph.ink, measure.ink);
        }
    };
    measure.advance = walkRun(font, text, size, xScale, oblique, tracking, addInk);
    return measure;
}

GlyphRun layoutRun(const AcGiTextStyle& style, std::wstring_view text) {
    GlyphRun run = layoutRun(resolveFont(style), text, style.textSize, style.xScale, style.obliqueAngle,
                             style.trackingPercent);
    if (style.underlined) {
        addRule(run, kUnderline * style.textSize, run.advance);
    }
    if (style.overlined) {
        addRule(run, kOverline * style.textSize, run.advance);
    }
    if (style.backward || style.upsideDown) {
        mirrorRun(run, style.backward ? -1 : 1, style.upsideDown ? -1 : 1);
    }
    return run;
}

}  // namespace drafthost::text
