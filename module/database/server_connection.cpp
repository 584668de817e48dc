#include "module/database/server_connection.h"

#include "host/api/editor.h"

#include <comdef.h>

#include <utility>

namespace tessary {

namespace {

constexpr const wchar_t* repairStatus = L"*REPAIR*";
constexpr long noCurrentRecord = 3021;
constexpr long diskOrNetworkError = 3043;

// What the system says when the server that it finds is just ending for want of use. E_FAIL is Wine's word
// for a class that was withdrawn between its being found and asked for.
bool isEndingServer(HRESULT result) {
    return result == CO_E_SERVER_STOPPING || result == REGDB_E_CLASSNOTREG || result == E_FAIL ||
           result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
}

HRESULT createRunningObject(REFCLSID classId, REFIID interfaceId, void** object, DWORD context) {
    ComPointer<IUnknown> unknown;
    HRESULT result = CoCreateInstance(classId, nullptr, context, IID_IUnknown,
                                      reinterpret_cast<void**>(unknown.receive()));
    if (SUCCEEDED(result)) {
        result = OleRun(unknown.get());
    }
    return SUCCEEDED(result) ? unknown->QueryInterface(interfaceId, object) : result;
}

[[noreturn]] void raise(HRESULT result, IUnknown& object, REFIID interfaceId) {
    ComPointer<ISupportErrorInfo> support;
    ComPointer<IErrorInfo> details;
    object.QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(support.receive()));
    if (support && support->InterfaceSupportsErrorInfo(interfaceId) == S_OK) {
        GetErrorInfo(0, details.receive());
    }
    throw _com_error(result, details.get(), true);
}

bool reportError(DatabaseConnection* connection, const wchar_t* format) {
    acedRetNil();
    if (!connection || !succeeds(*connection, &DatabaseConnection::IsErrorPending)) {
        return false;
    }
    printServerError(fetchServerError(*connection), format);
    return true;
}

bool isSlash(wchar_t character) {
    return character == L'\\' || character == L'/';
}

bool isWholePath(const std::wstring& path) {
    const bool onDrive = path.size() > 2 && path[1] == L':' && isSlash(path[2]);
    const bool onNetwork = path.size() > 1 && isSlash(path[0]) && isSlash(path[1]);
    return onDrive || onNetwork;
}

constexpr const wchar_t* functionErrorFormat = L"\nTessary Error: %s";
constexpr const wchar_t* dialogErrorFormat = L"\nDatabase Error: %s";

}  // namespace

ServerState& serverState() {
    // Never destroyed: a connection may not be released any more when the process ends.
    static ServerState& state = *new ServerState;
    return state;
}

void setCurrentConnection(ConnectionPointer connection, const std::wstring& path, short readOnly) {
    ServerState& state = serverState();
    state.currentConnection = std::move(connection);
    state.currentDatabasePath = path;
    state.currentReadOnly = readOnly;
}

void dropCurrentConnection() {
    serverState().currentConnection.reset();
}

HRESULT createConnectionObject(REFCLSID classId, REFIID interfaceId, void** object, DWORD context) {
    *object = nullptr;
    if ((context & (CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER)) == 0) {
        return CoCreateInstance(classId, nullptr, context, interfaceId, object);
    }
    const HRESULT result = createRunningObject(classId, interfaceId, object, context);
    // Asked once more, the system starts a new server.
    return isEndingServer(result) ? createRunningObject(classId, interfaceId, object, context) : result;
}

ConnectionPointer createConnection() {
    ConnectionPointer connection;
    createConnectionObject(CLSID_DatabaseConnectionObject, IID_DatabaseConnection,
                           reinterpret_cast<void**>(connection.receive()));
    return connection;
}

void raiseIfFailed(HRESULT result, IUnknown& object, REFIID interfaceId) {
    if (FAILED(result)) {
        raise(result, object, interfaceId);
    }
}

std::wstring callForText(DatabaseConnection& connection,
                         HRESULT (STDMETHODCALLTYPE DatabaseConnection::*method)(BSTR*)) {
    Bstr text;
    raiseIfFailed((connection.*method)(text.receive()), connection, IID_DatabaseConnection);
    return text.text();
}

std::wstring pathForServer(const std::wstring& path) {
    const DWORD size = isWholePath(path) ? 0 : GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring whole(size, L'\0');
    whole.resize(size == 0 ? 0 : GetFullPathNameW(path.c_str(), size, whole.data(), nullptr));
    return whole.empty() ? path : whole;
}

OpenResult openDatabase(DatabaseConnection& connection, const std::wstring& path, short readOnly) {
    const Bstr file(path);
    Bstr status;
    raiseIfFailed(connection.OpenDatabase(file.get(), VARIANT_FALSE, readOnly, status.receive()), connection,
                  IID_DatabaseConnection);
    const std::wstring text = status.text();
    if (text == repairStatus) {
        return OpenResult::needsRepair;
    }
    return text.empty() ? OpenResult::failed : OpenResult::opened;
}

ServerError readServerError(DatabaseConnection& connection) {
    ServerError error;
    Bstr text;
    raiseIfFailed(connection.GetError(&error.code, text.receive()), connection, IID_DatabaseConnection);
    error.text = text.text();
    return error;
}

void keepServerError(const ServerError& error) {
    setLastError(L"(" + std::to_wstring(error.code) + L") " + error.text);
}

ServerError fetchServerError(DatabaseConnection& connection) {
    ServerError error = readServerError(connection);
    keepServerError(error);
    return error;
}

void printServerError(const ServerError& error, const wchar_t* format) {
    if (error.code == diskOrNetworkError) {
        acutPrintf(L"\nA disk or network error occurred while trying to access the database.");
        acutPrintf(
            L"Try the command again. If it continues to not work, try restarting AutoCAD. If that does not "
            L"fix the error, try restarting your computer.");
    } else if (error.code != noCurrentRecord) {
        acutPrintf(format, error.text.c_str());
    }
}

bool reportServerError() {
    return reportError(serverState().currentConnection.get(), functionErrorFormat);
}

bool reportServerError(DatabaseConnection& connection) {
    return reportError(&connection, functionErrorFormat);
}

bool reportDatabaseError(ConnectionPointer& connection) {
    const ConnectionPointer released = std::exchange(connection, nullptr);
    return reportError(released.get(), dialogErrorFormat);
}

void setLastError(const std::wstring& text) {
    serverState().lastErrorText = text;
}

const std::wstring& getLastError() {
    return serverState().lastErrorText;
}

}  // namespace tessary
