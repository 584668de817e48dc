#include "server/session/table_cursor.h"

namespace tessary::server {

namespace {

[[noreturn]] void throwNoCurrentRecord() {
    throw DatabaseError(ErrorCode::noCurrentRecord, u"No current record.");
}

}  // namespace

TableCursor::TableCursor(Database& database, TextView table, TextView index) : database_(database) {
    open(table, index);
    stand(order_->first(), Place::empty);
}

void TableCursor::open(TextView table, TextView index) {
    TableDefinition definition = database_.table(table);
    Text indexName;
    order_ = database_.openOrder(table, index, indexName);
    definition_ = std::move(definition);
    indexName_ = std::move(indexName);
}

bool TableCursor::keepsPosition(const TableDefinition& old, const Text& oldIndex) const {
    if (oldIndex.empty() || indexName_.empty()) {
        return oldIndex.empty() && indexName_.empty();
    }
    const IndexDefinition* before = old.index(oldIndex);
    const IndexDefinition* now = definition_.index(indexName_);
    return before && now && before->fields == now->fields;
}

void TableCursor::reopen() {
    const TableDefinition old = definition_;
    const Text oldIndex = indexName_;
    const TableDefinition now = database_.table(old.name);
    open(old.name, now.index(oldIndex) ? TextView(oldIndex) : TextView());
    if (!keepsPosition(old, oldIndex) && !isAtEnd()) {
        place_ = Place::beginning;
    }
}

// Runs an operation of the order, a second time with a new order when the definition has changed.
template <class Work>
auto TableCursor::withOrder(Work work) {
    try {
        return work(*order_);
    } catch (const DatabaseError& error) {
        if (error.code() != ErrorCode::invalidOperation) {
            throw;
        }
    }
    reopen();
    return work(*order_);
}

// Makes the record current. When there is none, the place is the given end.
std::vector<Value> TableCursor::stand(std::optional<Record> record, Place otherwise) {
    if (!record) {
        place_ = otherwise;
        return {};
    }
    place_ = Place::onRecord;
    position_ = std::move(record->position);
    return std::move(record->values);
}

void TableCursor::leave(Place place) {
    const bool isEmpty = !withOrder([](RecordOrder& order) { return order.first(); });
    place_ = isEmpty ? Place::empty : place;
    throwNoCurrentRecord();
}

void TableCursor::setIndex(TextView index) {
    open(definition_.name, index);
    stand(order_->first(), Place::empty);
}

void TableCursor::renamed(TextView table) {
    definition_.name = table;
}

std::vector<Value> TableCursor::moveFirst() {
    std::vector<Value> values =
        stand(withOrder([](RecordOrder& order) { return order.first(); }), Place::empty);
    if (place_ == Place::empty) {
        throwNoCurrentRecord();
    }
    return values;
}

std::vector<Value> TableCursor::moveLast() {
    std::vector<Value> values =
        stand(withOrder([](RecordOrder& order) { return order.last(); }), Place::empty);
    if (place_ == Place::empty) {
        throwNoCurrentRecord();
    }
    return values;
}

// count is not 0. An empty table may have been filled since, by somebody else: then it is entered from the
// near end.
std::optional<Record> TableCursor::recordFrom(RecordOrder& order, std::int64_t count) {
    switch (place_) {
        case Place::beginning: return count > 0 ? order.first(count - 1) : std::nullopt;
        case Place::end: return count < 0 ? order.last(-count - 1) : std::nullopt;
        case Place::empty: return count > 0 ? order.first(count - 1) : order.last(-count - 1);
        default: return count > 0 ? order.after(position_, count) : order.before(position_, -count);
    }
}

std::vector<Value> TableCursor::skip(std::int64_t count) {
    if (count == 0) {
        return read();
    }
    std::optional<Record> record =
        withOrder([this, count](RecordOrder& order) { return recordFrom(order, count); });
    if (!record) {
        leave(count > 0 ? Place::end : Place::beginning);
    }
    return stand(std::move(record), Place::empty);
}

void TableCursor::checkCurrent() const {
    if (place_ == Place::deleted) {
        throw DatabaseError(ErrorCode::recordDeleted,
                            u"The current record of table '" + table() + u"' is deleted.");
    }
    if (place_ != Place::onRecord) {
        throwNoCurrentRecord();
    }
}

std::vector<Value> TableCursor::read() {
    checkCurrent();
    std::optional<Record> record = withOrder([this](RecordOrder& order) {
        checkCurrent();
        return order.at(position_);
    });
    if (!record) {
        place_ = Place::deleted;
        checkCurrent();
    }
    return stand(std::move(record), Place::deleted);
}

void TableCursor::checkKey(std::span<const Value> key) const {
    const IndexDefinition* index = indexName_.empty() ? nullptr : definition_.index(indexName_);
    if (!index) {
        throw DatabaseError(ErrorCode::noCurrentIndex, u"Table '" + table() + u"' has no current index.");
    }
    if (key.empty()) {
        throw DatabaseError(ErrorCode::invalidArgument,
                            u"A key to seek in index '" + indexName_ + u"' is missing.");
    }
    if (key.size() > index->fields.size()) {
        throw DatabaseError(ErrorCode::invalidArgument,
                            u"The key has more values than index '" + indexName_ + u"' has fields.");
    }
}

std::vector<Value> TableCursor::seek(std::span<const Value> key) {
    std::optional<Record> record = withOrder([this, key](RecordOrder& order) {
        checkKey(key);
        return order.seek(key);
    });
    if (!record) {
        position_ = withOrder([key](RecordOrder& order) { return order.positionOf(key); });
        place_ = Place::between;
        throwNoCurrentRecord();
    }
    return stand(std::move(record), Place::empty);
}

std::vector<Value> TableCursor::append(std::span<const FieldValue> fields, bool stay) {
    Record record = withOrder([fields](RecordOrder& order) { return order.insert(fields); });
    if (!stay) {
        return stand(std::move(record), Place::empty);
    }
    if (place_ == Place::empty) {
        place_ = Place::beginning;
    }
    return std::move(record.values);
}

std::vector<Value> TableCursor::replace(std::span<const FieldValue> fields) {
    checkCurrent();
    Record record = withOrder([this, fields](RecordOrder& order) {
        checkCurrent();
        return order.update(position_, fields);
    });
    return stand(std::move(record), Place::empty);
}

void TableCursor::erase() {
    checkCurrent();
    withOrder([this](RecordOrder& order) {
        checkCurrent();
        order.erase(position_);
    });
    place_ = Place::deleted;
}

std::int64_t TableCursor::count() {
    return withOrder([](RecordOrder& order) { return order.count(); });
}

}  // namespace tessary::server
