#pragma once

// An order of a table as SQLite walks it: by an index, or by the rows' numbers. A place in the order is left
// through a few ranges, each of which SQLite finds in the index and walks without sorting: first the rest of
// the records with the same key, then the records that differ in the last field alone, and so on. One
// comparison of whole rows would be shorter, but has no place for null (which lies before all values) nor for
// descending fields.

#include "server/sqlite/sqlite_handle.h"

#include "server/engine/engine.h"

namespace tessary::server {

struct KeyColumn {
    std::size_t field;   // place in the table's fields
    std::string column;  // quoted
    FieldType type;
    bool descending;
};

struct OrderShape {
    std::string from;      // table with the index that is meant
    std::string selected;  // row number and all fields
    std::string rowColumn;
    std::vector<KeyColumn> columns;  // empty: by row number
    // The key is the autonumber field, which is the row number: columns is empty then.
    std::optional<KeyColumn> rowKey;
};

// index: null for the row numbers' order.
OrderShape orderShape(const TableDefinition& table, const std::string& sqliteName,
                      const IndexDefinition* index, TextView physicalIndex);

struct KeyRange {
    enum class Bound : std::uint8_t {
        none,
        less,
        greater,
        null,
        notNull,
        lessRow,
        greaterRow,
        fromRow,
        upToRow
    };
    std::uint8_t equal = 0;  // so many fields of the key are as given
    Bound bound = Bound::none;
    bool backward = false;

    auto operator<=>(const KeyRange&) const = default;
};

// The ranges behind (or before) the position, in the order in which they follow.
std::vector<KeyRange> rangesFrom(const OrderShape& shape, const Position& position, bool backward);
// The records whose key begins with so many values.
KeyRange rangeOfPrefix(const OrderShape& shape, std::size_t values);

// selected: the columns, the row number first.
std::string rangeSql(const OrderShape& shape, const KeyRange& range, const std::string& selected);
// The position lives until the statement is reset.
void bindRange(Prepared& statement, const OrderShape& shape, const KeyRange& range, const Position& position);

}  // namespace tessary::server
