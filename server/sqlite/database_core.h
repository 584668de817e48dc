#pragma once

// What a database and its open orders share.

#include "server/sqlite/linked_tables.h"
#include "server/sqlite/schema_editor.h"

namespace tessary::server {

struct DatabaseCore : std::enable_shared_from_this<DatabaseCore> {
    explicit DatabaseCore(TextView path, Connection::Access access)
        : connection(path, access), catalog(connection, "main"), editor(connection, catalog),
          links(connection) {}

    // A table by name, linked ones included. Throws tableNotFound (3078).
    OrderTable resolve(TextView name);
    // The same, without a value when there is none of that name.
    std::optional<OrderTable> find(TextView name);

    Connection connection;
    Catalog catalog;
    SchemaEditor editor;
    LinkedTables links;
};

}  // namespace tessary::server
