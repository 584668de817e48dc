#include "server/sqlite/catalog.h"

#include <span>

namespace tessary::server {

namespace {

// Names hold no control characters, so lines part them. A descending field has a "-" in front, others a "+".
constexpr char16_t lineEnd = u'\n';

template <typename Take>
void forEachLine(TextView lines, Take take) {
    while (!lines.empty()) {
        const std::size_t end = lines.find(lineEnd);
        take(lines.substr(0, end));
        lines = end == TextView::npos ? TextView() : lines.substr(end + 1);
    }
}

Text linesOf(const std::vector<Text>& names) {
    Text lines;
    for (const Text& name : names)
        lines += name + lineEnd;
    return lines;
}

std::vector<Text> namesOf(TextView lines) {
    std::vector<Text> names;
    forEachLine(lines, [&](TextView line) { names.emplace_back(line); });
    return names;
}

Text linesOf(const std::vector<IndexField>& fields) {
    Text lines;
    for (const IndexField& field : fields)
        lines += (field.descending ? u"-" : u"+") + field.name + lineEnd;
    return lines;
}

std::vector<IndexField> indexFieldsOf(TextView lines) {
    std::vector<IndexField> fields;
    forEachLine(lines, [&](TextView line) {
        fields.push_back({Text(line.substr(std::min<std::size_t>(1, line.size()))), line.starts_with(u'-')});
    });
    return fields;
}

constexpr const char* catalogTables[] = {
    "tables\"(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT)",
    "fields\"(tableId INTEGER, place INTEGER, name TEXT, type TEXT, size INTEGER, required INTEGER, "
    "autonumber INTEGER, standard)",
    "indexes\"(tableId INTEGER, place INTEGER, name TEXT, isUnique INTEGER, isPrimary INTEGER, fields TEXT)",
    "relations\"(name TEXT, parent TEXT, parentFields TEXT, child TEXT, childFields TEXT, cascadeUpdate "
    "INTEGER, "
    "cascadeDelete INTEGER)",
    "queries\"(name TEXT, statement TEXT)",
    "links\"(name TEXT, file TEXT, target TEXT)",
};

[[noreturn]] void throwUnreadable(const Connection& connection) {
    throw DatabaseError(ErrorCode::damaged,
                        inText(u"The definitions in the database '", connection.path(), u"' are damaged."));
}

FieldDefinition readField(const Connection& connection, Prepared& row) {
    const std::optional<FieldDefinition> type = typeOfName(row.textView(2));
    if (!type)
        throwUnreadable(connection);
    FieldDefinition field;
    field.name = row.text(1);
    field.type = type->type;
    field.size = static_cast<int>(row.integer(3));
    field.required = row.integer(4) != 0;
    field.autonumber = row.integer(5) != 0;
    if (!row.isNull(6))
        field.defaultValue = row.value(6, field.type);
    return field;
}

}  // namespace

bool sameShape(const TableEntry& left, const TableEntry& right) {
    return left.id == right.id && left.definition.name == right.definition.name &&
           left.definition.fields == right.definition.fields &&
           left.definition.indexes == right.definition.indexes;
}

const TableEntryPtr* Definitions::table(TextView name) const {
    const auto found = tables.find(name);
    return found == tables.end() ? nullptr : &found->second;
}

// The header's user version counts the changes of definitions, so a look at one page tells whether there was
// one.
const Definitions& Catalog::definitions() {
    if (!version_)
        version_ = connection_.prepare("PRAGMA " + schema_ + ".user_version", true);
    // While this statement stands on its row nobody can change the file, so all that is read belongs
    // together.
    const ResetLater resetLater(version_);
    const std::int64_t version = version_.step() ? version_.integer(0) : 0;
    if (loadedVersion_ != version) {
        definitions_ = readDefinitions();
        loadedVersion_ = version;
    }
    return definitions_;
}

// Without its own tables, or with others of their names, the file is not what it was.
Definitions Catalog::readDefinitions() {
    Definitions definitions;
    try {
        load(definitions);
    } catch (const DatabaseError& error) {
        if (error.code() != ErrorCode::couldNotStart)
            throw;
        throwUnreadable(connection_);
    }
    return definitions;
}

void Catalog::load(Definitions& definitions) {
    std::map<std::int64_t, TableEntry> entries;
    Prepared tables = connection_.prepare("SELECT id, name FROM " + tableName("tables"));
    while (tables.step()) {
        TableEntry entry;
        entry.id = tables.integer(0);
        entry.definition.name = tables.text(1);
        entries.emplace(entry.id, std::move(entry));
    }
    loadFields(entries);
    loadIndexes(entries);
    for (auto& [id, entry] : entries) {
        Text name = entry.definition.name;
        definitions.tables.emplace(std::move(name), std::make_shared<TableEntry>(std::move(entry)));
    }
    loadRelations(definitions);
    Prepared queries = connection_.prepare("SELECT name, statement FROM " + tableName("queries"));
    while (queries.step())
        definitions.queries.emplace(queries.text(0), QueryDefinition{queries.text(0), queries.text(1)});
    Prepared links = connection_.prepare("SELECT name, file, target FROM " + tableName("links"));
    while (links.step())
        definitions.links.emplace(links.text(0), LinkDefinition{links.text(0), links.text(1), links.text(2)});
}

void Catalog::loadFields(std::map<std::int64_t, TableEntry>& entries) {
    Prepared fields =
        connection_.prepare("SELECT tableId, name, type, size, required, autonumber, standard FROM " +
                            tableName("fields") + " ORDER BY tableId, place");
    while (fields.step()) {
        const auto entry = entries.find(fields.integer(0));
        if (entry != entries.end())
            entry->second.definition.fields.push_back(readField(connection_, fields));
    }
}

void Catalog::loadIndexes(std::map<std::int64_t, TableEntry>& entries) {
    Prepared indexes = connection_.prepare("SELECT tableId, name, isUnique, isPrimary, fields FROM " +
                                           tableName("indexes") + " ORDER BY tableId, place");
    while (indexes.step()) {
        const auto entry = entries.find(indexes.integer(0));
        if (entry == entries.end())
            continue;
        entry->second.definition.indexes.push_back({indexes.text(1), indexFieldsOf(indexes.textView(4)),
                                                    indexes.integer(2) != 0, indexes.integer(3) != 0});
    }
}

void Catalog::loadRelations(Definitions& definitions) {
    Prepared rows = connection_.prepare(
        "SELECT name, parent, parentFields, child, childFields, cascadeUpdate, cascadeDelete FROM " +
        tableName("relations"));
    while (rows.step()) {
        RelationDefinition relation{rows.text(0),        rows.text(1),          namesOf(rows.text(2)),
                                    rows.text(3),        namesOf(rows.text(4)), rows.integer(5) != 0,
                                    rows.integer(6) != 0};
        Text name = relation.name;
        definitions.relations.emplace(std::move(name), std::move(relation));
    }
}

void Catalog::createTables() {
    for (const char* table : catalogTables)
        connection_.execute("CREATE TABLE IF NOT EXISTS " + schema_ + ".\"!" + table);
    changed();
}

void Catalog::run(const std::string& sql, std::span<const Value> values) {
    Prepared statement = connection_.prepare(sql);
    int place = 0;
    for (const Value& value : values)
        statement.bind(++place, value);
    statement.run();
}

// The cache is read anew after every change of ours: the transaction may still be rolled back.
void Catalog::changed() {
    const std::int64_t version = connection_.number("PRAGMA " + schema_ + ".user_version");
    const std::int64_t next = version >= 0x7fffffff ? 1 : version + 1;
    connection_.execute("PRAGMA " + schema_ + ".user_version=" + std::to_string(next));
    loadedVersion_.reset();
}

std::int64_t Catalog::newTableId(TextView name) {
    run("INSERT INTO " + tableName("tables") + "(name) VALUES(?)", std::vector<Value>{Text(name)});
    return sqlite3_last_insert_rowid(connection_.handle());
}

void Catalog::store(const TableEntry& entry) {
    removeTable(entry.id);
    const TableDefinition& table = entry.definition;
    const std::string id = std::to_string(entry.id);
    run("INSERT INTO " + tableName("tables") + "(id, name) VALUES(" + id + ",?)",
        std::vector<Value>{table.name});
    int place = 0;
    for (const FieldDefinition& field : table.fields)
        run("INSERT INTO " + tableName("fields") + " VALUES(" + id + ",?,?,?,?,?,?,?)",
            std::vector<Value>{++place, field.name, typeName(field.type), field.size, field.required,
                               field.autonumber, field.defaultValue.value_or(Null{})});
    place = 0;
    for (const IndexDefinition& index : table.indexes)
        run("INSERT INTO " + tableName("indexes") + " VALUES(" + id + ",?,?,?,?,?)",
            std::vector<Value>{++place, index.name, index.unique, index.primary, linesOf(index.fields)});
}

void Catalog::removeTable(std::int64_t id) {
    const std::string number = std::to_string(id);
    connection_.execute("DELETE FROM " + tableName("tables") + " WHERE id=" + number + "; DELETE FROM " +
                        tableName("fields") + " WHERE tableId=" + number + "; DELETE FROM " +
                        tableName("indexes") + " WHERE tableId=" + number);
    changed();
}

void Catalog::store(const RelationDefinition& relation) {
    removeRelation(relation.name);
    run("INSERT INTO " + tableName("relations") + " VALUES(?,?,?,?,?,?,?)",
        std::vector<Value>{relation.name, relation.table, linesOf(relation.fields), relation.foreignTable,
                           linesOf(relation.foreignFields), relation.cascadeUpdate, relation.cascadeDelete});
}

void Catalog::removeRelation(TextView name) {
    run("DELETE FROM " + tableName("relations") + " WHERE name=?", std::vector<Value>{Text(name)});
    changed();
}

void Catalog::store(const QueryDefinition& query) {
    run("INSERT INTO " + tableName("queries") + " VALUES(?,?)",
        std::vector<Value>{query.name, query.statement});
    changed();
}

void Catalog::removeQuery(TextView name) {
    run("DELETE FROM " + tableName("queries") + " WHERE name=?", std::vector<Value>{Text(name)});
    changed();
}

void Catalog::store(const LinkDefinition& link) {
    run("INSERT INTO " + tableName("links") + " VALUES(?,?,?)",
        std::vector<Value>{link.name, link.file, link.table});
    changed();
}

void Catalog::removeLink(TextView name) {
    run("DELETE FROM " + tableName("links") + " WHERE name=?", std::vector<Value>{Text(name)});
    changed();
}

}  // namespace tessary::server
