// Filing of lightweight polylines.

#include "host/api/curves.h"
#include "host/database/curve_states.h"
#include "host/database/dxf_checks.h"
#include "host/database/dxf_fields.h"

using namespace drafthost;

namespace {

constexpr wchar_t kSubclass[] = L"AcDbPolyline";
constexpr DxfField kFieldsBefore[] = {
    dxfField<&PolylineState::elevation, 0.0>(38),
    dxfField<&PolylineState::thickness, 0.0>(39),
};
constexpr DxfField kFieldsBehind[] = {dxfField<&PolylineState::normal>(210)};

bool hasConstantWidth(const PolylineState& state) {
    return std::all_of(state.vertices.begin(), state.vertices.end(), [&](const PolylineVertex& v) {
        return v.startWidth == state.constantWidth && v.endWidth == state.constantWidth;
    });
}

// Files leave out what has its default value; LISP programs look the groups up and get all of them.
void writeVertices(AcDbDxfFiler* filer, const PolylineState& state, bool constantWidth) {
    const bool brief = filer->filerType() == AcDb::kFileFiler;
    for (const PolylineVertex& vertex : state.vertices) {
        filer->writeItem(10, vertex.point);
        if (!brief || !constantWidth) {
            filer->writeItem(40, vertex.startWidth);
            filer->writeItem(41, vertex.endWidth);
        }
        if (!brief || vertex.bulge != 0)
            filer->writeItem(42, vertex.bulge);
        if (vertex.identifier != 0)
            filer->writeInt32(91, vertex.identifier);
    }
}

// A width that the groups do not give; the constant width takes its place when all groups are read.
constexpr double kWidthNotGiven = -1;

bool readWidth(const DxfGroup& group, double& width) {
    double filed;
    if (!detail::readValue(group, filed) || filed < 0)
        return false;
    width = filed;
    return true;
}

PolylineState& polyline(ObjectState& state) {
    return static_cast<PolylineState&>(state);
}

bool readVertex(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    AcGePoint2d point;
    if (!detail::readValue(group, point))
        return false;
    polyline(state).vertices.push_back({point, 0, kWidthNotGiven, kWidthNotGiven});
    return true;
}

// A member of the vertex that the last group 10 began.
template <auto Member>
bool readVertexMember(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    std::vector<PolylineVertex>& vertices = polyline(state).vertices;
    return !vertices.empty() && detail::readValue(group, vertices.back().*Member);
}

template <auto Member>
bool readVertexWidth(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    std::vector<PolylineVertex>& vertices = polyline(state).vertices;
    return !vertices.empty() && readWidth(group, vertices.back().*Member);
}

bool readConstantWidth(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    return readWidth(group, polyline(state).constantWidth);
}

// The vertex count is not relied on: programs that add vertices to entity data often leave it as it was.
bool readCount(ObjectState&, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    std::int32_t count;
    return detail::readValue(group, count);
}

// For reading only; the vertices are written by writeVertices.
constexpr DxfField kReadFields[] = {
    {90, nullptr, &readCount},
    dxfField<&PolylineState::flags>(70),
    {43, nullptr, &readConstantWidth},
    dxfField<&PolylineState::elevation>(38),
    dxfField<&PolylineState::thickness>(39),
    {10, nullptr, &readVertex},
    {40, nullptr, &readVertexWidth<&PolylineVertex::startWidth>},
    {41, nullptr, &readVertexWidth<&PolylineVertex::endWidth>},
    {42, nullptr, &readVertexMember<&PolylineVertex::bulge>},
    {91, nullptr, &readVertexMember<&PolylineVertex::identifier>},
    dxfField<&PolylineState::normal>(210),
};

// Widths that were not given are the constant width. So are all of them when a program changed group 43 of
// entity data and left the vertices' groups at the old constant width.
void settleWidths(PolylineState& filed, const PolylineState& before) {
    const bool widthChanged = filed.constantWidth != before.constantWidth && !before.vertices.empty();
    const auto isOld = [&](double width) { return width == kWidthNotGiven || width == before.constantWidth; };
    const bool allOld =
        std::all_of(filed.vertices.begin(), filed.vertices.end(),
                    [&](const PolylineVertex& v) { return isOld(v.startWidth) && isOld(v.endWidth); });
    for (PolylineVertex& vertex : filed.vertices) {
        for (double* width : {&vertex.startWidth, &vertex.endWidth}) {
            if (*width == kWidthNotGiven || (widthChanged && allOld))
                *width = filed.constantWidth;
        }
    }
}

}  // namespace

Acad::ErrorStatus AcDbPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    const auto& state = readState<PolylineState>(this);
    const bool constantWidth = hasConstantWidth(state);
    writeSubclassMarker(filer, kSubclass);
    filer->writeInt32(90, static_cast<std::int32_t>(state.vertices.size()));
    filer->writeInt16(70, static_cast<std::int16_t>(state.flags));
    if (constantWidth)
        filer->writeItem(43, state.constantWidth);
    writeFields(filer, state, kFieldsBefore);
    writeVertices(filer, state, constantWidth);
    writeFields(filer, state, kFieldsBehind);
    writeExtras(filer, kSubclass, state);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dxfInFields(AcDbDxfFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    PolylineState* state = writeState<PolylineState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    PolylineState filed(*state);
    filed.vertices.clear();
    filed.lengths.clear();
    if (const Acad::ErrorStatus status = readSubclass(filer, kSubclass, filed, kReadFields);
        status != Acad::eOk) {
        return status;
    }
    if (!settleNormal(filed.normal))
        return rejectGroup(filer, L"group 210: no direction");
    if (filed.vertices.empty())
        filed.vertices = state->vertices;
    settleWidths(filed, *state);
    *state = std::move(filed);
    return Acad::eOk;
}
