#include "server/sqlite/sqlite_handle.h"

#include "server/sqlite/functions.h"
#include "server/sqlite/table_sql.h"

#include <charconv>

namespace tessary::server {

namespace {

Text fileOf(sqlite3* connection) {
    const char* path = connection == nullptr ? nullptr : sqlite3_db_filename(connection, "main");
    return path == nullptr ? Text() : toText(path);
}

// What the dialect's functions report: "#3421 text".
std::optional<DatabaseError> functionError(std::string_view message) {
    if (message.empty() || message.front() != '#')
        return std::nullopt;
    int code = 0;
    const auto [end, error] = std::from_chars(message.data() + 1, message.data() + message.size(), code);
    if (error != std::errc())
        return std::nullopt;
    std::string_view text = message.substr(static_cast<std::size_t>(end - message.data()));
    if (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    return DatabaseError(static_cast<ErrorCode>(code), toText(text));
}

// "NOT NULL constraint failed: table.field" and the like: what stands after the colon.
TextView constrained(TextView message) {
    const std::size_t colon = message.find(u": ");
    return colon == TextView::npos ? TextView() : message.substr(colon + 2);
}

// Names hold no dots, so the first one parts table and field.
TextView fieldPart(TextView qualified) {
    const std::size_t dot = qualified.find(u'.');
    return dot == TextView::npos ? qualified : qualified.substr(dot + 1);
}

DatabaseError duplicateError(TextView subject) {
    Text fields;
    const std::size_t dot = subject.find(u'.');
    const Text table = dot == TextView::npos ? Text() : tableOfPhysicalName(subject.substr(0, dot));
    while (!subject.empty()) {
        const std::size_t comma = subject.find(u", ");
        TextView field = fieldPart(subject.substr(0, comma));
        if (!fields.empty())
            fields += u", ";
        fields += field;
        subject = comma == TextView::npos ? TextView() : subject.substr(comma + 2);
    }
    return {ErrorCode::duplicateKey,
            inText(u"The change would create a duplicate value in the unique index on ", fields,
                   u" of the table '", table, u"'.")};
}

DatabaseError checkError(TextView constraint) {
    const std::size_t mark = constraint.find(u'!');
    const TextView kind = constraint.substr(0, mark);
    const TextView field = mark == TextView::npos ? constraint : constraint.substr(mark + 1);
    if (kind == u"range")
        return {ErrorCode::invalidArgument, inText(u"The numbers of the field '", field, u"' are used up.")};
    return {ErrorCode::fieldTooSmall, inText(u"The field '", field, u"' is too small for the text.")};
}

DatabaseError constraintError(sqlite3* connection, const Text& message) {
    switch (sqlite3_extended_errcode(connection)) {
        case SQLITE_CONSTRAINT_NOTNULL:
            return {ErrorCode::valueRequired,
                    inText(u"The field '", fieldPart(constrained(message)), u"' requires a value.")};
        case SQLITE_CONSTRAINT_UNIQUE:
        case SQLITE_CONSTRAINT_PRIMARYKEY:
        case SQLITE_CONSTRAINT_ROWID: return duplicateError(constrained(message));
        case SQLITE_CONSTRAINT_CHECK: return checkError(constrained(message));
        case SQLITE_CONSTRAINT_FOREIGNKEY:
            return {ErrorCode::relatedRecordsExist, u"The change would break a relation between tables."};
        default: return {ErrorCode::invalidArgument, inText(u"The change is not allowed: ", message, u".")};
    }
}

DatabaseError lockedError(const Text& file) {
    const Text computer = writingComputer(file);
    const Text user =
        computer.empty() ? Text(u"another user") : inText(u"the user of the computer ", computer);
    return {ErrorCode::locked, inText(u"The database '", file, u"' is locked by ", user, u".")};
}

struct ErrorText {
    int result;
    ErrorCode code;
    TextView before, after;  // the file's path stands between
};
constexpr ErrorText errorTexts[] = {
    {SQLITE_LOCKED, ErrorCode::locked, u"The database '", u"' is locked by an operation that is under way."},
    {SQLITE_CORRUPT, ErrorCode::damaged, u"The database '", u"' is damaged and needs to be repaired."},
    {SQLITE_NOTADB, ErrorCode::notADatabase, u"The file '", u"' is not a database of this program."},
    {SQLITE_READONLY, ErrorCode::readOnly, u"The database '", u"' can only be read."},
    {SQLITE_FULL, ErrorCode::diskFull, u"The disk is full; the change of the database '", u"' was not made."},
    {SQLITE_IOERR, ErrorCode::diskOrNetwork, u"A disk or network error occurred in the database '", u"'."},
    {SQLITE_CANTOPEN, ErrorCode::cannotOpen, u"The database '", u"' cannot be opened."},
    {SQLITE_PERM, ErrorCode::cannotOpen, u"There is no permission to open the database '", u"'."},
    {SQLITE_TOOBIG, ErrorCode::tooComplex, u"A text or statement is too long for the database '", u"'."},
    {SQLITE_INTERRUPT, ErrorCode::couldNotStart, u"An operation in the database '", u"' was interrupted."},
    {SQLITE_NOMEM, ErrorCode::couldNotStart, u"Not enough memory for the database '", u"'."},
};

}  // namespace

DatabaseError sqliteError(sqlite3* connection, int result) {
    const char* raw = connection == nullptr ? sqlite3_errstr(result) : sqlite3_errmsg(connection);
    const std::string_view message = raw == nullptr ? "" : raw;
    if (std::optional<DatabaseError> error = functionError(message))
        return *error;
    if ((result & 0xff) == SQLITE_CONSTRAINT)
        return constraintError(connection, toText(message));
    if (connection != nullptr && sqlite3_extended_errcode(connection) == SQLITE_READONLY_ROLLBACK)
        return {
            ErrorCode::cannotOpen,
            inText(
                u"The database '", fileOf(connection),
                u"' was left in the middle of a change, which cannot be undone while it can only be read.")};
    if ((result & 0xff) == SQLITE_BUSY)
        return lockedError(fileOf(connection));
    for (const ErrorText& entry : errorTexts)
        if (entry.result == (result & 0xff))
            return {entry.code, inText(entry.before, fileOf(connection), entry.after)};
    if (message.find("parser stack overflow") != message.npos || message.find("too many") != message.npos ||
        message.find("too large") != message.npos)
        return {ErrorCode::tooComplex, inText(u"The statement is too complex: ", toText(message), u".")};
    return {ErrorCode::couldNotStart, inText(u"The database reports: ", toText(message), u".")};
}

void throwSqliteError(sqlite3* connection, int result) {
    const DatabaseError error = sqliteError(connection, result);
    if (connection != nullptr && sqlite3_extended_errcode(connection) == SQLITE_CONSTRAINT_FOREIGNKEY)
        throw ForeignKeyError(error);
    throw error;
}

Prepared::Prepared(sqlite3* connection, const std::string& sql, bool lasting) {
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size() + 1),
                                          lasting ? SQLITE_PREPARE_PERSISTENT : 0, &statement, nullptr);
    handle_.reset(statement);
    if (result != SQLITE_OK)
        throwSqliteError(connection, result);
}

