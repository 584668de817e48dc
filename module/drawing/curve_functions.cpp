#include "module/drawing/curve_functions.h"

#include "host/api/curves.h"
#include "host/api/editor.h"
#include "module/binding/argument_readers.h"

namespace tessary {

namespace {

using CurvePointer = AcDbObjectPointer<AcDbCurve>;

// The object an entity name stands for. A stale name gives the null id, which cannot be opened.
AcDbObjectId objectIdOf(const resbuf& entityNode) {
    AcDbObjectId id;
    acdbGetObjectId(id, entityNode.resval.rlname);
    return id;
}

void returnPoint(const AcGePoint3d& point) {
    const ads_point coordinates = {point.x, point.y, point.z};
    acedRetPoint(coordinates);
}

// Reads (curve entity, point) and opens the curve.
HandlerStatus readCurveAndPoint(CurvePointer& curve, AcGePoint3d& point) {
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    if (!readObjectId(cursor, id) || !readPoint(cursor, point)) {
        return HandlerStatus::wrongType;
    }
    return curve.open(id, AcDb::kForRead) == Acad::eOk ? HandlerStatus::success : HandlerStatus::badData;
}

}  // namespace

HandlerStatus curveLength() {
    acedRetNil();
    const ArgumentList arguments;
    const ArgCursor entity = arguments.first();
    if (!entity) {
        return HandlerStatus::tooFewArguments;
    }
    if (entity->restype != RTENAME) {
        return HandlerStatus::wrongType;
    }
    const CurvePointer curve(objectIdOf(*entity), AcDb::kForRead);
    if (!curve) {
        return HandlerStatus::badData;
    }
    double endParameter = 0;
    double length = 0;
    curve->getEndParam(endParameter);
    curve->getDistAtParam(endParameter, length);
    acedRetReal(length);
    return HandlerStatus::success;
}

HandlerStatus curvePointAtDistance() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor || !cursor->rbnext) {
        return HandlerStatus::tooFewArguments;
    }
    const resbuf& entity = *cursor;
    double distance = 0;
    skipArg(cursor);
    if (entity.restype != RTENAME || !readNumber(cursor, distance)) {
        return HandlerStatus::wrongType;
    }
    // Programs probe with entities that may be no curves, so that is no error.
    const CurvePointer curve(objectIdOf(entity), AcDb::kForRead);
    if (!curve) {
        return HandlerStatus::success;
    }
    // A distance off the curve leaves the origin, which callers test for.
    AcGePoint3d point;
    curve->getPointAtDist(distance, point);
    returnPoint(point);
    return HandlerStatus::success;
}

HandlerStatus curveClosestPoint() {
    acedRetNil();
    CurvePointer curve;
    AcGePoint3d given;
    const HandlerStatus status = readCurveAndPoint(curve, given);
    if (status != HandlerStatus::success) {
        return status;
    }
    AcGePoint3d closest;
    if (curve->getClosestPointTo(given, AcGeVector3d::kZAxis, closest, false) == Acad::eOk) {
        returnPoint(closest);
    }
    return HandlerStatus::success;
}

HandlerStatus curveDistanceAtPoint() {
    acedRetNil();
    CurvePointer curve;
    AcGePoint3d point;
    const HandlerStatus status = readCurveAndPoint(curve, point);
    if (status != HandlerStatus::success) {
        return status;
    }
    double distance = 0;
    if (curve->getDistAtPoint(point, distance) == Acad::eOk) {
        acedRetReal(distance);
    }
    return HandlerStatus::success;
}

}  // namespace tessary
