#include "server/sqlite/health.h"

#include "server/sqlite/files.h"
#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

namespace tessary::server {

namespace {

// Opening a larger file would take noticeably long if all of it were read.
constexpr std::uintmax_t quicklyRead = 16u << 20;

bool tellsDamage(ErrorCode code) {
    return code == ErrorCode::damaged || code == ErrorCode::notADatabase || code == ErrorCode::couldNotStart;
}

std::optional<Text> problemOf(Connection& connection, Catalog& catalog, Thoroughness thoroughness) {
    const Transaction transaction(connection, Transaction::Kind::read);
    // The first read also rolls back what a crashed program left half done; sizes count after that.
    const std::int64_t pages = connection.number("PRAGMA main.page_count");
    const std::int64_t pageSize = connection.number("PRAGMA main.page_size");
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(pathOf(connection.path()), error);
    if (!error && static_cast<std::uintmax_t>(pages * pageSize) > size)
        return u"the file is shorter than it should be";
    for (const auto& [name, entry] : catalog.definitions().tables) {
        std::string fields = rowColumnOf(entry->definition);
        for (const FieldDefinition& field : entry->definition.fields)
            fields += "," + quotedName(field.name);
        connection.prepare("SELECT " + fields + " FROM main." + quotedName(physicalName(name)) + " LIMIT 0");
    }
    if (thoroughness == Thoroughness::quick && size > quicklyRead)
        return std::nullopt;
    Prepared check = connection.prepare("PRAGMA main.quick_check(1)");
    if (!check.step() || check.text(0) == u"ok")
        return std::nullopt;
    return check.text(0);
}

// SQLite reports over several lines, the first of which only names its schema.
Text oneLine(Text problem) {
    const std::size_t lineEnd = problem.find(u'\n');
    if (problem.starts_with(u"***") && lineEnd != Text::npos)
        problem.erase(0, lineEnd + 1);
    problem.resize(std::min(problem.size(), problem.find(u'\n')));
    return problem;
}

}  // namespace

std::optional<Text> findDamage(Connection& connection, Catalog& catalog, Thoroughness thoroughness) {
    try {
        const std::optional<Text> problem = problemOf(connection, catalog, thoroughness);
        if (!problem)
            return std::nullopt;
        return inText(u"The database '", connection.path(), u"' is damaged: ", oneLine(*problem), u".");
    } catch (const DatabaseError& error) {
        if (!tellsDamage(error.code()))
            throw;
        if (error.code() != ErrorCode::couldNotStart)
            return error.text();
        return inText(u"The database '", connection.path(), u"' is damaged. ", error.text());
    }
}

}  // namespace tessary::server
