#pragma once

// The nine symbol tables, and adding records to them from inside the host.

#include <memory>
#include <string>

#include "host/database/database_impl.h"

namespace drafthost {

// DXF name of a table and of its records: "LAYER", "BLOCK_RECORD".
const wchar_t* tableName(TableIndex table);
// False when no table has that name. "BLOCK" names the block table too.
bool findTableIndex(std::wstring_view name, TableIndex& table);

// A new, empty table; a new, empty record of its class. Caller owns.
AcDbSymbolTable* newTable(TableIndex table);
AcDbSymbolTableRecord* newRecord(TableIndex table);

// Adds the table to a database that has none of the kind; handle null: the next one. Null id when the handle
// is taken.
AcDbObjectId addTable(AcDbDatabase& database, TableIndex table, AcDbHandle handle);

// Adds a record, whatever the open state of the table, and closes it. Null id when its name is taken or
// impossible or the handle is taken.
AcDbObjectId addRecord(AcDbDatabase& database, TableIndex table,
                       std::unique_ptr<AcDbSymbolTableRecord> record,
                       const std::wstring& name = std::wstring(), AcDbHandle handle = AcDbHandle());

// True when the table has the record, and in which table of its database it is.
bool isRecordOf(TableIndex table, const AcDbSymbolTableRecord& record);

// Rows every record begins with: markers, name (2) and flags (70).
void writeRecordMarkers(AcDbDxfFiler* filer, const ACHAR* subclass, const AcDbSymbolTableRecord& record);

}  // namespace drafthost
