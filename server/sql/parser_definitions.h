#pragma once

// Statements that define something: CREATE, ALTER and DROP of tables, indexes and stored queries.

#include "server/sql/parser_context.h"

namespace tessary::server::sql {

CreateTable parseCreateTable(ParserContext& context);
CreateIndex parseCreateIndex(ParserContext& context);
AlterTable parseAlterTable(ParserContext& context);
// At the word behind DROP.
void parseDrop(ParserContext& context, Statement& statement);

}  // namespace tessary::server::sql
