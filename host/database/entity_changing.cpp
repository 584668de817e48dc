// entmod, entdel, entupd.

#include <algorithm>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/database/block_contents.h"
#include "host/database/block_reference_state.h"
#include "host/database/class_registry.h"
#include "host/database/entity_data.h"
#include "host/database/extended_data.h"
#include "host/database/loading.h"
#include "host/database/names.h"
#include "host/database/open_state.h"
#include "host/database/proxies.h"
#include "host/database/sequence_entities.h"
#include "host/database/symbol_records.h"
#include "host/database/unknown_objects.h"

using namespace drafthost;

namespace {

using Groups = std::vector<DxfGroup>;

AcDbObjectId nameIn(const Groups& groups) {
    for (const DxfGroup& group : groups) {
        const auto* const reference = std::get_if<ObjectReference>(&group.value);
        if (group.code == -1 && reference)
            return reference->id;
    }
    return {};
}

// Definitions and tables are changed through their own functions; their contents are not in their groups.
bool isModifiable(const AcDbObject& object) {
    return !AcDbSymbolTable::cast(&object) && !AcDbBlockTableRecord::cast(&object) &&
           !AcDbDictionary::cast(&object) && !AcDbBlockBegin::cast(&object) && !AcDbBlockEnd::cast(&object);
}

std::unique_ptr<AcDbObject> newLike(const AcDbObject& object) {
    if (const auto* const record = AcDbPlainTableRecord::cast(&object)) {
        return std::make_unique<AcDbPlainTableRecord>(record->kind());
    }
    // A polyline tells from its present widths whether the vertices or the constant width were changed.
    if (AcDbPolyline::cast(&object))
        return std::unique_ptr<AcDbObject>(AcDbObject::cast(object.clone()));
    const bool entity = AcDbEntity::cast(&object) != nullptr;
    if (!AcDbUnknownEntity::cast(&object) && !AcDbUnknownObject::cast(&object)) {
        return std::unique_ptr<AcDbObject>(AcDbObject::cast(object.isA()->create()));
    }
    return std::unique_ptr<AcDbObject>(newObjectFor(dxfNameOf(object), entity));
}

// Exactly: no tolerance.
bool sameValue(const DxfGroup& a, const DxfGroup& b) {
    if (a.code != b.code || a.value.index() != b.value.index())
        return false;
    return std::visit(
        [&b]<class Value>(const Value& value) {
            const auto& other = std::get<Value>(b.value);
            if constexpr (std::is_same_v<Value, AcGePoint3d>)
                return value.x == other.x && value.y == other.y && value.z == other.z;
            else if constexpr (std::is_same_v<Value, AcGePoint2d>)
                return value.x == other.x && value.y == other.y;
            else if constexpr (std::is_same_v<Value, ObjectReference>)
                return value.id == other.id;
            else
                return value == other;
        },
        a.value);
}

// A proxy's record goes with it, and with the record what every object keeps of groups that nobody knows: the
// list has those among the groups of the class.
void keepRecordOf(const KeptContents& from, const ObjectState& present, ObjectState& next) {
    auto& to = dynamic_cast<KeptContents&>(next);
    to.className = from.className;
    to.proxyFlags = from.proxyFlags;
    if (!from.hasRecord)
        return;
    to.record = from.record;
    to.hasRecord = true;
    to.wholeRecord = from.wholeRecord;
    next.extras = present.extras;
}

// What an object's groups do not tell stays as it was.
void keepTies(const AcDbObject& object, ObjectState& next) {
    const ObjectState& present = *ObjectImp::of(&object).state;
    next.owner = present.owner;
    next.reactors = present.reactors;
    next.extensionDictionary = present.extensionDictionary;
    next.xdata = present.xdata;
    if (AcDbBlockReference::cast(&object)) {
        const auto& from = static_cast<const BlockReferenceState&>(present);
        static_cast<BlockReferenceState&>(next).attributes = from.attributes;
        static_cast<BlockReferenceState&>(next).sequenceEnd = from.sequenceEnd;
    }
    if (AcDbUnknownEntity::cast(&object)) {
        const auto& from = static_cast<const UnknownEntityState&>(present);
        static_cast<UnknownEntityState&>(next).subEntities = from.subEntities;
        static_cast<UnknownEntityState&>(next).graphics = from.graphics;
    }
    if (const KeptContents* const from = keptContents(object))
        keepRecordOf(*from, present, next);
}

Acad::ErrorStatus checkReference(const AcDbObject& object, const AcDbObject& next) {
    const auto* const reference = AcDbBlockReference::cast(&next);
    return reference ? mayReferTo(object.ownerId(), reference->blockTableRecord()) : Acad::eOk;
}

// Of a proxy, what its class allows may be changed, but never the class's own data.
Acad::ErrorStatus checkProxy(const AcDbObject& object, const AcDbObject& next) {
    if (!AcDbUnknownEntity::cast(&object) || !proxyFlags(object))
        return Acad::eOk;
    const auto& present = readState<UnknownEntityState>(&object);
    const auto& changed = readState<UnknownEntityState>(&next);
    if (!std::ranges::equal(present.groups, changed.groups, sameValue))
        return Acad::eProxyRefused;
    return mayTakeProperties(*AcDbEntity::cast(&object), changed);
}

// A record's new name goes through the table.
Acad::ErrorStatus renameLike(AcDbObject& object, const AcDbObject& next) {
    auto* const record = AcDbSymbolTableRecord::cast(&object);
    const auto* const renamed = AcDbSymbolTableRecord::cast(&next);
    if (!record || !renamed || std::wstring_view(record->name()) == renamed->name())
        return Acad::eOk;
    return record->setName(renamed->name());
}

Acad::ErrorStatus changeExtendedData(ObjectState& state, const Groups& xdata, const AcDbDatabase& database) {
    if (xdata.empty())
        return Acad::eOk;
    if (const auto status = checkExtendedData(xdata, &database); status != Acad::eOk)
        return status;
    mergeExtendedData(state.xdata, xdata);
    state.extendedDataChanged();
    return extendedDataSize(state.xdata) > kMaxExtendedData ? Acad::eXdataSizeExceeded : Acad::eOk;
}

// Builds the changed object beside the present one, so that a refusal changes nothing.
int modify(AcDbObject& object, const Groups& given) {
    AcDbDatabase& database = *object.database();
    Groups xdata, ignored;
    const Groups content = contentGroups(given, xdata);
    const Groups present = contentGroups(entityGroups(object.objectId()), ignored);
    const std::wstring& type = textGroup(content, 0);
    if (!type.empty() && !equalNames(type, dxfNameOf(object))) {
        return entityError(kErrnoBadList, L"the type of an entity cannot be changed");
    }
    const std::unique_ptr<AcDbObject> next = newLike(object);
    if (!next)
        return entityError(Acad::eNotApplicable);
    std::wstring problem;
    if (readEntityData(*next, database, mergedGroups(present, content), problem) != Acad::eOk) {
        return entityError(kErrnoBadList, problem);
    }
    ObjectState& state = *ObjectImp::of(next.get()).state;
    keepTies(object, state);
    Acad::ErrorStatus status = changeExtendedData(state, xdata, database);
    if (status == Acad::eOk)
        status = checkReference(object, *next);
    if (status == Acad::eOk)
        status = checkProxy(object, *next);
    if (status == Acad::eOk)
        status = renameLike(object, *next);
    if (status != Acad::eOk)
        return entityError(status);
    prepareWrite(&object);
    if (object.isA()->appName()) {
        // A module's object keeps its contents itself; it reads them again, behind its name and type.
        Groups groups = mergedGroups(present, content);
        std::erase_if(groups, [](const DxfGroup& group) { return group.code <= 0; });
        GroupFiler filer(&database, std::move(groups), AcDb::kBagFiler);
        status = object.dxfInFields(&filer);
        // What nobody knows of the list is kept by the reading of whole objects, which the one beside it had.
        ObjectState& own = *ObjectImp::of(&object).state;
        own.extras = state.extras;
        own.xdata = state.xdata;
        return status == Acad::eOk ? static_cast<int>(RTNORM) : entityError(status);
    }
    std::swap(ObjectImp::of(&object).state, ObjectImp::of(next.get()).state);
    return RTNORM;
}

bool isMainEntity(const AcDbObject& object) {
    const bool marker =
        AcDbSequenceEnd::cast(&object) || AcDbBlockBegin::cast(&object) || AcDbBlockEnd::cast(&object);
    return AcDbEntity::cast(&object) && !marker && peek<AcDbBlockTableRecord>(object.ownerId());
}

}  // namespace

