#pragma once

#include "server/sqlite/key_ranges.h"
#include "server/sqlite/order_table.h"
#include "server/sqlite/relation_errors.h"

#include <map>

namespace tessary::server {

// Records over SQLite. Steps are served from a block of records read ahead as long as the file has not
// changed.
class SqliteRecordOrder : public RecordOrder {
public:
    // index: null for the order of the row numbers.
    SqliteRecordOrder(std::shared_ptr<Connection> connection, OrderTable table, const IndexDefinition* index);

    std::optional<Record> first(std::int64_t offset) override;
    std::optional<Record> last(std::int64_t offset) override;
    std::optional<Record> after(const Position& position, std::int64_t count) override;
    std::optional<Record> before(const Position& position, std::int64_t count) override;
    std::optional<Record> at(const Position& position) override;
    std::optional<Record> seek(std::span<const Value> key) override;
    Position positionOf(std::span<const Value> key) override;
    std::int64_t count() override;
    Record insert(std::span<const FieldValue> fields) override;
    Record update(const Position& position, std::span<const FieldValue> fields) override;
    void erase(const Position& position) override;

private:
    // Records that follow one another, read at one moment.
    struct Block {
        std::vector<Record> records;
        std::size_t next = 0;
        bool backward = false;
        bool reachedEnd = false;
        Position base;  // the record served last
        std::uint32_t counter = 0;
        std::chrono::steady_clock::time_point readAt;
        bool valid = false;
    };

    Prepared& statementOf(const KeyRange& range);
    Prepared& rowStatementOf(const KeyRange& range);  // row numbers alone, which the index knows
    Prepared& statementOf(Prepared& kept, const std::string& sql);
    void requireSameDefinition();
    void checkPrepared(Prepared& statement);
    // Runs the work in a read transaction of its own.
    template <class Work>
    auto reading(Work work);

    // Leaves out `skip` records, then takes up to `most`; true when the order ended before that.
    bool read(std::span<const KeyRange> ranges, const Position& from, std::int64_t skip, std::size_t most,
              std::vector<Record>& records);
    std::optional<std::int64_t> rowBehind(std::span<const KeyRange> ranges, const Position& from,
                                          std::int64_t skip);
    std::optional<Record> readRow(std::int64_t row);
    std::optional<Record> readOne(std::span<const KeyRange> ranges, const Position& from, std::int64_t skip);
    std::optional<Record> step(const Position& position, std::int64_t count, bool backward);
    bool blockHolds() const;
    void fillBlock(const Position& position, bool backward);
    std::optional<Record> serve();

    Record recordOf(const Prepared& row) const;
    std::vector<Value> keyOf(const std::vector<Value>& values, std::int64_t row) const;
    std::vector<Value> convertedKey(std::span<const Value> key) const;

    // In the order of the table's fields; nothing for those that are not named.
    std::vector<std::optional<Value>> convertedFields(std::span<const FieldValue> fields) const;
    // In a transaction of its own, with the error that belongs to a broken relation.
    void change(ChangeKind kind, const std::function<void()>& run);
    void requireRecord(const Position& position) const;
    [[noreturn]] void throwDeleted() const;

    std::shared_ptr<Connection> connection_;
    OrderTable table_;
    OrderShape shape_;
    std::map<KeyRange, Prepared> ranges_, rowRanges_;
    std::map<std::string, Prepared> updates_;
    Prepared at_, count_, insert_, erase_;
    Block block_;
    std::size_t nextBlockSize_ = 1;
};

}  // namespace tessary::server
