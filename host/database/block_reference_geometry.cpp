// AcDbBlockReference: transforms, drawing, extents, explosion.

#include <algorithm>
#include <cmath>

#include "host/api/block_reference.h"
#include "host/api/database.h"
#include "host/api/editor.h"
#include "host/database/block_places.h"
#include "host/database/block_reference_state.h"
#include "host/database/database_impl.h"
#include "host/database/nesting.h"
#include "host/database/parts_visit.h"
#include "host/database/table_states.h"

using namespace drafthost;

namespace {

using State = BlockReferenceState;

// More insertions than this are not drawn one by one; such counts come from damaged files.
constexpr std::int64_t kMaxCells = 250'000;

const State& stateOf(const AcDbBlockReference* reference) {
    return readState<State>(reference);
}

AcGeMatrix3d scaling(double x, double y, double z) {
    AcGeMatrix3d matrix;
    matrix.entry[0][0] = x;
    matrix.entry[1][1] = y;
    matrix.entry[2][2] = z;
    return matrix;
}

AcGePoint3d originOf(AcDbObjectId block) {
    const auto* const record = peek<AcDbBlockTableRecord>(block);
    return record ? record->origin() : AcGePoint3d();
}

// From block coordinates to world coordinates for one place of the array.
AcGeMatrix3d cellTransform(const State& state, int column, int row) {
    const AcGeVector3d offset(column * state.columnSpacing, row * state.rowSpacing, 0);
    return AcGeMatrix3d::planeToWorld(state.normal) * AcGeMatrix3d::translation(state.position.asVector()) *
           AcGeMatrix3d::rotation(state.rotation, AcGeVector3d::kZAxis) * AcGeMatrix3d::translation(offset) *
           scaling(state.scaleX, state.scaleY, state.scaleZ) *
           AcGeMatrix3d::translation(-originOf(state.block).asVector());
}

template <class Visit>
void forEachCell(const State& state, Visit visit) {
    if (std::int64_t{state.columns} * state.rows > kMaxCells)
        return visit(cellTransform(state, 0, 0));
    for (int row = 0; row < state.rows; ++row) {
        for (int column = 0; column < state.columns; ++column)
            visit(cellTransform(state, column, row));
    }
}

// Attribute definitions stand for attributes, which a reference has of its own; only constant ones show.
bool isShown(const AcDbEntity& entity) {
    constexpr int kConstant = 2;
    const auto* const definition = AcDbAttributeDefinition::cast(&entity);
    return !definition || (definition->flags() & kConstant) != 0;
}

std::vector<AcDbEntity*> shownEntities(AcDbObjectId block) {
    std::vector<AcDbEntity*> entities;
    const auto* const record = peek<AcDbBlockTableRecord>(block);
    if (!record || record->isErased())
        return entities;
    for (const AcDbObjectId id : readState<BlockState>(record).entities) {
        AcDbEntity* const entity = id.isErased() ? nullptr : peek<AcDbEntity>(id);
        if (entity && isShown(*entity))
            entities.push_back(entity);
    }
    return entities;
}

bool mapsAxesToAxes(const AcGeMatrix3d& matrix) {
    for (const auto& row : matrix.entry) {
        int parts = 0;
        for (int column = 0; column < 3; ++column)
            parts += std::abs(row[column]) > 1e-12 * matrix.scale() ? 1 : 0;
        if (parts > 1)
            return false;
    }
    return true;
}

void addCorners(AcDbExtents& extents, const AcDbExtents& box, const AcGeMatrix3d& matrix) {
    const AcGePoint3d& low = box.minPoint();
    const AcGePoint3d& high = box.maxPoint();
    for (int corner = 0; corner < 8; ++corner) {
        extents.addPoint(matrix * AcGePoint3d((corner & 1) ? high.x : low.x, (corner & 2) ? high.y : low.y,
                                              (corner & 4) ? high.z : low.z));
    }
}

// Transformed copies for the caller. What cannot be skewed as a whole, such as a block reference or a
// polyline, gives its parts instead. False when some of it cannot be skewed at all and is missing.
bool appendTransformed(AcDbEntityArray& copies, const AcDbEntity& entity, const AcGeMatrix3d& matrix) {
    std::unique_ptr<AcDbEntity> copy(AcDbEntity::cast(entity.clone()));
    if (copy && copy->transformBy(matrix) == Acad::eOk) {
        copies.append(copy.release());
        return true;
    }
    const PartsVisit visit(entity);
    AcDbEntityArray parts;
    if (!visit.entered())
        return false;
    bool complete = entity.explode(parts) == Acad::eOk;
    for (AcDbEntity* const part : parts) {
        const std::unique_ptr<AcDbEntity> owned(part);
        complete = appendTransformed(copies, *part, matrix) && complete;
    }
    return complete;
}

// Copies of what shows of a part in its block. An entity of a module may keep the size of its symbols when it
// is transformed itself; in a block it is drawn turned and scaled like everything else, and so are its parts.
bool appendShown(AcDbEntityArray& copies, const AcDbEntity& entity, const AcGeMatrix3d& matrix) {
    if (!entity.isA()->appName())
        return appendTransformed(copies, entity, matrix);
    const PartsVisit visit(entity);
    AcDbEntityArray parts;
    bool complete = visit.entered() && entity.explode(parts) == Acad::eOk;
    for (AcDbEntity* const part : parts) {
        const std::unique_ptr<AcDbEntity> owned(part);
        complete = complete && appendShown(copies, *part, matrix);
    }
    return complete;
}

// The exact box of a turned part is that of a turned copy; a part that cannot be turned counts with its own
// box.
void addTransformed(AcDbExtents& extents, const AcDbEntity& entity, const AcGeMatrix3d& matrix,
                    bool boxIsExact) {
    AcDbEntityArray copies;
    bool measured = !boxIsExact && appendShown(copies, entity, matrix);
    AcDbExtents box;
    for (AcDbEntity* const copy : copies) {
        const std::unique_ptr<AcDbEntity> owned(copy);
        measured = measured && copy->getGeomExtents(box) == Acad::eOk;
    }
    if (measured && box.isValid()) {
        extents.addExt(box);
        return;
    }
    AcDbExtents own;
    entity.getGeomExtents(own);  // what it could measure counts, also when it failed at some part
    if (own.isValid())
        addCorners(extents, own, matrix);
}

// What is "by block" and what lies on layer 0 looks like the reference; exploded it keeps that look.
// The reference may be one that another entity draws as a part of itself, in no drawing and without a layer.
void inheritProperties(AcDbEntity& part, const AcDbBlockReference& reference) {
    auto& state = static_cast<EntityState&>(*ObjectImp::of(&part).state);
    const State& from = stateOf(&reference);
    const AcDbDatabase* const database = from.block.database();
    if (state.color == 0) {
        state.color = from.color;
        state.trueColor = from.trueColor;
    }
    if (state.lineWeight == AcDb::kLnWtByBlock)
        state.lineWeight = from.lineWeight;
    if (!database)
        return;
    if (state.linetype == database->byBlockLinetype())
        state.linetype = from.linetype;
    if (state.layer == database->layerZero() && !from.layer.isNull())
        state.layer = from.layer;
}

// Calls append with the block's entities that explosion gives and their transformation, for every place.
template <class Append>
Acad::ErrorStatus takeApart(State state, Append append) {
    const std::vector<AcDbEntity*> entities = shownEntities(state.block);
    // Parts without any extent would be degenerate, and none of them could be told apart.
    if (!entities.empty() && (state.scaleX == 0 || state.scaleY == 0))
        return Acad::eDegenerateGeometry;
    // Writers of flat drawings say zero along Z, where nothing has any height.
    if (state.scaleZ == 0)
        state.scaleZ = std::abs(state.scaleX);
    forEachCell(state, [&](const AcGeMatrix3d& matrix) {
        for (const AcDbEntity* const entity : entities) {
            if (!AcDbAttributeDefinition::cast(entity))
                append(*entity, matrix);
        }
    });
    return Acad::eOk;
}

// Opens an object for a change by its owner, whatever its open state.
class OwnersWrite {
public:
    explicit OwnersWrite(AcDbStub& stub) : stub_(stub), wasWriter_(stub.writer) { stub_.writer = true; }
    ~OwnersWrite() { stub_.writer = wasWriter_; }
    OwnersWrite(const OwnersWrite&) = delete;
    OwnersWrite& operator=(const OwnersWrite&) = delete;

private:
    AcDbStub& stub_;
    bool wasWriter_;
};

// A block is not lengthened, whatever it is made of.
AcDb::Intersect withoutExtendingThis(AcDb::Intersect type) {
    if (type == AcDb::kExtendThis)
        return AcDb::kOnBothOperands;
    return type == AcDb::kExtendBoth ? AcDb::kExtendArg : type;
}

bool areOrthogonal(const AcGeVector3d& a, const AcGeVector3d& b) {
    return std::abs(a.dotProduct(b)) < 1e-9;
}

}  // namespace

