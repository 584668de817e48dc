#pragma once

// What the server asks of a database engine. The coclasses and the session know only this; an engine for a
// database server is added by implementing it. All operations throw DatabaseError, and each change is durable
// when it returns. No lock is held between two operations. One thread at a time uses a database; different
// databases are independent.

#include "server/schema/definition.h"
#include "server/sql/syntax.h"
#include "server/values/error.h"

#include <memory>
#include <span>

namespace tessary::server {

// One field of a result row. The text lives until the row is left.
struct Cell {
    enum class Kind { null, yesNo, longInteger, number, date, text } kind = Kind::null;
    std::int32_t integer = 0;  // yesNo (0 or 1), longInteger
    double number = 0;         // number, date (days)
    TextView text;
};

// Takes the rows of a result as they come.
class RowSink {
public:
    virtual ~RowSink() = default;
    virtual void
    columns(std::span<const Text> names) = 0;           // once, before the first row; also when there is none
    virtual void row(std::span<const Cell> cells) = 0;  // as many as columns
};

// Where a record stands in one order of its table: the values of the index's fields and the engine's own
// number of the row. It stays meaningful when the record is deleted or moved by somebody else: its neighbours
// are found from it.
struct Position {
    std::vector<Value> key;
    std::int64_t row = 0;
    // The position was made of a key that no record has: it lies before all records whose key begins with it.
    bool betweenRecords = false;
};

struct Record {
    Position position;
    std::vector<Value> values;  // in the order of the table's fields, of the fields' types
};

struct FieldValue {
    Text field;
    Value value;
};

// The records of one table in the order of one index, or of their numbers when there is no index. Made for a
// definition of the table; when that changes, operations throw invalidOperation (3219) and a new one is made.
class RecordOrder {
public:
    virtual ~RecordOrder() = default;

    // `offset` records after the first, or before the last. Nothing when there are not so many.
    virtual std::optional<Record> first(std::int64_t offset = 0) = 0;
    virtual std::optional<Record> last(std::int64_t offset = 0) = 0;
    // The record `count` (at least 1) places after or before the position, which need not hold a record any
    // more.
    virtual std::optional<Record> after(const Position& position, std::int64_t count = 1) = 0;
    virtual std::optional<Record> before(const Position& position, std::int64_t count = 1) = 0;
    // The record that stood there, as it is now; nothing when it was deleted.
    virtual std::optional<Record> at(const Position& position) = 0;
    // The first record whose key begins with the values, which are converted to the index's types.
    virtual std::optional<Record> seek(std::span<const Value> key) = 0;
    // The position of a key that seek did not find.
    virtual Position positionOf(std::span<const Value> key) = 0;

    virtual std::int64_t count() = 0;
    // Fields that are not named get their default. The record as stored.
    virtual Record insert(std::span<const FieldValue> fields) = 0;
    virtual Record update(const Position& position, std::span<const FieldValue> fields) = 0;
    virtual void erase(const Position& position) = 0;
};

class Database {
public:
    virtual ~Database() = default;

    virtual Text path() const = 0;  // as it was given
    virtual bool isReadOnly() const = 0;
    // The file can still be reached.
    virtual bool isAlive() = 0;

    // Tables, linked ones included, in alphabetical order.
    virtual std::vector<Text> tableNames() = 0;
    virtual bool hasTable(TextView name) = 0;
    virtual TableDefinition table(TextView name) = 0;
    virtual void createTable(const TableDefinition& definition) = 0;
    virtual void modifyTable(TextView name, std::span<const FieldChange> changes) = 0;
    virtual void renameTable(TextView oldName, TextView newName) = 0;
    // A table that relations refer to is refused unless withRelations. A linked table is only unlinked.
    virtual void dropTable(TextView name, bool withRelations) = 0;
    virtual void createIndex(TextView table, const IndexDefinition& index) = 0;
    virtual void dropIndex(TextView table, TextView index) = 0;

    virtual std::vector<RelationDefinition> relations() = 0;
    virtual void createRelation(const RelationDefinition& relation) = 0;
    virtual void dropRelation(TextView name) = 0;

    virtual std::vector<QueryDefinition> queries() = 0;
    virtual void createQuery(const QueryDefinition& query) = 0;
    virtual void dropQuery(TextView name) = 0;

    virtual void linkTable(const LinkDefinition& link) = 0;

    // index: empty for the primary key's order, or that of the records' numbers without one. The name of the
    // order's index, which may be empty, is told by indexName.
    virtual std::unique_ptr<RecordOrder> openOrder(TextView table, TextView index, Text& indexName) = 0;

    // Runs one statement. Rows of a SELECT go to the sink (null: they are counted only). The number of
    // records changed, inserted or deleted, or of rows. parameters are taken by the statement's parameters in
    // the order of their declaration, else of their first use; too few throw tooFewParameters (3061) naming
    // those without a value.
    virtual std::int64_t run(const sql::Statement& statement, std::span<const Value> parameters,
                             RowSink* sink) = 0;
    // The same for a stored query.
    virtual std::int64_t runQuery(TextView name, std::span<const Value> parameters, RowSink* sink) = 0;

    // From any thread: a statement at work ends soon, with an error and nothing changed. Without effect when
    // there is none.
    virtual void interrupt() = 0;
};

enum class OpenMode { readWrite, readOnly, readWriteIfPossible };

struct OpenResult {
    std::unique_ptr<Database> database;  // null: the file is damaged and needs repair (see problem)
    Text problem;
};

class Engine {
public:
    virtual ~Engine() = default;

    // readWrite of a file that can only be read opens it read-only too. Throws fileNotFound (3024),
    // pathNotValid (3044), cannotOpen (3051), notADatabase (3343) ...
    virtual OpenResult open(TextView path, OpenMode mode) = 0;
    // Throws databaseExists (3204) and leaves the file alone when there is one.
    virtual void create(TextView path) = 0;
    // Writes a compacted copy, which appears whole or not at all. What cannot be read of a damaged source is
    // left out: then the copy is made all the same, and a DatabaseError with code damaged (3049) tells what
    // was lost.
    virtual void compact(TextView source, TextView target) = 0;
};

// The embedded engine.
std::unique_ptr<Engine> makeSqliteEngine();

}  // namespace tessary::server
