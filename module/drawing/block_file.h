#pragma once

#include "host/api/database_ids.h"

namespace tessary {

// Will insert the drawing file as a block definition of that name into the current drawing. This version
// cannot read such files: it says so on the command line and returns false.
bool insertBlockFile(const ACHAR* path, const ACHAR* blockName, AcDbObjectId& id);

}  // namespace tessary
