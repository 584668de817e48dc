// SolidEntity: drawing, explosion, extents, measures, listing.

#include "host/api/database.h"
#include "host/api/editor.h"
#include "host/api/face.h"
#include "host/api/symbol_tables.h"
#include "solids/entity/solid_entity.h"

#include <algorithm>

namespace solids {

namespace {

constexpr const ACHAR* kCenterLinetype = L"CENTER";
constexpr int kThinLine = 0;

struct KindName {
    BodyKind kind;
    const ACHAR* text;
};
constexpr KindName kKindNames[] = {
    {BodyKind::joined, L"joined"},
    {BodyKind::straight, L"straight duct"},
    {BodyKind::transition, L"transition"},
    {BodyKind::radiusElbow, L"radius elbow"},
    {BodyKind::squareElbow, L"square elbow"},
    {BodyKind::cableTrayElbow, L"cable tray elbow"},
    {BodyKind::wye, L"wye"},
    {BodyKind::skin, L"skin"},
};

// Null outside a drawing: the traits' linetype stays.
AcDbObjectId centerLinetype(const AcDbDatabase* database) {
    AcDbLinetypeTable* table = nullptr;
    if (!database || database->getSymbolTable(table, AcDb::kForRead) != Acad::eOk) {
        return {};
    }
    AcDbObjectId found;
    const bool hasOne = table->getAt(kCenterLinetype, found) == Acad::eOk;
    table->close();
    return hasOne ? found : database->continuousLinetype();
}

void drawChain(AcGiWorldGeometry& geometry, const Mesh& mesh, const PointChain& chain) {
    std::vector<AcGePoint3d> points;
    points.reserve(chain.size());
    for (const std::int32_t index : chain) {
        points.push_back(mesh.points[index]);
    }
    geometry.polyline(static_cast<std::uint32_t>(points.size()), points.data());
}

void drawCenterLines(AcGiWorldDraw& draw, const Part& part, const AcDbDatabase* database) {
    if (std::ranges::none_of(part.centerLines, &CenterLine::isShown)) {
        return;
    }
    AcGiSubEntityTraits& traits = draw.subEntityTraits();
    const AcDbObjectId linetype = traits.lineTypeId();
    const int weight = traits.lineWeight();
    if (const AcDbObjectId own = centerLinetype(database); !own.isNull()) {
        traits.setLineType(own);
    }
    traits.setLineWeight(kThinLine);
    for (const CenterLine& line : part.centerLines) {
        if (line.isShown) {
            draw.geometry().polyline(static_cast<std::uint32_t>(line.points.size()), line.points.data());
        }
    }
    traits.setLineType(linetype);
    traits.setLineWeight(weight);
}

void listNumber(const ACHAR* label, double value) {
    acutPrintf(L"                   %ls = %.12g\n", label, value);
}

void listPoint(const ACHAR* label, const AcGePoint3d& point) {
    acutPrintf(L"                   %ls, X=%9.4f  Y=%9.4f  Z=%9.4f\n", label, point.x, point.y, point.z);
}

}  // namespace

const ACHAR* SolidEntity::kindText() const {
    if (parts_.empty()) {
        return L"empty";
    }
    switch (fitting_) {
        case HvacFitting::takeoff: return L"takeoff";
        case HvacFitting::hanger: return L"hanger";
        case HvacFitting::fromBodies: break;
    }
    const BodyKind kind = parts_.size() == 1 ? parts_.front().kind : BodyKind::joined;
    const auto* const found = std::ranges::find(kKindNames, kind, &KindName::kind);
    return found != std::end(kKindNames) ? found->text : kKindNames[0].text;
}

bool SolidEntity::subWorldDraw(AcGiWorldDraw* worldDraw) {
    assertReadEnabled();
    if (parts_.empty()) {
        return true;
    }
    const std::vector<AcGePoint3d>& points = joined().mesh.points;
    const Surface& drawn = surface();
    const AcGiEdgeData edges{drawn.shownEdges()};
    const AcGiFaceData faces{drawn.shownFaces()};
    worldDraw->geometry().shell(static_cast<std::uint32_t>(points.size()), points.data(),
                                static_cast<std::uint32_t>(drawn.shellFaces().size()),
                                drawn.shellFaces().data(), &edges, &faces);
    drawCenterLines(*worldDraw, joined(), database());
    return false;
}

void SolidEntity::subViewportDraw(AcGiViewportDraw* viewportDraw) {
    assertReadEnabled();
    if (parts_.empty()) {
        return;
    }
    for (const PointChain& chain : surface().outline(viewportDraw->viewport().viewDir())) {
        drawChain(viewportDraw->geometry(), joined().mesh, chain);
    }
}

Acad::ErrorStatus SolidEntity::subExplode(AcDbEntityArray& faces) const {
    assertReadEnabled();
    if (parts_.empty()) {
        return Acad::eOk;
    }
    const std::vector<AcGePoint3d>& points = joined().mesh.points;
    for (const Facet& facet : surface().facets()) {
        if (isOpen(facet.kind)) {
            continue;
        }
        // The third corner of a triangle stands twice, and the edge between the two is none.
        const bool isTriangle = facet.count == 3;
        const int last = isTriangle ? 2 : 3;
        auto face = std::make_unique<AcDbFace>(points[facet.corners[0]], points[facet.corners[1]],
                                               points[facet.corners[2]], points[facet.corners[last]],
                                               facet.isEdgeShown[0], facet.isEdgeShown[1],
                                               !isTriangle && facet.isEdgeShown[2], facet.isEdgeShown[last]);
        face->setPropertiesFrom(this);
        faces.append(face.release());
    }
    return Acad::eOk;
}

// A joined surface reaches as far as its parts do.
Acad::ErrorStatus SolidEntity::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    for (const Part& part : parts_) {
        const Box box = boxOf(part.mesh);
        extents.addPoint(box.low);
        extents.addPoint(box.high);
        for (const CenterLine& line : part.centerLines) {
            if (line.isShown) {
                std::ranges::for_each(line.points,
                                      [&](const AcGePoint3d& point) { extents.addPoint(point); });
            }
        }
    }
    return parts_.empty() ? Acad::eInvalidExtents : Acad::eOk;
}

Acad::ErrorStatus SolidEntity::subGetSolidMeasures(AcDbSolidMeasures& measures) const {
    assertReadEnabled();
    if (parts_.empty() || joined().mayOverlap) {
        return Acad::eNotApplicable;
    }
    const Mesh& mesh = joined().mesh;
    measures = {kindText(), volumeOf(mesh), areaOf(mesh),
                fitting_ == HvacFitting::hanger ? 0.0 : areaOf(mesh, FaceKind::wall)};
    return Acad::eOk;
}

// Measures with the digits that lists of solids have in files: %f would show nothing of small ducts.
void SolidEntity::subList() const {
    assertReadEnabled();
    qn_hvacSolid::subList();
    acutPrintf(L"                   Kind = %ls\n", kindText());
    acutPrintf(L"                   Bodies = %d\n", bodyCount());
    AcDbSolidMeasures measures;
    if (getSolidMeasures(measures) == Acad::eOk) {
        listNumber(L"Volume", measures.volume);
        listNumber(L"Surface area", measures.surfaceArea);
        listNumber(L"Sheet area", measures.sheetArea);
    } else if (!parts_.empty()) {
        acutPrintf(L"                   Bodies could not be joined: no volume and area\n");
    }
    AcDbExtents extents;
    if (getGeomExtents(extents) == Acad::eOk) {
        listPoint(L"Lower corner", extents.minPoint());
        listPoint(L"Upper corner", extents.maxPoint());
    }
}

}  // namespace solids
