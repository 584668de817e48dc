// Symbol tables and what all their records have.

#include "host/api/symbol_tables.h"

#include <algorithm>

#include "host/database/block_contents.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/database/symbol_records.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbSymbolTable, AcDbObject, nullptr, nullptr)
DRAFTHOST_DEFINE_CLASS(AcDbSymbolTableRecord, AcDbObject, nullptr, nullptr)

#define DRAFTHOST_DEFINE_TABLE(TABLE)                                                                        \
    DRAFTHOST_DEFINE_CLASS(TABLE, AcDbSymbolTable, nullptr, &drafthost::constructObject<TABLE>)              \
    TABLE::TABLE() : AcDbSymbolTable(drafthost::newImp<drafthost::TableState>()) {}
DRAFTHOST_DEFINE_TABLE(AcDbBlockTable)
DRAFTHOST_DEFINE_TABLE(AcDbLayerTable)
DRAFTHOST_DEFINE_TABLE(AcDbLinetypeTable)
DRAFTHOST_DEFINE_TABLE(AcDbTextStyleTable)
DRAFTHOST_DEFINE_TABLE(AcDbRegAppTable)
DRAFTHOST_DEFINE_TABLE(AcDbDimStyleTable)
DRAFTHOST_DEFINE_TABLE(AcDbViewTable)
DRAFTHOST_DEFINE_TABLE(AcDbUCSTable)
DRAFTHOST_DEFINE_TABLE(AcDbViewportTable)