void Prepared::bind(int place, const Value& value) {
    sqlite3_stmt* statement = handle_.get();
    if (const bool* yes = std::get_if<bool>(&value))
        sqlite3_bind_int(statement, place, *yes ? -1 : 0);
    else if (const std::int32_t* integer = std::get_if<std::int32_t>(&value))
        sqlite3_bind_int(statement, place, *integer);
    else if (const double* number = std::get_if<double>(&value))
        sqlite3_bind_double(statement, place, *number);
    else if (const Date* date = std::get_if<Date>(&value))
        sqlite3_bind_double(statement, place, date->days);
    else if (const Text* text = std::get_if<Text>(&value))
        sqlite3_bind_text64(statement, place, reinterpret_cast<const char*>(text->data()),
                            text->size() * sizeof(char16_t), SQLITE_STATIC, SQLITE_UTF16);
    else
        sqlite3_bind_null(statement, place);
}

void Prepared::bind(int place, std::int64_t number) {
    sqlite3_bind_int64(handle_.get(), place, number);
}

void Prepared::bindCopy(int place, TextView text) {
    if (text.data() == nullptr)
        text = u"";  // a null pointer would be a null value
    sqlite3_bind_text64(handle_.get(), place, reinterpret_cast<const char*>(text.data()),
                        text.size() * sizeof(char16_t), SQLITE_TRANSIENT, SQLITE_UTF16);
}

bool Prepared::step() {
    const int result = sqlite3_step(handle_.get());
    if (result == SQLITE_ROW)
        return true;
    if (result == SQLITE_DONE)
        return false;
    sqlite3* connection = sqlite3_db_handle(handle_.get());
    const ResetLater resetLater(*this);
    throwSqliteError(connection, result);
}

