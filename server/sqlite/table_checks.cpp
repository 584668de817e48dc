#include "server/sqlite/table_checks.h"

#include "server/sqlite/sqlite_handle.h"
#include "server/sqlite/table_sql.h"

#include <algorithm>

namespace tessary::server {

namespace {

constexpr std::size_t mostFields = 255;
constexpr std::size_t mostIndexFields = 10;

FieldDefinition checkedField(FieldDefinition field) {
    checkName(field.name);
    if (field.autonumber) {
        field.type = FieldType::longInteger;
        field.defaultValue.reset();
    }
    if (field.type != FieldType::text)
        field.size = 0;
    field.size = std::clamp(field.size, 0, largestTextSize);
    if (field.defaultValue && isNull(*field.defaultValue))
        field.defaultValue.reset();
    if (field.defaultValue)
        field.defaultValue = convertTo(field.type, *field.defaultValue, field.name);
    return field;
}

void checkFieldsTogether(const TableDefinition& table) {
    // A table may be without fields: programs make the table first and its fields one by one.
    if (table.fields.size() > mostFields)
        throw DatabaseError(ErrorCode::tooManyFields,
                            inText(u"The table '", table.name, u"' has more than 255 fields."));
    int autonumbers = 0;
    for (const FieldDefinition& field : table.fields) {
        if (table.field(field.name) != &field)
            throw DatabaseError(
                ErrorCode::duplicateField,
                inText(u"The table '", table.name, u"' has the field '", field.name, u"' twice."));
        autonumbers += field.autonumber;
    }
    if (autonumbers > 1)
        throw DatabaseError(ErrorCode::autonumberOnlyOne,
                            inText(u"The table '", table.name, u"' can have one autonumber field only."));
}

}  // namespace

TableDefinition checkedTable(TableDefinition table) {
    checkName(table.name);
    for (FieldDefinition& field : table.fields)
        field = checkedField(std::move(field));
    checkFieldsTogether(table);
    const std::vector<IndexDefinition> indexes = std::move(table.indexes);
    table.indexes.clear();
    for (const IndexDefinition& index : indexes)
        table.indexes.push_back(checkedIndex(table, index));
    for (const IndexDefinition& index : table.indexes)
        for (FieldDefinition& field : table.fields)
            field.required = field.required || (index.primary && indexUsesField(index, field.name));
    return table;
}

IndexDefinition checkedIndex(const TableDefinition& table, IndexDefinition index) {
    checkName(index.name);
    if (table.index(index.name) != nullptr)
        throw DatabaseError(ErrorCode::indexExists, inText(u"The table '", table.name, u"' has an index '",
                                                           index.name, u"' already."));
    if (index.primary && table.primaryIndex() != nullptr)
        throw DatabaseError(ErrorCode::indexExists,
                            inText(u"The table '", table.name, u"' has a primary index already."));
    if (index.fields.empty() || index.fields.size() > mostIndexFields)
        throw DatabaseError(ErrorCode::syntaxInDefinition,
                            inText(u"The index '", index.name, u"' must have one to ten fields."));
    for (IndexField& indexField : index.fields) {
        const FieldDefinition* field = table.field(indexField.name);
        if (field == nullptr)
            throw DatabaseError(ErrorCode::fieldNotInDefinition,
                                inText(u"The field '", indexField.name, u"' of the index '", index.name,
                                       u"' is not in the table '", table.name, u"'."));
        indexField.name = field->name;
        const auto same = [&](const IndexField& other) { return sameName(other.name, indexField.name); };
        if (std::count_if(index.fields.begin(), index.fields.end(), same) > 1)
            throw DatabaseError(
                ErrorCode::duplicateField,
                inText(u"The index '", index.name, u"' has the field '", indexField.name, u"' twice."));
    }
    index.unique = index.unique || index.primary;
    return index;
}

namespace {

std::vector<ChangedField>::iterator findField(std::vector<ChangedField>& fields, TextView name) {
    return std::find_if(fields.begin(), fields.end(),
                        [&](const ChangedField& changed) { return sameName(changed.field.name, name); });
}

std::vector<ChangedField>::iterator existingField(std::vector<ChangedField>& fields,
                                                  const TableDefinition& table, TextView name) {
    const auto found = findField(fields, name);
    if (found == fields.end())
        throw DatabaseError(ErrorCode::itemNotFound,
                            inText(u"The field '", name, u"' is not in the table '", table.name, u"'."));
    return found;
}

void applyChange(std::vector<ChangedField>& fields, const TableDefinition& table, const FieldChange& change) {
    switch (change.kind) {
        case FieldChange::Kind::remove: fields.erase(existingField(fields, table, change.field.name)); return;
        case FieldChange::Kind::rename: {
            const auto found = existingField(fields, table, change.field.name);
            checkName(change.newName);
            const auto other = findField(fields, change.newName);
            if (other != fields.end() && other != found)
                throw DatabaseError(
                    ErrorCode::duplicateField,
                    inText(u"The table '", table.name, u"' has a field '", change.newName, u"' already."));
            found->field.name = change.newName;
            return;
        }
        case FieldChange::Kind::addOrAlter: break;
    }
    const auto found = findField(fields, change.field.name);
    if (found == fields.end()) {
        fields.push_back({change.field, -1, change.primary});
        return;
    }
    // An altered field keeps its spelling, which programs may have taken over.
    FieldDefinition altered = change.field;
    altered.name = found->field.name;
    found->field = std::move(altered);
    found->primary = found->primary || change.primary;
}

}  // namespace

std::vector<ChangedField> changedFields(const TableDefinition& table,
                                        const std::vector<FieldChange>& changes) {
    std::vector<ChangedField> fields;
    for (std::size_t place = 0; place < table.fields.size(); ++place)
        fields.push_back({table.fields[place], static_cast<int>(place), false});
    for (const FieldChange& change : changes)
        applyChange(fields, table, change);
    return fields;
}

bool indexUsesField(const IndexDefinition& index, TextView field) {
    return std::any_of(index.fields.begin(), index.fields.end(),
                       [&](const IndexField& indexField) { return sameName(indexField.name, field); });
}

bool namesField(const std::vector<Text>& fields, TextView field) {
    return std::any_of(fields.begin(), fields.end(), [&](const Text& name) { return sameName(name, field); });
}

bool sameFields(const IndexDefinition& index, const std::vector<Text>& fields) {
    return index.fields.size() == fields.size() &&
           std::all_of(index.fields.begin(), index.fields.end(),
                       [&](const IndexField& indexField) { return namesField(fields, indexField.name); });
}

}  // namespace tessary::server
