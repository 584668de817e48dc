// Makes a sound database of a damaged one. SQLite's recovery reads every page that still makes sense into a
// scratch file without regard to indexes; from there the records go into a new database, whose definitions
// come from the catalog as far as it was read, and otherwise from the tables themselves.

#include "server/sqlite/compaction.h"

#include "server/sqlite/files.h"
#include "server/sqlite/functions.h"
#include "server/sqlite/schema_editor.h"
#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

#include "sqlite3recover.h"

#include <algorithm>

namespace tessary::server {

namespace {

// In the scratch file, the table of what lies on pages that no table leads to; there is none when there are
// no such pages. The recovery puts a number behind the name when a table has it already.
constexpr const char* orphans = "tessary_orphans";

int registerOnOpen(sqlite3* connection, const char**, const void*) {
    try {
        registerFunctions(connection);
        return SQLITE_OK;
    } catch (const std::exception&) {
        return SQLITE_NOMEM;
    }
}

// The recovery opens its output itself, and needs the collation of the tables that it makes there.
class RegisterEverywhere {
public:
    RegisterEverywhere() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(registerOnOpen)); }
    ~RegisterEverywhere() { sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(registerOnOpen)); }
    RegisterEverywhere(const RegisterEverywhere&) = delete;
    RegisterEverywhere& operator=(const RegisterEverywhere&) = delete;
};

void recoverInto(Connection& source, const TemporaryFile& scratch) {
    const RegisterEverywhere registerEverywhere;
    sqlite3_recover* recover = sqlite3_recover_init(source.handle(), "main", toUtf8(scratch.text()).c_str());
    if (recover == nullptr)
        throw DatabaseError(ErrorCode::couldNotStart, u"Not enough memory to repair the database.");
    sqlite3_recover_config(recover, SQLITE_RECOVER_LOST_AND_FOUND, const_cast<char*>(orphans));
    const int result = sqlite3_recover_run(recover);
    const char* message = sqlite3_recover_errmsg(recover);
    const Text text = message == nullptr ? Text() : toText(message);
    sqlite3_recover_finish(recover);
    if (result != SQLITE_OK && result != SQLITE_DONE)
        throw DatabaseError(ErrorCode::notADatabase,
                            inText(u"The database '", source.path(), u"' cannot be repaired: ", text, u"."));
}

FieldDefinition fieldOfColumn(Prepared& column) {
    FieldDefinition field;
    field.name = column.text(0);
    const Text declared = column.text(1);
    field.type = declared == u"INTEGER" ? FieldType::longInteger
                 : declared == u"REAL"  ? FieldType::number
                                        : FieldType::memo;
    field.required = column.integer(2) != 0;
    field.autonumber = column.integer(3) != 0;
    return field;
}

// The table as it lies in the scratch file, with what the catalog still knows of its fields.
TableDefinition definitionOf(Connection& target, TextView table, const TableDefinition* known) {
    TableDefinition definition;
    definition.name = table;
    Prepared columns =
        target.prepare("SELECT name, type, \"notnull\", pk FROM pragma_table_info(?, 'damaged')");
    columns.bindCopy(1, physicalName(table));
    while (columns.step()) {
        const FieldDefinition* field = known == nullptr ? nullptr : known->field(columns.textView(0));
        if (columns.textView(0) != rowColumn)
            definition.fields.push_back(field != nullptr ? *field : fieldOfColumn(columns));
    }
    return definition;
}

std::vector<Text> tablesOf(Connection& target) {
    std::vector<Text> names;
    Prepared tables = target.prepare("SELECT name FROM damaged.sqlite_schema WHERE type='table'");
    while (tables.step()) {
        const Text name = tables.text(0);
        const Text table = tableOfPhysicalName(name);
        if (physicalName(table) == name && !name.starts_with(u"sqlite_"))
            names.push_back(table);
    }
    return names;
}

