#pragma once

#include "solids/shapes/body.h"

#include <optional>
#include <span>

namespace solids {

// A thin body over the outline that the points make in order; points that repeat the one before count once. A
// planar outline (within 1e-6 of its extent) gives a flat plate; another one is folded along the diagonals
// that keep it flattest. The thickness lies on the side from which the points run counter-clockwise, a
// negative one on the other side. Every face keeps it; where more than three meet in a point, within a tenth.
// The face through the points is the wall, back and rim are not. Null for fewer than three different points,
// points on one line, an outline that crosses or touches itself as seen at right angles to its mean plane, a
// thickness smaller than kSmallestSize, and folds too sharp for the thickness.
std::optional<Body> makeSkin(std::span<const AcGePoint3d> points, double thickness);

}  // namespace solids
