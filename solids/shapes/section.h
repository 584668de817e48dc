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
// Within 1e-6 what a frame has to be.
bool isUsable(const Frame& frame);
// vectors: three in a row; null, or vectors that are no usable frame: no frame. Small errors are taken out: x
// keeps its direction, y its plane with x.
std::optional<Frame> frameOf(const AcGeVector3d* vectors);
// Turned about an axis through the origin (unit), right-hand rule.
Frame rotated(const Frame& frame, double angle, const AcGeVector3d& axis);

// A section lies in the plane of its frame's y and z, its centre at the origin.
struct Section {
    bool rectangular = true;       // otherwise round when width and height agree, else a flat oval
    double width = 0, height = 0;  // outer, drawing units
};
// Shortest edge and smallest size of bodies, drawing units.
inline constexpr double kSmallestSize = 1e-6;
// Largest size and coordinate that is taken.
inline constexpr double kLargestSize = 1e12;
// Sizes between the two.
bool isUsable(const Section& section);
// No coordinate is infinite, no number, or larger than kLargestSize.
bool isUsable(const AcGePoint3d& point);
// A circle: one whose sides would be shorter than kSmallestSize.
bool isRound(const Section& section);

// An outline runs counter-clockwise seen against x, that is from y towards z, in four groups of points, one
// for each corner of a rectangle: (+y, +z), (-y, +z), (-y, -z), (+y, -z). All points of a group are the same
// in a rectangular section; in a round one they are a quarter circle, whose ends the neighbouring groups
// share. A flat oval is two half circles at the ends of the longer size. So sections of all shapes match
// point by point, and a round section is a polygon of 64 sides with its corners on the circle: its chords lie
// within 0.0013 of the radius. Points that are shared are equal to the last bit.
inline constexpr int kGroupPoints = 17;
inline constexpr int kOutlinePoints = 4 * kGroupPoints;
// Sides of a round section.
inline constexpr int kRoundSides = 4 * (kGroupPoints - 1);
using Outline = std::array<AcGePoint3d, kOutlinePoints>;
using FlatOutline = std::array<AcGePoint2d, kOutlinePoints>;  // x: along y of the frame, y: along z

FlatOutline flatOutline(const Section& section);
Outline placedOutline(const FlatOutline& outline, const AcGePoint3d& center, const Frame& frame);
// The same points, begun further on by that many sides of a round section, counter-clockwise. Outlines of
// other sections turn by whole groups: then the steps are a multiple of 16.
FlatOutline begunLater(const FlatOutline& outline, int steps);

// How far the section reaches from its centre along a direction (unit, at right angles to the frame's x). The
// circle's reach is taken, from which the polygon differs by less than 0.0013.
double reach(const Section& section, const Frame& frame, const AcGeVector3d& direction);

}  // namespace solids
