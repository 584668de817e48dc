#pragma once

// What stands behind AcDbDatabase and AcDbObjectId.
//
// Each object of a database has a stub: its handle, where it is, and by whom it is open. Stubs are allocated
// in blocks that are never released, so an id or an entity name that outlives its database is recognised
// without touching freed memory (the price is some 64 bytes for each object of a closed drawing). An entity
// name is the stub's number in the process, so no name is ever used twice.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/api/database.h"
#include "host/database/change_log.h"
#include "host/database/dxf_fields.h"
#include "host/database/header_variables.h"
#include "host/database/object_imp.h"

struct AcDbStub {
    std::int64_t name = 0;             // word 0 of the entity name
    AcDbDatabase* database = nullptr;  // null: its database was deleted
    AcDbObject* object =
        nullptr;  // owned; null: a handle that is only referred to, or an object removed for good
    AcDbHandle handle;
    std::uint32_t place = 0;   // where its owner's list of entities has it, unless that was restored since
    std::int32_t readers = 0;  // openings for reading, a transaction's included
    bool writer = false;
    bool notify = false;
    bool transactionRead = false;   // one of the readers is a transaction
    bool transactionWrite = false;  // the writer is a transaction
    bool erased = false;
    bool undone = false;    // erased because undo took its creation back; only redo restores it
    bool modified = false;  // changed since it was opened for write
};

namespace drafthost {

enum class TableIndex { Block, Layer, Linetype, TextStyle, RegApp, DimStyle, View, Ucs, Viewport };
constexpr std::size_t kTableCount = 9;

// One record of the classes section of a file, after its group 0.
using ClassGroups = std::vector<DxfGroup>;

// A section that the host does not interpret, kept whole.
struct RawSection {
    std::wstring name;
    std::vector<DxfGroup> groups;  // between the section's name and ENDSEC
};

class TransactionManager;

// False: the document of the database is not locked for writing. Set by the documents code; null: always
// allowed. Not asked for databases made with noDocument.
extern bool (*writeAllowed)(const AcDbDatabase* database);

}  // namespace drafthost

struct AcDbDatabase::Impl {
    Impl(AcDbDatabase* owner, bool sideDatabase);
    ~Impl();  // deletes all objects
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    AcDbDatabase* const database;
    const bool noDocument;
    std::wstring fileName;  // full path; empty for a new drawing

    drafthost::DatabaseSettings settings;  // change through changeSettings()
    std::array<AcDbObjectId, drafthost::kTableCount> tables;
    AcDbObjectId namedObjects;
    AcDbObjectId modelSpace, paperSpace;
    AcDbObjectId currentSpace;  // block that new entities of LISP go to
    std::vector<drafthost::ClassGroups> classes;
    std::vector<drafthost::RawSection> otherSections;  // behind the objects section: thumbnails and the like

    // Objects in order of creation, with those erased and removed.
    std::vector<AcDbStub*> stubs;
    std::unordered_map<std::uint64_t, AcDbStub*> byHandle;
    std::uint64_t nextHandle = 1;

    // Counts changes since the drawing was made, read or saved: 0 means not modified.
    std::uint64_t modifications = 0;
    // While a file is read: no locks, nothing is logged, and handles may be referred to before their objects
    // come.
    bool loading = false;
    // Logs that are told of every change: the innermost transaction's, or outside of transactions the undo
    // step's. Not owned.
    std::vector<drafthost::ChangeLog*> logs;
    // The log of the undo step in progress, which gets a transaction's changes when it ends; not owned. Null
    // when nothing is recorded.
    drafthost::ChangeLog* undoStep = nullptr;
    std::unique_ptr<drafthost::TransactionManager> transactions;
    std::vector<AcDbObject*> removedWhileOpen;  // owned

    AcDbObjectId& table(drafthost::TableIndex index) { return tables[static_cast<std::size_t>(index)]; }
    AcDbObjectId table(drafthost::TableIndex index) const { return tables[static_cast<std::size_t>(index)]; }

    // Puts the object into the database, open for write; the caller closes it. handle null: the next free
    // one. eHandleExists, eAlreadyInDb. The database owns the object from then on, on failure the caller
    // keeps it.
    Acad::ErrorStatus add(AcDbObject* object, AcDbObjectId owner, AcDbHandle handle, AcDbObjectId& id);
    // The stub of a handle, null when it has none; reserve makes one without an object.
    AcDbStub* find(AcDbHandle handle) const;
    AcDbStub* reserve(AcDbHandle handle);
    // Ends an object for good: its id and name go stale, its memory is freed.
    void remove(AcDbStub* stub);

    // Settings for a change: saved to the logs first, and counted as a modification.
    drafthost::DatabaseSettings& changeSettings();
};

namespace drafthost {

// Opens nothing: the object of the id when there is one of that class, erased ones included. For look-ups
// inside the host that only read (names, flags), whatever the object's open state.
template <class T>
T* peek(AcDbObjectId id) {
    return id.stub() && id.stub()->database && id.stub()->object ? T::cast(id.stub()->object) : nullptr;
}

// Before a change that the host itself makes to an object whatever its open state: tells the logs and counts
// it.
void noteChange(AcDbStub& stub);

// A stub's place in the process's numbering; null for a name that no object has.
AcDbStub* findStub(const ads_name name);

// Databases that live.
const std::vector<AcDbDatabase*>& liveDatabases();

// The database that names of unattached objects are looked up in: their own, or the working one.
AcDbDatabase* databaseOrWorking(const AcDbObject& object);

// Record of a table by name, null when there is none or it is erased; name of a record, empty for other ids.
AcDbObjectId findRecord(const AcDbDatabase* database, TableIndex table, std::wstring_view name);
AcDbObjectId findRecord(const AcDbDatabase* database, TableKind table, std::wstring_view name);
const std::wstring& recordName(AcDbObjectId record);

// Header variable as a file has it now: names of the current layer, style and so on follow their records.
// Empty when there is no such variable. Setting one of these names looks the record up: false when there is
// none.
std::vector<DxfGroup> headerVariable(const AcDbDatabase& database, std::wstring_view name);
bool setHeaderVariable(AcDbDatabase& database, std::wstring_view name, std::vector<DxfGroup> groups);

}  // namespace drafthost
