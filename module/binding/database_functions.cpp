#include "module/binding/function_table.h"

#include "module/binding/thunk.h"
#include "module/database/connect_function.h"
#include "module/database/connection_functions.h"
#include "module/database/file_functions.h"
#include "module/database/keyed_list_functions.h"
#include "module/database/last_error_functions.h"
#include "module/database/message_functions.h"
#include "module/database/only_32_bit.h"
#include "module/database/schema_functions.h"
#include "module/database/server_connection.h"
#include "module/database/statement_functions.h"
#include "module/database/table_functions.h"

#include <iterator>

namespace tessary {

namespace {

// Functions that have nothing to do in a drawing without a database.
template <HandlerStatus (*handler)(DatabaseConnection&)>
int connectionThunk() {
    return databaseThunk<onConnection<handler>>();
}

constexpr FunctionEntry functions[] = {
    {L"ts_append", connectionThunk<appendRecord>},
    {L"ts_append_withindex", connectionThunk<appendRecordWithIndex>},
    {L"ts_closeall_tables", connectionThunk<closeAllTables>},
    {L"ts_close_table", connectionThunk<closeTable>},
    {L"ts_bottom", connectionThunk<lastRecord>},
    {L"ts_count", connectionThunk<recordCount>},
    {L"ts_delete", connectionThunk<deleteRecord>},
    {L"ts_getrec", connectionThunk<currentRecord>},
    {L"ts_structure", connectionThunk<tableStructure>},
    {L"ts_list_indexes", connectionThunk<indexNames>},
    {L"ts_modify_table", connectionThunk<modifyTable>},
    {L"ts_replace", connectionThunk<replaceRecord>},
    {L"ts_seek", connectionThunk<seekRecord>},
    {L"ts_skip", connectionThunk<skipRecords>},
    {L"ts_top", connectionThunk<firstRecord>},
    {L"ts_table", connectionThunk<openTable>},
    {L"ts_rename_table", connectionThunk<renameTable>},
    {L"ts_connect", databaseThunk<connectDatabase>},
    {L"ts_mdb", connectionThunk<databasePath>},
    {L"ts_create_db", databaseThunk<createDatabase>},
    {L"ts_create_table", connectionThunk<createTable>},
    {L"ts_close_db", connectionThunk<closeDatabase>},
    {L"ts_beep", databaseThunk<beep>},
    {L"ts_random", databaseThunk<libraryRandomNumber>},
    {L"ts_message_beep", databaseThunk<messageBeep>},
    {L"ts_exist", connectionThunk<tableExists>},
    {L"ts_readonly", databaseThunk<isDatabaseReadOnly>},
    {L"ts_delete_table", connectionThunk<deleteTable>},
    {L"ts_list_tables", connectionThunk<tableNames>},
    {L"ts_current_table", connectionThunk<currentTable>},
    {L"ts_current_index", connectionThunk<currentIndex>},
    {L"ts_sql", connectionThunk<sqlStatement>},
    {L"ts_sql-nil", connectionThunk<sqlStatementOrNil>},
    {L"ts_sql-error", connectionThunk<sqlStatementOrErrorText>},
    {L"ts_command", connectionThunk<sqlCommand>},
    {L"ts_compact", databaseThunk<compactDatabase>},
    {L"ts_link_table", connectionThunk<linkTable>},
    {L"ts_query", connectionThunk<runStoredQuery>},
    {L"ts_message_box", databaseThunk<messageBox>},
    {L"ts_create_index", connectionThunk<createIndex>},
    {L"ts_create_query", connectionThunk<createStoredQuery>},
    {L"ts_xdput-list", databaseThunk<putKeyedList>},
    {L"ts_xdget", databaseThunk<getKeyedValue>},
    {L"ts_xdget-list", databaseThunk<getKeyedList>},
    {L"ts_xdget-all", databaseThunk<getWholeKeyedList>},
    {L"ts_mkdir", databaseThunk<makeFolder>},
    {L"ts_relationExists", connectionThunk<relationExists>},
    {L"ts_relationDelete", connectionThunk<deleteRelation>},
    {L"ts_lastError", databaseThunk<lastError>},
    {L"ts_resetLastError", databaseThunk<resetLastError>},
    {L"ts_field_required", connectionThunk<isFieldRequired>},
    {L"ts_attributes", connectionThunk<fieldAttributes>},
    {L"ts_getVersion", databaseThunk<serverVersion>},
    {L"ts_rmdir", databaseThunk<removeFolder>},
    {L"ts_fmove", databaseThunk<moveFile>},
    {L"ts_fcopy", databaseThunk<copyFile>},
    {L"ts_fcopyIfChanged", databaseThunk<copyFileIfChanged>},
    {L"ts_fdir", databaseThunk<listFiles>},
    {L"ts_fdelete", databaseThunk<deleteFile>},
    {L"ts_indexUnique", databaseThunk<functionOfThe32BitVersion>},
    {L"ts_indexFields", databaseThunk<functionOfThe32BitVersion>},
    {L"ts_relationCount", databaseThunk<functionOfThe32BitVersion>},
    {L"ts_relationInfo", databaseThunk<functionOfThe32BitVersion>},
};

static_assert(std::size(functions) == 63);

}  // namespace

std::span<const FunctionEntry> databaseFunctions() {
    return functions;
}

}  // namespace tessary
