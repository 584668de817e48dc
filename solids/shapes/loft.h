#pragma once

// The body between outlines.

#include "solids/mesh/mesh.h"
#include "solids/shapes/section.h"

#include <optional>
#include <span>

namespace solids {

// Joins outlines one after the other, point by point, and closes the first and the last one, which must be
// planar and convex. The walls are flat between straight edges and made of triangles elsewhere; a warped
// four-sided piece is folded so that the body bulges. Points of one outline that follow each other, and
// points of the same number in outlines that follow each other, become one when they are equal or closer than
// 1e-9 of the outline's size. Outlines that follow each other backwards give the same body turned outside in,
// which is set right. Null when the surface would have no volume or a triangle would have no area. The caller
// knows, or finds out, whether the surface crosses itself.
std::optional<Mesh> loft(std::span<const Outline> outlines);

// A cheap test of the walls that loft makes between two outlines, both planar and convex and each
// counter-clockwise seen against the way to the other. True: each outline lies wholly on its side of the
// other's plane, the walls lie in the wedge between both planes and do not cross. False: they may cross.
//
// The planes through the line in which both planes meet cut the body in polygons; walls whose slices are all
// star-shaped about the line between both centres do not cross. A projective map that moves the line where
// the planes meet to infinity makes them parallel, which leaves a condition on the directions of each pair of
// edges.
bool isCertainlySimple(const Outline& from, const Outline& to);

}  // namespace solids
