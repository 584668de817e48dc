#pragma once

// How tables of a definition look in SQLite: names, columns, constraints, indexes, as SQL text.

#include "server/schema/definition.h"

#include <span>
#include <string>

namespace tessary::server {

// Of tables without an autonumber field: their INTEGER PRIMARY KEY. A "!" cannot stand in a name of the
// user's, so nothing of ours with one can meet one of his.
inline constexpr const char16_t* rowColumn = u"!row";

// The table's name in SQLite, which keeps names that begin with sqlite_ for itself; and back, also from the
// name that a table has while it is rebuilt.
Text physicalName(TextView table);
Text scratchName(TextView table);
Text tableOfPhysicalName(TextView physical);

const FieldDefinition* autonumberField(const TableDefinition& table);
// The quoted column that numbers the rows: the autonumber field or rowColumn.
std::string rowColumnOf(const TableDefinition& table);

// The index needs no tree of its own: its only field is the autonumber, by which the rows lie in order.
bool isRowOrder(const TableDefinition& table, const IndexDefinition& index);
// Unquoted name of an index in SQLite. Made with the table's number, so that it survives renaming.
Text physicalIndexName(std::int64_t tableId, TextView index);
// For the index that finds the rows of the foreign table of a relation.
Text physicalRelationIndexName(TextView relation);

// What the field holds when it is given null: a yes/no field its default, else no; any other null.
Value valueForNull(const FieldDefinition& field);

// CREATE TABLE with the given physical name. relations: those whose foreign table it is.
std::string createTableSql(const TableDefinition& table, const std::string& quotedPhysicalName,
                           std::span<const RelationDefinition> relations);
std::string createIndexSql(std::int64_t tableId, const TableDefinition& table, const IndexDefinition& index);
std::string createRelationIndexSql(const RelationDefinition& relation);

// As an SQL literal or an expression in parentheses.
std::string sqlLiteral(const Value& value);

bool isText(FieldType type);

}  // namespace tessary::server
