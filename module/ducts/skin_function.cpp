#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/ducts/duct_functions.h"
#include "module/ducts/duct_solid.h"

namespace tessary {

namespace {

// All points up to the first value that is none, which need not be the list's end.
AcGePoint3dArray readPoints(ArgCursor& cursor) {
    readListBegin(cursor);
    AcGePoint3dArray points;
    AcGePoint3d point;
    while (readPoint(cursor, point)) {
        points.append(point);
    }
    return points;
}

}  // namespace

HandlerStatus drawTripleSkin() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    double thickness = 0;
    if (!readNumber(cursor, thickness)) {
        return HandlerStatus::wrongType;
    }
    const AcGePoint3dArray points = readPoints(cursor);
    SolidPointer solid = newSolid();
    if (!solid || !solid->addSkin(points, thickness)) {
        return HandlerStatus::success;
    }
    if (const qn_hvacSolid* const skin = addToDrawing(std::move(solid))) {
        ResultList result;
        beginResultList(result);
        addNamedEntity(result, L"en", skin);
        endAndReturnList(result);
    }
    return HandlerStatus::success;
}

}  // namespace tessary
