#include "module/standards/standards_database.h"

#include "host/api/dialog.h"
#include "host/api/editor.h"
#include "module/binding/document_lock.h"
#include "module/binding/message_box.h"

namespace tessary {

namespace {

constexpr const wchar_t* caption = L"Quarnel";
constexpr const wchar_t* readOnlyMessage = L"Database is read-only. Cannot be viewed at this time.";

std::wstring currentDatabasePath() {
    const ConnectionPointer connection = serverState().currentConnection;
    return connection ? callForText(*connection, &DatabaseConnection::DatabasePath) : std::wstring();
}

// The host's main window; while that waits for a dialog whose LISP functions open another one, that dialog,
// which must not take input meanwhile.
HWND parentOfDialog() {
    const HWND main = adsw_acadMainWnd();
    const HWND active = GetActiveWindow();
    return active && !IsWindowEnabled(main) ? active : main;
}

}  // namespace

StandardsPath readStandardsPath(ArgCursor& cursor) {
    StandardsPath path;
    path.given = readString(cursor, path.path);
    if (!path.given) {
        path.path = currentDatabasePath();
    }
    return path;
}

bool openForCustomization(ConnectionPointer& connection, const std::wstring& path) {
    const Bstr file(pathForServer(path));
    VARIANT_BOOL readOnly = VARIANT_FALSE;
    if (!succeeds(*connection, &DatabaseConnection::OpenForCustomization, file.get(), &readOnly)) {
        reportDatabaseError(connection);
        return false;
    }
    if (readOnly == VARIANT_TRUE) {
        showMessageBox(readOnlyMessage, caption, MB_OK | MB_ICONEXCLAMATION);
        connection.reset();
        return false;
    }
    return true;
}

void runStandardsDialog(const StandardsDatabase& database, HWND parent, const StandardsDialog& runDialog) {
    const DocumentLock lock(acDocManager->curDocument());
    try {
        runDialog(database, parent);
    } catch (...) {
        // What ended the dialog is what the drafter is told; closing may fail for the same reason.
        VARIANT_BOOL closed = VARIANT_FALSE;
        database.connection->CloseDatabase(&closed);
        throw;
    }
    succeeds(*database.connection, &DatabaseConnection::CloseDatabase);
}

void openStandardsDatabase(const StandardsDialog& runDialog) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    const StandardsPath path = readStandardsPath(cursor);
    StandardsDatabase database = {createConnection(), path.given};
    if (database.connection && openForCustomization(database.connection, path.path)) {
        runStandardsDialog(database, parentOfDialog(), runDialog);
    }
}

}  // namespace tessary
