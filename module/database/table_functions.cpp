#include "module/database/table_functions.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"
#include "module/binding/variant_conversion.h"
#include "module/database/server_connection.h"
#include "module/database/server_results.h"

namespace tessary {

namespace {

// A server that closed what it was asked to answers true, -1. Taken as a result code that would be a failure,
// so only then an error is looked for; callers rely on nothing but nil.
HandlerStatus reportClosing(VARIANT_BOOL closed) {
    if (closed < 0) {
        reportServerError();
    }
    acedRetNil();
    return HandlerStatus::success;
}

}  // namespace

HandlerStatus openTable(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor) {
        return HandlerStatus::tooFewArguments;
    }
    std::wstring table;
    std::wstring index;
    if (!readString(cursor, table)) {
        return HandlerStatus::wrongType;
    }
    // Anything but a text leaves the table without an index.
    readString(cursor, index);
    const bool opened =
        succeeds(connection, &DatabaseConnection::SelectTable, Bstr(table).get(), Bstr(index).get());
    return returnText(opened, table.c_str());
}

HandlerStatus closeTable(DatabaseConnection& connection) {
    return reportClosing(callForFlag(connection, &DatabaseConnection::CloseTable));
}

HandlerStatus closeAllTables(DatabaseConnection& connection) {
    return reportClosing(callForFlag(connection, &DatabaseConnection::CloseAllTables));
}

HandlerStatus currentTable(DatabaseConnection& connection) {
    return returnText(true, callForText(connection, &DatabaseConnection::CurrentTable).c_str());
}

HandlerStatus currentIndex(DatabaseConnection& connection) {
    return returnText(true, callForText(connection, &DatabaseConnection::CurrentIndex).c_str());
}

HandlerStatus tableExists(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring table;
    if (!readString(cursor, table)) {
        return HandlerStatus::wrongType;
    }
    VARIANT_BOOL exists = VARIANT_FALSE;
    const bool answered = succeeds(connection, &DatabaseConnection::TableExists, Bstr(table).get(), &exists);
    return returnTruth(answered, exists != VARIANT_FALSE);
}

// Without a database programs are told that they cannot write.
HandlerStatus isDatabaseReadOnly() {
    const ConnectionPointer connection = serverState().currentConnection;
    return returnTruth(true, !connection || succeeds(*connection, &DatabaseConnection::IsReadOnly));
}

HandlerStatus firstRecord(DatabaseConnection& connection) {
    Variant record;
    return returnPairs(succeeds(connection, &DatabaseConnection::MoveFirst, record.receive()), record);
}

HandlerStatus lastRecord(DatabaseConnection& connection) {
    Variant record;
    return returnPairs(succeeds(connection, &DatabaseConnection::MoveLast, record.receive()), record);
}

HandlerStatus skipRecords(DatabaseConnection& connection) {
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    int count = 1;
    readInteger(cursor, count);
    Variant record;
    return returnPairs(succeeds(connection, &DatabaseConnection::Skip, count, record.receive()), record);
}

HandlerStatus currentRecord(DatabaseConnection& connection) {
    Variant record;
    return returnPairs(succeeds(connection, &DatabaseConnection::GetRecord, record.receive()), record);
}

HandlerStatus recordCount(DatabaseConnection& connection) {
    long count = 0;
    if (succeeds(connection, &DatabaseConnection::Count, &count)) {
        returnInteger(count);
    } else {
        reportServerError();
    }
    return HandlerStatus::success;
}

HandlerStatus deleteRecord(DatabaseConnection& connection) {
    return returnTruth(succeeds(connection, &DatabaseConnection::DeleteRecord));
}

}  // namespace tessary
