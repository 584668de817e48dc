#pragma once

// What stands behind FROM and UPDATE: tables, stored queries, selects and joins of them, in any parentheses.

#include "server/sql/parser_context.h"

namespace tessary::server::sql {

// A list of joins with commas between, which are cross joins and bind loosest.
SourcePtr parseSources(ParserContext& context);

}  // namespace tessary::server::sql