namespace drafthost {
namespace {

template <class Table>
AcDbSymbolTable* makeTable() {
    return new Table;
}

template <class Record>
AcDbSymbolTableRecord* makeRecord(const wchar_t*) {
    return new Record;
}

AcDbSymbolTableRecord* makePlainRecord(const wchar_t* kind) {
    return new AcDbPlainTableRecord(kind);
}

struct TableDescription {
    const wchar_t* name;
    AcDbSymbolTable* (*make)();
    AcDbSymbolTableRecord* (*makeRecord)(const wchar_t* kind);
    AcRxClass* (*recordClass)();
};

// In the order of TableIndex.
constexpr TableDescription kTables[kTableCount] = {
    {L"BLOCK_RECORD", makeTable<AcDbBlockTable>, makeRecord<AcDbBlockTableRecord>,
     AcDbBlockTableRecord::desc},
    {L"LAYER", makeTable<AcDbLayerTable>, makeRecord<AcDbLayerTableRecord>, AcDbLayerTableRecord::desc},
    {L"LTYPE", makeTable<AcDbLinetypeTable>, makeRecord<AcDbLinetypeTableRecord>,
     AcDbLinetypeTableRecord::desc},
    {L"STYLE", makeTable<AcDbTextStyleTable>, makeRecord<AcDbTextStyleTableRecord>,
     AcDbTextStyleTableRecord::desc},
    {L"APPID", makeTable<AcDbRegAppTable>, makeRecord<AcDbRegAppTableRecord>, AcDbRegAppTableRecord::desc},
    {L"DIMSTYLE", makeTable<AcDbDimStyleTable>, makePlainRecord, AcDbPlainTableRecord::desc},
    {L"VIEW", makeTable<AcDbViewTable>, makePlainRecord, AcDbPlainTableRecord::desc},
    {L"UCS", makeTable<AcDbUCSTable>, makePlainRecord, AcDbPlainTableRecord::desc},
    {L"VPORT", makeTable<AcDbViewportTable>, makePlainRecord, AcDbPlainTableRecord::desc},
};

const TableDescription& describe(TableIndex table) {
    return kTables[static_cast<std::size_t>(table)];
}

bool allowsAnonymous(TableIndex table) {
    return table == TableIndex::Block || table == TableIndex::Viewport;
}
// Several viewports make up one named arrangement.
bool allowsDuplicates(TableIndex table) {
    return table == TableIndex::Viewport;
}

bool indexOf(const AcDbSymbolTable& table, TableIndex& index) {
    for (std::size_t i = 0; table.database() && i < kTableCount; ++i) {
        if (table.database()->impl().tables[i] != table.objectId())
            continue;
        index = static_cast<TableIndex>(i);
        return true;
    }
    return false;
}

bool isLive(AcDbObjectId id) {
    return !id.isErased();
}

AcDbObjectId findLive(const TableState& state, std::wstring_view name) {
    const auto found = state.byName.find(foldCase(name));
    return found != state.byName.end() && isLive(found->second) ? found->second : AcDbObjectId();
}

Acad::ErrorStatus checkName(const TableState& state, TableIndex table, const std::wstring& name,
                            bool loading) {
    const auto anonymous = allowsAnonymous(table) ? Anonymous::Allowed : Anonymous::Refused;
    if (name.empty() || (!loading && !isValidSymbolName(name, anonymous)))
        return Acad::eInvalidKey;
    const bool taken = !allowsDuplicates(table) && !findLive(state, name).isNull();
    return taken ? Acad::eDuplicateKey : Acad::eOk;
}

// The table's state is the caller's to protect (open for write, or noted as changed).
Acad::ErrorStatus insertRecord(AcDbSymbolTable& table, TableIndex index, AcDbSymbolTableRecord* record,
                               AcDbHandle handle, AcDbObjectId& id) {
    AcDbDatabase::Impl& impl = table.database()->impl();
    auto& state = static_cast<TableState&>(*ObjectImp::of(&table).state);
    const std::wstring name = readState<RecordState>(record).name;
    if (const auto status = checkName(state, index, name, impl.loading); status != Acad::eOk)
        return status;
    if (const auto status = impl.add(record, table.objectId(), handle, id); status != Acad::eOk)
        return status;
    // A record at the end of the list is not saved for the logs (see change_log.h), but whose the name was
    // is.
    const auto named = state.byName.find(foldCase(name));
    if (named != state.byName.end() && !isLive(named->second))
        noteChange(*ObjectImp::of(&table).stub);
    ObjectImp::of(&table).stub->modified = true;
    state.records.push_back(id);
    if (named == state.byName.end())
        state.byName.emplace(foldCase(name), id);
    else if (!isLive(named->second) || !allowsDuplicates(index))
        named->second = id;
    // Files bring the marking entities of their blocks along.
    auto* const block = AcDbBlockTableRecord::cast(record);
    if (block && !impl.loading)
        completeBlock(*block);
    return Acad::eOk;
}

}  // namespace

const wchar_t* tableName(TableIndex table) {
    return describe(table).name;
}

bool findTableIndex(std::wstring_view name, TableIndex& table) {
    for (std::size_t i = 0; i < kTableCount; ++i) {
        const bool isBlock = static_cast<TableIndex>(i) == TableIndex::Block && equalNames(name, L"BLOCK");
        if (!isBlock && !equalNames(name, kTables[i].name))
            continue;
        table = static_cast<TableIndex>(i);
        return true;
    }
    return false;
}

AcDbSymbolTable* newTable(TableIndex table) {
    return describe(table).make();
}
AcDbSymbolTableRecord* newRecord(TableIndex table) {
    return describe(table).makeRecord(describe(table).name);
}

AcDbObjectId addTable(AcDbDatabase& database, TableIndex table, AcDbHandle handle) {
    std::unique_ptr<AcDbSymbolTable> object(newTable(table));
    AcDbObjectId id;
    if (database.impl().add(object.get(), AcDbObjectId(), handle, id) != Acad::eOk)
        return {};
    object.release()->close();
    return database.impl().table(table) = id;
}

AcDbObjectId addRecord(AcDbDatabase& database, TableIndex table,
                       std::unique_ptr<AcDbSymbolTableRecord> record, const std::wstring& name,
                       AcDbHandle handle) {
    if (database.impl().table(table).isNull())
        addTable(database, table, AcDbHandle());
    auto* const object = peek<AcDbSymbolTable>(database.impl().table(table));
    if (!object)
        return {};
    if (!name.empty())
        static_cast<RecordState&>(*ObjectImp::of(record.get()).state).name = name;
    AcDbObjectId id;
    if (insertRecord(*object, table, record.get(), handle, id) != Acad::eOk)
        return {};
    record.release()->close();
    return id;
}

bool isRecordOf(TableIndex table, const AcDbSymbolTableRecord& record) {
    if (!record.isKindOf(describe(table).recordClass()))
        return false;
    const auto* const plain = AcDbPlainTableRecord::cast(&record);
    return !plain || equalNames(plain->kind(), describe(table).name);
}

void writeRecordMarkers(AcDbDxfFiler* filer, const ACHAR* subclass, const AcDbSymbolTableRecord& record) {
    const RecordState& state = readState<RecordState>(&record);
    writeSubclassMarker(filer, L"AcDbSymbolTableRecord");
    writeExtras(filer, L"AcDbSymbolTableRecord", state);
    writeSubclassMarker(filer, subclass);
    filer->writeItem(2, state.name.c_str());
}

}  // namespace drafthost

