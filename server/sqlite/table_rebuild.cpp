// A table whose columns or constraints change is made anew beside the old one, filled, and takes its place,
// all in one transaction. SQLite's own ALTER TABLE knows neither other types nor constraints.

#include "server/sqlite/schema_editor.h"

#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

namespace tessary::server {

void SchemaEditor::rebuild(const TableEntry& old, const TableEntry& changed,
                           std::span<const FieldSource> sources) {
    const std::string scratch = "main." + quotedName(scratchName(changed.definition.name));
    const std::string place = quotedName(physicalName(changed.definition.name));
    const std::vector<RelationDefinition> relations = relationsFrom(changed.definition.name);
    connection_.execute(createTableSql(changed.definition, scratch, relations));
    copyRecords(old, changed, sources);
    keepSequence(old, changed);
    connection_.execute("DROP TABLE main." + place + "; ALTER TABLE " + scratch + " RENAME TO " + place);
    createIndexes(changed);
}

void SchemaEditor::rebuildUnchanged(TextView table) {
    const TableEntry entry = ownTable(table);
    std::vector<FieldSource> sources;
    for (std::size_t place = 0; place < entry.definition.fields.size(); ++place)
        sources.push_back({place});
    rebuild(entry, entry, sources);
}

namespace {

// One field of a record on its way to the changed table.
struct FieldCopy {
    const FieldDefinition* from = nullptr;  // null: new
    const FieldDefinition* to;
    int column = 0;  // of the old record
    Value value;     // converted; bound without a copy
};

void bindField(Prepared& insert, int place, Prepared& record, FieldCopy& copy) {
    if (copy.from == nullptr) {
        if (copy.to->autonumber)
            insert.bind(place, record.integer(0));
        else
            insert.bind(place, copy.value);
    } else if (copy.from->type == copy.to->type) {
        sqlite3_bind_value(insert.handle(), place, sqlite3_column_value(record.handle(), copy.column));
    } else {
        copy.value = convertTo(copy.to->type, record.value(copy.column, copy.from->type), copy.to->name);
        insert.bind(place, copy.value);
    }
}

}  // namespace

// The records keep their row numbers, so that positions in the table stay valid. A new autonumber field
// counts from them; a new field with a default has it in the records that exist already.
void SchemaEditor::copyRecords(const TableEntry& old, const TableEntry& changed,
                               std::span<const FieldSource> sources) {
    const bool hasRowColumn = autonumberField(changed.definition) == nullptr;
    std::string selected = rowColumnOf(old.definition), inserted, places;
    for (const FieldDefinition& field : old.definition.fields)
        selected += "," + quotedName(field.name);
    std::vector<FieldCopy> copies;
    for (std::size_t place = 0; place < sources.size(); ++place) {
        FieldCopy copy{nullptr, &changed.definition.fields[place], 0, Null{}};
        if (sources[place].oldField) {
            copy.from = &old.definition.fields[*sources[place].oldField];
            copy.column = static_cast<int>(*sources[place].oldField) + 1;
        } else {
            copy.value = copy.to->defaultValue.value_or(Null{});
        }
        inserted += (inserted.empty() ? "" : ",") + quotedName(copy.to->name);
        places += places.empty() ? "?" : ",?";
        copies.push_back(std::move(copy));
    }
    if (hasRowColumn) {
        inserted += "," + quotedName(rowColumn);
        places += ",?";
    }
    Prepared record =
        connection_.prepare("SELECT " + selected + " FROM main." +
                            quotedName(physicalName(old.definition.name)) + " NOT INDEXED ORDER BY 1");
    Prepared insert =
        connection_.prepare("INSERT INTO main." + quotedName(scratchName(changed.definition.name)) + "(" +
                            inserted + ") VALUES(" + places + ")");
    while (record.step()) {
        int place = 0;
        for (FieldCopy& copy : copies)
            bindField(insert, ++place, record, copy);
        if (hasRowColumn)
            insert.bind(++place, record.integer(0));
        insert.run();
    }
}

// What has been counted stays counted, though the records with the highest numbers are gone.
void SchemaEditor::keepSequence(const TableEntry& old, const TableEntry& changed) {
    if (autonumberField(changed.definition) == nullptr || autonumberField(old.definition) == nullptr)
        return;
    Prepared oldNumber = connection_.prepare("SELECT seq FROM main.sqlite_sequence WHERE name=?");
    oldNumber.bindCopy(1, physicalName(old.definition.name));
    if (!oldNumber.step())
        return;
    const Text scratch = scratchName(changed.definition.name);
    Prepared remove = connection_.prepare("DELETE FROM main.sqlite_sequence WHERE name=?");
    remove.bindCopy(1, scratch);
    remove.run();
    Prepared insert = connection_.prepare("INSERT INTO main.sqlite_sequence(name, seq) VALUES(?,?)");
    insert.bindCopy(1, scratch);
    insert.bind(2, oldNumber.integer(0));
    oldNumber.reset();
    insert.run();
}

}  // namespace tessary::server
