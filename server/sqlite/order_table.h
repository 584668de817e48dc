#pragma once

// A table that records are read from: one of the database's own, or a linked one.

#include "server/sqlite/catalog.h"

#include <functional>

namespace tessary::server {

struct OrderTable {
    TableEntryPtr entry;
    std::string schema;      // of SQLite
    std::string sqliteName;  // quoted, with the schema
    bool isFile = true;      // false: rows of a CSV file, held in memory
    // The definition as it is now, null when the table is gone. Called inside transactions.
    std::function<TableEntryPtr()> current;
    // The catalog that knows the table's relations; null without.
    Catalog* catalog = nullptr;
};

}  // namespace tessary::server
