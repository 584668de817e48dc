#pragma once

// What the grips and stretch points of the entity classes have in common. Indices that are out of range are
// passed over, and one that is given twice moves its point once.

#include "host/api/entity.h"
#include "host/geometry/plane_axes.h"

namespace drafthost {

inline bool marksAny(const AcDbIntArray& indices, int count) {
    for (const int index : indices)
        if (index >= 0 && index < count)
            return true;
    return false;
}

inline bool marksAll(const AcDbIntArray& indices, int count) {
    for (int i = 0; i < count; ++i)
        if (!indices.contains(i))
            return false;
    return count > 0;
}

// Moves the entity with all that goes with it: extended data, attributes.
inline Acad::ErrorStatus moveWhole(AcDbEntity& entity, const AcGeVector3d& offset) {
    return entity.transformBy(AcGeMatrix3d::translation(offset));
}

// For entities that move as one by any of their points.
inline Acad::ErrorStatus moveByAny(AcDbEntity& entity, int count, const AcDbIntArray& indices,
                                   const AcGeVector3d& offset) {
    return marksAny(indices, count) ? moveWhole(entity, offset) : Acad::eOk;
}

// The part of an offset that lies in the plane, in its axes.
inline AcGeVector2d inPlane(const AcGeVector3d& offset, const PlaneAxes& axes) {
    return {offset.dotProduct(axes.x), offset.dotProduct(axes.y)};
}

}  // namespace drafthost
