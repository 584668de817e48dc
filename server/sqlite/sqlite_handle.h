#pragma once

// A connection to one SQLite file and its prepared statements, closed and finished by themselves. Failures of
// SQLite become DatabaseErrors with the dialect's numbers here, and nowhere else.

#include "server/sqlite/writer_note.h"
#include "server/values/error.h"

#include "sqlite3.h"

#include <chrono>
#include <memory>
#include <optional>

namespace tessary::server {

class Connection;

// A prepared statement. Places of parameters count from 1, columns from 0, as in SQLite.
class Prepared {
public:
    Prepared() = default;
    // lasting: it is kept for many runs.
    Prepared(sqlite3* connection, const std::string& sql, bool lasting = false);

    explicit operator bool() const { return handle_ != nullptr; }
    sqlite3_stmt* handle() const { return handle_.get(); }

    // Texts are not copied: the value lives until the statement is reset.
    void bind(int place, const Value& value);
    void bind(int place, std::int64_t number);
    void bindCopy(int place, TextView text);

    // True when a row is there. A failure resets the statement and throws.
    bool step();
    void reset();
    // To the end, rows are passed over.
    void run();

    std::int64_t integer(int column) const { return sqlite3_column_int64(handle_.get(), column); }
    bool isNull(int column) const { return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL; }
    // Lives until the next step.
    TextView textView(int column) const;
    Text text(int column) const { return Text(textView(column)); }
    Value value(int column, FieldType type) const;

    // SQLite compiled the statement anew since the last call because the schema had changed.
    bool wasPreparedAgain();

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

// Resets a statement when the scope is left, so that no read lock stays behind.
class ResetLater {
public:
    explicit ResetLater(Prepared& statement) : statement_(statement) {}
    ~ResetLater() { statement_.reset(); }
    ResetLater(const ResetLater&) = delete;
    ResetLater& operator=(const ResetLater&) = delete;

private:
    Prepared& statement_;
};

// How the operations of a connection wait for another user's lock. Those that follow at once on a wait in
// vain give up after a twentieth of the time: a program that saves many records would stand still for
// minutes.
class LockWait {
public:
    static constexpr std::chrono::milliseconds usualPatience{5000};
    // What begins so soon after a wait in vain follows on it.
    static constexpr std::chrono::milliseconds followingTime{2000};

    void setPatience(std::chrono::milliseconds patience) { patience_ = patience; }
    // tries: how often the operation has waited before. Waits a little; false when it is to give up.
    bool waitOn(int tries);

private:
    using Clock = std::chrono::steady_clock;
    std::chrono::milliseconds patience_ = usualPatience;
    Clock::time_point end_;  // of the present wait
    std::optional<Clock::time_point> lastInVain_;
};

class Connection {
public:
    enum class Access { readOnly, readWrite, create };

    // Opens, registers the dialect's functions and sets what every connection needs. Nothing is read yet.
    Connection(TextView path, Access access);

    sqlite3* handle() const { return handle_.get(); }
    const Text& path() const { return path_; }

    Prepared prepare(const std::string& sql, bool lasting = false) { return {handle(), sql, lasting}; }
    void execute(const std::string& sql);
    // First column of the first row, 0 without one.
    std::int64_t number(const std::string& sql);

    bool isReadOnly(const char* schema = "main") const { return sqlite3_db_readonly(handle(), schema) != 0; }
    bool inTransaction() const { return sqlite3_get_autocommit(handle()) == 0; }

    void setPatience(std::chrono::milliseconds patience) { lockWait_->setPatience(patience); }
    // How long a change lasts before others are told who makes it.
    void setNoteDelay(std::chrono::milliseconds delay) { noteDelay_ = delay; }

private:
    friend class Transaction;
    void runKept(Prepared& kept, const char* sql);

    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
    };
    Text path_;
    std::unique_ptr<LockWait> lockWait_ = std::make_unique<LockWait>();  // known to the handle by its address
    std::unique_ptr<sqlite3, Close> handle_;
    Prepared beginRead_, beginWrite_, commit_;
    WriterNote note_;
    std::chrono::milliseconds noteDelay_ = WriterNote::usualDelay;
};

// All or nothing: rolls back unless committed. Inside another transaction it does nothing, the outer one
// decides.
class Transaction {
public:
    enum class Kind { read, write };
    Transaction(Connection& connection, Kind kind);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    Connection& connection_;
    bool ours_;
};

// A foreign key was not met. SQLite does not say which, so whoever runs the statement finds out.
class ForeignKeyError : public DatabaseError {
public:
    explicit ForeignKeyError(const DatabaseError& error) : DatabaseError(error) {}
};

// The error of a call that returned `result` on the connection.
DatabaseError sqliteError(sqlite3* connection, int result);
[[noreturn]] void throwSqliteError(sqlite3* connection, int result);

// Text of our own with a name in it: inText(u"The table '", name, u"' does not exist.")
template <typename... Parts>
Text inText(const Parts&... parts) {
    Text result;
    (result.append(TextView(parts)), ...);
    return result;
}

}  // namespace tessary::server
