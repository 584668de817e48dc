#include "server/sqlite/compaction.h"

#include "server/sqlite/files.h"
#include "server/sqlite/health.h"

namespace tessary::server {

// Text as it is in memory, so that nothing that is not well-formed is lost. The journal is SQLite's rollback
// journal: the quicker write-ahead log needs memory shared by all users, which does not exist for a file on a
// network share.
void initialize(Connection& connection) {
    connection.execute("PRAGMA encoding='UTF-16le'; PRAGMA journal_mode=DELETE; PRAGMA application_id=" +
                       std::to_string(applicationId));
    Catalog catalog(connection, "main");
    Transaction transaction(connection, Transaction::Kind::write);
    catalog.createTables();
    transaction.commit();
}

void createDatabase(TextView path) {
    requireNewFile(path);
    TemporaryFile file(temporaryBeside(path));
    {
        Connection connection(file.text(), Connection::Access::create);
        initialize(connection);
    }
    file.moveTo(path);
}

namespace {

// SQLite's errors name the source, whatever file they are about.
void writeCopy(Connection& source, const TemporaryFile& file, TextView target) {
    try {
        Prepared vacuum = source.prepare("VACUUM main INTO ?");
        vacuum.bindCopy(1, file.text());
        vacuum.run();
    } catch (const DatabaseError& error) {
        if (error.code() == ErrorCode::diskFull)
            throw DatabaseError(error.code(),
                                inText(u"The disk is full; the file '", target, u"' was not made."));
        if (error.code() == ErrorCode::cannotOpen)
            throw DatabaseError(error.code(), inText(u"The file '", target, u"' cannot be written."));
        throw;
    }
}

// Nothing when it went well, otherwise why the source cannot be copied as it is.
std::optional<Text> copyHealthy(TextView source, const TemporaryFile& file, TextView target) {
    try {
        Connection connection(source, Connection::Access::readWrite);
        Catalog catalog(connection, "main");
        if (std::optional<Text> problem = findDamage(connection, catalog, Thoroughness::full))
            return problem;
        writeCopy(connection, file, target);
        return std::nullopt;
    } catch (const DatabaseError& error) {
        if (error.code() == ErrorCode::damaged || error.code() == ErrorCode::notADatabase ||
            error.code() == ErrorCode::couldNotStart)
            return error.text();
        throw;
    }
}

void requireSound(const TemporaryFile& file) {
    Connection connection(file.text(), Connection::Access::readWrite);
    Catalog catalog(connection, "main");
    if (const std::optional<Text> problem = findDamage(connection, catalog, Thoroughness::full))
        throw DatabaseError(ErrorCode::diskOrNetwork,
                            inText(u"The compacted database could not be read back. ", *problem));
    // A change of the header brings the whole file from the system's memory to the disk.
    const std::int64_t version = connection.number("PRAGMA user_version");
    connection.execute("PRAGMA user_version=" + std::to_string(version + 1));
}

}  // namespace

void compactDatabase(TextView source, TextView target) {
    requireDatabaseFile(source);
    requireNewFile(target);
    TemporaryFile file(temporaryBeside(target));
    const std::optional<Text> problem = copyHealthy(source, file, target);
    if (!problem) {
        requireSound(file);
        file.moveTo(target);
        return;
    }
    std::error_code error;
    std::filesystem::remove(file.path(), error);
    const Text lost = salvage(source, file.text());
    requireSound(file);
    file.moveTo(target);
    throw DatabaseError(ErrorCode::damaged,
                        inText(u"The database '", source, u"' was damaged. A repaired copy has been made. ",
                               lost.empty() ? Text(u"All records could be read.") : lost));
}

}  // namespace tessary::server
