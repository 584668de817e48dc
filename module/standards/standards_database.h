#pragma once

// How the customization commands open the standards database: on a connection of their own, for as long as
// their dialog is open. What goes wrong is told to the drafter.

#include "module/binding/argument_readers.h"
#include "module/database/server_connection.h"

#include <functional>
#include <string>

namespace tessary {

struct StandardsDatabase {
    ConnectionPointer connection;  // private to the command; the database is open
    bool pathGiven = false;        // as an argument; otherwise it is the one of the current connection
};

struct StandardsPath {
    std::wstring path;  // empty: the current connection has no database open, or there is none
    bool given = false;
};
// The path at the cursor, which moves on; where there is no text, that of the current connection's database.
StandardsPath readStandardsPath(ArgCursor& cursor);

// Opens the database on a connection that has none open, for writing. path: a relative one is completed with
// the current folder of this process. False, and no connection any more, when it cannot be opened or only be
// read; the drafter was told.
bool openForCustomization(ConnectionPointer& connection, const std::wstring& path);

// parent: of the dialog.
using StandardsDialog = std::function<void(const StandardsDatabase& database, HWND parent)>;

// Runs the dialog with the current document locked, and closes the database afterwards, also when the dialog
// throws.
void runStandardsDialog(const StandardsDatabase& database, HWND parent, const StandardsDialog& runDialog);

// All of it: the path is the LISP call's first argument, the parent the host's main window. The LISP result
// is nil. Without a server nothing happens.
void openStandardsDatabase(const StandardsDialog& runDialog);

}  // namespace tessary
