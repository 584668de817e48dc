#include "server/sqlite/schema_editor.h"

#include "server/sqlite/table_checks.h"
#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

#include <algorithm>

namespace tessary::server {

std::vector<RelationDefinition> SchemaEditor::relationsFrom(TextView foreignTable) {
    std::vector<RelationDefinition> result;
    for (const auto& [name, relation] : catalog_.definitions().relations)
        if (sameName(relation.foreignTable, foreignTable))
            result.push_back(relation);
    return result;
}

std::vector<RelationDefinition> SchemaEditor::relationsOf(TextView table) {
    std::vector<RelationDefinition> result;
    for (const auto& [name, relation] : catalog_.definitions().relations)
        if (sameName(relation.foreignTable, table) || sameName(relation.table, table))
            result.push_back(relation);
    return result;
}

namespace {

bool isUniqueIn(const TableDefinition& table, const std::vector<Text>& fields) {
    const FieldDefinition* autonumber = autonumberField(table);
    if (autonumber != nullptr && fields.size() == 1 && sameName(fields[0], autonumber->name))
        return true;
    return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDefinition& index) {
        return (index.unique || index.primary) && sameFields(index, fields);
    });
}

const FieldDefinition& relationField(const TableDefinition& table, TextView name, TextView relation) {
    const FieldDefinition* field = table.field(name);
    if (field == nullptr)
        throw DatabaseError(ErrorCode::fieldNotInDefinition,
                            inText(u"The field '", name, u"' of the relation '", relation,
                                   u"' is not in the table '", table.name, u"'."));
    return *field;
}

// The relation with its names spelled as the tables spell them.
RelationDefinition checkedRelation(RelationDefinition relation, const TableDefinition& parent,
                                   const TableDefinition& child) {
    checkName(relation.name);
    if (relation.fields.empty() && parent.primaryIndex() != nullptr)
        for (const IndexField& field : parent.primaryIndex()->fields)
            relation.fields.push_back(field.name);
    if (relation.fields.empty() || relation.fields.size() != relation.foreignFields.size())
        throw DatabaseError(ErrorCode::syntaxInDefinition,
                            inText(u"The relation '", relation.name,
                                   u"' must name as many fields of the one table as of the other."));
    relation.table = parent.name;
    relation.foreignTable = child.name;
    for (std::size_t place = 0; place < relation.fields.size(); ++place) {
        const FieldDefinition& field = relationField(parent, relation.fields[place], relation.name);
        const FieldDefinition& foreign = relationField(child, relation.foreignFields[place], relation.name);
        if (field.type != foreign.type)
            throw DatabaseError(ErrorCode::typeMismatch,
                                inText(u"The fields '", field.name, u"' and '", foreign.name,
                                       u"' of the relation '", relation.name, u"' are of different types."));
        relation.fields[place] = field.name;
        relation.foreignFields[place] = foreign.name;
    }
    if (!isUniqueIn(parent, relation.fields))
        throw DatabaseError(ErrorCode::noUniqueIndex,
                            inText(u"The table '", parent.name,
                                   u"' has no unique index on the fields of the relation '", relation.name,
                                   u"'."));
    return relation;
}

}  // namespace

void SchemaEditor::createRelation(const RelationDefinition& relation) {
    SchemaChange change(connection_, catalog_);
    if (catalog_.definitions().relations.contains(relation.name))
        throw DatabaseError(ErrorCode::itemExists,
                            inText(u"The relation '", relation.name, u"' exists already."));
    const TableDefinition parent = ownTable(relation.table).definition;
    const TableDefinition child = ownTable(relation.foreignTable).definition;
    const RelationDefinition checked = checkedRelation(relation, parent, child);
    catalog_.store(checked);
    rebuildUnchanged(child.name);
    Prepared orphans =
        connection_.prepare("PRAGMA main.foreign_key_check(" + quotedName(physicalName(child.name)) + ")");
    if (orphans.step())
        throw DatabaseError(ErrorCode::relatedRecordMissing,
                            inText(u"The relation '", checked.name, u"' cannot be made: the table '",
                                   child.name, u"' has records without a related record in the table '",
                                   parent.name, u"'."));
    orphans.reset();
    change.commit();
}

void SchemaEditor::dropRelation(TextView name) {
    SchemaChange change(connection_, catalog_);
    const auto found = catalog_.definitions().relations.find(name);
    if (found == catalog_.definitions().relations.end())
        throw DatabaseError(ErrorCode::itemNotFound, inText(u"The relation '", name, u"' does not exist."));
    const RelationDefinition relation = found->second;
    catalog_.removeRelation(relation.name);
    rebuildUnchanged(relation.foreignTable);
    change.commit();
}

void SchemaEditor::renameFieldInRelations(TextView table, TextView oldName, TextView newName) {
    const auto rename = [&](std::vector<Text>& fields) {
        for (Text& field : fields)
            if (sameName(field, oldName))
                field = newName;
    };
    for (RelationDefinition relation : relationsOf(table)) {
        if (sameName(relation.table, table))
            rename(relation.fields);
        if (sameName(relation.foreignTable, table))
            rename(relation.foreignFields);
        catalog_.store(relation);
    }
}

void SchemaEditor::requireIndexNotUsed(const TableDefinition& table, const IndexDefinition& index) {
    for (const RelationDefinition& relation : relationsOf(table.name))
        if (sameName(relation.table, table.name) && sameFields(index, relation.fields) &&
            !isUniqueIn(table, relation.fields))
            throw DatabaseError(ErrorCode::cannotDropRelated,
                                inText(u"The index '", index.name,
                                       u"' cannot be deleted: it is used by the relation '", relation.name,
                                       u"'."));
}

}  // namespace tessary::server
