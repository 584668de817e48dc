// AcDbEntity: filing, extents, transformation, explosion.

#include "host/api/entity.h"

#include <algorithm>

#include "host/api/editor.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/entity_parts.h"
#include "host/database/handles.h"
#include "host/database/names.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbEntity, AcDbObject, nullptr, nullptr)

namespace {

struct PlainEntityState : ClonedState<PlainEntityState, EntityState> {};

// Layers that entities name and the drawing does not have are made, as drawing hosts do.
bool readLayer(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase* database) {
    const auto* const name = std::get_if<std::wstring>(&group.value);
    if (!name || !database)
        return false;
    static_cast<EntityState&>(state).layer = layerForName(*database, *name);
    return !static_cast<EntityState&>(state).layer.isNull();
}

void writeLayer(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const AcDbObjectId layer = static_cast<const EntityState&>(state).layer;
    detail::writeName(filer, field.code, layer);
}

// By-layer linetype is what a missing group means.
void writeLinetype(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const AcDbObjectId linetype = static_cast<const EntityState&>(state).linetype;
    const bool byLayer = linetype.isNull() || equalNames(recordName(linetype), L"ByLayer");
    if (!byLayer)
        detail::writeName(filer, field.code, linetype);
}

bool readLinetype(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase* database) {
    return detail::readName(group, TableKind::Linetype, database, static_cast<EntityState&>(state).linetype);
}

bool ignore(ObjectState&, const DxfField&, const DxfGroup&, AcDbDatabase*) {
    return true;
}
void writeNothing(const ObjectState&, const DxfField&, GroupFiler&) {}

bool readColor(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    std::int32_t color = 0;
    if (!detail::readValue(group, color) || color < 0 || color > 257)
        return false;
    static_cast<EntityState&>(state).color = color;
    return true;
}

void writeColor(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const std::int32_t color = static_cast<const EntityState&>(state).color;
    if (color != 256)
        filer.writeInt32(field.code, color);
}

bool readScale(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    double scale = 0;
    if (!detail::readValue(group, scale) || scale <= 0)
        return false;
    static_cast<EntityState&>(state).linetypeScale = scale;
    return true;
}

void writeScale(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const double scale = static_cast<const EntityState&>(state).linetypeScale;
    if (scale != 1)
        filer.writeItem(field.code, scale);
}

// Groups 67 and 410 say where the entity lives; the owner does too, and decides.
constexpr DxfField kFields[] = {
    {67, writeNothing, ignore},
    {410, writeNothing, ignore},
    {8, writeLayer, readLayer, TableKind::Layer},
    {6, writeLinetype, readLinetype, TableKind::Linetype},
    {62, writeColor, readColor},
    {48, writeScale, readScale},
    dxfField<&EntityState::invisible, 0>(60),
    dxfField<&EntityState::lineWeight, static_cast<std::int32_t>(AcDb::kLnWtByLayer)>(370),
    dxfField<&EntityState::trueColor, -1>(420),
};

// LISP programs find the space of every entity; files only say it of those in paper space.
void writeSpace(const AcDbEntity& entity, AcDbDxfFiler& filer) {
    const bool forLisp = filer.filerType() == AcDb::kBagFiler;
    const auto* const block = peek<AcDbBlockTableRecord>(entity.ownerId());
    const bool inPaper = block && isPaperSpace(*block);
    if (forLisp || inPaper)
        filer.writeInt16(67, inPaper ? 1 : 0);
    if (!block || !(forLisp || inPaper))
        return;
    const std::wstring layout = layoutName(*block);
    if (!layout.empty())
        filer.writeItem(410, layout.c_str());
}

// Points, displacements and directions among extended data follow the entity; distances and factors are
// scaled.
void transformExtendedData(std::vector<DxfGroup>& data, const AcGeMatrix3d& matrix) {
    const double scale = matrix.scale();
    for (DxfGroup& group : data) {
        if (auto* const real = std::get_if<double>(&group.value)) {
            if (group.code == 1041 || group.code == 1042)
                *real *= scale;
        }
        auto* const point = std::get_if<AcGePoint3d>(&group.value);
        if (!point)
            continue;
        if (group.code == 1011)
            point->transformBy(matrix);
        if (group.code != 1012 && group.code != 1013)
            continue;
        AcGeVector3d vector = matrix * point->asVector();
        if (group.code == 1013)
            vector.normalize();
        *point = {vector.x, vector.y, vector.z};
    }
}

bool hasMovingData(const std::vector<DxfGroup>& data) {
    for (const DxfGroup& group : data) {
        if ((group.code >= 1011 && group.code <= 1013) || group.code == 1041 || group.code == 1042)
            return true;
    }
    return false;
}

}  // namespace

