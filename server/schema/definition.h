#pragma once

// What a database is made of: tables with fields and indexes, relations, stored queries, linked tables; and
// the language in which table definitions cross the server's interface.

#include "server/values/value.h"

#include <optional>

namespace tessary::server {

constexpr int largestTextSize = 255;
constexpr std::size_t longestName = 64;

struct FieldDefinition {
    Text name;
    FieldType type = FieldType::text;
    int size = 0;             // characters, texts alone; 0: the largest
    bool required = false;    // null is refused
    bool autonumber = false;  // a long integer that the database counts up; a number is never used again
    std::optional<Value> defaultValue;

    bool operator==(const FieldDefinition&) const = default;
};

struct IndexField {
    Text name;
    bool descending = false;
    bool operator==(const IndexField&) const = default;
};

struct IndexDefinition {
    Text name;
    std::vector<IndexField> fields;  // one to ten
    bool unique = false;
    bool primary = false;  // at most one of a table; implies unique and required fields
    bool operator==(const IndexDefinition&) const = default;
};

struct TableDefinition {
    Text name;
    std::vector<FieldDefinition> fields;
    std::vector<IndexDefinition> indexes;

    const FieldDefinition* field(TextView fieldName) const;  // null: none of that name
    const IndexDefinition* index(TextView indexName) const;
    const IndexDefinition* primaryIndex() const;
};

// Each row of foreignTable must find its values in a row of table.
struct RelationDefinition {
    Text name;
    Text table;
    std::vector<Text> fields;  // have a unique index
    Text foreignTable;
    std::vector<Text> foreignFields;
    bool cascadeUpdate = false;
    bool cascadeDelete = false;
};

struct QueryDefinition {
    Text name;
    Text statement;  // as it was given
};

struct LinkDefinition {
    Text name;   // of the table here
    Text file;   // a database, or a file whose name ends in .csv
    Text table;  // its name there; empty for CSV
};

// Changes that a definition asks of an existing table, in order.
struct FieldChange {
    enum class Kind { addOrAlter, remove, rename } kind = Kind::addOrAlter;
    FieldDefinition field;  // for remove and rename only its name counts
    Text newName;           // rename
    bool primary = false;
};

// Throws nameNotValid (3125) for what cannot be a name: empty, longer than 64 characters, with one of .!`[]
// or a control character, or with a blank in front.
void checkName(TextView name);

// The definition language: nested lists in a flat array, "*RTLB*" and "*RTLE*" for parentheses, "*RTDOTE*"
// for the dot of a pair. docs/database.md describes it. Both throw syntaxInDefinition (3290), typeUnknown
// (3259) and the like with the offending item in the text.
TableDefinition parseTableDefinition(TextView table, const std::vector<Value>& flat);
std::vector<FieldChange> parseTableChanges(const std::vector<Value>& flat);
// "name", "name(field, field desc)"; without fields the field of the index's own name is meant.
IndexDefinition parseIndexDefinition(TextView index, bool unique, bool primary);

// The table's fields in the short form of the language: name, type text, name, type text ...
std::vector<Value> structureOf(const TableDefinition& table);
// One field in the long form: "NAME", ..., "TYPE", ..., "SIZE", ..., and so on.
std::vector<Value> attributesOf(const TableDefinition& table, const FieldDefinition& field);

// "LONG", "TEXT" ... as the language writes them; and back: also the synonyms that SQL knows (INT, VARCHAR,
// BIT ...), nothing for an unknown word. COUNTER is a long integer with autonumber.
Text typeName(FieldType type);
std::optional<FieldDefinition> typeOfName(TextView word);

}  // namespace tessary::server
