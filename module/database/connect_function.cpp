#include "module/database/connect_function.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/database/document_connections.h"

#include <memory>
#include <optional>
#include <string_view>

namespace tessary {

namespace {

struct ConnectRequest {
    std::wstring path;
    short readOnly = VARIANT_FALSE;
    bool textScreenOnError = false;
};

bool readRequest(ConnectRequest& request) {
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!readString(cursor, request.path)) {
        return false;
    }
    std::wstring mode;
    // Without a mode the flag has no place of its own.
    if (readString(cursor, mode)) {
        readFlag(cursor, request.textScreenOnError);
        request.readOnly = mode == L"w" ? VARIANT_FALSE : VARIANT_TRUE;
    }
    return true;
}

// A connection that does not stay: its database is closed and the drawing's record forgets it.
void closeForReopening(DatabaseConnection& connection) {
    succeeds(connection, &DatabaseConnection::CloseDatabase);
    if (!documentConnections().empty()) {
        DocumentConnection& record = documentConnections().front();
        record.connection.reset();
        record.databasePath.clear();
    }
}

// True when the current connection has the database open in the requested mode; otherwise it is given up.
// wasSame was found out before a connection was adopted: an adopted one is opened anew, so that the program
// starts without tables of its earlier use.
bool keepCurrentConnection(bool wasSame, short readOnly) {
    const ConnectionPointer connection = serverState().currentConnection;
    if (!connection || !succeeds(*connection, &DatabaseConnection::IsAlive)) {
        return false;
    }
    if (succeeds(*connection, &DatabaseConnection::IsOpen)) {
        if (wasSame && callForFlag(*connection, &DatabaseConnection::IsWritable) != readOnly) {
            return true;
        }
        closeForReopening(*connection);
    }
    dropCurrentConnection();
    return false;
}

bool isThere(const std::wstring& path) {
    WIN32_FIND_DATAW data;
    const HANDLE search = FindFirstFileW(path.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);
    return true;
}

std::wstring supportPath() {
    resbuf value = {};
    const bool isText = acedGetVar(L"ACADPREFIX", &value) == RTNORM && value.restype == RTSTR;
    return isText ? takeHostText(value.resval.rstring) : std::wstring();
}

// The path itself or, when there is no such file, the first one in the folders of the support path.
std::optional<std::wstring> findDatabase(const std::wstring& path) {
    if (isThere(path)) {
        return path;
    }
    const std::wstring folders = supportPath();
    for (std::size_t begin = 0; begin < folders.size();) {
        const std::size_t end = std::min(folders.find(L';', begin), folders.size());
        const std::wstring candidate = folders.substr(begin, end - begin) + L"\\" + path;
        if (end > begin && isThere(candidate)) {
            return candidate;
        }
        begin = end + 1;
    }
    return std::nullopt;
}

// Asks the product's LISP program to repair the database; false when there is none or it did not succeed.
bool repairDatabase(const std::wstring& path) {
    const ValueList call =
        ownValueList(acutBuildList(int{RTSTR}, L"compactDatabase", int{RTSTR}, path.c_str(), int{RTNIL},
                                   int{RTSTR}, L"Repair", static_cast<int>(RTNONE)));
    resbuf* answer = nullptr;
    const int status = acedInvoke(call.get(), &answer);
    const ValueList owner(answer);
    return status == RTNORM && answer && answer->restype != RTNIL;
}

// Opens the database, after a repair where it needs one. False when it could not be opened and the server
// said why, which is then printed. Without a reason the connection is used as it is: the next function that
// needs the database finds it closed.
bool openOrReport(DatabaseConnection& connection, const std::wstring& path, short readOnly) {
    OpenResult result = openDatabase(connection, path, readOnly);
    if (result == OpenResult::needsRepair) {
        succeeds(connection, &DatabaseConnection::CloseDatabase);
        if (repairDatabase(path)) {
            result = openDatabase(connection, path, readOnly);
        }
    }
    // The connection is not the current one yet, so its own error is asked for.
    return result == OpenResult::opened || !reportServerError(connection);
}

// The LISP call's status when the database was not opened; nothing when it was and is current.
std::optional<HandlerStatus> openCurrent(ConnectRequest& request) {
    const ConnectionPointer connection = createConnection();
    const std::optional<std::wstring> found = connection ? findDatabase(request.path) : std::nullopt;
    if (!found) {
        return HandlerStatus::success;
    }
    request.path = pathForServer(*found);
    if (!openOrReport(*connection, request.path, request.readOnly)) {
        return request.textScreenOnError ? HandlerStatus::textScreen : HandlerStatus::success;
    }
    setCurrentConnection(connection, request.path, request.readOnly);
    return std::nullopt;
}

}  // namespace

HandlerStatus connectDatabase() {
    acedRetNil();
    purgeOrphanRecords();
    ConnectRequest request;
    if (!readRequest(request)) {
        return HandlerStatus::wrongType;
    }
    const bool wasSame = isSameDatabase(serverState().currentConnection, request.path);
    adoptOpenConnection(request.path);
    if (keepCurrentConnection(wasSame, request.readOnly)) {
        acedRetT();
        return HandlerStatus::success;
    }
    if (!serverState().currentConnection) {
        if (const std::optional<HandlerStatus> failure = openCurrent(request)) {
            return *failure;
        }
    }
    documentConnections().push_front({activeDrawingName(), serverState().currentConnection, request.path,
                                      request.readOnly == VARIANT_TRUE});
    acedRetT();
    return HandlerStatus::success;
}

}  // namespace tessary
