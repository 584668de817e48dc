#include "host/graphics/display_builder.h"

#include <cmath>
#include <cwchar>
#include <numbers>

#include "host/geometry/shell.h"
#include "host/text/outlines.h"

namespace drafthost::graphics {

DisplayBuilder::DisplayBuilder(const AcDbDatabase& database, double deviation)
    : ResolvingDraw(database, deviation, AcGeVector3d::kZAxis) {}

template <class Shape>
void DisplayBuilder::add(Shape shape) {
    list_.items.push_back({effectiveColor(), effectiveMillimetres(), std::move(shape)});
}

void DisplayBuilder::addLine(Polyline2d line) {
    std::vector<Polyline2d> pieces;
    appendDashes(line, currentPattern(), pieces);
    for (Polyline2d& piece : pieces)
        add(std::move(piece));
}

bool DisplayBuilder::polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                              std::int64_t) {
    if (count == 0 || hidden())
        return false;
    Polyline2d line;
    line.points.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        line.points.push_back(toPlan(points[i]));
    addLine(std::move(line));
    return false;
}

bool DisplayBuilder::polygon(std::uint32_t count, const AcGePoint3d* points) {
    if (fills())
        return polyPolygon(1, &count, points);
    if (count == 0)
        return false;
    std::vector<AcGePoint3d> closed(points, points + count);
    closed.push_back(points[0]);
    return polyline(count + 1, closed.data(), nullptr, -1);
}

bool DisplayBuilder::polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                                 const AcGePoint3d* points) {
    if (hidden())
        return false;
    Area2d area;
    for (std::uint32_t i = 0; i < contourCount; ++i) {
        std::vector<AcGePoint2d>& contour = area.contours.emplace_back();
        for (std::uint32_t j = 0; j < counts[i]; ++j)
            contour.push_back(toPlan(*points++));
    }
    add(std::move(area));
    return false;
}

bool DisplayBuilder::shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
                           const std::int32_t* faceList, const AcGiEdgeData* edges,
                           const AcGiFaceData* faces) {
    if (!hidden())
        drawEdges(*this, readShell(pointCount, points, faceListSize, faceList, edges, faces));
    return false;
}

bool DisplayBuilder::circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) {
    return addArc(center, radius, normal, normal.perpVector(), 2 * std::numbers::pi);
}

bool DisplayBuilder::circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                                 const AcGeVector3d& startDirection, double sweepAngle) {
    return addArc(center, radius, normal, startDirection, sweepAngle);
}

// An arc that is still circular in plan stays an arc; any other becomes chords.
bool DisplayBuilder::addArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                            const AcGeVector3d& start, double sweep) {
    if (!(radius > 0) || hidden())
        return false;
    const AcGeVector3d along = start.normal();
    const AcGeVector3d across = normal.normal().crossProduct(along);
    const AcGeVector2d planAlong = (transform() * (along * radius)).convert2d();
    const AcGeVector2d planAcross = (transform() * (across * radius)).convert2d();
    const AcGePoint2d planCenter = toPlan(center);
    const double planRadius = planAlong.length();
    const bool circular = planRadius > 0 &&
                          std::fabs(planAcross.length() - planRadius) <= 1e-9 * planRadius &&
                          std::fabs(planAlong.dotProduct(planAcross)) <= 1e-9 * planRadius * planRadius;
    if (circular) {
        const double turn = planAlong.x * planAcross.y - planAlong.y * planAcross.x;
        std::vector<Arc2d> pieces;
        appendDashes(Arc2d{planCenter, planRadius, planAlong.angle(), turn < 0 ? -sweep : sweep},
                     currentPattern(), pieces);
        for (Arc2d& piece : pieces)
            add(piece);
        return false;
    }
    const int chords = chordCount(radius, sweep, deviation());
    Polyline2d line;
    for (int i = 0; i <= chords; ++i) {
        const double angle = sweep * i / chords;
        line.points.push_back(planCenter + (planAlong * std::cos(angle) + planAcross * std::sin(angle)));
    }
    addLine(std::move(line));
    return false;
}

// Text is drawn as its outlines; a linetype does not apply to it.
bool DisplayBuilder::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                          const AcGeVector3d& direction, const ACHAR* message, int length,
                          const AcGiTextStyle& style) {
    if (hidden())
        return false;
    const std::size_t count = length < 0 ? std::wcslen(message) : static_cast<std::size_t>(length);
    const AcGeVector3d along = direction.normal();
    const AcGeVector3d upward = normal.normal().crossProduct(along);
    const auto toPlanContour = [&](const text::Contour& contour) {
        std::vector<AcGePoint2d> plan;
        plan.reserve(contour.size());
        for (const AcGePoint2d& p : contour)
            plan.push_back(toPlan(position + along * p.x + upward * p.y));
        return plan;
    };
    for (const text::GlyphOutline& glyph : text::layoutRun(style, {message, count}).glyphs) {
        Area2d area{{}, false};
        for (const text::Contour& contour : glyph.contours) {
            if (glyph.filled) {
                area.contours.push_back(toPlanContour(contour));
            } else {
                add(Polyline2d{toPlanContour(contour)});
            }
        }
        if (!area.contours.empty())
            add(std::move(area));
    }
    return false;
}

DisplayList buildDisplayList(const AcDbDatabase& database) {
    DisplayBuilder builder(database, deviationFor(sizeOfDrawing(database)));
    builder.drawModelSpace();
    return builder.take();
}

}  // namespace drafthost::graphics
