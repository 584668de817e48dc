#include "server/sqlite/linked_tables.h"

#include "server/sqlite/csv_reader.h"
#include "server/sqlite/files.h"
#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

#include <fstream>
#include <sstream>

namespace tessary::server {

namespace fs = std::filesystem;

namespace {

bool isTextFile(const LinkDefinition& link) {
    constexpr TextView extension = u".csv";
    return link.file.size() >= extension.size() &&
           sameName(TextView(link.file).substr(link.file.size() - extension.size()), extension);
}

// Also when the paths differ, in case or by a link.
bool isSameFile(const fs::path& one, const fs::path& other) {
    std::error_code error;
    return fs::equivalent(one, other, error);
}

DatabaseError linkError(const LinkDefinition& link, const DatabaseError& cause) {
    return {cause.code(), inText(u"The linked table '", link.name, u"' cannot be read. ", cause.text())};
}

}  // namespace

// Relative files lie beside the database, so that both can be moved together.
fs::path LinkedTables::fileOf(const LinkDefinition& link) const {
    const fs::path file = pathOf(link.file);
    return (file.is_absolute() ? file : pathOf(connection_.path()).parent_path() / file).lexically_normal();
}

OrderTable LinkedTables::resolve(const LinkDefinition& link) {
    const fs::path file = fileOf(link);
    try {
        if (isTextFile(link))
            return resolveTextFile(link, file);
        AttachedFile& other = attached(file);
        const TableEntryPtr* entry = other.catalog->definitions().table(link.table);
        if (entry == nullptr)
            throw DatabaseError(ErrorCode::tableNotFound, inText(u"The file '", textOfPath(file),
                                                                 u"' has no table '", link.table, u"'."));
        OrderTable table;
        table.entry = *entry;
        table.schema = other.schema;
        table.sqliteName = other.schema + "." + quotedName(physicalName((*entry)->definition.name));
        table.catalog = other.catalog.get();
        table.current = [catalog = other.catalog.get(), name = link.table]() -> TableEntryPtr {
            const TableEntryPtr* now = catalog->definitions().table(name);
            return now == nullptr ? nullptr : *now;
        };
        return table;
    } catch (const DatabaseError& error) {
        throw linkError(link, error);
    }
}

// A file is attached once: a second time, or beside itself, its own lock would stand in the way of every
// change.
LinkedTables::AttachedFile& LinkedTables::attached(const fs::path& file) {
    requireDatabaseFile(textOfPath(file));
    const auto found = attached_.find(file);
    if (found != attached_.end())
        return found->second;
    if (isSameFile(file, pathOf(connection_.path())))
        throw DatabaseError(ErrorCode::invalidArgument,
                            inText(u"The file '", textOfPath(file), u"' is this database itself."));
    for (const auto& [known, entry] : attached_)
        if (isSameFile(file, known))
            return attached_.emplace(file, entry).first->second;
    const std::string schema = "link" + std::to_string(++counter_);
    Prepared attach = connection_.prepare("ATTACH ? AS " + schema);
    attach.bindCopy(1, textOfPath(file));
    attach.run();
    AttachedFile entry{schema, std::make_shared<Catalog>(connection_, schema)};
    return attached_.emplace(file, std::move(entry)).first->second;
}

OrderTable LinkedTables::resolveTextFile(const LinkDefinition& link, const fs::path& file) {
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(file, error);
    const std::uintmax_t size = error ? 0 : fs::file_size(file, error);
    if (error)
        throw DatabaseError(ErrorCode::fileNotFound,
                            inText(u"The file '", textOfPath(file), u"' does not exist."));
    TextFile& known = textFiles_[link.name];
    if (known.entry == nullptr || known.time != time || known.size != size) {
        readTextFile(link, file, known);
        known.time = time;
        known.size = size;
    }
    OrderTable table;
    table.entry = known.entry;
    table.schema = "temp";
    table.sqliteName = known.name;
    table.isFile = false;
    table.current = [this, name = link.name]() -> TableEntryPtr {
        const auto found = textFiles_.find(name);
        return found == textFiles_.end() ? nullptr : found->second.entry;
    };
    return table;
}

void LinkedTables::readTextFile(const LinkDefinition& link, const fs::path& file, TextFile& target) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    if (!stream)
        throw DatabaseError(ErrorCode::cannotOpen,
                            inText(u"The file '", textOfPath(file), u"' cannot be read."));
    CsvTable read = readCsv(link.name, content.view());
    auto entry = std::make_shared<TableEntry>();
    entry->id = -++counter_;  // never that of a table with a definition of its own
    entry->definition = std::move(read.definition);
    const std::string name = "temp." + quotedName(u"!text" + toText(std::to_string(counter_)));

    Transaction transaction(connection_, Transaction::Kind::read);
    connection_.execute(createTableSql(entry->definition, name, {}));
    std::string places, columns;
    for (const FieldDefinition& field : entry->definition.fields) {
        places += places.empty() ? "?" : ",?";
        columns += (columns.empty() ? "" : ",") + quotedName(field.name);
    }
    Prepared insert = connection_.prepare("INSERT INTO " + name + "(" + columns + ") VALUES(" + places + ")");
    for (const std::vector<Value>& row : read.rows) {
        int place = 0;
        for (const Value& value : row)
            insert.bind(++place, value);
        insert.run();
    }
    if (!target.name.empty())
        connection_.execute("DROP TABLE " + target.name);
    transaction.commit();
    target.entry = std::move(entry);
    target.name = name;
}

}  // namespace tessary::server
