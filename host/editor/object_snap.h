#pragma once

// Object snap: the exact point of an entity that is meant by one nearby.

#include <optional>
#include <string_view>
#include <vector>

#include "host/api/database_ids.h"
#include "host/api/geometry.h"

namespace drafthost {
class Document;
}

namespace drafthost::editor {

// The ways to snap, in the order of the words that name them.
struct SnapModes {
    std::vector<AcDb::OsnapMode> ofEntities;
    bool intersections = false;
    bool apparentIntersections = false;  // where entities at different heights cross as seen from above
};

// "end,mid": words of at least three letters of END, MID, CENTER, NODE, QUADRANT, INTERSECTION, INSERTION,
// PERPENDICULAR, TANGENT, NEAREST, APPARENT, in any case and with or without a leading underscore. EXTENSION,
// PARALLEL, NONE and QUICK are known and find nothing by themselves. Nothing for an unknown word.
std::optional<SnapModes> snapModes(std::wstring_view words);

// The nearest to the point (UCS, seen from above) of the points that the entities near it offer: those that
// pass through the aperture box, and those with such a point in it. Intersections must lie in the box. The
// box's half side is APERTURE pixels, of which the longer side of the drawing has 600, as for the pick box.
// Perpendiculars and tangents are drawn from LASTPOINT. UCS; nothing when there is none.
std::optional<AcGePoint3d> snappedPoint(const Document& document, const AcGePoint3d& point,
                                        const SnapModes& modes);

}  // namespace drafthost::editor
