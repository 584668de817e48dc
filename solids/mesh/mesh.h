#pragma once

// Closed surfaces of triangles: what every body of a solid is.

#include "host/api/geometry.h"

#include <array>
#include <cstdint>
#include <vector>

namespace solids {

// What a part of a body's surface stands for in sheet metal.
enum class FaceKind : std::uint8_t {
    wall = 0,   // sheet
    start = 1,  // the end that air enters by
    end = 2,    // an end that it leaves by
    other = 3,  // no sheet: the back and the rim of a skin
    // Ends that are drawn open. The makers of bodies give start and end; the solid puts these in their
    // places.
    openStart = 4,
    openEnd = 5,
};

// Indices of three points, counter-clockwise seen from outside.
struct Triangle {
    std::array<std::int32_t, 3> corners{};
    FaceKind kind = FaceKind::wall;
};

// A valid mesh is closed (each edge belongs to two triangles, which run along it in opposite directions), has
// no triangle without area, does not cross itself, and encloses a positive volume. Several separate surfaces
// are one mesh. An empty mesh covers nothing.
struct Mesh {
    std::vector<AcGePoint3d> points;
    std::vector<Triangle> triangles;

    bool empty() const { return triangles.empty(); }
    const AcGePoint3d& corner(const Triangle& triangle, int i) const { return points[triangle.corners[i]]; }
};

struct Box {
    AcGePoint3d low, high;
};

// Of a mesh with points.
Box boxOf(const Mesh& mesh);
// Boxes that touch overlap.
bool overlap(const Box& one, const Box& other);
double volumeOf(const Mesh& mesh);
// Of all triangles, and of those of one kind.
double areaOf(const Mesh& mesh);
double areaOf(const Mesh& mesh, FaceKind kind);
// Outward normal with twice the triangle's area as its length.
AcGeVector3d doubleAreaNormal(const Mesh& mesh, const Triangle& triangle);
// A matrix that mirrors turns the triangles round, so that they face outward again.
void transform(Mesh& mesh, const AcGeMatrix3d& matrix);
// Puts another mesh beside it, as it is.
void append(Mesh& mesh, const Mesh& other);
// Takes out the points that no triangle has.
void dropUnusedPoints(Mesh& mesh);
// Each edge in two triangles, in opposite directions; no index out of range.
bool isClosed(const Mesh& mesh);

}  // namespace solids
