#pragma once

// Fields and constraints, as CREATE TABLE and ALTER TABLE have them, and the types of PARAMETERS.

#include "server/sql/parser_context.h"

namespace tessary::server::sql {

// Where the indexes and relations of one table's constraints go.
struct Constraints {
    TextView table;
    std::vector<IndexDefinition>& indexes;
    std::vector<RelationDefinition>& relations;
};

// A name that is about to be given to something. Throws nameNotValid (3125).
Text parseNewName(ParserContext& context);

// A type with its size, as in text(20). The definition has no name. Throws typeUnknown (3259).
FieldDefinition parseType(ParserContext& context);

// name type [NOT NULL] [DEFAULT constant] [constraints]
FieldDefinition parseField(ParserContext& context, const Constraints& constraints);

bool atTableConstraint(ParserContext& context);
// [CONSTRAINT name] PRIMARY KEY (fields), UNIQUE (fields), FOREIGN KEY (fields) REFERENCES table (fields).
void parseTableConstraint(ParserContext& context, const Constraints& constraints);

// (field [ASC|DESC], ...)
std::vector<IndexField> parseIndexFields(ParserContext& context);

}  // namespace tessary::server::sql
