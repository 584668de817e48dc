#include "module/database/statement_functions.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"
#include "module/binding/variant_conversion.h"
#include "module/database/run_sql.h"
#include "module/database/server_connection.h"
#include "module/database/server_results.h"

namespace tessary {

namespace {

constexpr int quietNilMode = 1;
constexpr int quietTextMode = 2;

SqlErrors errorsOfMode(int mode) {
    switch (mode) {
        case quietNilMode: return SqlErrors::asNil;
        case quietTextMode: return SqlErrors::asText;
        default: return SqlErrors::ask;
    }
}

HandlerStatus runOnlyArgument(DatabaseConnection& connection, SqlErrors errors) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring statement;
    if (!readString(cursor, statement)) {
        return HandlerStatus::wrongType;
    }
    return runSql(connection, statement, errors);
}

}  // namespace

HandlerStatus sqlStatement(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor) {
        return HandlerStatus::tooFewArguments;
    }
    std::wstring statement;
    if (!readString(cursor, statement)) {
        return HandlerStatus::wrongType;
    }
    int mode = 0;
    readInteger(cursor, mode);
    return runSql(connection, statement, errorsOfMode(mode));
}

HandlerStatus sqlStatementOrNil(DatabaseConnection& connection) {
    return runOnlyArgument(connection, SqlErrors::asNil);
}

HandlerStatus sqlStatementOrErrorText(DatabaseConnection& connection) {
    return runOnlyArgument(connection, SqlErrors::asText);
}

HandlerStatus sqlCommand(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor) {
        return HandlerStatus::tooFewArguments;
    }
    std::wstring statement;
    if (!readString(cursor, statement)) {
        return HandlerStatus::wrongType;
    }
    long count = 0;
    if (succeeds(connection, &DatabaseConnection::RunCommand, Bstr(statement).get(), &count)) {
        returnInteger(count);
    } else {
        reportServerError();
    }
    return HandlerStatus::success;
}

HandlerStatus runStoredQuery(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring query;
    if (!readString(cursor, query)) {
        return HandlerStatus::wrongType;
    }
    SafeArray array;
    if (!listToVariantArray(cursor, array)) {
        return HandlerStatus::success;
    }
    const Variant parameters = Variant::fromArray(std::move(array));
    Variant records;
    const bool ran = succeeds(connection, &DatabaseConnection::RunQuery, Bstr(query).get(), parameters.get(),
                              records.receive());
    return returnRecords(ran, records);
}

HandlerStatus createStoredQuery(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring query;
    std::wstring statement;
    if (!readString(cursor, query) || !readString(cursor, statement)) {
        return HandlerStatus::wrongType;
    }
    return returnTruth(
        succeeds(connection, &DatabaseConnection::CreateQuery, Bstr(query).get(), Bstr(statement).get()));
}

HandlerStatus linkTable(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor || !cursor->rbnext || !cursor->rbnext->rbnext) {
        return HandlerStatus::tooFewArguments;
    }
    std::wstring name;
    std::wstring file;
    if (!readString(cursor, name) || !readString(cursor, file)) {
        return HandlerStatus::wrongType;
    }
    // Anything but a text counts as the empty one, which leaves the choice of the table to the server.
    std::wstring table;
    readString(cursor, table);
    VARIANT_BOOL linked = VARIANT_FALSE;
    const bool answered = succeeds(connection, &DatabaseConnection::LinkTable, Bstr(name).get(),
                                   Bstr(file).get(), Bstr(table).get(), &linked);
    return returnTruth(answered, linked == VARIANT_TRUE);
}

}  // namespace tessary
