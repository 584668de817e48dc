#include "server/sqlite/schema_editor.h"

#include "server/sqlite/table_checks.h"
#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

#include <algorithm>

namespace tessary::server {

SchemaChange::ForeignKeysOff::ForeignKeysOff(Connection& of)
    : connection(of.inTransaction() ? nullptr : &of) {
    if (connection != nullptr)
        connection->execute("PRAGMA foreign_keys=OFF");
}

SchemaChange::ForeignKeysOff::~ForeignKeysOff() {
    if (connection != nullptr)
        sqlite3_exec(connection->handle(), "PRAGMA foreign_keys=ON", nullptr, nullptr, nullptr);
}

SchemaChange::SchemaChange(Connection& connection, Catalog& catalog)
    : catalog_(catalog), foreignKeysOff_(connection), transaction_(connection, Transaction::Kind::write) {}

SchemaChange::~SchemaChange() {
    if (!committed_)
        catalog_.forget();
}

void SchemaChange::commit() {
    transaction_.commit();
    committed_ = true;
}

TableEntry SchemaEditor::ownTable(TextView name) {
    const Definitions& definitions = catalog_.definitions();
    if (const TableEntryPtr* entry = definitions.table(name))
        return **entry;
    if (definitions.links.contains(name))
        throw DatabaseError(
            ErrorCode::readOnly,
            inText(u"The table '", name, u"' is linked; it can be changed in its own file only."));
    throw DatabaseError(ErrorCode::tableNotFound, inText(u"The table '", name, u"' does not exist."));
}

void SchemaEditor::requireNewTableName(TextView name) {
    checkName(name);
    const Definitions& definitions = catalog_.definitions();
    if (definitions.table(name) != nullptr || definitions.links.contains(name))
        throw DatabaseError(ErrorCode::tableExists, inText(u"The table '", name, u"' exists already."));
    if (definitions.queries.contains(name))
        throw DatabaseError(ErrorCode::itemExists, inText(u"There is a query '", name, u"' already."));
}

void SchemaEditor::createTable(const TableDefinition& definition) {
    TableEntry entry;
    entry.definition = checkedTable(definition);
    SchemaChange change(connection_, catalog_);
    requireNewTableName(definition.name);
    entry.id = catalog_.newTableId(definition.name);
    catalog_.store(entry);
    const std::string name = "main." + quotedName(physicalName(definition.name));
    connection_.execute(createTableSql(entry.definition, name, {}));
    createIndexes(entry);
    change.commit();
}

void SchemaEditor::createIndexes(const TableEntry& entry) {
    for (const IndexDefinition& index : entry.definition.indexes)
        if (!isRowOrder(entry.definition, index))
            connection_.execute(createIndexSql(entry.id, entry.definition, index));
    for (const RelationDefinition& relation : relationsFrom(entry.definition.name))
        connection_.execute(createRelationIndexSql(relation));
}

namespace {

TableDefinition changedDefinition(const TableDefinition& table, const std::vector<ChangedField>& fields) {
    TableDefinition changed;
    changed.name = table.name;
    changed.indexes = table.indexes;
    IndexDefinition primary{u"PrimaryKey", {}, true, true};
    for (const ChangedField& field : fields) {
        changed.fields.push_back(field.field);
        if (field.primary)
            primary.fields.push_back({field.field.name});
        if (field.oldPlace < 0)
            continue;
        const Text& oldName = table.fields[static_cast<std::size_t>(field.oldPlace)].name;
        for (IndexDefinition& index : changed.indexes)
            for (IndexField& indexField : index.fields)
                if (sameName(indexField.name, oldName))
                    indexField.name = field.field.name;
    }
    const IndexDefinition* present = changed.primaryIndex();
    std::vector<Text> primaryNames;
    for (const IndexField& field : primary.fields)
        primaryNames.push_back(field.name);
    if (!primary.fields.empty() && !(present != nullptr && sameFields(*present, primaryNames)))
        changed.indexes.push_back(std::move(primary));
    return checkedTable(std::move(changed));
}

bool isKept(const std::vector<ChangedField>& fields, std::size_t place) {
    return std::any_of(fields.begin(), fields.end(),
                       [&](const ChangedField& field) { return field.oldPlace == static_cast<int>(place); });
}

}  // namespace

void SchemaEditor::modifyTable(TextView name, std::span<const FieldChange> changes) {
    SchemaChange change(connection_, catalog_);
    const TableEntry old = ownTable(name);
    const TableDefinition& table = old.definition;
    const std::vector<ChangedField> fields = changedFields(table, {changes.begin(), changes.end()});
    for (std::size_t place = 0; place < table.fields.size(); ++place)
        if (!isKept(fields, place))
            requireFieldNotUsed(table, table.fields[place].name);

    const TableEntry changed{old.id, changedDefinition(table, fields)};
    catalog_.store(changed);
    std::vector<FieldSource> sources;
    std::vector<Text> children;
    for (std::size_t place = 0; place < fields.size(); ++place) {
        const int oldPlace = fields[place].oldPlace;
        sources.push_back(oldPlace < 0 ? FieldSource{} : FieldSource{static_cast<std::size_t>(oldPlace)});
        if (oldPlace < 0)
            continue;
        const FieldDefinition& before = table.fields[static_cast<std::size_t>(oldPlace)];
        const FieldDefinition& after = changed.definition.fields[place];
        for (const RelationDefinition& relation : relationsOf(table.name)) {
            const bool asParent =
                sameName(relation.table, table.name) && namesField(relation.fields, before.name);
            const bool asChild = sameName(relation.foreignTable, table.name) &&
                                 namesField(relation.foreignFields, before.name);
            if ((asParent || asChild) && before.type != after.type)
                throw DatabaseError(ErrorCode::cannotDropRelated,
                                    inText(u"The type of the field '", before.name,
                                           u"' cannot change: it is used by the relation '", relation.name,
                                           u"'."));
            if (asParent && before.name != after.name && !sameName(relation.foreignTable, table.name))
                children.push_back(relation.foreignTable);
        }
        if (before.name != after.name)
            renameFieldInRelations(table.name, before.name, after.name);
    }
    rebuild(old, changed, sources);
    for (const Text& child : children)
        rebuildUnchanged(child);
    change.commit();
}

void SchemaEditor::renameTable(TextView oldName, TextView newName) {
    SchemaChange change(connection_, catalog_);
    const auto link = catalog_.definitions().links.find(oldName);
    if (!sameName(oldName, newName))
        requireNewTableName(newName);
    checkName(newName);
    if (link != catalog_.definitions().links.end()) {
        LinkDefinition renamed = link->second;
        catalog_.removeLink(Text(renamed.name));
        renamed.name = newName;
        catalog_.store(renamed);
        return change.commit();
    }
    TableEntry entry = ownTable(oldName);
    std::vector<RelationDefinition> relations = relationsOf(entry.definition.name);
    const std::string scratch = quotedName(scratchName(entry.definition.name));
    // By a third name, since for SQLite a change of case alone is none.
    connection_.execute("ALTER TABLE main." + quotedName(physicalName(entry.definition.name)) +
                        " RENAME TO " + scratch + "; ALTER TABLE main." + scratch + " RENAME TO " +
                        quotedName(physicalName(newName)));
    for (RelationDefinition& relation : relations) {
        if (sameName(relation.table, oldName))
            relation.table = newName;
        if (sameName(relation.foreignTable, oldName))
            relation.foreignTable = newName;
        catalog_.store(relation);
    }
    entry.definition.name = newName;
    catalog_.store(entry);
    change.commit();
}

void SchemaEditor::dropTable(TextView name, bool withRelations) {
    SchemaChange change(connection_, catalog_);
    const auto link = catalog_.definitions().links.find(name);
    if (link != catalog_.definitions().links.end()) {
        catalog_.removeLink(Text(link->second.name));
        return change.commit();
    }
    const TableEntry entry = ownTable(name);
    for (const RelationDefinition& relation : relationsOf(name)) {
        if (!withRelations)
            throw DatabaseError(ErrorCode::cannotDropRelated,
                                inText(u"The table '", name,
                                       u"' cannot be deleted: it is used by the relation '", relation.name,
                                       u"'."));
        dropRelation(relation.name);
    }
    connection_.execute("DROP TABLE main." + quotedName(physicalName(entry.definition.name)));
    catalog_.removeTable(entry.id);
    change.commit();
}

void SchemaEditor::createIndex(TextView table, const IndexDefinition& index) {
    SchemaChange change(connection_, catalog_);
    const TableEntry old = ownTable(table);
    TableEntry changed = old;
    const IndexDefinition checked = checkedIndex(old.definition, index);
    changed.definition.indexes.push_back(checked);
    changed.definition = checkedTable(std::move(changed.definition));
    catalog_.store(changed);
    if (changed.definition.fields != old.definition.fields) {
        // The fields of a primary index become required, which is part of the table itself.
        std::vector<FieldSource> sources;
        for (std::size_t place = 0; place < old.definition.fields.size(); ++place)
            sources.push_back({place});
        rebuild(old, changed, sources);
    } else if (!isRowOrder(changed.definition, checked)) {
        connection_.execute(createIndexSql(changed.id, changed.definition, checked));
    }
    change.commit();
}

void SchemaEditor::dropIndex(TextView table, TextView index) {
    SchemaChange change(connection_, catalog_);
    TableEntry entry = ownTable(table);
    const IndexDefinition* present = entry.definition.index(index);
    if (present == nullptr)
        throw DatabaseError(ErrorCode::indexNotFound,
                            inText(u"The table '", table, u"' has no index '", index, u"'."));
    const IndexDefinition dropped = *present;
    std::erase_if(entry.definition.indexes,
                  [&](const IndexDefinition& other) { return sameName(other.name, index); });
    requireIndexNotUsed(entry.definition, dropped);
    catalog_.store(entry);
    if (!isRowOrder(entry.definition, dropped))
        connection_.execute("DROP INDEX main." + quotedName(physicalIndexName(entry.id, dropped.name)));
    change.commit();
}

void SchemaEditor::requireFieldNotUsed(const TableDefinition& table, TextView field) {
    for (const IndexDefinition& index : table.indexes)
        if (indexUsesField(index, field))
            throw DatabaseError(ErrorCode::cannotDropRelated,
                                inText(u"The field '", field, u"' of the table '", table.name,
                                       u"' cannot be deleted: it is used by the index '", index.name, u"'."));
    for (const RelationDefinition& relation : relationsOf(table.name))
        if ((sameName(relation.table, table.name) && namesField(relation.fields, field)) ||
            (sameName(relation.foreignTable, table.name) && namesField(relation.foreignFields, field)))
            throw DatabaseError(ErrorCode::cannotDropRelated,
                                inText(u"The field '", field, u"' of the table '", table.name,
                                       u"' cannot be deleted: it is used by the relation '", relation.name,
                                       u"'."));
}

void SchemaEditor::createQuery(const QueryDefinition& query) {
    SchemaChange change(connection_, catalog_);
    requireNewTableName(query.name);
    catalog_.store(query);
    change.commit();
}

void SchemaEditor::dropQuery(TextView name) {
    SchemaChange change(connection_, catalog_);
    const auto found = catalog_.definitions().queries.find(name);
    if (found == catalog_.definitions().queries.end())
        throw DatabaseError(ErrorCode::itemNotFound, inText(u"The query '", name, u"' does not exist."));
    catalog_.removeQuery(Text(found->second.name));
    change.commit();
}

void SchemaEditor::linkTable(const LinkDefinition& link) {
    SchemaChange change(connection_, catalog_);
    requireNewTableName(link.name);
    catalog_.store(link);
    change.commit();
}

}  // namespace tessary::server