void Prepared::reset() {
    if (handle_)
        sqlite3_reset(handle_.get());
}

void Prepared::run() {
    const ResetLater resetLater(*this);
    while (step()) {
    }
}

TextView Prepared::textView(int column) const {
    const void* text = sqlite3_column_text16(handle_.get(), column);
    if (text == nullptr)
        return {};
    const int bytes = sqlite3_column_bytes16(handle_.get(), column);
    return {static_cast<const char16_t*>(text), static_cast<std::size_t>(bytes) / sizeof(char16_t)};
}

Value Prepared::value(int column, FieldType type) const {
    sqlite3_stmt* statement = handle_.get();
    if (isNull(column))
        return Null{};
    switch (type) {
        case FieldType::yesNo: return sqlite3_column_int64(statement, column) != 0;
        case FieldType::byte:
        case FieldType::integer:
        case FieldType::longInteger:
            return static_cast<std::int32_t>(sqlite3_column_int64(statement, column));
        case FieldType::single:
        case FieldType::number:
        case FieldType::currency: return sqlite3_column_double(statement, column);
        case FieldType::dateTime: return Date{sqlite3_column_double(statement, column)};
        case FieldType::text:
        case FieldType::memo: break;
    }
    return text(column);
}

bool Prepared::wasPreparedAgain() {
    return sqlite3_stmt_status(handle_.get(), SQLITE_STMTSTATUS_REPREPARE, 1) != 0;
}

bool LockWait::waitOn(int tries) {
    constexpr int longestStep = 50;
    const Clock::time_point now = Clock::now();
    if (tries == 0) {
        const bool follows = lastInVain_ && now - *lastInVain_ < followingTime;
        end_ = now + (follows ? patience_ / 20 : patience_);
    }
    if (now >= end_) {
        lastInVain_ = now;
        return false;
    }
    // Short steps at first: most locks last for milliseconds.
    sqlite3_sleep(std::min(longestStep, 1 << std::min(tries, 6)));
    return true;
}

namespace {

int openFlags(Connection::Access access) {
    switch (access) {
        case Connection::Access::readOnly: return SQLITE_OPEN_READONLY;
        case Connection::Access::readWrite: return SQLITE_OPEN_READWRITE;
        case Connection::Access::create: return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    }
    return 0;
}

}  // namespace

Connection::Connection(TextView path, Access access) : path_(path) {
    sqlite3* connection = nullptr;
    const int result = sqlite3_open_v2(toUtf8(path).c_str(), &connection, openFlags(access), nullptr);
    handle_.reset(connection);
    if (result != SQLITE_OK)
        throwSqliteError(connection, result);
    sqlite3_extended_result_codes(connection, 1);
    registerFunctions(connection);
    sqlite3_busy_handler(
        connection, [](void* wait, int tries) -> int { return static_cast<LockWait*>(wait)->waitOn(tries); },
        lockWait_.get());
    // Statements come from drafters: what a statement may name is checked above, but a damaged file must not
    // run anything either.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
    // Nothing here may read the file, which can be damaged. That each change waits for the disk is SQLite's
    // default.
    execute("PRAGMA temp_store=MEMORY; PRAGMA cell_size_check=ON;");
}

void Connection::execute(const std::string& sql) {
    const int result = sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        throwSqliteError(handle(), result);
}

std::int64_t Connection::number(const std::string& sql) {
    Prepared statement = prepare(sql);
    return statement.step() ? statement.integer(0) : 0;
}

void Connection::runKept(Prepared& kept, const char* sql) {
    if (!kept)
        kept = prepare(sql, true);
    kept.run();
}

Transaction::Transaction(Connection& connection, Kind kind)
    : connection_(connection), ours_(!connection.inTransaction()) {
    if (!ours_)
        return;
    if (kind == Kind::read) {
        connection_.runKept(connection_.beginRead_, "BEGIN");
        return;
    }
    connection_.runKept(connection_.beginWrite_, "BEGIN IMMEDIATE");
    connection_.note_.begin(connection_.handle(), connection_.path(), connection_.noteDelay_);
}

Transaction::~Transaction() {
    if (!ours_)
        return;
    // SQLite has rolled back by itself after some errors (disk full, for one).
    if (connection_.inTransaction())
        sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    connection_.note_.end();
}

void Transaction::commit() {
    if (ours_)
        connection_.runKept(connection_.commit_, "COMMIT");
}

}  // namespace tessary::server
