#include "host/database/loading.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "host/api/block_reference.h"
#include "host/database/block_contents.h"
#include "host/database/block_reference_state.h"
#include "host/database/class_registry.h"
#include "host/database/default_drawing.h"
#include "host/database/entity_parts.h"
#include "host/database/handles.h"
#include "host/database/names.h"
#include "host/database/proxies.h"
#include "host/database/sequence_entities.h"
#include "host/database/symbol_records.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

using Groups = std::vector<DxfGroup>;

const std::wstring& textIn(const Groups& groups, short code) {
    static const std::wstring none;
    for (const DxfGroup& group : groups) {
        if (group.code != code)
            continue;
        if (const auto* const text = std::get_if<std::wstring>(&group.value))
            return *text;
    }
    return none;
}

// Handles become ids; those of objects that come later get their stub now. Entity handles of extended data
// stay texts.
void resolveReferences(AcDbDatabase& database, Groups& groups) {
    for (DxfGroup& group : groups) {
        auto* const reference = std::get_if<ObjectReference>(&group.value);
        if (!reference || !reference->id.isNull() || dxfKind(group.code) != DxfKind::Reference)
            continue;
        reference->id = AcDbObjectId(database.impl().reserve(reference->handle));
    }
}

// An object that is being read: outside the database until its groups are found good.
template <class Object>
struct Read {
    std::unique_ptr<Object> object;
    AcDbHandle handle;
    LoadResult result;
};

// What a module's class cannot read is no reason to refuse the drawing, which can be read without the module.
template <class Object>
void keepAsProxy(Read<Object>& read, AcDbDatabase& database, GroupFiler& filer) {
    const bool entity = AcDbEntity::cast(read.object.get()) != nullptr;
    const std::wstring name = textIn(filer.groups(), 0);
    std::unique_ptr<AcDbObject> proxy = proxyOfGroups(database, name, entity, std::move(filer.groups()));
    Object* const kept = Object::cast(proxy.get());
    if (!kept)
        return;
    proxy.release();
    read.object.reset(kept);
    read.result.keptAsProxy = acadErrorStatusText(std::exchange(read.result.status, Acad::eOk));
}

template <class Object>
Read<Object> readObject(AcDbDatabase& database, AcDbObject* made, Groups&& groups) {
    Read<Object> read;
    read.object.reset(Object::cast(made));
    if (!read.object) {
        delete made;
        read.result = {Acad::eNotThatKindOfClass, {}, L"unexpected kind of object"};
        return read;
    }
    read.handle = handleInGroups(groups);
    resolveReferences(database, groups);
    GroupFiler filer(&database, std::move(groups));
    read.result.status = read.object->dxfIn(&filer);
    if (read.result.status != Acad::eOk && read.object->isA()->appName())
        keepAsProxy(read, database, filer);
    if (read.result.status != Acad::eOk) {
        read.result.problem =
            filer.problem().empty() ? acadErrorStatusText(read.result.status) : filer.problem();
    }
    // A handle that is used twice is given up for a new one rather than losing the object.
    const AcDbStub* const known = database.impl().find(read.handle);
    if (known && known->object)
        read.handle = AcDbHandle();
    return read;
}

template <class Object>
void settle(Read<Object>& read, Acad::ErrorStatus status) {
    read.result.status = status;
    if (status == Acad::eOk)
        read.object.release()->close();
    else
        read.result.problem = acadErrorStatusText(status);
}

TableIndex tableOfRecord(const Groups& groups, bool& known) {
    TableIndex table{};
    known = findTableIndex(textIn(groups, 0), table);
    return table;
}

AcDbBlockTableRecord* blockFor(AcDbDatabase& database, const std::wstring& name) {
    AcDbObjectId id = findRecord(&database, TableIndex::Block, name);
    if (id.isNull())
        id = addRecord(database, TableIndex::Block, std::make_unique<AcDbBlockTableRecord>(), name);
    return peek<AcDbBlockTableRecord>(id);
}

// Where an entity outside the blocks section belongs: its owner, or the space that its group 67 says.
AcDbBlockTableRecord* spaceFor(AcDbDatabase& database, const Groups& groups, AcDbObjectId owner) {
    if (auto* const block = peek<AcDbBlockTableRecord>(owner); block && block->isLayout())
        return block;
    const bool inPaper = std::ranges::any_of(groups, [](const DxfGroup& group) {
        const auto* const value = std::get_if<std::int64_t>(&group.value);
        return group.code == 67 && value && *value == 1;
    });
    return blockFor(database, inPaper ? ACDB_PAPER_SPACE : ACDB_MODEL_SPACE);
}

