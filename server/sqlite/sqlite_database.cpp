#include "server/sqlite/sqlite_database.h"

#include "server/sqlite/files.h"
#include "server/sqlite/record_order.h"
#include "server/sqlite/statement_runner.h"

#include <algorithm>

namespace tessary::server {

bool SqliteDatabase::isAlive() {
    std::error_code error;
    return std::filesystem::exists(pathOf(core_->connection.path()), error);
}

std::vector<Text> SqliteDatabase::tableNames() {
    const Definitions& definitions = core_->catalog.definitions();
    std::vector<Text> names;
    for (const auto& [name, entry] : definitions.tables)
        names.push_back(name);
    for (const auto& [name, link] : definitions.links)
        names.push_back(name);
    std::sort(names.begin(), names.end(), NameLess());
    return names;
}

// Of a linked table alone its name is looked at, so that a missing file keeps nobody from seeing the link.
bool SqliteDatabase::hasTable(TextView name) {
    const Definitions& definitions = core_->catalog.definitions();
    return definitions.table(name) != nullptr || definitions.links.contains(name);
}

TableDefinition SqliteDatabase::table(TextView name) {
    const OrderTable found = core_->resolve(name);
    TableDefinition definition = found.entry->definition;
    if (core_->catalog.definitions().table(name) == nullptr)
        definition.name = name;  // a linked table goes by its name here
    return definition;
}

void SqliteDatabase::createTable(const TableDefinition& definition) {
    core_->editor.createTable(definition);
}

void SqliteDatabase::modifyTable(TextView name, std::span<const FieldChange> changes) {
    core_->editor.modifyTable(name, changes);
}

void SqliteDatabase::renameTable(TextView oldName, TextView newName) {
    core_->editor.renameTable(oldName, newName);
}

void SqliteDatabase::dropTable(TextView name, bool withRelations) {
    core_->editor.dropTable(name, withRelations);
}

void SqliteDatabase::createIndex(TextView table, const IndexDefinition& index) {
    core_->editor.createIndex(table, index);
}

void SqliteDatabase::dropIndex(TextView table, TextView index) {
    core_->editor.dropIndex(table, index);
}

std::vector<RelationDefinition> SqliteDatabase::relations() {
    std::vector<RelationDefinition> result;
    for (const auto& [name, relation] : core_->catalog.definitions().relations)
        result.push_back(relation);
    return result;
}

void SqliteDatabase::createRelation(const RelationDefinition& relation) {
    core_->editor.createRelation(relation);
}

void SqliteDatabase::dropRelation(TextView name) {
    core_->editor.dropRelation(name);
}

std::vector<QueryDefinition> SqliteDatabase::queries() {
    std::vector<QueryDefinition> result;
    for (const auto& [name, query] : core_->catalog.definitions().queries)
        result.push_back(query);
    return result;
}

void SqliteDatabase::createQuery(const QueryDefinition& query) {
    core_->editor.createQuery(query);
}

void SqliteDatabase::dropQuery(TextView name) {
    core_->editor.dropQuery(name);
}

// The target is looked at now, when the drafter can correct its name; later it may come and go.
void SqliteDatabase::linkTable(const LinkDefinition& link) {
    core_->links.resolve(link);
    core_->editor.linkTable(link);
}

std::unique_ptr<RecordOrder> SqliteDatabase::openOrder(TextView table, TextView index, Text& indexName) {
    OrderTable source = core_->resolve(table);
    const TableDefinition& definition = source.entry->definition;
    const IndexDefinition* found = index.empty() ? definition.primaryIndex() : definition.index(index);
    if (found == nullptr && !index.empty())
        throw DatabaseError(ErrorCode::indexNotFound,
                            inText(u"The table '", table, u"' has no index '", index, u"'."));
    indexName = found == nullptr ? Text() : found->name;
    std::shared_ptr<Connection> connection(core_, &core_->connection);
    return std::make_unique<SqliteRecordOrder>(std::move(connection), std::move(source), found);
}

std::int64_t SqliteDatabase::run(const sql::Statement& statement, std::span<const Value> parameters,
                                 RowSink* sink) {
    return runStatement(*core_, statement, parameters, sink);
}

std::int64_t SqliteDatabase::runQuery(TextView name, std::span<const Value> parameters, RowSink* sink) {
    return runStoredQuery(*core_, name, parameters, sink);
}

}  // namespace tessary::server
