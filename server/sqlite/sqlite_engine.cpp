#include "server/engine/engine.h"
#include "server/sqlite/compaction.h"
#include "server/sqlite/files.h"
#include "server/sqlite/health.h"
#include "server/sqlite/sqlite_database.h"

namespace tessary::server {

namespace {

class SqliteEngine : public Engine {
public:
    OpenResult open(TextView path, OpenMode mode) override;
    void create(TextView path) override { createDatabase(path); }
    void compact(TextView source, TextView target) override { compactDatabase(source, target); }
};

// A path that stays right when the program's current folder changes.
Text absolutePath(TextView path) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(pathOf(path), error);
    return error ? Text(path) : textOfPath(absolute);
}

OpenResult SqliteEngine::open(TextView path, OpenMode mode) {
    requireDatabaseFile(path);
    // SQLite opens a file that it may not write for reading, so both kinds of writing are the same.
    const auto access =
        mode == OpenMode::readOnly ? Connection::Access::readOnly : Connection::Access::readWrite;
    OpenResult result;
    try {
        auto core = std::make_shared<DatabaseCore>(absolutePath(path), access);
        if (std::optional<Text> problem = findDamage(core->connection, core->catalog, Thoroughness::quick))
            result.problem = std::move(*problem);
        else
            result.database = std::make_unique<SqliteDatabase>(std::move(core), path);
    } catch (const DatabaseError& error) {
        if (error.code() != ErrorCode::damaged && error.code() != ErrorCode::notADatabase)
            throw;
        result.problem = error.text();
    }
    return result;
}

}  // namespace

std::unique_ptr<Engine> makeSqliteEngine() {
    return std::make_unique<SqliteEngine>();
}

}  // namespace tessary::server
