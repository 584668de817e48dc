// AcDbFace.

#include "host/api/face.h"

#include <algorithm>
#include <limits>

#include "host/api/editor.h"
#include "host/database/class_registry.h"
#include "host/database/dxf_checks.h"
#include "host/database/dxf_fields.h"
#include "host/database/face_state.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbFace, AcDbEntity, L"3DFACE", &drafthost::constructObject<AcDbFace>)

namespace {

constexpr const ACHAR* kSubclass = L"AcDbFace";
constexpr short kLastCorner = 13, kHiddenEdges = 70;

template <std::size_t Corner>
constexpr DxfField cornerField() {
    constexpr short kFirstCorner = 10;
    return {kFirstCorner + Corner,
            [](const ObjectState& state, const DxfField& field, GroupFiler& filer) {
                detail::writeValue(filer, field.code, static_cast<const FaceState&>(state).corners[Corner]);
            },
            [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
                return detail::readValue(group, static_cast<FaceState&>(state).corners[Corner]);
            }};
}

// LISP programs always find the group; files leave it out when all edges are shown.
void writeHiddenEdges(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const std::int32_t hidden = static_cast<const FaceState&>(state).hiddenEdges;
    if (hidden != 0 || filer.filerType() == AcDb::kBagFiler)
        detail::writeValue(filer, field.code, hidden);
}

constexpr DxfField kFields[] = {
    cornerField<0>(),
    cornerField<1>(),
    cornerField<2>(),
    cornerField<3>(),
    {kHiddenEdges, writeHiddenEdges, dxfField<&FaceState::hiddenEdges>(kHiddenEdges).read},
};

const FaceState& stateOf(const AcDbFace* face) {
    return readState<FaceState>(face);
}

bool isCorner(int index) {
    return index >= 0 && index < AcDbFace::kCorners;
}

void drawLines(const FaceState& face, AcGiWorldGeometry& geometry) {
    for (const FaceEdge& edge : shownEdgesOf(face)) {
        const AcGePoint3d ends[] = {edge.start, edge.end};
        geometry.polyline(2, ends);
    }
}

// Flat, with three corners or four.
void drawFlat(const FaceState& face, AcGiWorldGeometry& geometry) {
    const std::vector<FaceEdge> edges = edgesOf(face);
    AcGePoint3d corners[AcDbFace::kCorners];
    bool shown[AcDbFace::kCorners] = {};
    std::int32_t list[1 + AcDbFace::kCorners] = {static_cast<std::int32_t>(edges.size())};
    for (std::size_t i = 0; i < edges.size(); ++i) {
        corners[i] = edges[i].start;
        shown[i] = edges[i].shown;
        list[1 + i] = static_cast<std::int32_t>(i);
    }
    const auto count = static_cast<std::uint32_t>(edges.size());
    const AcGiEdgeData edgeData{shown};
    geometry.shell(count, corners, 1 + count, list, &edgeData);
}

// Folded along the line from the first corner to the third, which is not shown.
void drawBent(const FaceState& face, AcGiWorldGeometry& geometry) {
    constexpr std::int32_t kList[] = {3, 0, 1, 2, 3, 0, 2, 3};
    const bool shown[] = {face.isEdgeShown(0), face.isEdgeShown(1), false, false,
                          face.isEdgeShown(2), face.isEdgeShown(3)};
    const AcGiEdgeData edgeData{shown};
    geometry.shell(AcDbFace::kCorners, face.corners.data(), std::size(kList), kList, &edgeData);
}

}  // namespace

AcDbFace::AcDbFace() : AcDbEntity(newImp<FaceState>()) {}

AcDbFace::AcDbFace(const AcGePoint3d& corner0, const AcGePoint3d& corner1, const AcGePoint3d& corner2,
                   const AcGePoint3d& corner3, bool edge0Visible, bool edge1Visible, bool edge2Visible,
                   bool edge3Visible)
    : AcDbFace() {
    auto& state = static_cast<FaceState&>(*ObjectImp::of(this).state);
    state.corners = {corner0, corner1, corner2, corner3};
    state.hiddenEdges =
        (edge0Visible ? 0 : 1) | (edge1Visible ? 0 : 2) | (edge2Visible ? 0 : 4) | (edge3Visible ? 0 : 8);
}

