#include "module/database/document_connections.h"

#include "host/api/documents.h"

#include <comdef.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

namespace tessary {

namespace {

using Records = std::list<DocumentConnection>;

void makeCurrent(const DocumentConnection& record) {
    setCurrentConnection(record.connection, record.databasePath, record.readOnly);
}

void makeNoneCurrent() {
    setCurrentConnection(nullptr, L"", 0);
}

void makeNewest(Records::iterator record) {
    Records& records = documentConnections();
    if (record != records.begin()) {
        std::iter_swap(record, records.begin());
    }
}

bool isCurrent(const ConnectionPointer& connection) {
    return isSameObject(serverState().currentConnection, connection);
}

bool isAlive(DatabaseConnection& connection) {
    return succeeds(connection, &DatabaseConnection::IsAlive);
}

bool isOpen(DatabaseConnection& connection) {
    return succeeds(connection, &DatabaseConnection::IsOpen);
}

// A connection that the current one is not, and no connection while there is a current one.
bool isOtherThanCurrent(const ConnectionPointer& connection) {
    const bool bothNone = !connection && !serverState().currentConnection;
    return !bothNone && !isCurrent(connection);
}

void selectActiveDrawing() {
    Records& records = documentConnections();
    const std::wstring name = activeDrawingName();
    const auto found = std::find_if(records.begin(), records.end(), [&](const DocumentConnection& record) {
        return record.fileName == name;
    });
    if (found == records.end()) {
        makeNoneCurrent();
        return;
    }
    const bool wasNewest = found == records.begin();
    makeNewest(found);
    if (!wasNewest || isOtherThanCurrent(records.front().connection)) {
        makeCurrent(records.front());
    }
}

void forgetConnections(bool (*isLost)(DatabaseConnection&)) {
    makeNoneCurrent();
    for (DocumentConnection& record : documentConnections()) {
        if (record.connection && isLost(*record.connection)) {
            record.connection.reset();
            record.databasePath.clear();
        }
    }
}

bool isDead(DatabaseConnection& connection) {
    return !isAlive(connection);
}

bool isUnreachable(DatabaseConnection& connection) {
    VARIANT_BOOL alive = VARIANT_FALSE;
    return FAILED(connection.IsAlive(&alive));
}

// When the server's process is gone the running call ends in that error; the next one finds the drawing
// without a database, so that the program can connect anew.
bool isAliveOrForgotten(DatabaseConnection& connection) {
    try {
        return isAlive(connection);
    } catch (const _com_error&) {
        forgetConnections(isUnreachable);
        throw;
    }
}

// Opens the current database again where its path is still known. Both kinds of repair forget the path, so
// that programs find no database rather than one that came back without its open tables; callers that keep a
// path get it opened again here.
void reopenCurrentDatabase() {
    const ServerState& state = serverState();
    if (!state.currentConnection || state.currentDatabasePath.empty()) {
        return;
    }
    const OpenResult result =
        openDatabase(*state.currentConnection, state.currentDatabasePath, state.currentReadOnly);
    if (result == OpenResult::opened && !documentConnections().empty()) {
        DocumentConnection& record = documentConnections().front();
        record.connection = state.currentConnection;
        record.databasePath = state.currentDatabasePath;
    } else {
        makeNoneCurrent();
    }
}

void repairCurrentConnection() {
    const ConnectionPointer connection = serverState().currentConnection;
    if (!connection) {
        return;
    }
    const bool alive = isAliveOrForgotten(*connection);
    if (alive && isOpen(*connection)) {
        return;
    }
    if (alive) {
        closeCurrentDatabase();
    } else {
        forgetConnections(isDead);
    }
    reopenCurrentDatabase();
}

// Lower case with backslashes: the form in which paths are compared.
std::wstring comparablePath(std::wstring path) {
    CharLowerBuffW(path.data(), static_cast<DWORD>(path.size()));
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path;
}

// The drawing gives up all its records; the current connection, when any record holds it, is current no more.
void disownRecords(const std::wstring& drawing) {
    for (DocumentConnection& record : documentConnections()) {
        if (record.fileName == drawing) {
            record.fileName.clear();
        }
        if (isCurrent(record.connection)) {
            makeNoneCurrent();
        }
    }
}

}  // namespace

std::list<DocumentConnection>& documentConnections() {
    // Never destroyed: a connection may not be released any more when the process ends.
    static Records& records = *new Records;
    return records;
}

std::wstring activeDrawingName() {
    const AcApDocument* const document = acDocManager->curDocument();
    const ACHAR* const name = document ? document->fileName() : nullptr;
    return name ? name : L"";
}

void addDocumentConnection(const wchar_t* fileName) {
    try {
        documentConnections().push_front({fileName, nullptr, L"", false});
    } catch (const std::bad_alloc&) {
        // The drawing's other functions still work, so its opening goes on.
    }
}

void removeNewestDocumentConnection() {
    if (!documentConnections().empty()) {
        documentConnections().pop_front();
    }
}

void closeAllConnections() {
    Records& records = documentConnections();
    while (!records.empty()) {
        // Taken out first, so that a server that cannot be reached does not keep the others.
        const DocumentConnection record = std::move(records.front());
        records.pop_front();
        if (record.connection) {
            succeeds(*record.connection, &DatabaseConnection::CloseDatabase);
        }
    }
}

void ensureDatabaseConnection() {
    selectActiveDrawing();
    repairCurrentConnection();
}

void closeCurrentDatabase() {
    ServerState& state = serverState();
    succeeds(*state.currentConnection, &DatabaseConnection::CloseDatabase);
    state.currentDatabasePath.clear();
    if (!documentConnections().empty()) {
        documentConnections().front().databasePath.clear();
    }
}

void closeCurrentConnection() {
    const ConnectionPointer connection = serverState().currentConnection;
    if (connection) {
        succeeds(*connection, &DatabaseConnection::CloseDatabase);
        dropCurrentConnection();
    }
}

void purgeOrphanRecords() {
    documentConnections().remove_if(
        [](const DocumentConnection& record) { return record.fileName.empty() && !record.connection; });
}

bool isSameDatabase(const ConnectionPointer& connection, const std::wstring& path) {
    if (!connection || !isAlive(*connection) || !isOpen(*connection)) {
        return false;
    }
    const std::wstring open = comparablePath(callForText(*connection, &DatabaseConnection::DatabasePath));
    // The server was told the whole path, without the "." and ".." that the program may have given.
    return open.find(comparablePath(path)) != std::wstring::npos ||
           open == comparablePath(pathForServer(path));
}

void adoptOpenConnection(const std::wstring& path) {
    Records& records = documentConnections();
    if (records.empty()) {
        makeNoneCurrent();
        return;
    }
    if (isSameDatabase(records.front().connection, path)) {
        if (!isCurrent(records.front().connection)) {
            makeCurrent(records.front());
        }
        return;
    }
    const std::wstring drawing = activeDrawingName();
    disownRecords(drawing);
    const auto adopted = std::find_if(records.begin(), records.end(), [&](const DocumentConnection& record) {
        return (record.fileName.empty() || record.fileName == drawing) &&
               isSameDatabase(record.connection, path);
    });
    if (adopted != records.end()) {
        adopted->fileName = drawing;
        makeNewest(adopted);
        makeCurrent(records.front());
    }
}

}  // namespace tessary
