#pragma once

// The module's side of the database server: its objects, the connection that all database functions use, and
// its errors. Main thread only, so nothing is locked.

#include "module/binding/handler_status.h"
#include "module/database/com_pointer.h"

#include "tessary_server.h"

#include <string>

namespace tessary {

using ConnectionPointer = ComPointer<DatabaseConnection>;

// Module-wide. Created by its first use; releaseServiceObject leaves it without a connection.
struct ServerState {
    ConnectionPointer currentConnection;  // of the active drawing; null: none
    std::wstring currentDatabasePath;     // empty: none
    // The read-only argument when the current database is opened again: 0 or -1, and 1 when it was taken from
    // a drawing's record, which keeps only a flag.
    short currentReadOnly = 0;
    std::wstring lastErrorText;  // "(code) message" of the server's last error, empty: none
};
ServerState& serverState();

void setCurrentConnection(ConnectionPointer connection, const std::wstring& path, short readOnly);
// Releases the connection; path and flag stay what they were.
void dropCurrentConnection();

constexpr DWORD serverContext =
    CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

// Creates an object of the server; the pointer is null on failure. Where the object may live in another
// process (context), it is asked to run before it is asked for the interface.
HRESULT createConnectionObject(REFCLSID classId, REFIID interfaceId, void** object,
                               DWORD context = serverContext);
// A new connection with no database open; null when there is no server.
ConnectionPointer createConnection();

// Raises a failing HRESULT of a method as a _com_error, with the object's own description where it gives one.
void raiseIfFailed(HRESULT result, IUnknown& object, REFIID interfaceId);

// Calls a method whose last argument is a flag and returns the flag as the server sent it.
template <class... Parameters, class... Arguments>
VARIANT_BOOL callForFlag(DatabaseConnection& connection,
                         HRESULT (STDMETHODCALLTYPE DatabaseConnection::*method)(Parameters...),
                         Arguments... arguments) {
    VARIANT_BOOL flag = VARIANT_FALSE;
    raiseIfFailed((connection.*method)(arguments..., &flag), connection, IID_DatabaseConnection);
    return flag;
}

// The same for a flag that says whether something is so, or whether the call did its work.
template <class Method, class... Arguments>
bool succeeds(DatabaseConnection& connection, Method method, Arguments... arguments) {
    return callForFlag(connection, method, arguments...) != VARIANT_FALSE;
}

// Calls a method that answers with a text alone.
std::wstring callForText(DatabaseConnection& connection,
                         HRESULT (STDMETHODCALLTYPE DatabaseConnection::*method)(BSTR*));

// The path of a file as the server has to be told: it may run with another current folder, so what is not a
// whole path is completed with that of this process. Whole paths stay as they are.
std::wstring pathForServer(const std::wstring& path);

// Opens a database and tells how that went.
enum class OpenResult { failed, needsRepair, opened };
OpenResult openDatabase(DatabaseConnection& connection, const std::wstring& path, short readOnly);

// A handler that works on the current connection. Without one the result is nil, which is no error: programs
// run in drawings without a database too.
template <HandlerStatus (*handler)(DatabaseConnection&)>
HandlerStatus onConnection() {
    // Held here, since the handler may replace the current connection.
    const ConnectionPointer connection = serverState().currentConnection;
    return connection ? handler(*connection) : HandlerStatus::success;
}

struct ServerError {
    long code = 0;
    std::wstring text;
};

ServerError readServerError(DatabaseConnection& connection);
// Makes an error the last one, whose text programs can ask for.
void keepServerError(const ServerError& error);
// Reads and keeps the connection's error.
ServerError fetchServerError(DatabaseConnection& connection);
// Prints the error after the message's words. Nothing for a missing current record, which is how programs
// notice the end of a table; advice for a disk or network error.
void printServerError(const ServerError& error, const wchar_t* format = L"\nTessary Error: %s");

// The LISP result becomes nil; the connection's error, when one is pending, is kept and printed. True when
// one was. Without an argument: of the current connection, when there is one.
bool reportServerError();
bool reportServerError(DatabaseConnection& connection);
// The same for a connection of a dialog's own, which is released.
bool reportDatabaseError(ConnectionPointer& connection);

void setLastError(const std::wstring& text);
const std::wstring& getLastError();

}  // namespace tessary
