#pragma once

#include "host/api/database_ids.h"

namespace tessary {

// Inserts the drawing file into the current drawing as a block definition of that name. Returns false, prints
// nothing and changes nothing when the file cannot be read or inserted.
bool insertBlockFile(const ACHAR* path, const ACHAR* blockName, AcDbObjectId& id);

}  // namespace tessary
