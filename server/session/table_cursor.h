#pragma once

// One open table with its order and the place in it.

#include "server/engine/engine.h"

namespace tessary::server {

// Operations throw DatabaseError; the place is then what it was, unless a comment says otherwise. When the
// table's definition has changed since the last operation, the order is made anew without the caller
// noticing; where its index means something else now or is gone, the place is then before the first record.
class TableCursor {
public:
    // Stands on the first record. index: empty for the table's own order.
    TableCursor(Database& database, TextView table, TextView index);

    const Text& table() const { return definition_.name; }
    // Empty when the order is that of the records' numbers.
    const Text& index() const { return indexName_; }
    // As of the last operation.
    const TableDefinition& definition() const { return definition_; }

    // Orders by the index, which may be the current one, and stands on the first record.
    void setIndex(TextView index);
    // The table has another name now.
    void renamed(TextView table);

    // An empty table is at both ends.
    bool isAtEnd() const { return place_ == Place::end || place_ == Place::empty; }
    bool isAtBeginning() const { return place_ == Place::beginning || place_ == Place::empty; }

    // Moving to where there is no record throws noCurrentRecord (3021), and the place is then at that end.
    std::vector<Value> moveFirst();
    std::vector<Value> moveLast();
    // 0 reads the current record again.
    std::vector<Value> skip(std::int64_t count);
    // Throws noCurrentRecord (3021) or, where the record was deleted by anybody, recordDeleted (3167).
    std::vector<Value> read();
    // The first record in order whose index fields begin with the values, at least one. When there is none,
    // throws noCurrentRecord (3021) and stands between the records where it would be. Throws noCurrentIndex
    // (3019).
    std::vector<Value> seek(std::span<const Value> key);

    // stay: the place stays what it was; otherwise the new record is current.
    std::vector<Value> append(std::span<const FieldValue> fields, bool stay);
    std::vector<Value> replace(std::span<const FieldValue> fields);
    // The place is then on the deleted record: its neighbours are reached from it.
    void erase();
    std::int64_t count();

private:
    // `between`: where a seek found nothing. `empty`: both ends at once.
    enum class Place { empty, beginning, onRecord, deleted, between, end };

    template <class Work>
    auto withOrder(Work work);
    void open(TextView table, TextView index);
    void reopen();
    bool keepsPosition(const TableDefinition& old, const Text& oldIndex) const;
    std::vector<Value> stand(std::optional<Record> record, Place otherwise);
    std::optional<Record> recordFrom(RecordOrder& order, std::int64_t count);
    void checkKey(std::span<const Value> key) const;
    void checkCurrent() const;
    [[noreturn]] void leave(Place place);

    Database& database_;
    TableDefinition definition_;
    Text indexName_;
    std::unique_ptr<RecordOrder> order_;
    Place place_ = Place::empty;
    Position position_;  // onRecord, deleted, between
};

}  // namespace tessary::server