AcDbObjectId ownerIn(AcDbDatabase& database, const Groups& groups) {
    bool inBraces = false;
    for (const DxfGroup& group : groups) {
        if (group.code == 100)
            break;
        if (group.code == 102)
            inBraces = !inBraces;
        const auto* const reference = std::get_if<ObjectReference>(&group.value);
        if (group.code == 330 && !inBraces && reference)
            return AcDbObjectId(database.impl().find(reference->handle));
    }
    return {};
}

template <class Marker>
LoadResult loadMarker(AcDbDatabase& database, AcDbBlockTableRecord& block, Groups&& groups,
                      AcDbObjectId BlockState::*place) {
    auto* const marker = new Marker;
    ObjectImp::of(marker).state->owner = block.objectId();
    auto read = readObject<Marker>(database, marker, std::move(groups));
    if (read.result.status != Acad::eOk)
        return read.result;
    AcDbObjectId id;
    settle(read, database.impl().add(read.object.get(), block.objectId(), read.handle, id));
    static_cast<BlockState&>(*ObjectImp::of(&block).state).*place = id;
    read.result.id = block.objectId();
    return read.result;
}

}  // namespace

AcDbHandle handleInGroups(const Groups& groups) {
    const short code = textIn(groups, 0) == L"DIMSTYLE" ? 105 : 5;
    for (const DxfGroup& group : groups) {
        if (group.code == 100)
            break;
        if (group.code != code)
            continue;
        if (const auto* const reference = std::get_if<ObjectReference>(&group.value))
            return reference->handle;
        if (const auto* const text = std::get_if<std::wstring>(&group.value))
            return parseHandle(std::wstring_view(*text));
    }
    return {};
}

AcDbObject* newObjectFor(const std::wstring& dxfName, bool entity) {
    AcRxClass* const cls = findClassByDxfName(dxfName);
    const bool fits = cls && cls->isDerivedFrom(AcDbEntity::desc()) == entity;
    AcDbObject* const object = fits ? AcDbObject::cast(cls->create()) : nullptr;
    if (object)
        return object;
    if (entity)
        return new AcDbUnknownEntity(dxfName);
    return new AcDbUnknownObject(dxfName);
}

namespace {

// Records of modules' objects wait in a proxy until all objects are there that they refer to.
AcDbObject* objectForGroups(const Groups& groups, bool entity) {
    if (!areRecordGroups(groups))
        return newObjectFor(textIn(groups, 0), entity);
    if (entity)
        return new AcDbUnknownEntity(textIn(groups, 0));
    return new AcDbUnknownObject(textIn(groups, 0));
}

}  // namespace

LoadResult loadTable(AcDbDatabase& database, Groups groups) {
    TableIndex table{};
    if (!findTableIndex(textIn(groups, 2), table))
        return {Acad::eInvalidInput, {}, L"table of unknown kind"};
    if (!database.impl().table(table).isNull())
        return {Acad::eOk, database.impl().table(table), {}};
    // Old files have neither handle nor marker; the table is made all the same.
    const bool hasMarkers =
        std::ranges::any_of(groups, [](const DxfGroup& group) { return group.code == 100; });
    auto read = readObject<AcDbSymbolTable>(database, newTable(table), std::move(groups));
    if (read.result.status != Acad::eOk && hasMarkers)
        return read.result;
    settle(read, database.impl().add(read.object.get(), AcDbObjectId(), read.handle, read.result.id));
    database.impl().table(table) = read.result.id;
    return read.result;
}

LoadResult loadRecord(AcDbDatabase& database, Groups groups) {
    bool known = false;
    const TableIndex table = tableOfRecord(groups, known);
    if (!known)
        return {Acad::eInvalidInput, {}, L"record of unknown kind"};
    auto read = readObject<AcDbSymbolTableRecord>(database, newRecord(table), std::move(groups));
    if (read.result.status != Acad::eOk)
        return read.result;
    const std::wstring name = read.object->name();
    read.result.id = addRecord(database, table, std::move(read.object), std::wstring(), read.handle);
    if (read.result.id.isNull()) {
        read.result.status = Acad::eDuplicateKey;
        read.result.problem = L"name \"" + name + L"\" is missing or taken";
    }
    return read.result;
}

LoadResult loadBlockBegin(AcDbDatabase& database, Groups groups) {
    const std::wstring name = textIn(groups, 2);
    if (name.empty())
        return {Acad::eNullBlockName, {}, L"block without a name"};
    // Before 2000 the spaces were called so.
    const std::wstring current = equalNames(name, L"$MODEL_SPACE")   ? ACDB_MODEL_SPACE
                                 : equalNames(name, L"$PAPER_SPACE") ? ACDB_PAPER_SPACE
                                                                     : name;
    AcDbBlockTableRecord* const block = blockFor(database, current);
    if (!block)
        return {Acad::eInvalidKey, {}, L"block \"" + name + L"\" cannot be made"};
    if (readState<BlockState>(block).begin.isValid()) {
        return {Acad::eDuplicateKey, block->objectId(), L"block \"" + name + L"\" is defined twice"};
    }
    return loadMarker<AcDbBlockBegin>(database, *block, std::move(groups), &BlockState::begin);
}