// Nothing when it cannot be read to its end.
std::optional<std::int64_t> countIn(Connection& source, const std::string& from) {
    try {
        return source.number("SELECT count(*) FROM main." + from);
    } catch (const DatabaseError&) {
        return std::nullopt;
    }
}

// How many records the damaged table had: its own tree or one of its indexes' may still tell.
std::optional<std::int64_t> recordsBefore(Connection& source, const TableEntry& entry) {
    const std::string table = quotedName(physicalName(entry.definition.name));
    std::optional<std::int64_t> most = countIn(source, table + " NOT INDEXED");
    for (const IndexDefinition& index : entry.definition.indexes)
        if (!isRowOrder(entry.definition, index))
            most = std::max(most, countIn(source, table + " INDEXED BY " +
                                                      quotedName(physicalIndexName(entry.id, index.name))));
    return most;
}

Text numberText(std::int64_t number) {
    return toText(std::to_string(number));
}

class Salvage {
public:
    Salvage(Connection& source, Connection& target)
        : source_(source), target_(target), catalog_(target, "main"), editor_(target, catalog_) {}

    Text run();

private:
    void readDefinitions();
    std::optional<Text> tableOfOrphans();
    void takeOrphans();
    void copyTable(const TableDefinition& definition, const TableEntry* known);
    void keepSequence(TextView table);
    void report(TextView table, std::int64_t read, const TableEntry* known);
    void lose(TextView what, TextView name) {
        report_ += inText(u"The ", what, u" '", name, u"' could not be made again. ");
    }
    template <typename Work>
    void attempt(TextView what, TextView name, Work work) {
        try {
            work();
        } catch (const DatabaseError& error) {
            if (error.code() == ErrorCode::diskFull || error.code() == ErrorCode::diskOrNetwork)
                throw;
            lose(what, name);
        }
    }

    Connection& source_;
    Connection& target_;
    Catalog catalog_;
    SchemaEditor editor_;
    Definitions known_;
    Text report_;
};

void Salvage::readDefinitions() {
    Catalog damaged(target_, "damaged");
    const std::string tables = "SELECT count(*) FROM damaged.sqlite_schema WHERE type='table'";
    const std::int64_t found = target_.number(tables);
    damaged.createTables();
    bool complete = target_.number(tables) == found;
    try {
        known_ = damaged.definitions();
    } catch (const DatabaseError&) {
        complete = false;
    }
    for (const Text& table : tablesOf(target_))
        complete = complete && known_.table(table) != nullptr;
    if (!complete)
        report_ +=
            u"Not all definitions could be read; fields without one have the types that their values have. ";
}

// Its columns tell the table of the orphans from one of ours with such a name.
std::optional<Text> Salvage::tableOfOrphans() {
    Prepared table = target_.prepare(
        "SELECT s.name FROM damaged.sqlite_schema AS s WHERE s.type='table' AND s.name LIKE ? "
        "AND s.sql LIKE '%(rootpgno INTEGER, pgno INTEGER, nfield INTEGER, id INTEGER%'");
    table.bindCopy(1, toText(std::string(orphans) + "%"));
    return table.step() ? std::optional(table.text(0)) : std::nullopt;
}

// The table goes, so that it is not taken for one of the drafter's. Entries of indexes have no number.
void Salvage::takeOrphans() {
    const std::optional<Text> table = tableOfOrphans();
    if (!table)
        return;
    const std::int64_t count = target_.number("SELECT count(id) FROM damaged." + quotedName(*table));
    target_.execute("DROP TABLE damaged." + quotedName(*table));
    if (count > 0)
        report_ +=
            inText(numberText(count), u" records were found whose table is not known, and were left out. ");
}

