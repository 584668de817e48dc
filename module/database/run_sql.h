#pragma once

#include "module/binding/handler_status.h"

#include <string>

struct DatabaseConnection;

namespace tessary {

// How runSql tells that the connection is lost or that the statement failed.
enum class SqlErrors {
    ask = 0,     // a message box; on Yes the statement and the server's error are printed and the call fails
    asNil = 1,   // nil
    asText = 2,  // the text "*ERROR*", which a program can tell from a result without records
};

// Runs a statement and makes its records the LISP result, nil when there are none. When the statement fails
// the database is closed and opened once more and the statement tried again, since a server that was away for
// a moment answers then.
HandlerStatus runSql(DatabaseConnection& connection, const std::wstring& statement, SqlErrors errors);

}  // namespace tessary
