// AcDbBlockReference: snap points, grips and stretch points.

#include <memory>

#include "host/api/block_reference.h"
#include "host/api/database.h"
#include "host/database/block_places.h"
#include "host/database/database_impl.h"
#include "host/database/edit_points.h"
#include "host/database/nesting.h"
#include "host/database/snap_points.h"
#include "host/database/text_states.h"

using namespace drafthost;

namespace {

using State = BlockReferenceState;

// What lies on layer 0 of a block goes with the layer of the reference, which the caller has looked at.
bool isShown(const AcDbEntity& entity) {
    const auto* const attribute = AcDbAttribute::cast(&entity);
    if (!entity.isVisible() || (attribute && (attribute->flags() & AttributeState::kInvisible) != 0))
        return false;
    const auto* const layer = peek<AcDbLayerTableRecord>(entity.layerId());
    return !layer || (!layer->isOff() && !layer->isFrozen());
}

void askEntity(const SnapQuery& query, const AcDbEntity& entity, const AcGeMatrix3d& toWorld,
               AcGePoint3dArray& points) {
    AcDbIntArray ids;
    entity.getOsnapPoints(query.mode, query.marker, query.pick, query.last, query.view, points, ids, toWorld);
}

// These change with angles and distances, which a skewing insertion does not keep.
bool isMetric(AcDb::OsnapMode mode) {
    return mode == AcDb::kOsModePerp || mode == AcDb::kOsModeTan || mode == AcDb::kOsModeNear;
}

void appendContents(const SnapQuery& query, const State& reference, const AcGeMatrix3d& toWorld,
                    AcGePoint3dArray& points);

void appendEntity(const SnapQuery& query, const AcDbEntity& entity, const AcGeMatrix3d& toWorld,
                  AcGePoint3dArray& points) {
    if (const auto* const nested = AcDbBlockReference::cast(&entity))
        return appendContents(query, readState<State>(nested), toWorld, points);
    if (!isMetric(query.mode) || toWorld.isUniScaledOrtho({.equalVector = 1e-9, .equalPoint = 1e-9}))
        return askEntity(query, entity, toWorld, points);
    if (const auto curve = snapCurveOf(entity))
        return appendSnapPoints(query, *curve, toWorld, points);
    AcDbEntityArray parts;
    entity.explode(parts);
    for (AcDbEntity* const part : parts) {
        const std::unique_ptr<AcDbEntity> owned(part);
        appendEntity(query, *part, toWorld, points);
    }
}

// What the blocks' entities offer, and the attributes; insertion points of the contents are of no use to
// those who see the block as one thing.
void appendContents(const SnapQuery& query, const State& reference, const AcGeMatrix3d& toWorld,
                    AcGePoint3dArray& points) {
    const BlockVisit visit(reference.block);
    for (const AcDbObjectId id : reference.attributes) {
        const auto* const attribute = id.isErased() ? nullptr : peek<AcDbEntity>(id);
        if (attribute && isShown(*attribute))
            askEntity(query, *attribute, toWorld, points);
    }
    if (!visit.entered() || query.mode == AcDb::kOsModeIns)
        return;
    const std::vector<AcDbEntity*> entities = shownBlockEntities(reference.block);
    forEachPlace(reference, [&](const AcGeMatrix3d& toOwner) {
        const AcGeMatrix3d matrix = toWorld * toOwner;
        if (matrix.isSingular())  // a scale of zero shows nothing
            return;
        for (const AcDbEntity* const entity : entities) {
            if (isShown(*entity))
                appendEntity(query, *entity, matrix, points);
        }
    });
}

}  // namespace

Acad::ErrorStatus AcDbBlockReference::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                                        const AcGePoint3d& pickPoint,
                                                        const AcGePoint3d& lastPoint,
                                                        const AcGeMatrix3d& viewTransform,
                                                        AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    const auto query = snapQuery(mode, marker, pickPoint, lastPoint, viewTransform);
    if (!query)
        return Acad::eInvalidInput;
    if (mode == AcDb::kOsModeIns)
        snapPoints.append(position());
    appendContents(*query, readState<State>(this), AcGeMatrix3d::kIdentity, snapPoints);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                                       AcDbIntArray&) const {
    grips.append(position());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                          const AcGeVector3d& offset) {
    return moveByAny(*this, 1, indices, offset);
}

Acad::ErrorStatus AcDbBlockReference::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(position());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                             const AcGeVector3d& offset) {
    return moveByAny(*this, 1, indices, offset);
}
