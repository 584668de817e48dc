#pragma once

// Which database connection belongs to which open drawing. A drawing gets a record when it is opened and one
// more each time a database is opened for it; the first record with its name counts. Main thread only, so
// nothing is locked.

#include "module/database/server_connection.h"

#include <list>
#include <string>

namespace tessary {

struct DocumentConnection {
    std::wstring fileName;         // of the drawing; empty: it uses another record now
    ConnectionPointer connection;  // null: no database is open for the drawing
    std::wstring databasePath;     // empty: none
    bool readOnly = false;
};

// The records, newest first. Created empty when the module is loaded.
std::list<DocumentConnection>& documentConnections();

// File name of the drawing that is active now; empty without one.
std::wstring activeDrawingName();

// Adds a record without a connection. Without memory for it there is none: the drawing then has no database.
void addDocumentConnection(const wchar_t* fileName);

// Forgets the newest record. When a drawing closes, ensureDatabaseConnection has made its record the newest.
void removeNewestDocumentConnection();

// Closes the databases of all records and forgets them.
void closeAllConnections();

// Makes the connection of the active drawing current and looks after one that is not healthy; runs before
// every database function and before a drawing closes. Throws a _com_error when the server cannot be reached.
void ensureDatabaseConnection();

// Closes the current connection's database. The connection stays current and in its record: programs go on
// asking it.
void closeCurrentDatabase();

// Closes the current connection's database and drops the connection.
void closeCurrentConnection();

// Removes the records that have neither a drawing nor a connection.
void purgeOrphanRecords();

// Whether the connection, which may be null, has that database open. A path that is only a part of the
// database's own counts as the same: programs name databases by file name alone.
bool isSameDatabase(const ConnectionPointer& connection, const std::wstring& path);

// Makes an open connection to the database current for the active drawing, when the drawing had one.
void adoptOpenConnection(const std::wstring& path);

}  // namespace tessary
