// Commands that change entities: ERASE, MOVE, COPY, ROTATE, SCALE, MIRROR, STRETCH, EXPLODE, LIST.

#include "host/database/block_places.h"
#include "host/editor/command_context.h"
#include "host/editor/command_tables.h"

namespace drafthost::editor {

namespace {

using Kind = InputRequest::Kind;
using Entities = std::vector<AcDbObjectId>;

void eraseEntities(CommandContext& context) {
    context.erase(context.selection());
}

// The vector from a base point to a second one, in world coordinates. An empty second answer takes the base
// point's coordinates as the displacement.
AcGeVector3d askDisplacement(CommandContext& context, const AcGePoint3d& base) {
    const auto second =
        context.ask(Kind::Point,
                    {.prompt = L"Specify second point or <use first point as displacement>: ", .base = base});
    return context.ucsToWorld() * (second.given ? second.point - base : base.asVector());
}

void moveEntities(CommandContext& context) {
    const Entities entities = context.selection();
    const AcGePoint3d base = context.point(L"Specify base point: ");
    context.transform(entities, AcGeMatrix3d::translation(askDisplacement(context, base)));
}

// Further points make further copies.
void copyEntities(CommandContext& context) {
    const Entities entities = context.selection();
    const AcGePoint3d base = context.point(L"Specify base point: ");
    context.copy(entities, AcGeMatrix3d::translation(askDisplacement(context, base)));
    for (;;) {
        const auto next = context.ask(
            Kind::Point,
            {.prompt = L"Specify second point or [Exit] <Exit>: ", .keywords = L"Exit", .base = base});
        if (!next.given || !next.keyword.empty())
            return;
        context.copy(entities, AcGeMatrix3d::translation(context.ucsToWorld() * (next.point - base)));
    }
}

void rotateEntities(CommandContext& context) {
    const Entities entities = context.selection();
    const AcGePoint3d base = context.point(L"Specify base point: ");
    const auto reply = context.ask(Kind::Angle, {.prompt = L"Specify rotation angle: ", .base = base});
    if (!reply.given)
        return;
    const AcGeVector3d axis = context.ucsToWorld() * AcGeVector3d::kZAxis;
    context.transform(entities, AcGeMatrix3d::rotation(reply.number, axis, context.world(base)));
}

void scaleEntities(CommandContext& context) {
    const Entities entities = context.selection();
    const AcGePoint3d base = context.point(L"Specify base point: ");
    const auto reply =
        context.ask(Kind::Distance,
                    {.prompt = L"Specify scale factor: ", .base = base, .control = RSG_NOZERO | RSG_NONEG});
    if (!reply.given)
        return;
    context.transform(entities, AcGeMatrix3d::scaling(reply.number, context.world(base)));
}

void mirrorEntities(CommandContext& context) {
    const Entities entities = context.selection();
    const AcGePoint3d first = context.point(L"Specify first point of mirror line: ");
    const AcGePoint3d second = context.point(L"Specify second point of mirror line: ", first);
    const AcGeVector3d direction = context.world(second) - context.world(first);
    if (direction.isZeroLength())
        return context.print(L"The points are the same.");
    const AcGeMatrix3d matrix = AcGeMatrix3d::mirroring(context.world(first), direction);
    const bool eraseSources = context.keyword(L"Erase source objects? [Yes/No] <N>: ", L"Yes No") == L"Yes";
    eraseSources ? context.transform(entities, matrix) : context.copy(entities, matrix);
}

// The stretch points that lie in the window or on its border.
AcDbIntArray pointsInside(const AcGePoint3dArray& points, const Region& window) {
    AcDbIntArray inside;
    for (int i = 0; i < points.length(); ++i) {
        if (touches({{{points[i].convert2d()}}, {}}, window))
            inside.append(i);
    }
    return inside;
}

// Entities that lie in the window are moved, with or without stretch points; of others the stretch points in
// it.
Acad::ErrorStatus stretch(AcDbEntity& entity, const Region& window, const AcGeVector3d& offset) {
    if (liesInside(outlineOf(entity), window))
        return entity.transformBy(AcGeMatrix3d::translation(offset));
    AcGePoint3dArray points;
    if (entity.getStretchPoints(points) != Acad::eOk)
        return Acad::eOk;
    const AcDbIntArray inside = pointsInside(points, window);
    return inside.isEmpty() ? Acad::eOk : entity.moveStretchPointsAt(inside, offset);
}

void stretchEntities(CommandContext& context) {
    context.print(L"Select objects to stretch by crossing-window or crossing-polygon...");
    const SelectResult selected = context.selectionByWindow();
    const AcGePoint3d base = context.point(L"Specify base point: ");
    const AcGeVector3d offset = askDisplacement(context, base);
    context.change(selected.set->members(), [&](AcDbEntity& entity) {
        const bool crossed = selected.crossed.contains(entity.objectId());
        return crossed ? stretch(entity, selected.lastCrossing, offset)
                       : entity.transformBy(AcGeMatrix3d::translation(offset));
    });
}

// Puts the parts, which are used up, into the block and erases the entity; all of it or nothing.
bool replaceByParts(CommandContext& context, AcDbObjectId id, const AcDbEntityArray& parts,
                    AcDbObjectId block) {
    AcDbTransactionManager& transactions = *context.database().transactionManager();
    transactions.startTransaction();
    bool complete = true;
    for (AcDbEntity* const part : parts)
        complete = context.append(std::unique_ptr<AcDbEntity>(part), block) && complete;
    if (complete) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
        complete = entity && entity->erase() == Acad::eOk;
    }
    complete ? transactions.endTransaction() : transactions.abortTransaction();
    return complete;
}

// The parts of the entity, which keep their looks, come where it was. eNotApplicable: it has none, or would
// lose some, and stays.
Acad::ErrorStatus explodeEntity(CommandContext& context, AcDbObjectId id) {
    AcDbEntityArray parts;
    AcDbObjectId owner;
    {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
        if (!entity)
            return entity.openStatus();
        const auto* const reference = AcDbBlockReference::cast(entity.object());
        if ((reference && losesParts(*reference)) || entity->explode(parts) != Acad::eOk) {
            for (AcDbEntity* const part : parts)
                delete part;
            return Acad::eNotApplicable;
        }
        owner = entity->ownerId();
        // Parts that a module's entity made anew have no looks of their own; they were drawn with the
        // entity's.
        for (AcDbEntity* const part : parts) {
            if (part->layerId().isNull())
                part->setPropertiesFrom(entity.object());
        }
    }
    return replaceByParts(context, id, parts, owner) ? Acad::eOk : Acad::eNotApplicable;
}

void explodeEntities(CommandContext& context) {
    int locked = 0, kept = 0;
    for (const AcDbObjectId id : context.selection()) {
        const Acad::ErrorStatus status = explodeEntity(context, id);
        locked += status == Acad::eOnLockedLayer ? 1 : 0;
        kept += status != Acad::eOk && status != Acad::eOnLockedLayer ? 1 : 0;
    }
    context.reportUnchanged(locked, 0);
    if (kept > 0)
        context.print(std::to_wstring(kept) + L" could not be exploded.");
}

void listEntities(CommandContext& context) {
    for (const AcDbObjectId id : context.selection()) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            entity->list();
    }
}

constexpr CommandDefinition kCommands[] = {
    {L"COPY", copyEntities},     {L"ERASE", eraseEntities},   {L"EXPLODE", explodeEntities},
    {L"LIST", listEntities},     {L"MIRROR", mirrorEntities}, {L"MOVE", moveEntities},
    {L"ROTATE", rotateEntities}, {L"SCALE", scaleEntities},   {L"STRETCH", stretchEntities},
};

}  // namespace

std::span<const CommandDefinition> changeCommands() {
    return kCommands;
}

}  // namespace drafthost::editor
