#pragma once

// Clicking at entities.

#include <string>
#include <vector>

#include "host/api/database.h"
#include "host/editor/answer.h"

namespace drafthost {
class Document;
}

namespace drafthost::editor {

// Half the side of the pick box. The host shows no view, so the box follows the drawing: 1/200 of the longer
// side of its extents.
double pickTolerance(const AcDbDatabase& database);

// The entity of model space nearest to the point (UCS) within the pick box; of two equally near ones the
// later. Entities on layers that are off or frozen, and invisible ones, cannot be picked. Null: none.
AcDbObjectId entityAt(const Document& document, const AcGePoint3d& point);

// Entities of model space that can be picked, in drawing order.
std::vector<AcDbObjectId> visibleEntities(const AcDbDatabase& database);

struct EntityPick {
    int status = 0;  // as acedEntSel: RTNORM, RTERROR (nothing there, or an empty response), RTCAN, RTKWORD
    AcDbObjectId entity;
    AcGePoint3d point;
};
// Prompts; sets ERRNO to 7 for a pick at nothing and to 52 for an empty response.
EntityPick askEntity(Document& document, const std::wstring& prompt);

// The part of a block reference that was clicked, and the references around it, innermost first. Without
// parents: the entity itself.
struct NestedPick {
    AcDbObjectId part;
    std::vector<AcDbObjectId> parents;
    AcGeMatrix3d toWorld;  // from the part's block
};
NestedPick nestedAt(const Document& document, AcDbObjectId entity, const AcGePoint3d& point);

}  // namespace drafthost::editor
