#include "server/sqlite/table_sql.h"

#include "server/sqlite/functions.h"
#include "server/sqlite/translator.h"

#include <charconv>
#include <limits>

namespace tessary::server {

namespace {

constexpr TextView scratchPrefix = u"!new!";

struct ColumnKind {
    FieldType type;
    const char* declaration;  // gives the column its affinity
};
constexpr ColumnKind columnKinds[] = {
    {FieldType::yesNo, "INTEGER"},       {FieldType::byte, "INTEGER"},  {FieldType::integer, "INTEGER"},
    {FieldType::longInteger, "INTEGER"}, {FieldType::single, "REAL"},   {FieldType::number, "REAL"},
    {FieldType::currency, "REAL"},       {FieldType::dateTime, "REAL"},
};

std::string declarationOf(FieldType type) {
    for (const ColumnKind& kind : columnKinds)
        if (kind.type == type)
            return kind.declaration;
    return std::string("TEXT COLLATE ") + textCollation;
}

std::string textLiteral(const Text& text) {
    std::string literal = "'";
    for (const char c : toUtf8(text)) {
        if (c == '\0')
            literal += "'||char(0)||'";  // a zero would end the statement
        else
            literal += c == '\'' ? "''" : std::string(1, c);
    }
    return literal + "'";
}

std::string numberLiteral(double number) {
    char digits[40];
    const auto result =
        std::to_chars(std::begin(digits), std::end(digits), number, std::chars_format::scientific);
    return std::string(digits, result.ptr);
}

// The autonumber counts in SQLite's 64 bits, but its field holds 32.
std::string autonumberColumn(const FieldDefinition& field) {
    const std::string name = quotedName(field.name);
    return name + " INTEGER CONSTRAINT " + quotedName(u"range!" + field.name) + " CHECK(" + name +
           " BETWEEN -2147483648 AND 2147483647) PRIMARY KEY AUTOINCREMENT";
}

std::string ordinaryColumn(const FieldDefinition& field) {
    const std::string name = quotedName(field.name);
    std::string column = name + " " + declarationOf(field.type);
    // A yes/no field always has a value: null becomes its default.
    if (field.type == FieldType::yesNo)
        column += " NOT NULL ON CONFLICT REPLACE DEFAULT (" + sqlLiteral(valueForNull(field)) + ")";
    else if (field.required)
        column += " NOT NULL";
    if (field.defaultValue && field.type != FieldType::yesNo)
        column += " DEFAULT (" + sqlLiteral(*field.defaultValue) + ")";
    if (field.type == FieldType::text) {
        const int size = field.size > 0 ? field.size : largestTextSize;
        column += " CONSTRAINT " + quotedName(u"size!" + field.name) + " CHECK(length(" + name +
                  ")<=" + std::to_string(size) + ")";
    }
    return column;
}

std::string nameList(std::span<const Text> names) {
    std::string list;
    for (const Text& name : names)
        list += (list.empty() ? "" : ",") + quotedName(name);
    return list;
}

std::string foreignKey(const RelationDefinition& relation) {
    std::string key = ",FOREIGN KEY(" + nameList(relation.foreignFields) + ") REFERENCES " +
                      quotedName(physicalName(relation.table)) + "(" + nameList(relation.fields) + ")";
    if (relation.cascadeUpdate)
        key += " ON UPDATE CASCADE";
    if (relation.cascadeDelete)
        key += " ON DELETE CASCADE";
    return key;
}

}  // namespace

Text physicalName(TextView table) {
    constexpr TextView reserved = u"sqlite_";
    return sameName(table.substr(0, reserved.size()), reserved) ? u"!" + Text(table) : Text(table);
}

Text scratchName(TextView table) {
    return Text(scratchPrefix) + Text(table);
}

Text tableOfPhysicalName(TextView physical) {
    if (physical.starts_with(scratchPrefix))
        physical.remove_prefix(scratchPrefix.size());
    else if (physical.starts_with(u'!'))
        physical.remove_prefix(1);
    return Text(physical);
}

const FieldDefinition* autonumberField(const TableDefinition& table) {
    for (const FieldDefinition& field : table.fields)
        if (field.autonumber)
            return &field;
    return nullptr;
}

std::string rowColumnOf(const TableDefinition& table) {
    const FieldDefinition* field = autonumberField(table);
    return quotedName(field != nullptr ? TextView(field->name) : TextView(rowColumn));
}

bool isRowOrder(const TableDefinition& table, const IndexDefinition& index) {
    const FieldDefinition* field = autonumberField(table);
    return field != nullptr && index.fields.size() == 1 && sameName(index.fields[0].name, field->name);
}

Text physicalIndexName(std::int64_t tableId, TextView index) {
    return toText(std::to_string(tableId) + "!") + Text(index);
}

Text physicalRelationIndexName(TextView relation) {
    return u"relation!" + Text(relation);
}

Value valueForNull(const FieldDefinition& field) {
    if (field.type != FieldType::yesNo)
        return Null{};
    return field.defaultValue.value_or(Value(false));
}

std::string createTableSql(const TableDefinition& table, const std::string& quotedPhysicalName,
                           std::span<const RelationDefinition> relations) {
    std::string columns;
    if (autonumberField(table) == nullptr)
        columns = quotedName(rowColumn) + " INTEGER PRIMARY KEY";
    for (const FieldDefinition& field : table.fields)
        columns += (columns.empty() ? "" : ",") +
                   (field.autonumber ? autonumberColumn(field) : ordinaryColumn(field));
    for (const RelationDefinition& relation : relations)
        columns += foreignKey(relation);
    return "CREATE TABLE " + quotedPhysicalName + "(" + columns + ")";
}

std::string createIndexSql(std::int64_t tableId, const TableDefinition& table, const IndexDefinition& index) {
    std::string columns;
    for (const IndexField& field : index.fields)
        columns += (columns.empty() ? "" : ",") + quotedName(field.name) + (field.descending ? " DESC" : "");
    return std::string("CREATE ") + (index.unique || index.primary ? "UNIQUE " : "") + "INDEX main." +
           quotedName(physicalIndexName(tableId, index.name)) + " ON " +
           quotedName(physicalName(table.name)) + "(" + columns + ")";
}

std::string createRelationIndexSql(const RelationDefinition& relation) {
    return "CREATE INDEX main." + quotedName(physicalRelationIndexName(relation.name)) + " ON " +
           quotedName(physicalName(relation.foreignTable)) + "(" + nameList(relation.foreignFields) + ")";
}

std::string sqlLiteral(const Value& value) {
    if (const bool* yes = std::get_if<bool>(&value))
        return *yes ? "-1" : "0";
    if (const std::int32_t* integer = std::get_if<std::int32_t>(&value))
        return std::to_string(*integer);
    if (const double* number = std::get_if<double>(&value))
        return numberLiteral(*number);
    if (const Date* date = std::get_if<Date>(&value))
        return numberLiteral(date->days);
    if (const Text* text = std::get_if<Text>(&value))
        return textLiteral(*text);
    return "NULL";
}

bool isText(FieldType type) {
    return type == FieldType::text || type == FieldType::memo;
}

}  // namespace tessary::server
