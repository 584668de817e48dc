#pragma once

// Expressions, from the loosest operator to the tightest: imp; eqv; xor; or; and; not; comparisons with like,
// between, in and is; &; + -; mod; \; * /; the sign; ^. So -2^2 is -4. Operators of one level go from left to
// right.

#include "server/sql/parser_context.h"

namespace tessary::server::sql {

ExpressionPtr parseExpression(ParserContext& context);
// One or more, with commas between.
std::vector<ExpressionPtr> parseExpressions(ParserContext& context);

// t.f, t!f or f.
Name parseFieldReference(ParserContext& context);

// A constant with an optional sign, as behind DEFAULT.
Value parseConstant(ParserContext& context);

}  // namespace tessary::server::sql