AcDbSymbolTable::AcDbSymbolTable(ObjectImp* imp) : AcDbObject(imp) {}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbObjectId& id, bool getErased) const {
    id = AcDbObjectId();
    if (!name)
        return Acad::eInvalidInput;
    const TableState& state = readState<TableState>(this);
    const auto found = state.byName.find(foldCase(name));
    if (found == state.byName.end())
        return Acad::eKeyNotFound;
    if (found->second.isErased() && !(getErased && found->second.isValid()))
        return Acad::eKeyNotFound;
    id = found->second;
    return Acad::eOk;
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
    if (id.isErased())
        return false;
    const auto* const record = peek<AcDbSymbolTableRecord>(id);
    return record && record->ownerId() == objectId();
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
    id = AcDbObjectId();
    if (!record)
        return Acad::eNullObjectPointer;
    TableIndex index{};
    if (!indexOf(*this, index))
        return Acad::eNotInDatabase;
    if (!isRecordOf(index, *record))
        return Acad::eWrongObjectType;
    if (!record->objectId().isNull())
        return Acad::eAlreadyInDb;
    if (!isWriteEnabled())
        return Acad::eNotOpenForWrite;
    return insertRecord(*this, index, record, AcDbHandle(), id);
}

AcArray<AcDbObjectId> AcDbSymbolTable::recordIds() const {
    AcArray<AcDbObjectId> ids;
    for (const AcDbObjectId id : readState<TableState>(this).records) {
        if (isLive(id))
            ids.append(id);
    }
    return ids;
}

Acad::ErrorStatus AcDbSymbolTable::dxfOutFields(AcDbDxfFiler* filer) const {
    writeSubclassMarker(filer, L"AcDbSymbolTable");
    filer->writeInt16(70, static_cast<std::int16_t>(std::min(recordIds().length(), 32767)));
    writeExtras(filer, L"AcDbSymbolTable", readState<TableState>(this));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<TableState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    // Name and number of records follow from the table itself.
    static constexpr DxfField kFields[] = {
        {2, [](const ObjectState&, const DxfField&, GroupFiler&) {},
         [](ObjectState&, const DxfField&, const DxfGroup&, AcDbDatabase*) { return true; }},
        {70, [](const ObjectState&, const DxfField&, GroupFiler&) {},
         [](ObjectState&, const DxfField&, const DxfGroup&, AcDbDatabase*) { return true; }},
    };
    return readSubclass(filer, L"AcDbSymbolTable", *state, kFields);
}

AcDbSymbolTableRecord::AcDbSymbolTableRecord(ObjectImp* imp) : AcDbObject(imp) {}

