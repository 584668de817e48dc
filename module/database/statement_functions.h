#pragma once

// LISP functions that pass SQL statements and stored queries to the server.

#include "module/binding/handler_status.h"

struct DatabaseConnection;

namespace tessary {

HandlerStatus sqlStatement(DatabaseConnection& connection);             // ts_sql
HandlerStatus sqlStatementOrNil(DatabaseConnection& connection);        // ts_sql-nil
HandlerStatus sqlStatementOrErrorText(DatabaseConnection& connection);  // ts_sql-error
HandlerStatus sqlCommand(DatabaseConnection& connection);               // ts_command
HandlerStatus runStoredQuery(DatabaseConnection& connection);           // ts_query
HandlerStatus createStoredQuery(DatabaseConnection& connection);        // ts_create_query
HandlerStatus linkTable(DatabaseConnection& connection);                // ts_link_table

}  // namespace tessary