void Salvage::report(TextView table, std::int64_t read, const TableEntry* known) {
    TableEntry nameAlone;
    nameAlone.definition.name = table;
    const std::optional<std::int64_t> before = recordsBefore(source_, known == nullptr ? nameAlone : *known);
    if (before && *before == read)
        return;
    report_ += inText(u"Table '", table, u"': ", numberText(read));
    if (before && *before > read)
        report_ += inText(u" records of ", numberText(*before), u" could be read. ");
    else
        report_ += u" records could be read, others may be lost. ";
}

void Salvage::copyTable(const TableDefinition& definition, const TableEntry* known) {
    editor_.createTable(definition);
    std::string fields = autonumberField(definition) == nullptr ? rowColumnOf(definition) : "";
    for (const FieldDefinition& field : definition.fields)
        fields += (fields.empty() ? "" : ",") + quotedName(field.name);
    const std::string name = quotedName(physicalName(definition.name));
    target_.execute("INSERT OR IGNORE INTO main." + name + "(" + fields + ") SELECT " + fields +
                    " FROM damaged." + name);
    keepSequence(definition.name);
    report(definition.name, target_.number("SELECT count(*) FROM main." + name), known);
    if (known == nullptr)
        return;
    for (const IndexDefinition& index : known->definition.indexes)
        attempt(u"index", index.name, [&] { editor_.createIndex(definition.name, index); });
}

void Salvage::keepSequence(TextView table) {
    if (target_.number("SELECT count(*) FROM damaged.sqlite_schema WHERE name='sqlite_sequence'") == 0 ||
        target_.number("SELECT count(*) FROM main.sqlite_schema WHERE name='sqlite_sequence'") == 0)
        return;
    Prepared update =
        target_.prepare("UPDATE main.sqlite_sequence SET seq=max(seq, ifnull((SELECT max(seq) FROM "
                        "damaged.sqlite_sequence WHERE name=?1), 0)) WHERE name=?1");
    update.bindCopy(1, physicalName(table));
    update.run();
    if (sqlite3_changes64(target_.handle()) > 0)
        return;
    Prepared insert = target_.prepare("INSERT INTO main.sqlite_sequence(name, seq) SELECT name, seq FROM "
                                      "damaged.sqlite_sequence WHERE name=?1");
    insert.bindCopy(1, physicalName(table));
    insert.run();
}

Text Salvage::run() {
    takeOrphans();
    readDefinitions();
    SchemaChange change(target_, catalog_);
    for (const Text& table : tablesOf(target_)) {
        const TableEntryPtr* known = known_.table(table);
        const TableDefinition definition =
            definitionOf(target_, table, known == nullptr ? nullptr : &(*known)->definition);
        attempt(u"table", table, [&] { copyTable(definition, known == nullptr ? nullptr : known->get()); });
    }
    for (const auto& [name, entry] : known_.tables)
        if (catalog_.definitions().table(name) == nullptr)
            attempt(u"table", name, [&] {
                editor_.createTable(entry->definition);
                report_ += inText(u"Table '", name, u"': no records could be read. ");
            });
    for (const auto& [name, relation] : known_.relations)
        attempt(u"relation", name, [&] { editor_.createRelation(relation); });
    for (const auto& [name, query] : known_.queries)
        attempt(u"query", name, [&] { editor_.createQuery(query); });
    for (const auto& [name, link] : known_.links)
        attempt(u"linked table", name, [&] { editor_.linkTable(link); });
    change.commit();
    while (report_.ends_with(u' '))
        report_.pop_back();
    return report_;
}

}  // namespace

Text salvage(TextView source, TextView path) {
    const TemporaryFile scratch(temporaryBeside(path));
    Connection damaged(source, Connection::Access::readWrite);
    recoverInto(damaged, scratch);
    Connection target(path, Connection::Access::create);
    initialize(target);
    Prepared attach = target.prepare("ATTACH ? AS damaged");
    attach.bindCopy(1, scratch.text());
    attach.run();
    Text lost = Salvage(damaged, target).run();
    attach = {};
    target.execute("DETACH damaged");
    return lost;
}

}  // namespace tessary::server
