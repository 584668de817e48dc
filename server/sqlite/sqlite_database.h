#pragma once

#include "server/sqlite/database_core.h"

#include "server/engine/engine.h"

namespace tessary::server {

// A database file. Catalog and statements do the work; this gives it the engine's face.
class SqliteDatabase : public Database {
public:
    SqliteDatabase(std::shared_ptr<DatabaseCore> core, TextView path) : core_(std::move(core)), path_(path) {}

    Text path() const override { return path_; }
    bool isReadOnly() const override { return core_->connection.isReadOnly(); }
    bool isAlive() override;

    std::vector<Text> tableNames() override;
    bool hasTable(TextView name) override;
    TableDefinition table(TextView name) override;
    void createTable(const TableDefinition& definition) override;
    void modifyTable(TextView name, std::span<const FieldChange> changes) override;
    void renameTable(TextView oldName, TextView newName) override;
    void dropTable(TextView name, bool withRelations) override;
    void createIndex(TextView table, const IndexDefinition& index) override;
    void dropIndex(TextView table, TextView index) override;

    std::vector<RelationDefinition> relations() override;
    void createRelation(const RelationDefinition& relation) override;
    void dropRelation(TextView name) override;

    std::vector<QueryDefinition> queries() override;
    void createQuery(const QueryDefinition& query) override;
    void dropQuery(TextView name) override;

    void linkTable(const LinkDefinition& link) override;

    std::unique_ptr<RecordOrder> openOrder(TextView table, TextView index, Text& indexName) override;
    std::int64_t run(const sql::Statement& statement, std::span<const Value> parameters,
                     RowSink* sink) override;
    std::int64_t runQuery(TextView name, std::span<const Value> parameters, RowSink* sink) override;

    void interrupt() override { sqlite3_interrupt(core_->connection.handle()); }

    // For tests: other users' locks are waited for this long.
    void setPatience(std::chrono::milliseconds patience) { core_->connection.setPatience(patience); }

private:
    std::shared_ptr<DatabaseCore> core_;
    Text path_;
};

}  // namespace tessary::server
