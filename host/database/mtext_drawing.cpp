// Layout, drawing, extents and explosion of multiline text.

#include <cmath>

#include "host/api/curves.h"
#include "host/database/mtext_parts.h"
#include "host/geometry/plane_axes.h"

using namespace drafthost;

namespace drafthost {

text::MTextLayout layoutOf(const AcDbMText& entity) {
    const auto& state = readState<MTextState>(&entity);
    const TextLook look = lookOfStyle(styleInUse(entity, state.style));
    text::MTextSpec spec;
    spec.contents = state.contents;
    spec.format.height = state.height;
    spec.format.widthFactor = look.xScale;
    spec.format.oblique = look.oblique;
    spec.font = look.font;
    spec.width = state.width;
    spec.attachment = state.attachment;
    spec.spacingFactor = state.spacingFactor;
    spec.exactSpacing = state.spacingStyle == 2;
    return text::layoutMText(spec);
}

double rotationOf(const MTextState& state) {
    const PlaneAxes axes = planeAxes(state.normal);
    return normalizeAngle(std::atan2(state.direction.dotProduct(axes.y), state.direction.dotProduct(axes.x)));
}

AcGeVector3d directionAt(double angle, const AcGeVector3d& normal) {
    const PlaneAxes axes = planeAxes(normal);
    return axes.x * std::cos(angle) + axes.y * std::sin(angle);
}

}  // namespace drafthost

namespace {

// The text's plane in the world.
struct TextPlane {
    AcGePoint3d origin;
    AcGeVector3d x, y, normal;
    explicit TextPlane(const MTextState& state)
        : origin(state.location), x(state.direction), y(state.normal.crossProduct(state.direction)),
          normal(state.normal) {}
    AcGePoint3d at(double px, double py) const { return origin + x * px + y * py; }
    AcGePoint3d at(const AcGePoint2d& point) const { return at(point.x, point.y); }
};

// Switches the colour of what is drawn to that of a format, and back to the entity's.
class FormatColor {
public:
    FormatColor(const AcDbMText& entity, AcGiSubEntityTraits& traits)
        : traits_(traits), ownIndex_(entity.colorIndex()), ownTrueColor_(entity.trueColor()) {}
    ~FormatColor() { setTo(text::MTextFormat()); }
    FormatColor(const FormatColor&) = delete;
    FormatColor& operator=(const FormatColor&) = delete;

    void setTo(const text::MTextFormat& format) {
        if (format.color == color_ && format.trueColor == trueColor_)
            return;
        color_ = format.color;
        trueColor_ = format.trueColor;
        const bool isOwn = color_ == text::MTextFormat::kOwnColor && trueColor_ < 0;
        apply(isOwn ? ownTrueColor_ : trueColor_, isOwn ? ownIndex_ : static_cast<std::uint16_t>(color_));
    }
    void setTo(std::int32_t trueColor, std::int32_t index) {
        color_ = index;
        trueColor_ = trueColor;
        apply(trueColor, static_cast<std::uint16_t>(index));
    }
    void setToBackground() {
        color_ = kBackground;
        traits_.setBackgroundColor();
    }

private:
    static constexpr std::int32_t kBackground = -2;  // no format has it

    void apply(std::int32_t trueColor, std::uint16_t index) {
        if (trueColor >= 0) {
            traits_.setTrueColor(static_cast<std::uint32_t>(trueColor));
        } else {
            traits_.setColor(index);
        }
    }