void AcDbExtents::addPoint(const AcGePoint3d& point) {
    if (!valid_) {
        *this = AcDbExtents(point, point);
        return;
    }
    min_ = {std::min(min_.x, point.x), std::min(min_.y, point.y), std::min(min_.z, point.z)};
    max_ = {std::max(max_.x, point.x), std::max(max_.y, point.y), std::max(max_.z, point.z)};
}

void AcDbExtents::addExt(const AcDbExtents& other) {
    if (!other.valid_)
        return;
    addPoint(other.min_);
    addPoint(other.max_);
}

AcDbEntity::AcDbEntity() : AcDbEntity(newImp<PlainEntityState>()) {}
AcDbEntity::AcDbEntity(ObjectImp* imp) : AcDbObject(imp) {}

Acad::ErrorStatus AcDbEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    writeSubclassMarker(filer, L"AcDbEntity");
    writeSpace(*this, *filer);
    writeFields(filer, readState<EntityState>(this), kFields);
    writeExtras(filer, L"AcDbEntity", readState<EntityState>(this));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<EntityState>(this);
    return state ? readSubclass(filer, L"AcDbEntity", *state, kFields) : Acad::eNotOpenForWrite;
}

Acad::ErrorStatus AcDbEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    return AcDbObject::dwgOutFields(filer);
}
Acad::ErrorStatus AcDbEntity::dwgInFields(AcDbDwgFiler* filer) {
    return AcDbObject::dwgInFields(filer);
}

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents& extents) const {
    AcDbExtents own;
    const Acad::ErrorStatus status = subGetGeomExtents(own);
    extents.addExt(own);  // an entity of several parts that fails at the last one has measured the others
    if (status != Acad::eOk)
        return status;
    return own.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d& matrix) {
    if (!prepareWrite(this))
        return Acad::eNotOpenForWrite;
    if (matrix.isSingular())
        return Acad::eInvalidInput;
    if (const auto status = subTransformBy(matrix); status != Acad::eOk)
        return status;
    auto& data = ObjectImp::of(this).state->xdata;
    if (hasMovingData(data))
        transformExtendedData(data, matrix);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::explode(AcDbEntityArray& parts) const {
    return subExplode(parts);
}
void AcDbEntity::list() const {
    subList();
}
Acad::ErrorStatus AcDbEntity::getSolidMeasures(AcDbSolidMeasures& measures) const {
    return subGetSolidMeasures(measures);
}
Acad::ErrorStatus AcDbEntity::subGetSolidMeasures(AcDbSolidMeasures&) const {
    return Acad::eNotApplicable;
}
bool AcDbEntity::isPlanar() const {
    return false;
}
Acad::ErrorStatus AcDbEntity::getPlane(AcGePlane&, AcDb::Planarity&) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subGetGeomExtents(AcDbExtents&) const {
    return Acad::eInvalidExtents;
}
Acad::ErrorStatus AcDbEntity::subTransformBy(const AcGeMatrix3d&) {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbEntity::subExplode(AcDbEntityArray&) const {
    return Acad::eNotApplicable;
}

void AcDbEntity::subList() const {
    acutPrintf(L"\n%ls  Layer: \"%ls\"  Handle = %ls\n", dxfNameOf(*this), recordName(layerId()).c_str(),
               handleText(handle()).c_str());
    const auto* const block = peek<AcDbBlockTableRecord>(ownerId());
    if (!block)
        return;
    const bool isLayout = !layoutName(*block).empty();
    const std::wstring place = !isLayout              ? L"Block: \"" + recordName(ownerId()) + L"\""
                               : isPaperSpace(*block) ? L"Space: Paper space"
                                                      : L"Space: Model space";
    acutPrintf(L"              %ls\n", place.c_str());
}
