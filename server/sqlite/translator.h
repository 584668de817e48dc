#pragma once

// Turns statements of the product's SQL dialect that read or change records into SQLite's SQL.

#include "server/sql/syntax.h"

#include <span>
#include <string>

namespace tessary::server {

// What the translator asks about the database: the tables and queries that exist, and how SQLite knows the
// tables.
class SchemaView {
public:
    virtual ~SchemaView() = default;
    virtual const TableDefinition* table(TextView name) const = 0;  // null: there is none of that name
    virtual std::string sqliteName(TextView table) const = 0;  // quoted, with its schema: "main"."tblLayer"
    virtual const QueryDefinition* query(TextView name) const = 0;  // null: none
};

struct ResultColumn {
    Text name;
    // Type of the values where it is known; otherwise each value's own storage decides.
    std::optional<FieldType> type;
};

struct Translation {
    std::string sql;               // UTF-8; parameters are ?1, ?2 ...
    std::vector<Text> parameters;  // their names, in the order in which values are given; "?" for unnamed
                                   // ones. One that is declared but not used does not occur in sql.
    std::vector<ResultColumn> columns;  // of a SELECT that is not INTO
};

// Throws tableNotFound (3078), itemNotFound (3265), unknownFunction (3085), readOnly-type errors for what
// cannot be changed through a query (3073) and so on, naming what is meant. A name that is no field becomes a
// parameter.
Translation translateSelect(const sql::Select& select, std::span<const sql::ParameterDeclaration> parameters,
                            const SchemaView& schema);
Translation translateInsert(const sql::Insert& insert, std::span<const sql::ParameterDeclaration> parameters,
                            const SchemaView& schema);
Translation translateUpdate(const sql::Update& update, std::span<const sql::ParameterDeclaration> parameters,
                            const SchemaView& schema);
Translation translateDelete(const sql::Delete& statement,
                            std::span<const sql::ParameterDeclaration> parameters, const SchemaView& schema);
// The table that SELECT ... INTO makes: the result's columns as fields. The translation is that of the SELECT
// alone.
Translation translateInto(const sql::Select& select, std::span<const sql::ParameterDeclaration> parameters,
                          const SchemaView& schema, TableDefinition& target);

// "name" with quotes doubled, as SQLite reads it.
std::string quotedName(TextView name);

}  // namespace tessary::server
