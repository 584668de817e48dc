#include "module/ducts/duct_solid.h"

#include "module/drawing/model_space.h"

namespace tessary {

SolidPointer newSolid() {
    return SolidPointer(qn_hvacSolid::create());
}

const qn_hvacSolid* addToDrawing(SolidPointer solid) {
    qn_hvacSolid* const added = solid.release();
    if (!added || !appendToModelSpace(added)) {
        return nullptr;
    }
    added->close();
    return added;
}

bool addTransition(qn_hvacSolid& solid, const DuctEnd& start, const DuctEnd& end, int bodyFlags) {
    return solid.addTransition(start.center, start.isRectangular, start.size.width, start.size.height,
                               end.center, end.isRectangular, end.size.width, end.size.height,
                               start.frame.data(), end.frame.data(), bodyFlags);
}

bool subtractTransition(qn_hvacSolid& solid, const DuctEnd& start, const DuctEnd& end, int bodyFlags) {
    return solid.subtractTransition(start.center, start.isRectangular, start.size.width, start.size.height,
                                    end.center, end.isRectangular, end.size.width, end.size.height,
                                    start.frame.data(), end.frame.data(), bodyFlags);
}

bool readFittingOptions(ArgCursor& cursor, FittingOptions& options) {
    return readFlag(cursor, options.convert) && readInteger(cursor, options.bodyFlags);
}

}  // namespace tessary