namespace drafthost {

void forEachPlace(const BlockReferenceState& reference,
                  const std::function<void(const AcGeMatrix3d&)>& visit) {
    forEachCell(reference, visit);
}

std::vector<AcDbEntity*> shownBlockEntities(AcDbObjectId block) {
    return shownEntities(block);
}

Acad::ErrorStatus appendShownParts(const AcDbBlockReference& reference, AcDbEntityArray& parts) {
    return takeApart(stateOf(&reference), [&](const AcDbEntity& entity, const AcGeMatrix3d& matrix) {
        appendShown(parts, entity, matrix);
    });
}

bool losesParts(const AcDbBlockReference& reference) {
    const State& state = stateOf(&reference);
    const AcGeMatrix3d matrix = cellTransform(state, 0, 0);
    bool complete = true;
    for (const AcDbEntity* const entity : shownEntities(state.block)) {
        AcDbEntityArray copies;
        complete =
            complete && (AcDbAttributeDefinition::cast(entity) || appendTransformed(copies, *entity, matrix));
        for (AcDbEntity* const copy : copies)
            delete copy;
    }
    return !complete;
}

}  // namespace drafthost

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
    return cellTransform(stateOf(this), 0, 0);
}

bool AcDbBlockReference::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const State& state = stateOf(this);
    const BlockVisit visit(state.block);
    if (!visit.entered())
        return true;
    // At a scale of zero the contents would be left as dots.
    const bool vanishes = state.scaleX == 0 && state.scaleY == 0;
    const std::vector<AcDbEntity*> entities =
        vanishes ? std::vector<AcDbEntity*>() : shownEntities(state.block);
    AcGiWorldGeometry& geometry = worldDraw->geometry();
    forEachCell(state, [&](const AcGeMatrix3d& matrix) {
        if (worldDraw->regenAbort())
            return;
        geometry.pushModelTransform(matrix);
        for (AcDbEntity* const entity : entities)
            geometry.draw(entity);
        geometry.popModelTransform();
    });
    for (const AcDbObjectId id : state.attributes) {
        if (!id.isErased())
            geometry.draw(id.stub()->object);
    }
    return true;
}

