// Hatches.

#include "dwgreader/collector.h"

namespace dwgreader {
namespace {

constexpr int kPolylineLoop = 2;

void polylineLoop(DxfText& groups, const DRW_LWPolyline& polyline) {
    bool bulges = false;
    for (const auto& vertex : polyline.vertlist)
        bulges = bulges || vertex->bulge != 0.0;
    groups.integer(72, bulges ? 1 : 0).integer(73, polyline.flags & 1);
    groups.integer(93, static_cast<std::int64_t>(polyline.vertlist.size()));
    for (const auto& vertex : polyline.vertlist) {
        groups.point2d(10, vertex->x, vertex->y);
        if (bulges)
            groups.real(42, vertex->bulge);
    }
}

void splineEdge(DxfText& groups, const DRW_Spline& spline) {
    const bool rational = (spline.flags & 4) != 0;
    groups.integer(72, 4)
        .integer(94, spline.degree)
        .integer(73, rational)
        .integer(74, (spline.flags & 2) != 0);
    groups.integer(95, static_cast<std::int64_t>(spline.knotslist.size()));
    groups.integer(96, static_cast<std::int64_t>(spline.controllist.size()));
    for (const double knot : spline.knotslist)
        groups.real(40, knot);
    // The library keeps a point's weight in its z.
    for (const auto& point : spline.controllist) {
        groups.point2d(10, point->x, point->y);
        if (rational)
            groups.real(42, point->z);
    }
}

// The angles and parameters of edges are degrees in DXF files. False: an edge of a kind that hatches do not
// have.
bool edge(DxfText& groups, const DRW_Entity& entity) {
    if (const auto* const ellipse = dynamic_cast<const DRW_Ellipse*>(&entity)) {
        groups.integer(72, 3).point2d(10, ellipse->basePoint.x, ellipse->basePoint.y);
        groups.point2d(11, ellipse->secPoint.x, ellipse->secPoint.y).real(40, ellipse->ratio);
        groups.degrees(50, ellipse->staparam).degrees(51, ellipse->endparam).integer(73, ellipse->isccw);
    } else if (const auto* const arc = dynamic_cast<const DRW_Arc*>(&entity)) {
        groups.integer(72, 2).point2d(10, arc->basePoint.x, arc->basePoint.y).real(40, arc->radious);
        groups.degrees(50, arc->staangle).degrees(51, arc->endangle).integer(73, arc->isccw);
    } else if (const auto* const line = dynamic_cast<const DRW_Line*>(&entity)) {
        groups.integer(72, 1).point2d(10, line->basePoint.x, line->basePoint.y);
        groups.point2d(11, line->secPoint.x, line->secPoint.y);
    } else if (const auto* const spline = dynamic_cast<const DRW_Spline*>(&entity)) {
        splineEdge(groups, *spline);
    } else {
        return false;
    }
    return true;
}

void boundary(DxfText& groups, const DRW_HatchLoop& loop) {
    groups.integer(92, loop.type);
    const auto* const polyline =
        loop.objlist.empty() ? nullptr : dynamic_cast<const DRW_LWPolyline*>(loop.objlist.front().get());
    if (polyline) {
        polylineLoop(groups, *polyline);
    } else if (loop.type & kPolylineLoop) {
        polylineLoop(groups, DRW_LWPolyline());
    } else {
        DxfText edges;
        int count = 0;
        for (const auto& entity : loop.objlist)
            count += edge(edges, *entity) ? 1 : 0;
        groups.integer(93, count).append(edges);
    }
    groups.integer(97, 0);  // a boundary that follows other entities does so no longer
}

void pattern(DxfText& groups, const DRW_Hatch& hatch) {
    groups.degrees(52, hatch.angle).real(41, hatch.scale).integer(77, hatch.doubleflag);
    groups.integer(78, static_cast<std::int64_t>(hatch.patternLines.size()));
    for (const DRW_HatchPatternLine& line : hatch.patternLines) {
        groups.degrees(53, line.angle).real(43, line.basePoint.x).real(44, line.basePoint.y);
        groups.real(45, line.offset.x).real(46, line.offset.y);
        groups.integer(79, static_cast<std::int64_t>(line.dashes.size()));
        for (const double dash : line.dashes)
            groups.real(49, dash);
    }
}

}  // namespace

void Collector::addHatch(const DRW_Hatch* hatch) {
    Entity entity = begin(*hatch, "HATCH");
    DxfText& groups = entity.after;
    groups.text(100, "AcDbHatch").point(10, DRW_Coord(0, 0, hatch->basePoint.z)).point(210, hatch->extPoint);
    groups.text(2, hatch->name).integer(70, hatch->solid).integer(71, 0);
    groups.integer(91, static_cast<std::int64_t>(hatch->looplist.size()));
    for (const auto& loop : hatch->looplist)
        boundary(groups, *loop);
    groups.integer(75, hatch->hstyle).integer(76, hatch->hpattern);
    if (!hatch->solid)
        pattern(groups, *hatch);
    groups.integer(98, static_cast<std::int64_t>(hatch->seedPoints.size()));
    for (const DRW_Coord& seed : hatch->seedPoints)
        groups.point2d(10, seed.x, seed.y);
    finish(std::move(entity), *hatch);
}

}  // namespace dwgreader
