#include "module/drawing/block_file.h"

#include "host/api/database.h"
#include "module/drawing/model_space.h"

namespace tessary {

bool insertBlockFile(const ACHAR* path, const ACHAR* blockName, AcDbObjectId& id) {
    AcDbDatabase blockDrawing(false, true);
    if (blockDrawing.readDwgFile(path, AcDb::kDenyNone) != Acad::eOk) {
        return false;
    }
    AcDbObjectId inserted;
    if (currentDatabase()->insert(inserted, blockName, &blockDrawing, true) != Acad::eOk) {
        return false;
    }
    id = inserted;
    return true;
}

}  // namespace tessary
