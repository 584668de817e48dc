#pragma once

#include "solids/shapes/body.h"

#include <optional>
#include <span>

namespace solids {

// A thin body over the outline that the points make in order. A planar outline gives a flat plate; another
// one is folded along the diagonals that keep it flattest. The thickness lies on the side from which the
// points run counter-clockwise, a negative one on the other side. The face through the points is the wall,
// back and rim are not. Null for fewer than three different points, points on one line, an outline that
// crosses itself, a thickness smaller than kSmallestSize, and folds too sharp for the thickness.
std::optional<Body> makeSkin(std::span<const AcGePoint3d> points, double thickness);

}  // namespace solids
