#include "module/binding/function_table.h"

#include "module/binding/thunk.h"

#include <iterator>

namespace tessary {

namespace {

constexpr FunctionEntry functions[] = {
    {L"ts_append", unavailableThunk},
    {L"ts_append_withindex", unavailableThunk},
    {L"ts_closeall_tables", unavailableThunk},
    {L"ts_close_table", unavailableThunk},
    {L"ts_bottom", unavailableThunk},
    {L"ts_count", unavailableThunk},
    {L"ts_delete", unavailableThunk},
    {L"ts_getrec", unavailableThunk},
    {L"ts_structure", unavailableThunk},
    {L"ts_list_indexes", unavailableThunk},
    {L"ts_modify_table", unavailableThunk},
    {L"ts_replace", unavailableThunk},
    {L"ts_seek", unavailableThunk},
    {L"ts_skip", unavailableThunk},
    {L"ts_top", unavailableThunk},
    {L"ts_table", unavailableThunk},
    {L"ts_rename_table", unavailableThunk},
    {L"ts_connect", unavailableThunk},
    {L"ts_mdb", unavailableThunk},
    {L"ts_create_db", unavailableThunk},
    {L"ts_create_table", unavailableThunk},
    {L"ts_close_db", unavailableThunk},
    {L"ts_beep", unavailableThunk},
    {L"ts_random", unavailableThunk},
    {L"ts_message_beep", unavailableThunk},
    {L"ts_exist", unavailableThunk},
    {L"ts_readonly", unavailableThunk},
    {L"ts_delete_table", unavailableThunk},
    {L"ts_list_tables", unavailableThunk},
    {L"ts_current_table", unavailableThunk},
    {L"ts_current_index", unavailableThunk},
    {L"ts_sql", unavailableThunk},
    {L"ts_sql-nil", unavailableThunk},
    {L"ts_sql-error", unavailableThunk},
    {L"ts_command", unavailableThunk},
    {L"ts_compact", unavailableThunk},
    {L"ts_link_table", unavailableThunk},
    {L"ts_query", unavailableThunk},
    {L"ts_message_box", unavailableThunk},
    {L"ts_create_index", unavailableThunk},
    {L"ts_create_query", unavailableThunk},
    {L"ts_xdput-list", unavailableThunk},
    {L"ts_xdget", unavailableThunk},
    {L"ts_xdget-list", unavailableThunk},
    {L"ts_xdget-all", unavailableThunk},
    {L"ts_mkdir", unavailableThunk},
    {L"ts_relationExists", unavailableThunk},
    {L"ts_relationDelete", unavailableThunk},
    {L"ts_lastError", unavailableThunk},
    {L"ts_resetLastError", unavailableThunk},
    {L"ts_field_required", unavailableThunk},
    {L"ts_attributes", unavailableThunk},
    {L"ts_getVersion", unavailableThunk},
    {L"ts_rmdir", unavailableThunk},
    {L"ts_fmove", unavailableThunk},
    {L"ts_fcopy", unavailableThunk},
    {L"ts_fcopyIfChanged", unavailableThunk},
    {L"ts_fdir", unavailableThunk},
    {L"ts_fdelete", unavailableThunk},
    {L"ts_indexUnique", unavailableThunk},
    {L"ts_indexFields", unavailableThunk},
    {L"ts_relationCount", unavailableThunk},
    {L"ts_relationInfo", unavailableThunk},
};

static_assert(std::size(functions) == 63);

}  // namespace

std::span<const FunctionEntry> databaseFunctions() {
    return functions;
}

}  // namespace tessary