int acdbEntMod(const resbuf* data) {
    const Groups given = groupsOfList(data);
    const AcDbObjectId id = nameIn(given);
    if (id.isNull())
        return entityError(kErrnoInvalidEntity, L"no such entity");
    const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForWrite);
    if (!object)
        return entityError(object.openStatus());
    if (!isModifiable(*object))
        return entityError(Acad::eNotApplicable);
    return modify(*object, given);
}

int acdbEntDel(const ads_name name) {
    AcDbObjectId id;
    if (const auto status = acdbGetObjectId(id, name); status != Acad::eOk)
        return entityError(status);
    const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForWrite, true);
    if (!object)
        return entityError(object.openStatus());
    if (!isMainEntity(*object))
        return entityError(kErrnoInvalidEntity, L"only main entities can be erased");
    const auto status = object->erase(!object->isErased());
    return status == Acad::eOk ? static_cast<int>(RTNORM) : entityError(status);
}

// Pictures are drawn from the database whenever they are asked for, so there is nothing to bring up to date.
int acdbEntUpd(const ads_name name) {
    AcDbObjectId id;
    if (const auto status = acdbGetObjectId(id, name); status != Acad::eOk)
        return entityError(status);
    return id.isErased() ? entityError(Acad::eWasErased) : static_cast<int>(RTNORM);
}