const ACHAR* AcDbSymbolTableRecord::name() const {
    return readState<RecordState>(this).name.c_str();
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
    if (!name)
        return Acad::eInvalidInput;
    const std::wstring next = name;
    if (!isValidSymbolName(next, Anonymous::Allowed))
        return Acad::eInvalidKey;
    auto* const table = peek<AcDbSymbolTable>(ownerId());
    const std::wstring previous = readState<RecordState>(this).name;
    TableIndex index{};
    if (table && indexOf(*table, index)) {
        if (index == TableIndex::Layer && previous == L"0")
            return Acad::eInvalidKey;
        const auto& tableState = readState<TableState>(table);
        const bool same = equalNames(previous, next);
        const Acad::ErrorStatus status = checkName(tableState, index, next, false);
        if (status != Acad::eOk && !(same && status == Acad::eDuplicateKey))
            return status;
    }
    auto* const state = writeState<RecordState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->name = next;
    if (!table)
        return Acad::eOk;
    noteChange(*ObjectImp::of(table).stub);
    auto& byName = static_cast<TableState&>(*ObjectImp::of(table).state).byName;
    byName.erase(foldCase(previous));
    byName[foldCase(next)] = objectId();
    return Acad::eOk;
}

// Name and flags are rows of each record class's own subclass; here is only the marker they share.
Acad::ErrorStatus AcDbSymbolTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    return writeSubclass(filer, L"AcDbSymbolTableRecord", readState<RecordState>(this), {});
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<RecordState>(this);
    return state ? readSubclass(filer, L"AcDbSymbolTableRecord", *state, {}) : Acad::eNotOpenForWrite;
}

namespace {

bool isStandard(const AcDbSymbolTableRecord& record) {
    const std::wstring_view name = record.name();
    if (AcDbLayerTableRecord::cast(&record))
        return name == L"0";
    if (AcDbLinetypeTableRecord::cast(&record)) {
        return equalNames(name, L"ByLayer") || equalNames(name, L"ByBlock") ||
               equalNames(name, L"Continuous");
    }
    return AcDbRegAppTableRecord::cast(&record) && equalNames(name, L"ACAD");
}

bool isCurrent(const AcDbSymbolTableRecord& record) {
    const DatabaseSettings& settings = record.database()->impl().settings;
    const AcDbObjectId id = record.objectId();
    return id == settings.layer || id == settings.linetype || id == settings.textStyle ||
           id == settings.dimensionStyle;
}

// Group code under which other objects name a record of this kind; 0 when they do not.
short nameCode(const AcDbSymbolTableRecord& record) {
    if (AcDbLayerTableRecord::cast(&record))
        return 8;
    if (AcDbLinetypeTableRecord::cast(&record))
        return 6;
    return AcDbTextStyleTableRecord::cast(&record) ? 7 : 0;
}

bool isUsed(const AcDbSymbolTableRecord& record) {
    const short code = nameCode(record);
    if (code == 0)
        return false;
    for (const AcDbStub* const stub : record.database()->impl().stubs) {
        if (stub->erased || !stub->object || stub->object == &record)
            continue;
        GroupFiler filer(record.database());
        stub->object->dxfOutFields(&filer);
        for (const DxfGroup& group : filer.groups()) {
            const auto* const name = std::get_if<std::wstring>(&group.value);
            if (group.code == code && name && equalNames(*name, record.name()))
                return true;
        }
    }
    return false;
}

}  // namespace

Acad::ErrorStatus AcDbSymbolTableRecord::subErase(bool erasing) {
    if (!erasing) {
        const auto* const table = peek<AcDbSymbolTable>(ownerId());
        AcDbObjectId other;
        const bool taken = table && table->getAt(name(), other) == Acad::eOk && other != objectId();
        return taken ? Acad::eDuplicateKey : Acad::eOk;
    }
    return isStandard(*this) || isCurrent(*this) || isUsed(*this) ? Acad::eCannotBeErased : Acad::eOk;
}
