#pragma once

// Filling a database from a file. The order of a reader:
//
//   LoadScope scope(database);                      // an empty database, made with buildDefaultDrawing =
//   false database.impl().settings.header.set(...)        // HEADER, as read loadTable, loadRecord // TABLES:
//   each table, then its records loadBlockBegin, loadEntity, loadBlockEnd        // BLOCKS; entities of model
//   and paper space too (ENTITIES) loadAttribute                                   // ATTRIB and SEQEND that
//   follow an INSERT loadObject                                      // OBJECTS finishLoading // adds what is
//   missing, resolves names, sets the next handle
//
// All take the object's groups from group 0 to the one before the next group 0; the handle is among them.
// References may point forward. Objects of unknown classes are kept as AcDbUnknownEntity and
// AcDbUnknownObject.

#include <string>
#include <vector>

#include "host/database/database_impl.h"

namespace drafthost {

class LoadScope {
public:
    explicit LoadScope(AcDbDatabase& database) : impl_(database.impl()) { impl_.loading = true; }
    ~LoadScope() { impl_.loading = false; }
    LoadScope(const LoadScope&) = delete;
    LoadScope& operator=(const LoadScope&) = delete;

private:
    AcDbDatabase::Impl& impl_;
};

// Outcome of one object. problem: text for a message ("group 40: real expected"), empty when status is eOk.
struct LoadResult {
    Acad::ErrorStatus status = Acad::eOk;
    AcDbObjectId id;
    std::wstring problem;
    // An object of a module's class that could not read its groups, and was kept as a proxy: what it said.
    // Empty otherwise.
    std::wstring keptAsProxy{};
};

// The header of a symbol table: groups from (0 . "TABLE"), with its name in group 2.
LoadResult loadTable(AcDbDatabase& database, std::vector<DxfGroup> groups);
// A record goes to the table of its kind (LAYER, LTYPE, STYLE, BLOCK_RECORD, APPID, DIMSTYLE, VIEW, UCS,
// VPORT), which is made when the file has none.
LoadResult loadRecord(AcDbDatabase& database, std::vector<DxfGroup> groups);
// The BLOCK entity: finds the block's record by name, or makes it (files without block records). id: the
// record.
LoadResult loadBlockBegin(AcDbDatabase& database, std::vector<DxfGroup> groups);
LoadResult loadBlockEnd(AcDbDatabase& database, AcDbObjectId block, std::vector<DxfGroup> groups);
// An entity at the end of a block. block null: model space, or paper space when its group 67 is 1; an owner
// handle (group 330) that names another layout's block record goes there.
LoadResult loadEntity(AcDbDatabase& database, AcDbObjectId block, std::vector<DxfGroup> groups);
// An attribute, or the end of the sequence, of an INSERT (or vertices of an entity of an unknown class).
LoadResult loadAttribute(AcDbDatabase& database, AcDbObjectId insert, std::vector<DxfGroup> groups);
LoadResult loadObject(AcDbDatabase& database, std::vector<DxfGroup> groups);

// Completes the drawing: missing tables, standard records, named objects dictionary and layouts; the ids that
// the header names; the next handle. Handles that no object has stay as references, written back as they are.
// Returns findings, one text each ("layer \"0\" was missing and has been added").
std::vector<std::wstring> finishLoading(AcDbDatabase& database);

// A new object of the class filed under the name, outside any database; of unknown classes an
// AcDbUnknownEntity or AcDbUnknownObject. Caller owns.
AcDbObject* newObjectFor(const std::wstring& dxfName, bool entity);

// Handle in group 5 (105 for DIMSTYLE), null when there is none.
AcDbHandle handleInGroups(const std::vector<DxfGroup>& groups);

// For writing: all groups of an object from group 0 on, ready for a file. Begins and ends of blocks,
// attributes and sequence ends are objects of their own: see BlockState and BlockReferenceState.
std::vector<DxfGroup> fileGroups(const AcDbObject& object);

}  // namespace drafthost
