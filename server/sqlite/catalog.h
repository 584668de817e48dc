#pragma once

// The definitions of a database, kept in tables of our own inside its file and changed in the same
// transaction as the tables they describe. SQLite's own schema does not tell a date from a number, nor the
// order in which a drafter sees things; these do, and they are what counts.

#include "server/sqlite/sqlite_handle.h"

#include "server/schema/definition.h"

#include <map>
#include <span>

namespace tessary::server {

struct TableEntry {
    std::int64_t id = 0;  // names the table's indexes in SQLite, and stays when the table is renamed
    TableDefinition definition;
};

// What a RecordOrder or a statement was made for.
using TableEntryPtr = std::shared_ptr<const TableEntry>;
bool sameShape(const TableEntry& left, const TableEntry& right);

struct Definitions {
    std::map<Text, TableEntryPtr, NameLess> tables;
    std::map<Text, RelationDefinition, NameLess> relations;
    std::map<Text, QueryDefinition, NameLess> queries;
    std::map<Text, LinkDefinition, NameLess> links;

    const TableEntryPtr* table(TextView name) const;  // null: none
};

class Catalog {
public:
    // schema: "main", or the name under which another database is attached.
    Catalog(Connection& connection, std::string schema)
        : connection_(connection), schema_(std::move(schema)) {}

    const std::string& schema() const { return schema_; }

    // As they are now; read again only when somebody has changed one. The reference holds until the next
    // call.
    const Definitions& definitions();
    // After a rollback: what was read meanwhile never came to be.
    void forget() { loadedVersion_.reset(); }

    // Everything below is for the main schema and runs inside the caller's transaction.
    void createTables();  // those that are missing
    std::int64_t newTableId(TextView name);
    void store(const TableEntry& entry);  // replaces what there is under the id
    void removeTable(std::int64_t id);
    void store(const RelationDefinition& relation);
    void removeRelation(TextView name);
    void store(const QueryDefinition& query);
    void removeQuery(TextView name);
    void store(const LinkDefinition& link);
    void removeLink(TextView name);

private:
    std::string tableName(const char* name) const { return schema_ + ".\"!" + name + "\""; }
    void run(const std::string& sql, std::span<const Value> values);
    void changed();
    Definitions readDefinitions();
    void load(Definitions& definitions);
    void loadFields(std::map<std::int64_t, TableEntry>& entries);
    void loadIndexes(std::map<std::int64_t, TableEntry>& entries);
    void loadRelations(Definitions& definitions);

    Connection& connection_;
    std::string schema_;
    Prepared version_;
    std::optional<std::int64_t> loadedVersion_;
    Definitions definitions_;
};

}  // namespace tessary::server
