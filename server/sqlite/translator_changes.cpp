#include "server/sqlite/translator_state.h"

#include <algorithm>

namespace tessary::server::translation {

namespace {

// Column that numbers the records of a table: its autonumber field, or the engine's own, whose name no field
// can have.
std::string rowColumn(const TableDefinition& definition) {
    const auto found = std::ranges::find_if(definition.fields, &FieldDefinition::autonumber);
    return quotedName(found == definition.fields.end() ? TextView(u"!row") : TextView(found->name));
}

const FieldDefinition& fieldOf(const TableDefinition& definition, TextView name) {
    const FieldDefinition* field = definition.field(name);
    if (!field)
        fail(ErrorCode::itemNotFound,
             u"The table '" + definition.name + u"' has no field '" + Text(name) + u"'.");
    return *field;
}

std::vector<const FieldDefinition*> fieldsToInsert(const TableDefinition& definition,
                                                   const std::vector<Text>& names) {
    std::vector<const FieldDefinition*> fields;
    for (const Text& name : names) {
        const FieldDefinition& field = fieldOf(definition, name);
        if (std::ranges::find(fields, &field) != fields.end())
            fail(ErrorCode::syntaxInInsert, u"The field '" + field.name + u"' stands twice in INSERT INTO.");
        fields.push_back(&field);
    }
    if (names.empty()) {
        for (const FieldDefinition& field : definition.fields)
            fields.push_back(&field);
    }
    return fields;
}

void checkCount(std::size_t values, std::size_t fields, TextView table) {
    if (values != fields)
        fail(ErrorCode::syntaxInInsert, u"INSERT INTO '" + Text(table) + u"' has " +
                                            textOf(static_cast<double>(values)) + u" values for " +
                                            textOf(static_cast<double>(fields)) + u" fields.");
}

[[noreturn]] void cannotChange(TextView what) {
    fail(ErrorCode::cannotUpdateQuery, Text(what));
}

// The one table that the assignments are about.
const SourceTable& assignedTable(const sql::Update& statement, const Scope& scope) {
    const SourceTable* target = nullptr;
    for (const sql::Assignment& assignment : statement.assignments) {
        const FoundField found = scope.find(assignment.field);
        if (!found.field)
            fail(ErrorCode::itemNotFound, u"UPDATE: there is no field '" + assignment.field.name +
                                              u"' in the tables of the statement.");
        if (!found.table->definition)
            cannotChange(u"UPDATE: '" + found.table->name +
                         u"' is a query and its fields cannot be changed.");
        if (target && target != found.table)
            cannotChange(u"UPDATE changes the fields of one table, not of '" + target->name + u"' and '" +
                         found.table->name + u"'.");
        target = found.table;
    }
    if (!target)
        fail(ErrorCode::syntax, u"UPDATE has no assignment.");
    return *target;
}

void checkAssignedOnce(const sql::Update& statement) {
    for (auto one = statement.assignments.begin(); one != statement.assignments.end(); ++one) {
        if (std::any_of(one + 1, statement.assignments.end(), [&](const sql::Assignment& other) {
                return sameName(one->field.name, other.field.name);
            }))
            fail(ErrorCode::syntax, u"UPDATE assigns the field '" + one->field.name + u"' twice.");
    }
}

}  // namespace

const TableDefinition& Translator::tableToChange(TextView name) const {
    if (const TableDefinition* definition = schema_.table(name))
        return *definition;
    if (schema_.query(name))
        cannotChange(u"'" + Text(name) + u"' is a query and its records cannot be changed.");
    fail(ErrorCode::tableNotFound, u"There is no table '" + Text(name) + u"'.");
}

std::string Translator::assigned(const sql::Expression& expression, const Scope& scope,
                                 const FieldDefinition& field) {
    return converted(value(expression, scope), field.type, field.name);
}

std::string Translator::insert(const sql::Insert& statement) {
    const TableDefinition& definition = tableToChange(statement.table);
    const std::vector<const FieldDefinition*> fields = fieldsToInsert(definition, statement.fields);
    std::vector<std::string> names;
    for (const FieldDefinition* field : fields)
        names.push_back(quotedName(field->name));
    std::string sql =
        "INSERT INTO " + schema_.sqliteName(definition.name) + " (" + joined(names, ", ") + ") ";
    if (statement.select) {
        const TranslatedSelect given = select(*statement.select, nullptr);
        checkCount(given.fields.size(), fields.size(), definition.name);
        std::vector<std::string> values;
        for (std::size_t i = 0; i < fields.size(); ++i)
            values.push_back(converted({"c" + std::to_string(i + 1), given.fields[i].type}, fields[i]->type,
                                       fields[i]->name));
        return sql + "SELECT " + joined(values, ", ") + " FROM (" + given.sql + ")";
    }
    std::vector<std::string> rows;
    for (const std::vector<sql::ExpressionPtr>& row : statement.rows) {
        checkCount(row.size(), fields.size(), definition.name);
        std::vector<std::string> values;
        for (std::size_t i = 0; i < fields.size(); ++i)
            values.push_back(assigned(*row[i], {}, *fields[i]));
        rows.push_back("(" + joined(values, ", ") + ")");
    }
    return sql + "VALUES " + joined(rows, ", ");
}

// The values of a joined UPDATE are computed by a select, so that none sees what another record's change has
// made.
std::string Translator::update(const sql::Update& statement) {
    Scope scope;
    const std::string from = source(*statement.target, scope);
    const SourceTable& target = assignedTable(statement, scope);
    checkAssignedOnce(statement);
    std::vector<std::string> fields;
    std::vector<std::string> values;
    for (const sql::Assignment& assignment : statement.assignments) {
        const FieldDefinition& field = fieldOf(*target.definition, assignment.field.name);
        fields.push_back(quotedName(field.name));
        values.push_back(assigned(*assignment.value, scope, field));
    }
    const std::string where = filter(statement.where, scope);
    const bool alone = scope.tables.size() == 1;
    std::vector<std::string> assignments;
    for (std::size_t i = 0; i < fields.size(); ++i)
        assignments.push_back(fields[i] + " = " + (alone ? values[i] : "s.c" + std::to_string(i + 1)));
    if (alone)
        return "UPDATE " + from + " SET " + joined(assignments, ", ") + where;
    const std::string row = rowColumn(*target.definition);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] += " AS c" + std::to_string(i + 1);
    return "UPDATE " + target.sqliteName + " AS u SET " + joined(assignments, ", ") + " FROM (SELECT " +
           target.alias + "." + row + " AS r, " + joined(values, ", ") + " FROM " + from + where +
           ") AS s WHERE u." + row + " = s.r";
}

std::string Translator::erase(const sql::Delete& statement) {
    Scope scope;
    const std::string from = source(*statement.from, scope);
    const std::string where = filter(statement.where, scope);
    if (statement.table.empty() && scope.tables.size() > 1)
        cannotChange(u"DELETE from several tables must name the one whose records are deleted.");
    const SourceTable* target = statement.table.empty() ? scope.tables.data() : scope.table(statement.table);
    if (!target)
        fail(ErrorCode::tableNotFound, u"The table '" + statement.table + u"' is not in the FROM clause.");
    if (!target->definition)
        cannotChange(u"'" + target->name + u"' is a query and its records cannot be deleted.");
    if (scope.tables.size() == 1)
        return "DELETE FROM " + from + where;
    const std::string row = rowColumn(*target->definition);
    return "DELETE FROM " + target->sqliteName + " WHERE " + row + " IN (SELECT " + target->alias + "." +
           row + " FROM " + from + where + ")";
}

}  // namespace tessary::server::translation
