// Commands that change entities: ERASE, MOVE, COPY, ROTATE, SCALE, MIRROR, EXPLODE, LIST.

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

void explodeEntities(CommandContext& context) {
    Entities exploded;
    for (const AcDbObjectId id : context.selection()) {
        AcDbEntityArray parts;
        if (const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
            !entity || entity->explode(parts) != Acad::eOk) {
            context.print(L"1 could not be exploded.");
            continue;
        }
        for (AcDbEntity* part : parts)
            context.add(std::unique_ptr<AcDbEntity>(part));
        exploded.push_back(id);
    }
    context.erase(exploded);
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
    {L"ROTATE", rotateEntities}, {L"SCALE", scaleEntities},
};

}  // namespace

std::span<const CommandDefinition> changeCommands() {
    return kCommands;
}

}  // namespace drafthost::editor
