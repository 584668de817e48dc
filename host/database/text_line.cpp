// Single-line text: its justification, measures and drawing.

#include "host/database/text_states.h"
#include "host/geometry/plane_axes.h"

namespace drafthost {

namespace {

void measureRuns(TextLine& line) {
    const text::FontRef font = text::resolveFont(line.look.font);
    line.advance = 0;
    line.ink = {};
    for (const text::LineRun& run : line.runs) {
        const text::RunMeasure measure =
            text::measureRun(font, run.text, line.height, line.widthFactor, line.oblique);
        if (!measure.ink.empty) {
            line.ink.add(line.advance + measure.ink.minX, measure.ink.minY);
            line.ink.add(line.advance + measure.ink.maxX, measure.ink.maxY);
        }
        line.advance += measure.advance;
    }
}

// Aligned and fit text runs from the position to the alignment point; aligned text grows with that distance,
// fit text becomes wider only.
void fitBetweenPoints(TextLine& line, const TextState& state) {
    const AcGePoint2d from = state.position.convert2d(), to = state.alignment.convert2d();
    const double distance = from.distanceTo(to);
    line.start = state.position;
    if (!(distance > 0)) {
        return;
    }
    line.rotation = (to - from).angle();
    if (line.advance > 0) {
        (state.horizontal == TextState::kAligned ? line.height : line.widthFactor) *= distance / line.advance;
        measureRuns(line);
    }
}

// From the start of the base line to the alignment point, along the text and upwards.
AcGeVector2d alignmentOffset(const TextLine& line, const TextState& state) {
    const text::InkBox& ink = line.ink;
    AcGeVector2d offset;
    switch (state.horizontal) {
        case 1: offset.x = line.advance / 2; break;
        case 2: offset.x = line.advance; break;
        case TextState::kMiddle: return {(ink.minX + ink.maxX) / 2, (ink.minY + ink.maxY) / 2};
        default: break;
    }
    switch (state.vertical) {
        case 1: offset.y = -text::fontDescent(text::resolveFont(line.look.font)) * line.height; break;
        case 2: offset.y = line.height / 2; break;
        case 3: offset.y = line.height; break;
        default: break;
    }
    return offset;
}

void startFromAlignment(TextLine& line, const TextState& state) {
    AcGeVector2d offset = alignmentOffset(line, state);
    offset.x *= line.look.backward ? -1 : 1;
    offset.y *= line.look.upsideDown ? -1 : 1;
    const double c = std::cos(line.rotation), s = std::sin(line.rotation);
    line.start = {state.alignment.x - c * offset.x + s * offset.y,
                  state.alignment.y - s * offset.x - c * offset.y, state.alignment.z};
}

AcGiTextStyle styleOf(const TextLine& line) {
    AcGiTextStyle style;
    style.fontFile = line.look.font.file.c_str();
    style.typeface = line.look.font.family.c_str();
    style.bold = line.look.font.bold;
    style.italic = line.look.font.italic;
    style.textSize = line.height;
    style.xScale = line.widthFactor;
    style.obliqueAngle = line.oblique;
    style.backward = line.look.backward;
    style.upsideDown = line.look.upsideDown;
    return style;
}

}  // namespace

TextLine layoutTextLine(const AcDbObject& object, const TextState& state, const std::wstring* message) {
    TextLine line;
    line.runs = text::parseLineCodes(message ? *message : state.text);
    line.look = lookOfStyle(styleInUse(object, state.style));
    line.look.backward = (state.generation & TextState::kBackward) != 0;
    line.look.upsideDown = (state.generation & TextState::kUpsideDown) != 0;
    line.height = state.height;
    line.widthFactor = state.widthFactor;
    line.oblique = state.oblique;
    line.rotation = state.rotation;
    measureRuns(line);
    if (state.horizontal == TextState::kAligned || state.horizontal == TextState::kFit) {
        fitBetweenPoints(line, state);
    } else if (state.horizontal != 0 || state.vertical != 0) {
        startFromAlignment(line, state);
    } else {
        line.start = state.position;
    }
    return line;
}

void settlePosition(const AcDbObject& object, TextState& state) {
    if (state.horizontal != 0 || state.vertical != 0) {
        state.position = layoutTextLine(object, state).start;
    }
}

void drawTextLine(const TextLine& line, const AcGeVector3d& normal, AcGiWorldDraw& draw) {
    const PlaneAxes axes = planeAxes(normal);
    const double c = std::cos(line.rotation), s = std::sin(line.rotation);
    const AcGeVector3d along = axes.x * c + axes.y * s;
    const AcGeVector3d up = axes.y * c - axes.x * s;
    const double runSign = line.look.backward ? -1 : 1, upSign = line.look.upsideDown ? -1 : 1;
    const AcGiTextStyle style = styleOf(line);
    const text::FontRef font = text::resolveFont(line.look.font);
    AcGePoint3d pen = axes.toWorld(line.start);
    for (const text::LineRun& run : line.runs) {
        draw.geometry().text(pen, normal, along, run.text.c_str(), static_cast<int>(run.text.size()), style);
        const double advance =
            text::measureRun(font, run.text, line.height, line.widthFactor, line.oblique).advance;
        const AcGePoint3d next = pen + along * (runSign * advance);
        const auto drawRule = [&](bool wanted, double height) {
            const AcGeVector3d rise = up * (upSign * height * line.height);
            const AcGePoint3d ends[2] = {pen + rise, next + rise};
            if (wanted) {
                draw.geometry().polyline(2, ends, &normal);
            }
        };
        drawRule(run.underlined, text::kUnderline);
        drawRule(run.overlined, text::kOverline);
        drawRule(run.struck, text::kStrikeLine);
        pen = next;
    }
}

}  // namespace drafthost
