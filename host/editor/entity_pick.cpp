#include "host/editor/entity_pick.h"

#include <algorithm>
#include <optional>

#include "host/api/block_reference.h"
#include "host/database/database_impl.h"
#include "host/documents/host.h"
#include "host/editor/coordinates.h"
#include "host/editor/entity_outline.h"

namespace drafthost::editor {

namespace {

constexpr double kPickBoxFraction = 1.0 / 200;
constexpr int kErrnoMissedPick = 7, kErrnoEmptyResponse = 52;
constexpr const wchar_t* kSelectObject = L"Select object: ";

bool isVisible(const AcDbEntity& entity) {
    if (!entity.isVisible())
        return false;
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(entity.layerId(), AcDb::kForRead);
    return !layer || (!layer->isOff() && !layer->isFrozen());
}

struct Nearest {
    AcDbObjectId entity;
    double distance;
};

std::optional<Nearest> nearestOf(const std::vector<AcDbObjectId>& entities, const AcGePoint2d& point,
                                 double tolerance) {
    std::optional<Nearest> nearest;
    for (const AcDbObjectId id : entities) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (!entity)
            continue;
        const auto distance = distanceTo(outlineOf(*entity), point);
        if (!distance || *distance > tolerance || (nearest && *distance > nearest->distance))
            continue;
        nearest = {id, *distance};
    }
    return nearest;
}

std::vector<AcDbObjectId> entitiesOf(AcDbObjectId block) {
    std::vector<AcDbObjectId> entities;
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    if (!record)
        return entities;
    for (const AcDbObjectId id : record->entityIds())
        entities.push_back(id);
    return entities;
}

}  // namespace

double pickTolerance(const AcDbDatabase& database) {
    AcDbExtents extents;
    for (const AcDbObjectId id : entitiesOf(database.modelSpaceId())) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            entity->getGeomExtents(extents);  // those without extents add nothing
    }
    if (!extents.isValid())
        return kPickBoxFraction;
    const AcGeVector3d size = extents.maxPoint() - extents.minPoint();
    const double longer = std::max(size.x, size.y);
    return longer > 0 ? longer * kPickBoxFraction : kPickBoxFraction;
}

std::vector<AcDbObjectId> visibleEntities(const AcDbDatabase& database) {
    std::vector<AcDbObjectId> entities = entitiesOf(database.modelSpaceId());
    std::erase_if(entities, [](AcDbObjectId id) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        return !entity || !isVisible(*entity);
    });
    return entities;
}

AcDbObjectId entityAt(const Document& document, const AcGePoint3d& point) {
    const AcDbDatabase& database = *document.database();
    const AcGePoint2d world = (ucsToWorld(database) * point).convert2d();
    const auto nearest = nearestOf(visibleEntities(database), world, pickTolerance(database));
    return nearest ? nearest->entity : AcDbObjectId();
}

EntityPick askEntity(Document& document, const std::wstring& prompt) {
    InputRequest request;
    request.kind = InputRequest::Kind::Entity;
    request.prompt = prompt.empty() ? L"\n" + std::wstring(kSelectObject) : prompt;
    const InputResult answer = document.prompts().ask(request);
    EntityPick pick{answer.status, {}, answer.answer.point};
    if (answer.status == RTNONE) {
        document.variables().set(L"ERRNO", kErrnoEmptyResponse);
        pick.status = RTERROR;
    }
    if (answer.status != RTNORM)
        return pick;
    pick.entity = answer.answer.kind == Answer::Kind::Entity ? answer.answer.entity
                                                             : entityAt(document, answer.answer.point);
    if (answer.answer.kind == Answer::Kind::Pick)
        document.prompts().setLastPoint(answer.answer.point);
    if (pick.entity.isNull() || pick.entity.isErased()) {
        document.variables().set(L"ERRNO", kErrnoMissedPick);
        pick.status = RTERROR;
    }
    return pick;
}

NestedPick nestedAt(const Document& document, AcDbObjectId entity, const AcGePoint3d& point) {
    NestedPick pick{entity, {}, {}};
    const AcDbDatabase& database = *document.database();
    const AcGePoint3d world = ucsToWorld(database) * point;
    const double tolerance = pickTolerance(database);
    for (;;) {
        const AcDbObjectPointer<AcDbBlockReference> reference(pick.part, AcDb::kForRead);
        if (!reference)
            return pick;
        const AcGeMatrix3d toWorld = pick.toWorld * reference->blockTransform();
        if (toWorld.isSingular())
            return pick;
        // The pick box measured in the block's own units.
        const double scale = toWorld.scale();
        const AcGePoint2d inside = (toWorld.inverse() * world).convert2d();
        const auto nearest = nearestOf(entitiesOf(reference->blockTableRecord()), inside,
                                       scale > 0 ? tolerance / scale : tolerance);
        if (!nearest)
            return pick;
        pick.parents.insert(pick.parents.begin(), pick.part);
        pick.part = nearest->entity;
        pick.toWorld = toWorld;
    }
}

}  // namespace drafthost::editor
