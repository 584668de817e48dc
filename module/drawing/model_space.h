#pragma once

// Adding entities to the drawing, and looking things up in its tables.

#include "host/api/database.h"

namespace tessary {

// Database of the current document.
AcDbDatabase* currentDatabase();

// Adds a new entity to the model space of the current document, which is locked for writing meanwhile. True:
// it is in the drawing, still open for the caller to close. False: an alert has said why, and the entity has
// been deleted.
bool appendToModelSpace(AcDbEntity* entity);
// The same with the document locked and its block table open already.
bool appendToBlockTableRecord(AcDbEntity* entity, const AcDbBlockTable& blockTable);
// appendToModelSpace for entities that are finished: closes the entity too. Null is accepted.
void appendAndClose(AcDbEntity* entity);

// Finds a block definition of the current drawing. When the drawing has none of the name, the drawing file of
// the name on the search path becomes one; when there is no file either, the product's LISP function
// "qnBlock-alertMissing" is called with the name. id is set only when the result is true.
bool findOrLoadBlock(const ACHAR* name, AcDbObjectId& id);
// id is set only when the result is true.
bool findLayer(const ACHAR* name, AcDbObjectId& id);

// Ends one open of an object.
struct CloseObject {
    void operator()(AcDbObject* object) const { object->close(); }
};

}  // namespace tessary
