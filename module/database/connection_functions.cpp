#include "module/database/connection_functions.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/database/document_connections.h"

#include <iterator>

namespace tessary {

namespace {

// The name of this computer in support requests. Empty when it does not fit: the room of 15 characters
// includes the final null, and without the name there is no box.
std::wstring computerName() {
    wchar_t name[15] = L"";
    DWORD size = static_cast<DWORD>(std::size(name));
    return GetComputerNameW(name, &size) ? std::wstring(name, size) : std::wstring();
}

// Has no owner, so that it can be seen also when compacting was started by a program without a window.
void showCompactError(const std::wstring& text) {
    const std::wstring computer = computerName();
    if (!computer.empty()) {
        const std::wstring message = text + L"\n(Your computer name is " + computer + L".)";
        MessageBoxW(nullptr, message.c_str(), L"Database Error", MB_ICONERROR);
    }
}

// The error's number and text are the function's answer also when the server holds none.
ServerError reportCompactError(DatabaseConnection& connection) {
    ServerError error = readServerError(connection);
    if (succeeds(connection, &DatabaseConnection::IsErrorPending)) {
        keepServerError(error);
        printServerError(error);
    }
    return error;
}

}  // namespace

HandlerStatus databasePath(DatabaseConnection& connection) {
    acedRetNil();
    const std::wstring path = callForText(connection, &DatabaseConnection::DatabasePath);
    if (path.empty()) {
        reportServerError();
    } else {
        acedRetStr(path.c_str());
    }
    return HandlerStatus::success;
}

HandlerStatus closeDatabase(DatabaseConnection&) {
    closeCurrentDatabase();
    acedRetNil();
    return HandlerStatus::success;
}

HandlerStatus createDatabase() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring path;
    if (!readString(cursor, path)) {
        return HandlerStatus::wrongType;
    }
    const ConnectionPointer connection = createConnection();
    if (!connection) {
        return HandlerStatus::success;
    }
    if (succeeds(*connection, &DatabaseConnection::CreateDatabase, Bstr(pathForServer(path)).get())) {
        acedRetT();
    } else {
        // Of the current connection, although the new one failed: programs that create a database before they
        // connect get nil without a message, and decide themselves what to say.
        reportServerError();
    }
    return HandlerStatus::success;
}

HandlerStatus compactDatabase() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor || !cursor->rbnext) {
        return HandlerStatus::tooFewArguments;
    }
    std::wstring source;
    std::wstring target;
    if (!readString(cursor, source) || !readString(cursor, target)) {
        return HandlerStatus::wrongType;
    }
    bool showMessage = true;
    readFlag(cursor, showMessage);
    const ConnectionPointer connection = createConnection();
    if (!connection) {
        return HandlerStatus::success;
    }
    if (succeeds(*connection, &DatabaseConnection::Compact, Bstr(pathForServer(source)).get(),
                 Bstr(pathForServer(target)).get())) {
        acedRetStr(L"OK");
        return HandlerStatus::success;
    }
    const ServerError error = reportCompactError(*connection);
    if (showMessage) {
        showCompactError(error.text);
    }
    acedRetInt(error.code);
    return HandlerStatus::success;
}

HandlerStatus serverVersion() {
    short version = 0;
    if (const ConnectionPointer connection = createConnection()) {
        raiseIfFailed(connection->Version(&version), *connection.get(), IID_DatabaseConnection);
    }
    acedRetInt(version);
    return HandlerStatus::success;
}

}  // namespace tessary
