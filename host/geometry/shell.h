#pragma once

// Shells taken apart: flat faces over common points, as entities draw them.

#include <cstdint>
#include <span>
#include <vector>

#include "host/api/graphics.h"

namespace drafthost {

// A copy of what was given to AcGiWorldGeometry::shell.
struct Shell {
    struct Face {
        std::uint32_t first = 0, count = 0;  // its corners in the list of corners; at least 3
        bool shown = true;
    };
    std::vector<AcGePoint3d> points;
    std::vector<std::int32_t> corners;        // numbers of points, face after face
    std::vector<std::uint8_t> cornerVisible;  // of the edge from that corner to the face's next one
    std::vector<Face> faces;

    std::span<const std::int32_t> cornersOf(const Face& face) const {
        return std::span(corners).subspan(face.first, face.count);
    }
    bool empty() const { return faces.empty(); }
};

// Faces with fewer than three corners, with a point that is not there or with one that is no number are left
// out. A list that ends within a face ends before it.
Shell readShell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
                const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces);
// The call from which the shell was read.
void drawShell(AcGiWorldGeometry& geometry, const Shell& shell);
// The points moved by the matrix.
void transformShell(Shell& shell, const AcGeMatrix3d& matrix);
// Faces run the other way round: what was inside is outside.
void turnOver(Shell& shell);

// An edge, once for all faces that name it.
struct ShellEdge {
    std::int32_t from = 0, to = 0;           // numbers of points, the smaller first
    std::int32_t face = -1, otherFace = -1;  // shown ones beside it; otherFace is -1 at a border
    bool visible = false;                    // to be drawn: some shown face wants it
};
// The edges of the faces that are shown, ordered by their points. Of more than two faces at an edge, the
// first two are named.
std::vector<ShellEdge> edgesOf(const Shell& shell);

// Twice the face's area along its normal (Newell's method: also for faces that are not quite flat).
AcGeVector3d doubleAreaOf(const Shell& shell, const Shell::Face& face);

// Draws the edges that are visible, as lines that run on where just two of them meet. A closed line ends at
// its first point.
void drawEdges(AcGiWorldGeometry& geometry, const Shell& shell);
// Draws where the surface turns away from the eye: hidden edges between a face towards it and one away. Lines
// as above.
void drawSilhouette(AcGiWorldGeometry& geometry, const Shell& shell, const AcGeVector3d& towardsEye);

// Makes points at exactly the same place one, and drops faces that have no area left by that.
Shell welded(const Shell& shell);
// Every edge is run along as often in one direction as in the other, hidden faces included. Of a welded
// shell; an empty one is not closed.
bool isClosed(const Shell& shell);
// Enclosed volume; negative when the faces look inward. Of a closed shell.
double volumeOf(const Shell& shell);
double areaOf(const Shell& shell);  // of all faces

}  // namespace drafthost
