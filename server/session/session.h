#pragma once

// What one client does with one database: the open database, the tables open in it with the current one among
// them, and the error that the client has not asked for yet.

#include "server/session/table_cursor.h"

#include <list>
#include <mutex>

namespace tessary::server {

// 0 and empty: none.
struct PendingError {
    int code = 0;
    Text text;
};

// A record with what its values mean. The definition lives until the session's next operation.
struct TableRecord {
    const TableDefinition* definition = nullptr;
    std::vector<Value> values;
};

// Operations throw DatabaseError; `attempt` turns that into the pending error. Operations on records and on
// the current table throw noTableOpen (3420) when none is open; so do those on the database.
class Session {
public:
    explicit Session(std::shared_ptr<Engine> engine) : engine_(std::move(engine)) {}

    // Forgets the pending error and does the work. False: it failed, and an error is pending.
    template <class Work>
    bool attempt(Work&& work) {
        pending_ = {};
        try {
            work();
            return true;
        } catch (const DatabaseError& error) {
            pending_ = {static_cast<int>(error.code()), error.text()};
            return false;
        }
    }
    // Makes an error pending for an operation that gives its answer in another way.
    void setPending(ErrorCode code, Text text) { pending_ = {static_cast<int>(code), std::move(text)}; }
    const PendingError& pending() const { return pending_; }

    // Closes the open database first. False when the file is damaged and has to be repaired; nothing is open
    // then, and the engine's description of the damage is in `problem`.
    bool open(TextView path, OpenMode mode, Text& problem);
    // Also when none is open.
    void close();
    // From any thread, also during another operation: a statement that is at work ends with an error.
    void interrupt();
    bool isOpen() const { return database_ != nullptr; }
    // Without a database the session itself is: clients give up a connection that is not alive, while one
    // that is only closed goes on answering.
    bool isAlive() const { return !database_ || database_->isAlive(); }
    bool isReadOnly() const { return !database_ || database_->isReadOnly(); }
    Text path() const { return database_ ? database_->path() : Text(); }
    Engine& engine() { return *engine_; }
    Database& database();

    // Makes the table current, opening it when it is not open yet. An empty index name keeps order and place
    // of an open table; otherwise the table is ordered by the index and stands on its first record.
    void selectTable(TextView table, TextView index);
    // Empty when there is none.
    Text currentTable() const { return current_ ? current_->table() : Text(); }
    Text currentIndex() const { return current_ ? current_->index() : Text(); }
    // No table is at both ends.
    bool isAtEnd() const { return !current_ || current_->isAtEnd(); }
    bool isAtBeginning() const { return !current_ || current_->isAtBeginning(); }
    // The current one; none is current then.
    void closeTable();
    void closeAllTables();

    TableRecord moveFirst();
    TableRecord moveLast();
    TableRecord skip(std::int64_t count);
    TableRecord read();
    TableRecord seek(std::span<const Value> key);
    TableRecord append(std::span<const FieldValue> fields, bool stay);
    TableRecord replace(std::span<const FieldValue> fields);
    void erase() { cursor().erase(); }
    std::int64_t count() { return cursor().count(); }

    // The current table as it is defined now.
    TableDefinition structure();
    // name: a field of the current table, or table.field.
    std::vector<Value> attributes(TextView name);
    bool isRequired(TextView table, TextView field);
    // An open table that is renamed or deleted stays open, or is closed.
    void renameTable(TextView oldName, TextView newName);
    void dropTable(TextView name, bool withRelations);
    bool hasRelation(TextView name);
    // table: either of the relation's tables.
    void dropRelation(TextView table, TextView name);

    std::int64_t run(TextView statement, RowSink* sink);

private:
    using Cursors = std::list<TableCursor>;

    TableCursor& cursor();
    Cursors::iterator find(TextView table);
    void closeTable(TextView table);
    TableRecord record(std::vector<Value> values);

    std::shared_ptr<Engine> engine_;
    std::unique_ptr<Database> database_;
    // Of the pointer: it changes on the thread at work only, and interrupt comes from others.
    std::mutex databaseMutex_;
    Cursors cursors_;
    TableCursor* current_ = nullptr;
    PendingError pending_;
};

}  // namespace tessary::server
