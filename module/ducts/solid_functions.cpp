#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"
#include "module/drawing/model_space.h"
#include "module/ducts/duct_functions.h"
#include "solids/api/hvac_solid.h"

namespace tessary {

namespace {

using OpenSolid = AcDbObjectPointer<qn_hvacSolid>;

OpenSolid openForWrite(const ads_name name) {
    AcDbObjectId id;
    return acdbGetObjectId(id, name) == Acad::eOk ? OpenSolid(id, AcDb::kForWrite) : OpenSolid();
}

// Adds the parts to model space and lists those that the drawing has taken.
void addFaces(const AcDbEntityArray& parts, ResultList& list) {
    for (AcDbEntity* const part : parts) {
        if (appendToModelSpace(part)) {
            part->close();
            addNamedEntity(list, L"FACE", part);
        }
    }
}

}  // namespace

// Always nil. The second solid is erased when the first one has taken it in.
HandlerStatus tripleUnion() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    ads_name keptName;
    ads_name mergedName;
    if (!readEntityName(cursor, keptName) || !readEntityName(cursor, mergedName)) {
        return HandlerStatus::wrongType;
    }
    const OpenSolid kept = openForWrite(keptName);
    if (!kept) {
        return HandlerStatus::wrongType;
    }
    const OpenSolid merged = openForWrite(mergedName);
    if (!merged) {
        return HandlerStatus::wrongType;
    }
    if (kept->doUnion(*merged)) {
        merged->erase();
    }
    return HandlerStatus::success;
}

// The solid stays: callers erase it when the parts are to take its place.
HandlerStatus explodeSolid() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor) {
        return HandlerStatus::success;
    }
    AcDbObjectId id;
    if (!readObjectId(cursor, id)) {
        return HandlerStatus::wrongType;
    }
    const OpenSolid solid(id, AcDb::kForWrite);
    if (!solid) {
        return HandlerStatus::badData;
    }
    AcDbEntityArray parts;
    solid->explode(parts);
    ResultList result;
    beginResultList(result);
    addFaces(parts, result);
    endAndReturnList(result);
    return HandlerStatus::success;
}

}  // namespace tessary