Acad::ErrorStatus AcDbFace::getVertexAt(int index, AcGePoint3d& corner) const {
    if (!isCorner(index))
        return Acad::eInvalidIndex;
    corner = stateOf(this).corners[static_cast<std::size_t>(index)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setVertexAt(int index, const AcGePoint3d& corner) {
    if (!isCorner(index))
        return Acad::eInvalidIndex;
    if (!isFinite(corner))
        return Acad::eInvalidInput;
    auto* const state = writeState<FaceState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->corners[static_cast<std::size_t>(index)] = corner;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(int index, bool& visible) const {
    if (!isCorner(index))
        return Acad::eInvalidIndex;
    visible = stateOf(this).isEdgeShown(static_cast<std::size_t>(index));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setEdgeVisibilityAt(int index, bool visible) {
    if (!isCorner(index))
        return Acad::eInvalidIndex;
    auto* const state = writeState<FaceState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const std::int32_t bit = 1 << index;
    state->hiddenEdges = visible ? state->hiddenEdges & ~bit : state->hiddenEdges | bit;
    return Acad::eOk;
}

bool AcDbFace::isPlanar() const {
    return planeOf(stateOf(this)).has_value();
}

Acad::ErrorStatus AcDbFace::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    const FaceState& state = stateOf(this);
    const std::optional<FacePlane> found = planeOf(state);
    planarity = !found ? AcDb::kNonPlanar : found->isLinear ? AcDb::kLinear : AcDb::kPlanar;
    if (!found)
        return Acad::eNotApplicable;
    plane = AcGePlane(state.corners[0], found->normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::dxfOutFields(AcDbDxfFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    return status == Acad::eOk ? writeSubclass(filer, kSubclass, stateOf(this), kFields) : status;
}

Acad::ErrorStatus AcDbFace::dxfInFields(AcDbDxfFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    auto* const state = writeState<FaceState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    FaceState filed(*state);
    // A face with three corners need not have the fourth group; no group has the value that marks this.
    filed.corners.back().x = std::numeric_limits<double>::quiet_NaN();
    filed.hiddenEdges = 0;
    if (const Acad::ErrorStatus status = readSubclass(filer, kSubclass, filed, kFields);
        status != Acad::eOk) {
        return status;
    }
    if (std::isnan(filed.corners.back().x))
        filed.corners.back() = filed.corners[2];
    *state = std::move(filed);
    return Acad::eOk;
}

bool AcDbFace::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const FaceState& state = stateOf(this);
    const std::optional<FacePlane> plane = planeOf(state);
    if (!plane)
        drawBent(state, worldDraw->geometry());
    else if (plane->isLinear)
        drawLines(state, worldDraw->geometry());
    else
        drawFlat(state, worldDraw->geometry());
    return true;
}

// Hidden edges bound the face too.
Acad::ErrorStatus AcDbFace::subGetGeomExtents(AcDbExtents& extents) const {
    for (const AcGePoint3d& corner : stateOf(this).corners)
        extents.addPoint(corner);
    return Acad::eOk;
}

// A face takes any matrix.
Acad::ErrorStatus AcDbFace::subTransformBy(const AcGeMatrix3d& matrix) {
    auto corners = stateOf(this).corners;
    for (AcGePoint3d& corner : corners)
        corner.transformBy(matrix);
    if (!std::ranges::all_of(corners, [](const AcGePoint3d& corner) { return isFinite(corner); }))
        return Acad::eInvalidInput;
    auto* const state = writeState<FaceState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->corners = corners;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subExplode(AcDbEntityArray&) const {
    return Acad::eNotApplicable;
}

void AcDbFace::subList() const {
    constexpr const wchar_t* kNames[] = {L" first", L"second", L" third", L"fourth"};
    AcDbEntity::subList();
    const FaceState& state = stateOf(this);
    for (std::size_t i = 0; i < state.corners.size(); ++i) {
        const AcGePoint3d& at = state.corners[i];
        acutPrintf(L"            %ls corner, X=%9.4f  Y=%9.4f  Z=%9.4f%ls\n", kNames[i], at.x, at.y, at.z,
                   state.isEdgeShown(i) ? L"" : L"  edge to the next is hidden");
    }
}
