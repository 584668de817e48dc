#pragma once

// Checks of filed values that are of the right kind and yet no geometry.

#include <string>

#include "host/database/group_filer.h"
#include "host/geometry/tolerance.h"

namespace drafthost {

// eBadDxfSequence, with the problem noted in a filer that keeps problems.
inline Acad::ErrorStatus rejectGroup(AcDbDxfFiler* filer, const wchar_t* problem) {
    if (auto* groups = dynamic_cast<GroupFiler*>(filer))
        groups->setProblem(problem);
    return Acad::eBadDxfSequence;
}

// Makes the direction a unit vector; one that is within rounding of it stays as it is, so that files
// round-trip. False: no direction.
inline bool settleNormal(AcGeVector3d& normal) {
    const double length = normal.length();
    if (!(length > 1e-12) || !std::isfinite(length))
        return false;
    if (std::abs(length - 1) > 1e-10)
        normal = normal / length;
    return true;
}

}  // namespace drafthost
