#pragma once

// LISP functions that work on the current table: the server keeps the table, its index and the current
// record. Records come to LISP as ((field . value) ...).

#include "module/binding/handler_status.h"

struct DatabaseConnection;

namespace tessary {

HandlerStatus openTable(DatabaseConnection& connection);       // ts_table
HandlerStatus closeTable(DatabaseConnection& connection);      // ts_close_table
HandlerStatus closeAllTables(DatabaseConnection& connection);  // ts_closeall_tables
HandlerStatus currentTable(DatabaseConnection& connection);    // ts_current_table
HandlerStatus currentIndex(DatabaseConnection& connection);    // ts_current_index
HandlerStatus tableExists(DatabaseConnection& connection);     // ts_exist
HandlerStatus isDatabaseReadOnly();                            // ts_readonly
HandlerStatus firstRecord(DatabaseConnection& connection);     // ts_top
HandlerStatus lastRecord(DatabaseConnection& connection);      // ts_bottom
HandlerStatus skipRecords(DatabaseConnection& connection);     // ts_skip
HandlerStatus seekRecord(DatabaseConnection& connection);      // ts_seek
HandlerStatus currentRecord(DatabaseConnection& connection);   // ts_getrec
HandlerStatus recordCount(DatabaseConnection& connection);     // ts_count
HandlerStatus deleteRecord(DatabaseConnection& connection);    // ts_delete

HandlerStatus appendRecord(DatabaseConnection& connection);           // ts_append
HandlerStatus appendRecordWithIndex(DatabaseConnection& connection);  // ts_append_withindex
HandlerStatus replaceRecord(DatabaseConnection& connection);          // ts_replace

}  // namespace tessary
