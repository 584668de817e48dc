#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>

#include "host/text/font.h"
#include "host/text/stroke_glyphs.h"

namespace drafthost::text {

namespace {

const StrokeGlyph* findStrokeGlyph(char32_t character) {
    for (const StrokeGlyph& glyph : strokeGlyphs()) {
        if (glyph.character == character) {
            return &glyph;
        }
    }
    return nullptr;
}

// Draws glyph drawings, in grid units, into contours.
class StrokePen {
public:
    explicit StrokePen(std::vector<Contour>& contours) : contours_(contours) {}

    // scale and offset apply to the drawing's points.
    void draw(std::string_view drawing, double scale, AcGeVector2d offset) {
        endStroke();
        scale_ = scale;
        offset_ = offset;
        while (!drawing.empty()) {
            const std::size_t end = std::min(drawing.find(' '), drawing.size());
            drawItem(drawing.substr(0, end), scale, offset);
            drawing.remove_prefix(std::min(end + 1, drawing.size()));
        }
        endStroke();
    }

private:
    static constexpr std::size_t kArcNumbers = 6;

    void drawItem(std::string_view item, double scale, AcGeVector2d offset) {
        if (item == ";") {
            endStroke();
        } else if (item.front() == '(') {
            drawArc(numbers<kArcNumbers>(item.substr(1)));
        } else if (item.front() == '[') {
            drawReference(item.substr(1));
            scale_ = scale;
            offset_ = offset;
        } else {
            const auto point = numbers<2>(item);
            addPoint({point[0], point[1]});
        }
    }

    // The numbers of a comma-separated list.
    template <std::size_t Count>
    static std::array<double, Count> numbers(std::string_view list) {
        std::array<double, Count> values{};
        const char* at = list.data();
        const char* end = list.data() + list.size();
        for (double& value : values) {
            at = std::from_chars(at, end, value).ptr;
            at += at != end ? 1 : 0;
        }
        return values;
    }

    void drawArc(const std::array<double, kArcNumbers>& arc) {
        const auto [centerX, centerY, radiusX, radiusY, fromDegrees, toDegrees] = arc;
        constexpr double kDegree = std::numbers::pi / 180;
        const double from = fromDegrees * kDegree;
        const double sweep = toDegrees * kDegree - from;
        const double radius = std::max(radiusX, radiusY) * scale_;
        const double step = 2 * std::acos(std::max(0.5, 1 - kFlatness * kStrokeCapHeight / radius));
        const int pieces = std::max(2, static_cast<int>(std::ceil(std::abs(sweep) / step)));
        for (int i = 0; i <= pieces; ++i) {
            const double angle = from + sweep * i / pieces;
            addPoint({centerX + radiusX * std::cos(angle), centerY + radiusY * std::sin(angle)});
        }
    }

    // item: character (UTF-8, of at most three bytes), scale and offset of another drawing.
    void drawReference(std::string_view item) {
        const std::size_t comma = item.find(',', 1);
        const StrokeGlyph* glyph = findStrokeGlyph(decode(item.substr(0, comma)));
        const auto placement = numbers<3>(item.substr(comma + 1));
        if (glyph) {
            draw(glyph->drawing, scale_ * placement[0],
                 offset_ + AcGeVector2d{placement[1], placement[2]} * scale_);
        }
    }

    static char32_t decode(std::string_view bytes) {
        const auto byte = [&bytes](std::size_t i) {
            return static_cast<char32_t>(static_cast<unsigned char>(bytes[i]));
        };
        if (bytes.size() == 3) {
            return (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
        }
        return byte(0);
    }

    void addPoint(AcGePoint2d point) {
        const AcGePoint2d placed{point.x * scale_ + offset_.x, point.y * scale_ + offset_.y};
        if (stroke_.empty() || stroke_.back().x != placed.x || stroke_.back().y != placed.y) {
            stroke_.push_back(placed);
        }
    }

    void endStroke() {
        if (!stroke_.empty()) {
            contours_.push_back(std::move(stroke_));
            stroke_.clear();
        }
    }

    std::vector<Contour>& contours_;
    Contour stroke_;
    double scale_ = 1;
    AcGeVector2d offset_;
};

bool isSmallLetter(char32_t base) {
    return (base >= U'a' && base <= U'z') || base == 0x131;
}

// Scripts that the font does not draw (Cyrillic, Greek, ...) come from an outline face, so that every drawing
// can be read; what that face lacks too is its sign for missing characters.
constexpr char32_t kFirstBorrowed = 0x80;
constexpr const wchar_t* kLenderFamily = L"Arial";

class StrokeFont : public Font {
public:
    StrokeFont() : Font({}) {}

protected:
    Glyph makeGlyph(char32_t character) const override {
        if (character < U' ') {
            return {};
        }
        Glyph glyph;
        if (!drawAccented(character, glyph)) {
            const StrokeGlyph* found = findStrokeGlyph(character);
            if (!found && character >= kFirstBorrowed) {
                return resolveFont(TextFont{{}, kLenderFamily})->glyph(character);
            }
            drawPlain(found ? *found : kMissingStrokeGlyph, glyph);
        }
        toCapHeight(glyph);
        return glyph;
    }

private:
    static void drawPlain(const StrokeGlyph& source, Glyph& glyph) {
        StrokePen(glyph.outline.contours).draw(source.drawing, 1, {});
        glyph.advance = source.width + kStrokeGap;
    }

    static bool drawAccented(char32_t character, Glyph& glyph) {
        for (const StrokeAccent& accent : strokeAccents()) {
            const std::size_t index = accent.letters.find(character);
            if (index == std::u32string_view::npos) {
                continue;
            }
            const char32_t letter = accent.bases[index];
            const StrokeGlyph& base = *findStrokeGlyph(letter);
            drawPlain(base, glyph);
            const double height = !accent.above           ? 0
                                  : isSmallLetter(letter) ? kStrokeSmallHeight
                                                          : kStrokeCapHeight;
            StrokePen(glyph.outline.contours)
                .draw(accent.drawing, 1, {base.width / 2, height + (accent.above ? 1 : 0)});
            makeRoom(glyph);
            return true;
        }
        return false;
    }

    // Moves a letter that is narrower than its accent to the right, so that nothing stands left of the pen.
    static void makeRoom(Glyph& glyph) {
        InkBox ink;
        for (const Contour& contour : glyph.outline.contours) {
            for (const AcGePoint2d& point : contour) {
                ink.add(point.x, point.y);
            }
        }
        const double shift = std::max(0.0, -ink.minX);
        for (Contour& contour : glyph.outline.contours) {
            for (AcGePoint2d& point : contour) {
                point.x += shift;
            }
        }
        glyph.advance = std::max(glyph.advance, ink.maxX + shift + kStrokeGap);
    }

    static void toCapHeight(Glyph& glyph) {
        for (Contour& contour : glyph.outline.contours) {
            for (AcGePoint2d& point : contour) {
                point = {point.x / kStrokeCapHeight, point.y / kStrokeCapHeight};
            }
        }
        glyph.advance /= kStrokeCapHeight;
    }
};

}  // namespace

std::unique_ptr<Font> makeStrokeFont() {
    return std::make_unique<StrokeFont>();
}

}  // namespace drafthost::text