Acad::ErrorStatus AcDbBlockReference::subGetGeomExtents(AcDbExtents& extents) const {
    const State& state = stateOf(this);
    const BlockVisit visit(state.block);
    if (!visit.entered())
        return Acad::eInvalidExtents;
    const std::vector<AcDbEntity*> entities = shownEntities(state.block);
    const AcGeMatrix3d first = blockTransform();
    const bool boxIsExact = mapsAxesToAxes(first);
    AcDbExtents own;
    for (const AcDbEntity* const entity : entities)
        addTransformed(own, *entity, first, boxIsExact);
    // The other places of an array are shifted copies of the first.
    if (own.isValid()) {
        const AcGeVector3d right =
            cellTransform(state, state.columns - 1, 0).translation() - first.translation();
        const AcGeVector3d up = cellTransform(state, 0, state.rows - 1).translation() - first.translation();
        for (const AcGeVector3d& shift : {AcGeVector3d(), right, up, right + up}) {
            extents.addExt({own.minPoint() + shift, own.maxPoint() + shift});
        }
    }
    for (const AcDbObjectId id : state.attributes) {
        if (!id.isErased())
            peek<AcDbEntity>(id)->getGeomExtents(extents);
    }
    return extents.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}

// The transformed axes of the reference must stay at right angles, or no scale factors and rotation describe
// it.
Acad::ErrorStatus AcDbBlockReference::subTransformBy(const AcGeMatrix3d& matrix) {
    State* const state = writeState<State>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const AcGeMatrix3d axes = matrix * AcGeMatrix3d::planeToWorld(state->normal) *
                              AcGeMatrix3d::rotation(state->rotation, AcGeVector3d::kZAxis);
    AcGeVector3d x = axes * AcGeVector3d::kXAxis;
    const AcGeVector3d y = axes * AcGeVector3d::kYAxis;
    const AcGeVector3d z = axes * AcGeVector3d::kZAxis;
    const double lengthX = x.length(), lengthY = y.length(), lengthZ = z.length();
    if (!(lengthX > 0 && lengthY > 0 && lengthZ > 0))
        return Acad::eInvalidInput;
    if (!areOrthogonal(x / lengthX, y / lengthY) || !areOrthogonal(y / lengthY, z / lengthZ) ||
        !areOrthogonal(z / lengthZ, x / lengthX)) {
        return Acad::eNonUniformScale;
    }
    const AcGePoint3d place = matrix * position();
    double factorX = lengthX;
    if (x.crossProduct(y).dotProduct(z) < 0) {  // a reflection turns the first axis round
        x = -x;
        factorX = -factorX;
    }
    AcGeVector3d normal = z / lengthZ;
    if (normal.isEqualTo(AcGeVector3d::kZAxis))
        normal = AcGeVector3d::kZAxis;
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal);
    state->normal = normal;
    state->position = toPlane * place;
    state->rotation = (toPlane * x).convert2d().angle();
    state->scaleX *= factorX;
    state->scaleY *= lengthY;
    state->scaleZ *= lengthZ;
    state->columnSpacing *= factorX;
    state->rowSpacing *= lengthY;
    for (const AcDbObjectId id : state->attributes) {
        AcDbEntity* const attribute = peek<AcDbEntity>(id);
        if (!attribute)
            continue;
        const OwnersWrite write(*id.stub());
        attribute->transformBy(matrix);
    }
    return Acad::eOk;
}

