#pragma once

// Cross-sections of ducts, and the outlines that bodies are made of.

#include "host/api/geometry.h"

#include <array>
#include <optional>

namespace solids {

// Three unit vectors at right angles, right-handed.
struct Frame {
    AcGeVector3d x;  // along the duct, in the direction of flow
    AcGeVector3d y;  // across it: the width's direction
    AcGeVector3d z;  // the height's direction
};
// vectors: three in a row; null, or vectors that are no such frame (within 1e-6): no frame.
std::optional<Frame> frameOf(const AcGeVector3d* vectors);

// A section lies in the plane of its frame's y and z, its centre at the origin.
struct Section {
    bool rectangular = true;       // otherwise round when width and height agree, else a flat oval
    double width = 0, height = 0;  // outer, drawing units
};
// Finite sizes, both larger than the shortest edge of a body.
bool isUsable(const Section& section);
// Shortest edge and smallest size of bodies, drawing units.
inline constexpr double kSmallestSize = 1e-6;

// An outline runs counter-clockwise seen against x, that is from y towards z, in four groups of points, one
// for each corner of a rectangle: (+y, +z), (-y, +z), (-y, -z), (+y, -z). All points of a group are the same
// in a rectangular section; in a round one they are a quarter circle, whose ends the neighbouring groups
// share. So sections of all shapes match point by point, and a round section is a polygon of 64 sides with
// its corners on the circle: its chords lie within 0.0013 of the radius.
inline constexpr int kGroupPoints = 17;
inline constexpr int kOutlinePoints = 4 * kGroupPoints;
using Outline = std::array<AcGePoint3d, kOutlinePoints>;
using FlatOutline = std::array<AcGePoint2d, kOutlinePoints>;  // x: along y of the frame, y: along z

FlatOutline flatOutline(const Section& section);
Outline placedOutline(const FlatOutline& outline, const AcGePoint3d& center, const Frame& frame);

// Half of the section's size along a direction (unit, at right angles to the frame's x): how far the outline
// reaches from its centre.
double reach(const Section& section, const Frame& frame, const AcGeVector3d& direction);

}  // namespace solids
