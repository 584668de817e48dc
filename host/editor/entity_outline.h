#pragma once

// What an entity looks like in plan view, as lines: for picking and for selection windows.

#include <optional>
#include <vector>

#include "host/api/entity.h"

namespace drafthost::editor {

struct Outline {
    std::vector<std::vector<AcGePoint2d>> lines;  // open or closed; a single point is a dot
    std::vector<std::vector<AcGePoint2d>> areas;  // closed: hit inside too
    bool empty() const { return lines.empty() && areas.empty(); }
};

// Everything the entity draws, parts of blocks included, curves as chords. Texts are boxes. entity: open for
// reading.
Outline outlineOf(AcDbEntity& entity);

// Distance from the point to the nearest line; 0 inside an area. Nothing for an empty outline.
std::optional<double> distanceTo(const Outline& outline, const AcGePoint2d& point);

// A closed area of the drafter's: a window or a polygon. fence: an open line instead.
struct Region {
    std::vector<AcGePoint2d> corners;
    bool fence = false;
};
// Everything lies inside the region.
bool liesInside(const Outline& outline, const Region& region);
// Something lies inside the region or crosses its border.
bool touches(const Outline& outline, const Region& region);

}  // namespace drafthost::editor