LoadResult loadBlockEnd(AcDbDatabase& database, AcDbObjectId block, Groups groups) {
    auto* const record = peek<AcDbBlockTableRecord>(block);
    if (!record)
        return {Acad::eNullBlockName, {}, L"end of a block without a beginning"};
    return loadMarker<AcDbBlockEnd>(database, *record, std::move(groups), &BlockState::end);
}

LoadResult loadEntity(AcDbDatabase& database, AcDbObjectId block, Groups groups) {
    AcDbBlockTableRecord* const record = block.isNull()
                                             ? spaceFor(database, groups, ownerIn(database, groups))
                                             : peek<AcDbBlockTableRecord>(block);
    if (!record)
        return {Acad::eNullBlockName, {}, L"entity outside any block"};
    AcDbObject* const made = objectForGroups(groups, true);
    auto read = readObject<AcDbEntity>(database, made, std::move(groups));
    if (read.result.status == Acad::eOk) {
        settle(read, appendToBlock(*record, read.object.get(), read.handle, read.result.id));
    }
    return read.result;
}

LoadResult loadAttribute(AcDbDatabase& database, AcDbObjectId insert, Groups groups) {
    AcDbEntity* const owner = peek<AcDbEntity>(insert);
    const bool isEnd = textIn(groups, 0) == L"SEQEND";
    auto read = readObject<AcDbEntity>(database, newObjectFor(textIn(groups, 0), true), std::move(groups));
    if (read.result.status != Acad::eOk)
        return read.result;
    const bool takes = AcDbUnknownEntity::cast(owner) ||
                       (AcDbBlockReference::cast(owner) && (isEnd || AcDbAttribute::cast(read.object.get())));
    if (!takes) {
        read.result = {Acad::eIllegalEntityType, {}, L"attribute without a block reference"};
        return read.result;
    }
    adoptProperties(static_cast<EntityState&>(*ObjectImp::of(read.object.get()).state), database);
    settle(read, database.impl().add(read.object.get(), insert, read.handle, read.result.id));
    if (read.result.status != Acad::eOk)
        return read.result;
    ObjectState& state = *ObjectImp::of(owner).state;
    if (AcDbUnknownEntity::cast(owner))
        static_cast<UnknownEntityState&>(state).subEntities.push_back(read.result.id);
    else if (isEnd)
        static_cast<BlockReferenceState&>(state).sequenceEnd = read.result.id;
    else
        static_cast<BlockReferenceState&>(state).attributes.push_back(read.result.id);
    return read.result;
}

LoadResult loadObject(AcDbDatabase& database, Groups groups) {
    auto read = readObject<AcDbObject>(database, objectForGroups(groups, false), std::move(groups));
    if (read.result.status != Acad::eOk)
        return read.result;
    const bool isDictionary = AcDbDictionary::cast(read.object.get()) != nullptr;
    settle(read, database.impl().add(read.object.get(), AcDbObjectId(), read.handle, read.result.id));
    // The first dictionary of a file is the one of named objects.
    AcDbObjectId& root = database.impl().namedObjects;
    if (isDictionary && root.isNull())
        root = read.result.id;
    return read.result;
}

std::vector<std::wstring> finishLoading(AcDbDatabase& database) {
    std::vector<std::wstring> findings;
    for (std::wstring& part : addMissingParts(database))
        findings.push_back(part + L" was missing and has been added");
    settleIds(database);
    replaceProxiesByObjects(database);
    const HeaderVariables::Entry* const seed = database.impl().settings.header.find(L"$HANDSEED");
    const auto* const handle =
        seed && !seed->groups.empty() ? std::get_if<ObjectReference>(&seed->groups[0].value) : nullptr;
    if (handle)
        database.impl().nextHandle = std::max(database.impl().nextHandle, handle->handle.value());
    database.impl().modifications = 0;
    return findings;
}

std::vector<DxfGroup> fileGroups(const AcDbObject& object) {
    GroupFiler filer(object.database());
    object.dxfOut(&filer);
    std::vector<DxfGroup> groups = std::move(filer.groups());
    const auto* const table = AcDbSymbolTable::cast(&object);
    for (std::size_t i = 0; table && i < kTableCount; ++i) {
        const auto index = static_cast<TableIndex>(i);
        if (table->database()->impl().table(index) != table->objectId())
            continue;
        groups.insert(groups.begin() + 1, DxfGroup{2, std::wstring(tableName(index))});
    }
    return groups;
}

}  // namespace drafthost
