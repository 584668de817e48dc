#include "server/session/session.h"

#include <algorithm>

namespace tessary::server {

bool Session::open(TextView path, OpenMode mode, Text& problem) {
    close();
    OpenResult result = engine_->open(path, mode);
    problem = std::move(result.problem);
    const std::lock_guard lock(databaseMutex_);
    database_ = std::move(result.database);
    return database_ != nullptr;
}

void Session::close() {
    closeAllTables();
    const std::lock_guard lock(databaseMutex_);
    database_.reset();
}

void Session::interrupt() {
    const std::lock_guard lock(databaseMutex_);
    if (database_) {
        database_->interrupt();
    }
}

Database& Session::database() {
    if (!database_) {
        throw DatabaseError(ErrorCode::noTableOpen, u"No database is open.");
    }
    return *database_;
}

TableCursor& Session::cursor() {
    database();
    if (!current_) {
        throw DatabaseError(ErrorCode::noTableOpen, u"No table is open.");
    }
    return *current_;
}

Session::Cursors::iterator Session::find(TextView table) {
    return std::find_if(cursors_.begin(), cursors_.end(),
                        [table](const TableCursor& cursor) { return sameName(cursor.table(), table); });
}

void Session::selectTable(TextView table, TextView index) {
    const Cursors::iterator found = find(table);
    if (found == cursors_.end()) {
        current_ = &cursors_.emplace_back(database(), table, index);
        return;
    }
    if (!index.empty()) {
        found->setIndex(index);
    } else if (!database().hasTable(table)) {
        closeTable(table);
        throw DatabaseError(ErrorCode::tableNotFound, u"The table '" + Text(table) + u"' does not exist.");
    }
    current_ = &*found;
}

void Session::closeTable(TextView table) {
    const Cursors::iterator found = find(table);
    if (found == cursors_.end()) {
        return;
    }
    if (current_ == &*found) {
        current_ = nullptr;
    }
    cursors_.erase(found);
}

void Session::closeTable() {
    closeTable(cursor().table());
}

void Session::closeAllTables() {
    current_ = nullptr;
    cursors_.clear();
}

TableRecord Session::record(std::vector<Value> values) {
    return {&current_->definition(), std::move(values)};
}

TableRecord Session::moveFirst() {
    return record(cursor().moveFirst());
}

TableRecord Session::moveLast() {
    return record(cursor().moveLast());
}

TableRecord Session::skip(std::int64_t count) {
    return record(cursor().skip(count));
}

TableRecord Session::read() {
    return record(cursor().read());
}

TableRecord Session::seek(std::span<const Value> key) {
    return record(cursor().seek(key));
}

TableRecord Session::append(std::span<const FieldValue> fields, bool stay) {
    return record(cursor().append(fields, stay));
}

TableRecord Session::replace(std::span<const FieldValue> fields) {
    return record(cursor().replace(fields));
}

TableDefinition Session::structure() {
    return database().table(cursor().table());
}

namespace {

const FieldDefinition& fieldOf(const TableDefinition& table, TextView field) {
    if (const FieldDefinition* found = table.field(field)) {
        return *found;
    }
    throw DatabaseError(ErrorCode::itemNotFound,
                        u"There is no field '" + Text(field) + u"' in table '" + table.name + u"'.");
}

}  // namespace

std::vector<Value> Session::attributes(TextView name) {
    // No name holds a point.
    const std::size_t point = name.find(u'.');
    const TableDefinition table =
        point == TextView::npos ? structure() : database().table(name.substr(0, point));
    const TextView field = point == TextView::npos ? name : name.substr(point + 1);
    return attributesOf(table, fieldOf(table, field));
}

bool Session::isRequired(TextView table, TextView field) {
    const TableDefinition definition = database().table(table);
    return fieldOf(definition, field).required;
}

void Session::renameTable(TextView oldName, TextView newName) {
    database().renameTable(oldName, newName);
    const Cursors::iterator found = find(oldName);
    if (found != cursors_.end()) {
        found->renamed(newName);
    }
}

void Session::dropTable(TextView name, bool withRelations) {
    database().dropTable(name, withRelations);
    closeTable(name);
}

bool Session::hasRelation(TextView name) {
    const std::vector<RelationDefinition> relations = database().relations();
    return std::any_of(relations.begin(), relations.end(),
                       [name](const RelationDefinition& relation) { return sameName(relation.name, name); });
}

void Session::dropRelation(TextView table, TextView name) {
    for (const RelationDefinition& relation : database().relations()) {
        if (sameName(relation.name, name) &&
            (sameName(relation.table, table) || sameName(relation.foreignTable, table))) {
            database().dropRelation(relation.name);
            return;
        }
    }
    throw DatabaseError(ErrorCode::itemNotFound,
                        u"There is no relation '" + Text(name) + u"' of table '" + Text(table) + u"'.");
}

std::int64_t Session::run(TextView statement, RowSink* sink) {
    return database().run(sql::parse(statement), {}, sink);
}

}  // namespace tessary::server
