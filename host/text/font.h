#pragma once

// A font: a source of glyphs for capitals of height 1.

#include <memory>
#include <unordered_map>

#include "host/text/outlines.h"

namespace drafthost::text {

struct Glyph {
    GlyphOutline outline;
    double advance = 0;
    InkBox ink;
};

class Font {
public:
    explicit Font(std::wstring familyName) : family_(std::move(familyName)) {}
    virtual ~Font() = default;
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    // The character's glyph, made at its first use; a character that the font lacks has a box or the face's
    // own sign.
    const Glyph& glyph(char32_t character) const;
    const std::wstring& family() const { return family_; }  // empty: the stroke font
    double descent() const;

protected:
    virtual Glyph makeGlyph(char32_t character) const = 0;

private:
    std::wstring family_;
    mutable std::unordered_map<char32_t, Glyph> glyphs_;
};

// A face of the platform, or the one that stands in for it; null when that is no outline face.
std::unique_ptr<Font> openTrueTypeFont(const std::wstring& family, bool bold, bool italic);
std::unique_ptr<Font> makeStrokeFont();

// Family and style of an installed font file, by its name without folder ("arialbd.ttf"). A file that is not
// installed and not one of the usual ones has its own name without extension as family.
TextFont faceOfFile(std::wstring_view fileName);

// Adds the outline's points to its ink box.
void measureInk(Glyph& glyph);

// Takes one character off the front of the text; a surrogate without its partner is taken as it is.
char32_t takeCharacter(std::wstring_view& text);

}  // namespace drafthost::text
