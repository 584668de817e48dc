#pragma once

// Statements that read or change records: SELECT with its sources and unions, INSERT, UPDATE, DELETE.

#include "server/sql/parser_context.h"

namespace tessary::server::sql {

// SELECT with all that may follow, at the word SELECT or a parenthesis before it.
SelectPtr parseSelect(ParserContext& context);

// One inside another statement's expression or sources, with the number of levels of its tree.
struct NestedSelect {
    SelectPtr select;
    int height = 0;
};
NestedSelect parseNestedSelect(ParserContext& context);
// What follows a select in parentheses that turned out to be the first member of a union, at UNION.
NestedSelect parseUnionOf(ParserContext& context, SelectPtr first, int height);

Insert parseInsert(ParserContext& context);
Update parseUpdate(ParserContext& context);
Delete parseDelete(ParserContext& context);

}  // namespace tessary::server::sql
