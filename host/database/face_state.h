#pragma once

// What a face holds, and the shape that its four corners make.

#include <array>
#include <optional>
#include <vector>

#include "host/api/face.h"
#include "host/database/object_imp.h"

namespace drafthost {

struct FaceState : ClonedState<FaceState, EntityState> {
    std::array<AcGePoint3d, AcDbFace::kCorners> corners;  // world coordinates
    std::int32_t hiddenEdges = 0;                         // group 70: bit i for edge i; further bits are kept

    void file(StateWalker& walker) override {
        EntityState::file(walker);
        for (AcGePoint3d& corner : corners)
            walker.value(corner);
        walker.value(hiddenEdges);
    }
    bool isEdgeShown(std::size_t edge) const { return (hiddenEdges >> edge & 1) == 0; }
};

struct FaceEdge {
    AcGePoint3d start, end;
    bool shown = true;
};

// The edges that have length, in order round the face.
std::vector<FaceEdge> edgesOf(const FaceState& face);
// The same without the hidden ones. A face whose corners all coincide has one edge without length, unless all
// its edges are hidden.
std::vector<FaceEdge> shownEdgesOf(const FaceState& face);

// The flat thing that a face is within rounding. Nothing for a bent face.
struct FacePlane {
    AcGeVector3d normal;    // unit; of a line or a point one of those that do
    bool isLinear = false;  // the corners lie in a line or coincide: there is no area
};
std::optional<FacePlane> planeOf(const FaceState& face);

}  // namespace drafthost
