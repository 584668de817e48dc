// AcDbText and AcDbMText: snap points, grips and stretch points.

#include "host/api/text_entities.h"
#include "host/database/edit_points.h"
#include "host/database/snap_points.h"
#include "host/database/text_states.h"

using namespace drafthost;

namespace {

constexpr int kPosition = 0, kAlignment = 1;

bool isJustified(const AcDbText& text) {
    return text.horizontalMode() != 0 || text.verticalMode() != 0;
}
// Aligned and fitted text runs from one point to another, and either may be moved.
bool runsBetweenPoints(const AcDbText& text) {
    return text.horizontalMode() == TextState::kAligned || text.horizontalMode() == TextState::kFit;
}

Acad::ErrorStatus moveText(AcDbText& text, int count, const AcDbIntArray& indices,
                           const AcGeVector3d& offset) {
    if (!runsBetweenPoints(text) || marksAll(indices, 2))
        return moveByAny(text, count, indices, offset);
    if (indices.contains(kPosition))
        return text.setPosition(text.position() + offset);
    return indices.contains(kAlignment) ? text.setAlignmentPoint(text.alignmentPoint() + offset) : Acad::eOk;
}

// The point that holds the text where it is.
AcGePoint3d insertionPoint(const AcDbText& text) {
    return isJustified(text) && !runsBetweenPoints(text) ? text.alignmentPoint() : text.position();
}

}  // namespace

Acad::ErrorStatus AcDbText::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                              const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                              const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                              AcDbIntArray&) const {
    return singleSnapPoint(snapQuery(mode, marker, pickPoint, lastPoint, viewTransform), AcDb::kOsModeIns,
                           insertionPoint(*this), snapPoints);
}

// The start of the base line, and of justified text the alignment point.
Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    grips.append(position());
    if (isJustified(*this))
        grips.append(alignmentPoint());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveText(*this, isJustified(*this) ? 2 : 1, indices, offset);
}

Acad::ErrorStatus AcDbText::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(insertionPoint(*this));
    if (runsBetweenPoints(*this))
        points.append(alignmentPoint());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveText(*this, 1, indices, offset);
}

Acad::ErrorStatus AcDbMText::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                               const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                               const AcGeMatrix3d& viewTransform,
                                               AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    return singleSnapPoint(snapQuery(mode, marker, pickPoint, lastPoint, viewTransform), AcDb::kOsModeIns,
                           location(), snapPoints);
}

Acad::ErrorStatus AcDbMText::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    grips.append(location());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveByAny(*this, 1, indices, offset);
}

Acad::ErrorStatus AcDbMText::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(location());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveByAny(*this, 1, indices, offset);
}
