#pragma once

// LISP functions that name, make, close, compact and version databases.

#include "module/binding/handler_status.h"

struct DatabaseConnection;

namespace tessary {

HandlerStatus databasePath(DatabaseConnection& connection);   // ts_mdb
HandlerStatus closeDatabase(DatabaseConnection& connection);  // ts_close_db
HandlerStatus createDatabase();                               // ts_create_db
HandlerStatus compactDatabase();                              // ts_compact
HandlerStatus serverVersion();                                // ts_getVersion

}  // namespace tessary
