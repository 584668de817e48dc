#include "host/editor/coordinates.h"

#include <optional>

#include "host/api/editor.h"
#include "host/database/database_impl.h"
#include "host/documents/host.h"
#include "host/editor/value_conversion.h"

namespace drafthost::editor {

AcGeMatrix3d ucsToWorld(const AcDbDatabase& database) {
    const HeaderVariables& header = database.impl().settings.header;
    const AcGePoint3d origin = header.point(L"$UCSORG", {});
    const AcGeVector3d x = header.point(L"$UCSXDIR", {1, 0, 0}).asVector();
    const AcGeVector3d y = header.point(L"$UCSYDIR", {0, 1, 0}).asVector();
    AcGeMatrix3d matrix;
    matrix.setCoordSystem(origin, x, y, x.crossProduct(y));
    // A damaged header must not make coordinates vanish.
    return matrix.isSingular() ? AcGeMatrix3d::kIdentity : matrix;
}

namespace {

// Normal of an entity's plane, from its groups; +Z for entities without one.
AcGeVector3d entityNormal(AcDbObjectId id) {
    ads_name name = {0, 0};
    if (acdbGetAdsName(name, id) != Acad::eOk)
        return AcGeVector3d::kZAxis;
    const ValueList groups(acdbEntGet(name));
    for (const resbuf* group = groups.get(); group; group = group->rbnext) {
        const ads_real* const p = group->resval.rpoint;
        if (group->restype == 210)
            return {p[0], p[1], p[2]};
    }
    return AcGeVector3d::kZAxis;
}

enum SystemCode { kWorld = 0, kUcs = 1, kDisplay = 2, kPaper = 3 };

// To world coordinates from the system that a node names.
std::optional<AcGeMatrix3d> systemToWorld(const resbuf* node, const AcDbDatabase& database) {
    if (!node)
        return std::nullopt;
    switch (node->restype) {
        case RTSHORT:
        case RTLONG:
            switch (node->resval.rlong) {
                case kWorld: return AcGeMatrix3d::kIdentity;
                // The view is a plan view of the current coordinate system.
                case kUcs:
                case kDisplay:
                case kPaper: return ucsToWorld(database);
                default: return std::nullopt;
            }
        case RT3DPOINT:
        case RTPOINT: {
            const ads_real* const p = node->resval.rpoint;
            const AcGeVector3d normal(p[0], p[1], node->restype == RTPOINT ? 0 : p[2]);
            if (normal.isZeroLength())
                return std::nullopt;
            return AcGeMatrix3d::planeToWorld(normal);
        }
        case RTENAME: {
            AcDbObjectId id;
            if (acdbGetObjectId(id, node->resval.rlname) != Acad::eOk)
                return std::nullopt;
            return AcGeMatrix3d::planeToWorld(entityNormal(id));
        }
        default: return std::nullopt;
    }
}

}  // namespace

}  // namespace drafthost::editor

int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement,
              ads_point result) {
    using namespace drafthost;
    const Document* const document = theHost().documents().current();
    if (!document)
        return RTERROR;
    const auto fromWorld = editor::systemToWorld(from, *document->database());
    const auto toWorld = editor::systemToWorld(to, *document->database());
    if (!fromWorld || !toWorld)
        return RTERROR;
    const AcGeMatrix3d matrix = toWorld->inverse() * *fromWorld;
    const AcGePoint3d given(point[0], point[1], point[2]);
    const AcGePoint3d moved = displacement ? AcGePoint3d() + matrix * given.asVector() : matrix * given;
    for (int i = 0; i < 3; ++i)
        result[i] = moved[i];
    return RTNORM;
}
