#pragma once

// How all customization commands open the standards database.

#include "module/database/server_connection.h"

#include <functional>

namespace tessary {

struct StandardsDatabase {
    ConnectionPointer connection;  // private to the command; the database is open
    bool pathGiven = false;        // as an argument; otherwise it is the one of the drawing
};

// Opens the database whose path is the LISP call's first argument, or without one that of the current
// connection, on a connection of its own. What goes wrong is told to the drafter. Runs the dialog with the
// current document locked, and closes the database and releases the connection afterwards, also when the
// dialog fails. parent: of the dialog.
void openStandardsDatabase(
    const std::function<void(const StandardsDatabase& database, HWND parent)>& runDialog);

}  // namespace tessary