// Attributes have no place outside their reference and are dropped; round parts that cannot take an uneven
// scale too.
Acad::ErrorStatus AcDbBlockReference::subExplode(AcDbEntityArray& parts) const {
    return takeApart(stateOf(this), [&](const AcDbEntity& entity, const AcGeMatrix3d& matrix) {
        const int before = parts.length();
        appendTransformed(parts, entity, matrix);
        for (int i = before; i < parts.length(); ++i)
            inheritProperties(*parts[i], *this);
    });
}

Acad::ErrorStatus AcDbBlockReference::subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                                       AcGePoint3dArray& points, std::int64_t thisMarker,
                                                       std::int64_t otherMarker) const {
    const AcDb::Intersect partType = withoutExtendingThis(type);
    AcDbEntityArray parts;
    appendShownParts(*this, parts);
    const BlockVisit visit(stateOf(this).block);
    for (AcDbEntity* const part : parts) {
        const std::unique_ptr<AcDbEntity> owned(part);
        AcGePoint3dArray found;
        if (!visit.entered() ||
            owned->intersectWith(other, partType, found, thisMarker, otherMarker) != Acad::eOk)
            continue;
        for (const AcGePoint3d& point : found) {
            const bool known =
                std::ranges::any_of(points, [&](const AcGePoint3d& p) { return p.isEqualTo(point); });
            if (!known)
                points.append(point);
        }
    }
    return Acad::eOk;
}

void AcDbBlockReference::subList() const {
    AcDbEntity::subList();
    const AcGePoint3d place = position();
    const AcGeVector3d scale = scaleFactors();
    acutPrintf(L"  \"%ls\"\n  at point, X=%g  Y=%g  Z=%g\n  X scale factor %g\n  Y scale factor %g\n"
               L"  rotation angle %g\n  Z scale factor %g\n",
               recordName(blockTableRecord()).c_str(), place.x, place.y, place.z, scale.x, scale.y,
               rotation() * 180 / 3.14159265358979323846, scale.z);
    for (const AcDbObjectId id : attributeIds()) {
        if (const auto* const attribute = id.isErased() ? nullptr : peek<AcDbAttribute>(id))
            acutPrintf(L"  attribute %ls = \"%ls\"\n", attribute->tag(), attribute->textString());
    }
}
