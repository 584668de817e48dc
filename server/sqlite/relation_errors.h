#pragma once

#include "server/sqlite/catalog.h"

#include <functional>

namespace tessary::server {

enum class ChangeKind { insert, update, erase };

// After a statement that changes `table` failed with a ForeignKeyError, inside the same transaction, which
// the caller rolls back: finds the tables by making the change once more without looking at relations, and
// throws relatedRecordsExist (3200) or relatedRecordMissing (3201) with their names. repeat makes the change.
[[noreturn]] void throwRelationError(Connection& connection, Catalog& catalog, TextView table,
                                     ChangeKind kind, const std::function<void()>& repeat);

}  // namespace tessary::server
