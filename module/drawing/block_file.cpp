#include "module/drawing/block_file.h"

#include "host/api/editor.h"

namespace tessary {

bool insertBlockFile(const ACHAR* path, const ACHAR*, AcDbObjectId&) {
    acutPrintf(L"\nThis version cannot read the block file %s.", path);
    return false;
}

}  // namespace tessary
