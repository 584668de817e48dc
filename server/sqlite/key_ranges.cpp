#include "server/sqlite/key_ranges.h"

#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

namespace tessary::server {

using Bound = KeyRange::Bound;

OrderShape orderShape(const TableDefinition& table, const std::string& sqliteName,
                      const IndexDefinition* index, TextView physicalIndex) {
    OrderShape shape;
    shape.rowColumn = rowColumnOf(table);
    shape.selected = shape.rowColumn;
    for (const FieldDefinition& field : table.fields)
        shape.selected += "," + quotedName(field.name);
    std::vector<KeyColumn> columns;
    if (index != nullptr)
        for (const IndexField& indexField : index->fields) {
            const FieldDefinition* field = table.field(indexField.name);
            columns.push_back({static_cast<std::size_t>(field - table.fields.data()), quotedName(field->name),
                               field->type, indexField.descending});
        }
    if (index == nullptr || isRowOrder(table, *index)) {
        shape.from = sqliteName + " NOT INDEXED";
        if (!columns.empty())
            shape.rowKey = columns.front();
    } else {
        shape.from = sqliteName + " INDEXED BY " + quotedName(physicalIndex);
        shape.columns = std::move(columns);
    }
    return shape;
}

namespace {

// The rows' numbers ascend, also in an index with descending fields, unless they are the descending key
// themselves.
bool rowsDescend(const OrderShape& shape, bool backward) {
    const bool descending = shape.rowKey && shape.rowKey->descending;
    return descending != backward;
}

void addRangesBehind(std::vector<KeyRange>& ranges, const OrderShape& shape, const Value& value,
                     std::size_t place, bool backward) {
    const auto equal = static_cast<std::uint8_t>(place);
    const bool descends = shape.columns[place].descending != backward;
    if (!descends) {
        ranges.push_back({equal, isNull(value) ? Bound::notNull : Bound::greater, backward});
    } else if (!isNull(value)) {
        ranges.push_back({equal, Bound::less, backward});
        ranges.push_back({equal, Bound::null, backward});
    }
}

}  // namespace

std::vector<KeyRange> rangesFrom(const OrderShape& shape, const Position& position, bool backward) {
    std::vector<KeyRange> ranges;
    const bool descends = rowsDescend(shape, backward);
    if (shape.columns.empty()) {
        if (position.betweenRecords && !backward)
            ranges.push_back({0, descends ? Bound::upToRow : Bound::fromRow, backward});
        else
            ranges.push_back({0, descends ? Bound::lessRow : Bound::greaterRow, backward});
        return ranges;
    }
    const std::size_t given = std::min(position.key.size(), shape.columns.size());
    if (!position.betweenRecords)
        ranges.push_back(
            {static_cast<std::uint8_t>(given), descends ? Bound::lessRow : Bound::greaterRow, backward});
    else if (!backward)
        ranges.push_back({static_cast<std::uint8_t>(given), Bound::none, backward});
    for (std::size_t place = given; place-- > 0;)
        addRangesBehind(ranges, shape, position.key[place], place, backward);
    return ranges;
}

KeyRange rangeOfPrefix(const OrderShape& shape, std::size_t values) {
    if (shape.columns.empty())
        return {1, Bound::none, false};
    return {static_cast<std::uint8_t>(values), Bound::none, false};
}

namespace {

// Below all values of the column that are not null.
const char* lowestOf(const KeyColumn& column) {
    return isText(column.type) ? "''" : "-9e999";
}

std::string boundSql(const OrderShape& shape, const KeyRange& range) {
    const std::string place = "?" + std::to_string(range.equal + 1);
    switch (range.bound) {
        case Bound::none: return "";
        case Bound::less: return shape.columns[range.equal].column + "<" + place;
        case Bound::greater: return shape.columns[range.equal].column + ">" + place;
        case Bound::null: return shape.columns[range.equal].column + " IS NULL";
        case Bound::notNull:
            return shape.columns[range.equal].column + ">=" + lowestOf(shape.columns[range.equal]);
        case Bound::lessRow: return shape.rowColumn + "<" + place;
        case Bound::greaterRow: return shape.rowColumn + ">" + place;
        case Bound::fromRow: return shape.rowColumn + ">=" + place;
        case Bound::upToRow: return shape.rowColumn + "<=" + place;
    }
    return "";
}

std::string directionSql(bool descending) {
    return descending ? " DESC" : "";
}

}  // namespace

std::string rangeSql(const OrderShape& shape, const KeyRange& range, const std::string& selected) {
    std::string where, order;
    const auto condition = [&](const std::string& text) {
        if (!text.empty())
            where += (where.empty() ? " WHERE " : " AND ") + text;
    };
    if (shape.columns.empty() && range.equal > 0)
        condition(shape.rowColumn + "=?1");
    for (std::size_t place = 0; place < std::min<std::size_t>(range.equal, shape.columns.size()); ++place)
        condition(shape.columns[place].column + " IS ?" + std::to_string(place + 1));
    condition(boundSql(shape, range));
    for (std::size_t place = range.equal; place < shape.columns.size(); ++place)
        order += shape.columns[place].column +
                 directionSql(shape.columns[place].descending != range.backward) + ",";
    order += shape.rowColumn + directionSql(rowsDescend(shape, range.backward));
    return "SELECT " + selected + " FROM " + shape.from + where + " ORDER BY " + order;
}

void bindRange(Prepared& statement, const OrderShape& shape, const KeyRange& range,
               const Position& position) {
    if (shape.columns.empty()) {
        if (range.equal > 0 || range.bound != Bound::none) {
            const bool byKey = shape.rowKey && !position.key.empty();
            if (byKey)
                statement.bind(1, position.key.front());
            else
                statement.bind(1, position.row);
        }
        return;
    }
    for (std::size_t place = 0; place < range.equal; ++place)
        statement.bind(static_cast<int>(place) + 1, position.key[place]);
    const int next = range.equal + 1;
    if (range.bound == Bound::less || range.bound == Bound::greater)
        statement.bind(next, position.key[range.equal]);
    else if (range.bound == Bound::lessRow || range.bound == Bound::greaterRow)
        statement.bind(next, position.row);
}

}  // namespace tessary::server
