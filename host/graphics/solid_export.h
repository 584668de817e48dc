#pragma once

// The solids that a drawing shows, and files of them.

#include <string>
#include <vector>

#include "host/api/database.h"
#include "host/exchange/solid_files.h"

namespace drafthost::graphics {

// In drawing order; those in blocks once for every place where they are shown. What pictures leave out
// (invisible entities, layers that are off or frozen) is left out. A solid is an entity that draws a closed
// shell or says what it measures.
std::vector<exchange::ShownSolid> collectSolids(const AcDbDatabase& database);

// Writes the solids as STL, OBJ or CSV, by the file's extension, as pictures are written. False: problem says
// why; so for a drawing that shows no solids.
bool writeSolids(const AcDbDatabase& database, const std::wstring& path, std::wstring& problem);

}  // namespace drafthost::graphics
