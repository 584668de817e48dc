#pragma once

// Surfaces folded out of flat triangles, and the sheet that lies on them.

#include "solids/shapes/polygon.h"

namespace solids {

// Swaps diagonals until no swap makes the surface flatter, measured by the lengths of the folds times their
// angles. plane: the points seen along a direction from which the triangles run counter-clockwise; they do so
// afterwards too.
//
// By local optimization of a data-dependent triangulation (N. Dyn, D. Levin, S. Rippa, Data dependent
// triangulations for piecewise linear interpolation, 1990).
void flatten(std::span<const AcGePoint3d> points, std::span<const AcGePoint2d> plane,
             std::vector<PointTriple>& triangles);

// How far each point must move so that all triangles around it move by the distance along their normals
// (the side from which they run counter-clockwise; a negative distance is the other side). Where more than
// three planes meet, that may hold within a tenth only. Null when a point would move farther than four
// times the distance, or when a triangle would turn over.
std::optional<std::vector<AcGeVector3d>>
displacements(std::span<const AcGePoint3d> points, std::span<const PointTriple> triangles, double distance);

}  // namespace solids
