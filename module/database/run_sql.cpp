#include "module/database/run_sql.h"

#include "host/api/editor.h"
#include "module/binding/message_box.h"
#include "module/binding/variant.h"
#include "module/database/server_connection.h"
#include "module/database/server_results.h"

namespace tessary {

namespace {

struct Database {
    std::wstring path;
    short readOnly = VARIANT_FALSE;
};

bool isAskedToReport() {
    return showMessageBox(L"Database connection error.\nClose and reopen AutoCAD.\n\nIf you are getting this "
                          L"error frequently, press \"Yes\" to send an error report to Quarnel Support.",
                          L"Quarnel", MB_YESNO | MB_ICONERROR | MB_DEFBUTTON2) == IDYES;
}

HandlerStatus quietFailure(SqlErrors errors) {
    if (errors == SqlErrors::asText) {
        acedRetStr(L"*ERROR*");
    } else {
        acedRetNil();
    }
    return HandlerStatus::success;
}

// announcement: which attempt failed.
HandlerStatus failure(SqlErrors errors, const wchar_t* announcement, const std::wstring& statement) {
    if (errors != SqlErrors::ask) {
        return quietFailure(errors);
    }
    if (!isAskedToReport()) {
        acedRetNil();
        return HandlerStatus::success;
    }
    // The text is the format itself: support reads these reports with % directives already expanded.
    acutPrintf((announcement + statement).c_str());
    reportServerError();
    return HandlerStatus::badData;
}

// The database that is to be opened again, which is closed. When the server does not know any more, it is the
// one that was opened last.
Database closeForRetry(DatabaseConnection& connection) {
    const ServerState& state = serverState();
    Database database{callForText(connection, &DatabaseConnection::DatabasePath), VARIANT_FALSE};
    if (database.path.empty()) {
        return {state.currentDatabasePath, state.currentReadOnly};
    }
    database.readOnly = succeeds(connection, &DatabaseConnection::IsWritable) ? VARIANT_FALSE : VARIANT_TRUE;
    succeeds(connection, &DatabaseConnection::CloseDatabase);
    return database;
}

HandlerStatus reopenFailure(SqlErrors errors) {
    reportServerError();
    return errors == SqlErrors::ask ? HandlerStatus::badData : quietFailure(errors);
}

}  // namespace

HandlerStatus runSql(DatabaseConnection& connection, const std::wstring& statement, SqlErrors errors) {
    const Bstr text(statement);
    Variant records;
    const auto run = [&] {
        return succeeds(connection, &DatabaseConnection::RunSql, text.get(), records.receive());
    };
    if (run()) {
        return returnRecords(true, records);
    }
    const Database database = closeForRetry(connection);
    if (database.path.empty()) {
        return failure(errors, L"\nQuery 1: ", statement);
    }
    // Neither the current path nor the drawing's record changes: it is the same database.
    if (openDatabase(connection, database.path, database.readOnly) != OpenResult::opened) {
        return reopenFailure(errors);
    }
    return run() ? returnRecords(true, records) : failure(errors, L"\nQuery 2: ", statement);
}

}  // namespace tessary
