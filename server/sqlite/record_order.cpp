#include "server/sqlite/record_order.h"

#include "server/sqlite/change_watch.h"
#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

#include <utility>

namespace tessary::server {

namespace {

constexpr std::size_t largestBlock = 64;
// To pass over more than these, the index alone is walked.
constexpr std::int64_t longestRecordSkip = 16;
constexpr std::size_t blockGrowth = 4;
constexpr std::size_t largestBlockText = 1 << 18;  // characters
constexpr std::chrono::milliseconds longestBlockUse{500};

std::size_t textSize(const Record& record) {
    std::size_t size = 0;
    for (const Value& value : record.values)
        if (const Text* text = std::get_if<Text>(&value))
            size += text->size();
    return size;
}

bool samePlace(const Position& left, const Position& right) {
    return left.row == right.row && !left.betweenRecords && !right.betweenRecords && left.key == right.key;
}

}  // namespace

SqliteRecordOrder::SqliteRecordOrder(std::shared_ptr<Connection> connection, OrderTable table,
                                     const IndexDefinition* index)
    : connection_(std::move(connection)), table_(std::move(table)),
      shape_(orderShape(table_.entry->definition, table_.sqliteName, index,
                        index == nullptr ? Text() : physicalIndexName(table_.entry->id, index->name))) {}

void SqliteRecordOrder::requireSameDefinition() {
    const TableEntryPtr now = table_.current();
    if (now == nullptr || !sameShape(*now, *table_.entry))
        throw DatabaseError(
            ErrorCode::invalidOperation,
            inText(u"The definition of the table '", table_.entry->definition.name, u"' has changed."));
}

// SQLite looks at the schema whenever a statement starts, and compiles the statement anew when it has
// changed: only then the definitions can have changed too.
void SqliteRecordOrder::checkPrepared(Prepared& statement) {
    if (statement.wasPreparedAgain())
        requireSameDefinition();
}

template <class Work>
auto SqliteRecordOrder::reading(Work work) {
    const Transaction transaction(*connection_, Transaction::Kind::read);
    try {
        return work();
    } catch (const DatabaseError&) {
        requireSameDefinition();  // tells better why a table, a column or an index is missing
        throw;
    }
}

Prepared& SqliteRecordOrder::statementOf(Prepared& kept, const std::string& sql) {
    if (!kept) {
        requireSameDefinition();
        kept = connection_->prepare(sql, true);
    }
    return kept;
}

Prepared& SqliteRecordOrder::statementOf(const KeyRange& range) {
    return statementOf(ranges_[range], rangeSql(shape_, range, shape_.selected));
}

Prepared& SqliteRecordOrder::rowStatementOf(const KeyRange& range) {
    return statementOf(rowRanges_[range], rangeSql(shape_, range, shape_.rowColumn));
}

std::vector<Value> SqliteRecordOrder::keyOf(const std::vector<Value>& values, std::int64_t row) const {
    std::vector<Value> key;
    for (const KeyColumn& column : shape_.columns)
        key.push_back(values[column.field]);
    if (shape_.rowKey)
        key.push_back(static_cast<std::int32_t>(row));
    return key;
}

Record SqliteRecordOrder::recordOf(const Prepared& row) const {
    Record record;
    const std::vector<FieldDefinition>& fields = table_.entry->definition.fields;
    record.values.reserve(fields.size());
    record.position.row = row.integer(0);
    int column = 0;
    for (const FieldDefinition& field : fields)
        record.values.push_back(row.value(++column, field.type));
    record.position.key = keyOf(record.values, record.position.row);
    return record;
}

bool SqliteRecordOrder::read(std::span<const KeyRange> ranges, const Position& from, std::int64_t skip,
                             std::size_t most, std::vector<Record>& records) {
    std::size_t characters = 0;
    for (const KeyRange& range : ranges) {
        Prepared& statement = statementOf(range);
        const ResetLater resetLater(statement);
        bindRange(statement, shape_, range, from);
        bool started = false;
        while (statement.step()) {
            if (!std::exchange(started, true))
                checkPrepared(statement);
            if (skip > 0) {
                --skip;
                continue;
            }
            records.push_back(recordOf(statement));
            characters += textSize(records.back());
            if (records.size() >= most || characters > largestBlockText)
                return false;
        }
        if (!started)
            checkPrepared(statement);
    }
    return true;
}

std::optional<std::int64_t> SqliteRecordOrder::rowBehind(std::span<const KeyRange> ranges,
                                                         const Position& from, std::int64_t skip) {
    for (const KeyRange& range : ranges) {
        Prepared& statement = rowStatementOf(range);
        const ResetLater resetLater(statement);
        bindRange(statement, shape_, range, from);
        while (statement.step())
            if (skip-- == 0)
                return statement.integer(0);
    }
    return std::nullopt;
}

std::optional<Record> SqliteRecordOrder::readOne(std::span<const KeyRange> ranges, const Position& from,
                                                 std::int64_t skip) {
    return reading([&]() -> std::optional<Record> {
        if (skip > longestRecordSkip) {
            const std::optional<std::int64_t> row = rowBehind(ranges, from, skip);
            return row ? readRow(*row) : std::nullopt;
        }
        std::vector<Record> records;
        read(ranges, from, skip, 1, records);
        return records.empty() ? std::nullopt : std::optional(std::move(records.front()));
    });
}

std::optional<Record> SqliteRecordOrder::first(std::int64_t offset) {
    const KeyRange all{0, KeyRange::Bound::none, false};
    return readOne({&all, 1}, {}, std::max<std::int64_t>(offset, 0));
}

std::optional<Record> SqliteRecordOrder::last(std::int64_t offset) {
    const KeyRange all{0, KeyRange::Bound::none, true};
    return readOne({&all, 1}, {}, std::max<std::int64_t>(offset, 0));
}

std::optional<Record> SqliteRecordOrder::after(const Position& position, std::int64_t count) {
    return step(position, count, false);
}

std::optional<Record> SqliteRecordOrder::before(const Position& position, std::int64_t count) {
    return step(position, count, true);
}

bool SqliteRecordOrder::blockHolds() const {
    return block_.valid && std::chrono::steady_clock::now() - block_.readAt < longestBlockUse &&
           changeCounter(*connection_, table_.schema) == block_.counter;
}

void SqliteRecordOrder::fillBlock(const Position& position, bool backward) {
    const std::vector<KeyRange> ranges = rangesFrom(shape_, position, backward);
    Block block;
    block.backward = backward;
    block.base = position;
    reading([&] {
        block.readAt = std::chrono::steady_clock::now();
        block.reachedEnd = read(ranges, position, 0, nextBlockSize_, block.records);
        // The lock is still held, so this counter is that of the records.
        const std::optional<std::uint32_t> counter = changeCounter(*connection_, table_.schema);
        block.counter = counter.value_or(0);
        block.valid = counter.has_value();
    });
    block_ = std::move(block);
}

std::optional<Record> SqliteRecordOrder::serve() {
    if (block_.next >= block_.records.size())
        return std::nullopt;
    Record record = std::move(block_.records[block_.next++]);
    block_.base = record.position;
    return record;
}

std::optional<Record> SqliteRecordOrder::step(const Position& position, std::int64_t count, bool backward) {
    if (count < 1)
        throw DatabaseError(ErrorCode::invalidArgument,
                            u"The number of records to move by must be positive.");
    if (count > 1)
        return readOne(rangesFrom(shape_, position, backward), position, count - 1);
    const bool goesOn = block_.backward == backward && samePlace(block_.base, position);
    const bool hasMore = block_.next < block_.records.size() || block_.reachedEnd;
    if (!(goesOn && hasMore && blockHolds())) {
        nextBlockSize_ = goesOn ? std::min(nextBlockSize_ * blockGrowth, largestBlock) : 1;
        block_ = {};
        fillBlock(position, backward);
    }
    return serve();
}

std::optional<Record> SqliteRecordOrder::at(const Position& position) {
    if (position.betweenRecords)
        return std::nullopt;
    return reading([&] { return readRow(position.row); });
}

std::optional<Record> SqliteRecordOrder::readRow(std::int64_t row) {
    Prepared& statement = statementOf(at_, "SELECT " + shape_.selected + " FROM " + table_.sqliteName +
                                               " WHERE " + shape_.rowColumn + "=?1");
    const ResetLater resetLater(statement);
    statement.bind(1, row);
    const bool found = statement.step();
    checkPrepared(statement);
    return found ? std::optional(recordOf(statement)) : std::nullopt;
}

std::vector<Value> SqliteRecordOrder::convertedKey(std::span<const Value> key) const {
    std::vector<KeyColumn> columns = shape_.columns;
    if (shape_.rowKey)
        columns = {*shape_.rowKey};
    const TableDefinition& table = table_.entry->definition;
    if (columns.empty())
        throw DatabaseError(ErrorCode::noCurrentIndex,
                            inText(u"The table '", table.name, u"' is open without an index to seek by."));
    if (key.empty() || key.size() > columns.size())
        throw DatabaseError(ErrorCode::invalidArgument,
                            inText(u"The index of the table '", table.name,
                                   u"' has fewer fields than there are values to seek."));
    std::vector<Value> converted;
    for (std::size_t place = 0; place < key.size(); ++place)
        converted.push_back(
            convertTo(columns[place].type, key[place], table.fields[columns[place].field].name));
    return converted;
}

std::optional<Record> SqliteRecordOrder::seek(std::span<const Value> key) {
    Position position;
    position.key = convertedKey(key);
    const KeyRange range = rangeOfPrefix(shape_, position.key.size());
    return readOne({&range, 1}, position, 0);
}

Position SqliteRecordOrder::positionOf(std::span<const Value> key) {
    return {convertedKey(key), 0, true};
}

std::int64_t SqliteRecordOrder::count() {
    return reading([&] {
        Prepared& statement = statementOf(count_, "SELECT count(*) FROM " + table_.sqliteName);
        const ResetLater resetLater(statement);
        statement.step();
        checkPrepared(statement);
        return statement.integer(0);
    });
}

}  // namespace tessary::server
