// QNLeader: drawing, listing, explosion, extents, intersections.

#include "host/api/editor.h"
#include "module/leader/leader_entity.h"

#include <memory>

namespace tessary {

namespace {

constexpr std::int64_t noMarker = -1;

void drawSegment(AcGiWorldGeometry& geometry, const AcGePoint3d& from, const AcGePoint3d& to) {
    const AcGePoint3d points[] = {from, to};
    geometry.polyline(2, points, nullptr, noMarker);
}

void listPoint(const ACHAR* label, const AcGePoint3d& point) {
    acutPrintf(L"                   %ls = %f, %f, %f\n", label, point.x, point.y, point.z);
}

}  // namespace

bool QNLeader::subWorldDraw(AcGiWorldDraw* worldDraw) {
    assertReadEnabled();
    AcGiWorldGeometry& geometry = worldDraw->geometry();
    AcGiSubEntityTraits& traits = worldDraw->subEntityTraits();
    drawSegment(geometry, start_, middle_);
    drawSegment(geometry, middle_, tailPoint());
    const std::uint16_t color = traits.color();
    // What is on layer 0 in the block takes the leader's layer. It stays set: nothing of the leader is drawn
    // behind the symbol, and the host sets its own for the next entity.
    traits.setLayer(layerId());
    const bool isComplete = geometry.draw(&blockReference_);
    traits.setColor(color);
    return isComplete;
}

void QNLeader::subList() const {
    assertReadEnabled();
    AcDbCurve::subList();
    listPoint(L"Starting point", start_);
    listPoint(L"Middle point", middle_);
    listPoint(L"End point", end_);
    acutPrintf(L"\n\n");
    blockReference_.list();
}

Acad::ErrorStatus QNLeader::subExplode(AcDbEntityArray& parts) const {
    assertReadEnabled();
    auto first = std::make_unique<AcDbLine>(start_, middle_);
    auto second = std::make_unique<AcDbLine>(middle_, tailPoint());
    parts.append(first.release());
    parts.append(second.release());
    return blockReference_.explode(parts);
}

Acad::ErrorStatus QNLeader::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    return askParts([&](const AcDbEntity& part) { return part.getGeomExtents(extents); });
}

Acad::ErrorStatus QNLeader::intersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                          const AcGePlane& plane, AcGePoint3dArray& points,
                                          std::int32_t thisMarker, std::int32_t otherMarker) const {
    assertReadEnabled();
    return askParts([&](const AcDbEntity& part) {
        return part.intersectWith(other, type, plane, points, std::int64_t{thisMarker},
                                  std::int64_t{otherMarker});
    });
}

Acad::ErrorStatus QNLeader::intersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                          AcGePoint3dArray& points, std::int32_t thisMarker,
                                          std::int32_t otherMarker) const {
    assertReadEnabled();
    return askParts([&](const AcDbEntity& part) {
        return part.intersectWith(other, type, points, std::int64_t{thisMarker}, std::int64_t{otherMarker});
    });
}

}  // namespace tessary
