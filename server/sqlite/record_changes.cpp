// The part of a record order that changes records.

#include "server/sqlite/record_order.h"

#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

namespace tessary::server {

std::vector<std::optional<Value>>
SqliteRecordOrder::convertedFields(std::span<const FieldValue> fields) const {
    const TableDefinition& table = table_.entry->definition;
    std::vector<std::optional<Value>> values(table.fields.size());
    for (const FieldValue& given : fields) {
        const FieldDefinition* field = table.field(given.field);
        if (field == nullptr)
            throw DatabaseError(
                ErrorCode::itemNotFound,
                inText(u"The field '", given.field, u"' is not in the table '", table.name, u"'."));
        Value value = convertTo(field->type, given.value, field->name);
        values[static_cast<std::size_t>(field - table.fields.data())] =
            isNull(value) ? valueForNull(*field) : std::move(value);
    }
    return values;
}

void SqliteRecordOrder::change(ChangeKind kind, const std::function<void()>& run) {
    if (!table_.isFile)
        throw DatabaseError(ErrorCode::readOnly,
                            inText(u"The table '", table_.entry->definition.name,
                                   u"' is linked from a text file, which can only be read."));
    Transaction transaction(*connection_, Transaction::Kind::write);
    requireSameDefinition();
    try {
        run();
    } catch (const ForeignKeyError&) {
        if (table_.catalog == nullptr)
            throw;
        throwRelationError(*connection_, *table_.catalog, table_.entry->definition.name, kind, run);
    }
    transaction.commit();
}

namespace {

// Of a whole record, which has no value at all in a table that has got no field yet.
std::string insertSql(const std::string& table, const std::vector<FieldDefinition>& fields) {
    if (fields.empty())
        return "INSERT INTO " + table + " DEFAULT VALUES";
    std::string columns, places;
    for (const FieldDefinition& field : fields) {
        columns += (columns.empty() ? "" : ",") + quotedName(field.name);
        places += places.empty() ? "?" : ",?";
    }
    return "INSERT INTO " + table + "(" + columns + ") VALUES(" + places + ")";
}

}  // namespace

Record SqliteRecordOrder::insert(std::span<const FieldValue> fields) {
    const std::vector<FieldDefinition>& definitions = table_.entry->definition.fields;
    const std::vector<std::optional<Value>> given = convertedFields(fields);
    Record record;
    for (std::size_t place = 0; place < definitions.size(); ++place)
        record.values.push_back(
            given[place] ? *given[place]
                         : definitions[place].defaultValue.value_or(valueForNull(definitions[place])));
    change(ChangeKind::insert, [&] {
        if (!insert_)
            insert_ = connection_->prepare(insertSql(table_.sqliteName, definitions), true);
        int place = 0;
        for (const Value& value : record.values)
            insert_.bind(++place, value);
        insert_.run();
        record.position.row = sqlite3_last_insert_rowid(connection_->handle());
    });
    for (std::size_t place = 0; place < definitions.size(); ++place)
        if (definitions[place].autonumber)
            record.values[place] = static_cast<std::int32_t>(record.position.row);
    record.position.key = keyOf(record.values, record.position.row);
    return record;
}

Record SqliteRecordOrder::update(const Position& position, std::span<const FieldValue> fields) {
    const TableDefinition& table = table_.entry->definition;
    requireRecord(position);
    const std::vector<std::optional<Value>> given = convertedFields(fields);
    std::string assignments, equalities;
    std::vector<Value> values;
    for (std::size_t place = 0; place < given.size(); ++place) {
        const FieldDefinition& field = table.fields[place];
        if (!given[place])
            continue;
        if (field.autonumber && *given[place] != Value(static_cast<std::int32_t>(position.row)))
            throw DatabaseError(
                ErrorCode::readOnly,
                inText(u"The field '", field.name, u"' is numbered by the database and cannot be changed."));
        values.push_back(*given[place]);
        const std::string parameter = "?" + std::to_string(values.size());
        assignments += (assignments.empty() ? "" : ",") + quotedName(field.name) + "=" + parameter;
        equalities += " AND " + quotedName(field.name) + " IS " + parameter + " COLLATE BINARY";
    }
    if (values.empty())
        assignments = shape_.rowColumn + "=" + shape_.rowColumn;
    const std::string row = " WHERE " + shape_.rowColumn + "=?" + std::to_string(values.size() + 1);
    std::optional<Record> record;
    const auto run = [&](const std::string& sql) {
        Prepared& statement = updates_[sql];
        if (!statement)
            statement = connection_->prepare(sql, true);
        const ResetLater resetLater(statement);
        int place = 0;
        for (const Value& value : values)
            statement.bind(++place, value);
        statement.bind(++place, position.row);
        while (statement.step())
            record = recordOf(statement);
    };
    // A record that holds the values already is not written. Programs write back whole lists of which little
    // has changed, and what takes time is to wait for other writers and to have a write safe on the disk.
    if (table_.isFile && !connection_->isReadOnly()) {
        const Transaction transaction(*connection_, Transaction::Kind::read);
        requireSameDefinition();
        run("SELECT " + shape_.selected + " FROM " + table_.sqliteName + row + equalities);
    }
    if (record)
        return *record;
    change(ChangeKind::update, [&] {
        run("UPDATE " + table_.sqliteName + " SET " + assignments + row + " RETURNING " + shape_.selected);
        if (!record)
            throwDeleted();
    });
    return *record;
}

void SqliteRecordOrder::erase(const Position& position) {
    requireRecord(position);
    change(ChangeKind::erase, [&] {
        if (!erase_)
            erase_ = connection_->prepare(
                "DELETE FROM " + table_.sqliteName + " WHERE " + shape_.rowColumn + "=?1", true);
        erase_.bind(1, position.row);
        erase_.run();
        if (sqlite3_changes64(connection_->handle()) == 0)
            throwDeleted();
    });
}

void SqliteRecordOrder::requireRecord(const Position& position) const {
    if (position.betweenRecords)
        throw DatabaseError(ErrorCode::noCurrentRecord, u"There is no current record.");
}

void SqliteRecordOrder::throwDeleted() const {
    throw DatabaseError(
        ErrorCode::recordDeleted,
        inText(u"The record of the table '", table_.entry->definition.name, u"' has been deleted."));
}

}  // namespace tessary::server
