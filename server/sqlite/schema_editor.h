#pragma once

// Creates and changes tables, indexes and relations: in SQLite and in the catalog, in one transaction.

#include "server/sqlite/catalog.h"

#include <span>

namespace tessary::server {

// A transaction in which tables are dropped and made again: foreign keys are not looked at meanwhile, which
// SQLite allows to switch only outside of transactions. Inside another one it does nothing.
class SchemaChange {
public:
    SchemaChange(Connection& connection, Catalog& catalog);
    ~SchemaChange();
    SchemaChange(const SchemaChange&) = delete;
    SchemaChange& operator=(const SchemaChange&) = delete;
    void commit();

private:
    struct ForeignKeysOff {
        Connection* connection;  // null: left alone
        explicit ForeignKeysOff(Connection& of);
        ~ForeignKeysOff();
    };
    Catalog& catalog_;
    ForeignKeysOff foreignKeysOff_;
    Transaction transaction_;
    bool committed_ = false;
};

// Where the values of a field of the changed table come from.
struct FieldSource {
    std::optional<std::size_t> oldField;  // none: the field is new and gets its default
};

class SchemaEditor {
public:
    SchemaEditor(Connection& connection, Catalog& catalog) : connection_(connection), catalog_(catalog) {}

    void createTable(const TableDefinition& definition);
    void modifyTable(TextView name, std::span<const FieldChange> changes);
    void renameTable(TextView oldName, TextView newName);
    void dropTable(TextView name, bool withRelations);
    void createIndex(TextView table, const IndexDefinition& index);
    void dropIndex(TextView table, TextView index);
    void createRelation(const RelationDefinition& relation);
    void dropRelation(TextView name);
    void createQuery(const QueryDefinition& query);
    void dropQuery(TextView name);
    void linkTable(const LinkDefinition& link);

private:
    // Throws tableNotFound (3078); for a linked table, which can only be changed where it is, readOnly
    // (3027).
    TableEntry ownTable(TextView name);
    void requireNewTableName(TextView name);
    std::vector<RelationDefinition> relationsFrom(TextView foreignTable);
    std::vector<RelationDefinition> relationsOf(TextView table);  // either side
    void requireIndexNotUsed(const TableDefinition& table, const IndexDefinition& index);
    void requireFieldNotUsed(const TableDefinition& table, TextView field);
    void renameFieldInRelations(TextView table, TextView oldName, TextView newName);

    // Makes the table anew as `changed` says and copies its records with their values converted.
    void rebuild(const TableEntry& old, const TableEntry& changed, std::span<const FieldSource> sources);
    void rebuildUnchanged(TextView table);
    void copyRecords(const TableEntry& old, const TableEntry& changed, std::span<const FieldSource> sources);
    void keepSequence(const TableEntry& old, const TableEntry& changed);
    void createIndexes(const TableEntry& entry);

    Connection& connection_;
    Catalog& catalog_;
};

}  // namespace tessary::server
