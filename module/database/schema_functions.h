#pragma once

// LISP functions that create, change and describe tables, fields, indexes and relations.

#include "module/binding/handler_status.h"

struct DatabaseConnection;

namespace tessary {

HandlerStatus createTable(DatabaseConnection& connection);      // ts_create_table
HandlerStatus modifyTable(DatabaseConnection& connection);      // ts_modify_table
HandlerStatus deleteTable(DatabaseConnection& connection);      // ts_delete_table
HandlerStatus renameTable(DatabaseConnection& connection);      // ts_rename_table
HandlerStatus tableStructure(DatabaseConnection& connection);   // ts_structure
HandlerStatus tableNames(DatabaseConnection& connection);       // ts_list_tables
HandlerStatus indexNames(DatabaseConnection& connection);       // ts_list_indexes
HandlerStatus createIndex(DatabaseConnection& connection);      // ts_create_index
HandlerStatus isFieldRequired(DatabaseConnection& connection);  // ts_field_required
HandlerStatus fieldAttributes(DatabaseConnection& connection);  // ts_attributes
HandlerStatus relationExists(DatabaseConnection& connection);   // ts_relationExists
HandlerStatus deleteRelation(DatabaseConnection& connection);   // ts_relationDelete

}  // namespace tessary
