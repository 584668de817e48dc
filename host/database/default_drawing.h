#pragma once

// What every drawing has: standard tables and records, dictionaries, layouts.

#include <string>
#include <vector>

#include "host/database/database_impl.h"

namespace drafthost {

// Adds whatever the drawing lacks of it, with the handles that drawings usually have where these are free. A
// new database becomes an empty drawing. Returns a text for each thing added, such as "layer \"0\"".
std::vector<std::wstring> addMissingParts(AcDbDatabase& database);

// Sets the ids that the database keeps: spaces, current layer, style and so on, from the tables and the
// header.
void settleIds(AcDbDatabase& database);

// The classes section of a new drawing.
std::vector<ClassGroups> defaultClasses();

}  // namespace drafthost
