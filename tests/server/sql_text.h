#pragma once

// A syntax tree written back as a statement in which every operation has its parentheses and every name its
// brackets: what the tests of the parser compare. Parsed again, it gives the same tree.

#include "server/sql/syntax.h"

#include <string>

namespace tessary::server::sql {

std::string written(const Expression& expression);
std::string written(const Select& select);
// SELECT, INSERT, UPDATE, DELETE and EXECUTE, with PARAMETERS.
std::string written(const Statement& statement);

}  // namespace tessary::server::sql
