#pragma once

// What circles and arcs have in common. Their states derive from CircleState; the center is kept in entity
// coordinates.

#include "host/database/curve_states.h"
#include "host/database/dxf_checks.h"
#include "host/database/dxf_fields.h"
#include "host/geometry/plane_image.h"

namespace drafthost {

inline constexpr DxfField kCircleFields[] = {
    dxfField<&CircleState::thickness, 0.0>(39),
    dxfField<&CircleState::center>(10),
    dxfField<&CircleState::radius>(40),
    dxfField<&CircleState::normal>(210),
};

inline AcGePoint3d worldCenter(const CircleState& state) {
    return planeAxes(state.normal).toWorld(state.center);
}

// Radii given in the wrong sense come from programs that compute them: the circle through the same points is
// meant. A radius that is no number gives a point.
inline double constructedRadius(double radius) {
    return std::isfinite(radius) ? std::abs(radius) : 0;
}

inline void place(CircleState& state, const AcGePoint3d& center, const AcGeVector3d& normal, double radius) {
    state.normal = normal;
    if (!settleNormal(state.normal))
        state.normal = AcGeVector3d(0, 0, 1);
    state.center = planeAxes(state.normal).toPlane(center);
    state.radius = constructedRadius(radius);
}

inline Acad::ErrorStatus changeCenter(AcDbObject* object, const AcGePoint3d& center) {
    if (!isFinite(center))
        return Acad::eInvalidInput;
    CircleState* state = writeState<CircleState>(object);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->center = planeAxes(state->normal).toPlane(center);
    return Acad::eOk;
}

inline Acad::ErrorStatus changeRadius(AcDbObject* object, double radius) {
    if (!(radius > 0) || !std::isfinite(radius))
        return Acad::eInvalidInput;
    CircleState* state = writeState<CircleState>(object);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->radius = radius;
    return Acad::eOk;
}

// The center stays where it is in the world; angles count in the new plane.
inline Acad::ErrorStatus changeNormal(AcDbObject* object, AcGeVector3d normal) {
    if (!settleNormal(normal))
        return Acad::eInvalidInput;
    CircleState* state = writeState<CircleState>(object);
    if (!state)
        return Acad::eNotOpenForWrite;
    const AcGePoint3d center = worldCenter(*state);
    state->normal = normal;
    state->center = planeAxes(normal).toPlane(center);
    return Acad::eOk;
}

inline void applyImage(CircleState& state, const AcGeMatrix3d& matrix, const PlaneImage& image) {
    const AcGePoint3d center = matrix * worldCenter(state);
    state.normal = image.normal;
    state.center = planeAxes(image.normal).toPlane(center);
    state.radius *= image.scale;
    state.thickness *= image.thicknessScale;
}

// eOk when the filed values are a circle.
inline Acad::ErrorStatus checkCircle(CircleState& state, AcDbDxfFiler* filer) {
    if (!isFinite(state.center))
        return rejectGroup(filer, L"group 10: not a finite point");
    if (!(state.radius > 0) || !std::isfinite(state.radius)) {
        return rejectGroup(filer, L"group 40: radius must be positive");
    }
    if (!std::isfinite(state.thickness))
        return rejectGroup(filer, L"group 39: not a finite number");
    if (!settleNormal(state.normal))
        return rejectGroup(filer, L"group 210: no direction");
    return Acad::eOk;
}

}  // namespace drafthost
