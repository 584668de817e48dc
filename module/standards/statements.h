#pragma once

// SQL statements of the customization dialogs, on the connection to the standards database.

#include "module/binding/variant.h"
#include "module/database/server_connection.h"

#include <optional>
#include <string>
#include <vector>

namespace tessary {

// The values of one row, in the order of the statement's columns.
using SelectedRow = std::vector<Variant>;

// Nothing when the statement failed.
std::optional<std::vector<SelectedRow>> selectRows(DatabaseConnection& connection,
                                                   const std::wstring& statement);

// The text as it is; nothing for a value that is none.
std::optional<std::wstring> textIn(const Variant& value);

// The error of a failing statement is kept as the last one, without a message: the dialog goes on.
void executeStatement(DatabaseConnection& connection, const std::wstring& statement);

}  // namespace tessary