    AcGiSubEntityTraits& traits_;
    std::uint16_t ownIndex_;
    std::int32_t ownTrueColor_;
    std::int32_t color_ = text::MTextFormat::kOwnColor, trueColor_ = -1;
};

// The area behind the text: its box, wider on each side by (scale - 1) text heights.
void drawBackground(const MTextState& state, const text::MTextLayout& layout, const TextPlane& plane,
                    FormatColor& color, AcGiWorldDraw& draw) {
    const double border = (state.backgroundScale - 1) * state.height;
    const double left = layout.boxLeft - border, right = layout.boxLeft + layout.boxWidth + border;
    const double top = layout.boxTop + border;
    const double bottom = layout.boxTop - layout.actualHeight - layout.descent - border;
    const AcGePoint3d corners[4] = {plane.at(left, bottom), plane.at(right, bottom), plane.at(right, top),
                                    plane.at(left, top)};
    const bool hasColor = state.backgroundColor >= 0 || state.backgroundTrueColor >= 0;
    if ((state.backgroundFlags & MTextState::kFillWindow) != 0 || !hasColor) {
        color.setToBackground();
    } else {
        color.setTo(state.backgroundTrueColor, state.backgroundColor);
    }
    draw.subEntityTraits().setFill(true);
    draw.geometry().polygon(4, corners);
}

AcGiTextStyle styleOf(const text::MTextFormat& format, const text::TextFont& font) {
    AcGiTextStyle style;
    style.fontFile = font.file.c_str();
    style.typeface = font.family.c_str();
    style.bold = font.bold;
    style.italic = font.italic;
    style.textSize = format.height;
    style.xScale = format.widthFactor;
    style.obliqueAngle = format.oblique;
    style.trackingPercent = format.tracking;
    return style;
}

std::wstring withLineCodes(const std::wstring& text, const text::MTextFormat& format) {
    return std::wstring(format.underlined ? L"%%u" : L"") + (format.overlined ? L"%%o" : L"") +
           (format.struck ? L"%%k" : L"") + text;
}

// A drawn piece as single-line text. Fonts of format codes give way to the style's.
AcDbText* textOf(const AcDbMText& entity, const text::MTextPiece& piece, const text::MTextFormat& format) {
    const auto& source = readState<MTextState>(&entity);
    const PlaneAxes axes = planeAxes(source.normal);
    auto* part = new AcDbText();
    auto& state = static_cast<TextState&>(*ObjectImp::of(part).state);
    state.position = axes.toPlane(TextPlane(source).at(piece.start));
    state.text = withLineCodes(piece.text, format);
    state.style = styleInUse(entity, source.style);
    state.height = format.height;
    state.widthFactor = format.widthFactor;
    state.oblique = format.oblique;
    state.rotation = rotationOf(source);
    state.normal = source.normal;
    return part;
}

void takeLook(AcDbEntity* part, const AcDbMText& entity, const text::MTextFormat& format) {
    part->setPropertiesFrom(&entity);
    if (format.trueColor >= 0) {
        part->setTrueColor(format.trueColor);
    } else if (format.color != text::MTextFormat::kOwnColor) {
        part->setColorIndex(static_cast<std::uint16_t>(format.color));
    }
}

}  // namespace

bool AcDbMText::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const auto& state = readState<MTextState>(this);
    const text::MTextLayout layout = layoutOf(*this);
    const TextPlane plane(state);
    FormatColor color(*this, worldDraw->subEntityTraits());
    if (backgroundFillOn() && !layout.lines.empty()) {
        drawBackground(state, layout, plane, color, *worldDraw);
    }
    AcGiWorldGeometry& geometry = worldDraw->geometry();
    for (const text::MTextPiece& piece : layout.pieces) {
        const text::MTextFormat& format = layout.formats[piece.format];
        color.setTo(format);
        geometry.text(plane.at(piece.start), plane.normal, plane.x, piece.text.c_str(),
                      static_cast<int>(piece.text.size()), styleOf(format, layout.fonts[format.font]));
    }
    for (const text::MTextRule& rule : layout.rules) {
        const AcGePoint3d ends[2] = {plane.at(rule.start), plane.at(rule.end)};
        color.setTo(layout.formats[rule.format]);
        geometry.polyline(2, ends, &plane.normal);
    }
    return true;
}

Acad::ErrorStatus AcDbMText::subGetGeomExtents(AcDbExtents& extents) const {
    const TextPlane plane(readState<MTextState>(this));
    const text::InkBox box = layoutOf(*this).extents;
    if (box.empty) {
        extents.addPoint(plane.origin);
        return Acad::eOk;
    }
    for (const double x : {box.minX, box.maxX}) {
        for (const double y : {box.minY, box.maxY}) {
            extents.addPoint(plane.at(x, y));
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subExplode(AcDbEntityArray& parts) const {
    const text::MTextLayout layout = layoutOf(*this);
    const TextPlane plane(readState<MTextState>(this));
    for (const text::MTextPiece& piece : layout.pieces) {
        const text::MTextFormat& format = layout.formats[piece.format];
        if (!piece.ink.empty)
            takeLook(parts.at(parts.append(textOf(*this, piece, format))), *this, format);
    }
    for (const text::MTextRule& rule : layout.rules) {
        if (!rule.isFraction)
            continue;
        auto* line = new AcDbLine(plane.at(rule.start), plane.at(rule.end));
        takeLook(parts.at(parts.append(line)), *this, layout.formats[rule.format]);
    }
    return Acad::eOk;
}
