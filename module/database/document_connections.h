#pragma once

// Which database connection belongs to which open drawing. Every drawing has a record, newest first; records
// live from the opening of the drawing to its closing. Main thread only, so nothing is locked.

#include <windows.h>

#include <unknwn.h>

#include <list>
#include <memory>
#include <string>

namespace tessary {

struct ReleaseInterface {
    void operator()(IUnknown* object) const { object->Release(); }
};

struct DocumentConnection {
    std::wstring fileName;                                   // of the drawing
    std::unique_ptr<IUnknown, ReleaseInterface> connection;  // null: no database is open for the drawing
    std::wstring databasePath;                               // empty: none
    bool readOnly = false;
};

// The records, newest first. Created empty when the module is loaded.
std::list<DocumentConnection>& documentConnections();

// Adds a record without a connection. Without memory for it there is none: the drawing then has no database.
void addDocumentConnection(const wchar_t* fileName);

// Forgets the newest record. When a drawing closes, ensureDatabaseConnection has made its record the newest.
void removeNewestDocumentConnection();

// Forgets all records and their connections.
void closeAllConnections();

// Will make the connection of the active drawing current and repair a broken one; runs before every database
// function and before a drawing closes. Does nothing as long as no database can be opened.
void ensureDatabaseConnection();

// Will close the current connection's database and drop the connection. There is none as long as no database
// can be opened.
void closeCurrentConnection();

}  // namespace tessary
