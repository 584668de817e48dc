#pragma once

#include "server/sqlite/database_core.h"

#include "server/engine/engine.h"

namespace tessary::server {

// Runs a statement of the dialect; see Database::run.
std::int64_t runStatement(DatabaseCore& core, const sql::Statement& statement,
                          std::span<const Value> parameters, RowSink* sink);
std::int64_t runStoredQuery(DatabaseCore& core, TextView name, std::span<const Value> parameters,
                            RowSink* sink);

}  // namespace tessary::server
