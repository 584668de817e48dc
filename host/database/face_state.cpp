#include "host/database/face_state.h"

#include <algorithm>

#include "host/geometry/tolerance.h"

namespace drafthost {
namespace {

bool isSame(const AcGePoint3d& a, const AcGePoint3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

// Of the triangles that three of the corners make, that with the largest area: the vector on it whose length
// is twice the area.
AcGeVector3d largestTriangle(const std::array<AcGeVector3d, AcDbFace::kCorners>& c) {
    const AcGeVector3d triangles[] = {
        (c[1] - c[0]).crossProduct(c[2] - c[0]),
        (c[2] - c[0]).crossProduct(c[3] - c[0]),
        (c[1] - c[0]).crossProduct(c[3] - c[0]),
        (c[2] - c[1]).crossProduct(c[3] - c[1]),
    };
    return *std::ranges::max_element(triangles, {}, &AcGeVector3d::lengthSqrd);
}

}  // namespace

std::vector<FaceEdge> edgesOf(const FaceState& face) {
    std::vector<FaceEdge> edges;
    for (std::size_t i = 0; i < face.corners.size(); ++i) {
        const AcGePoint3d& start = face.corners[i];
        const AcGePoint3d& end = face.corners[(i + 1) % face.corners.size()];
        if (!isSame(start, end))
            edges.push_back({start, end, face.isEdgeShown(i)});
    }
    return edges;
}

std::vector<FaceEdge> shownEdgesOf(const FaceState& face) {
    constexpr std::int32_t kAllHidden = 15;
    std::vector<FaceEdge> edges = edgesOf(face);
    if (edges.empty() && (face.hiddenEdges & kAllHidden) != kAllHidden)
        edges.push_back({face.corners[0], face.corners[0]});
    std::erase_if(edges, [](const FaceEdge& edge) { return !edge.shown; });
    return edges;
}

std::optional<FacePlane> planeOf(const FaceState& face) {
    const AcGePoint3d& origin = face.corners[0];
    double size = 0, magnitude = 0;
    for (const AcGePoint3d& corner : face.corners) {
        magnitude = std::max(magnitude, largestCoordinate(corner));
        for (int axis = 0; axis < 3; ++axis)
            size = std::max(size, std::abs(corner[axis] - origin[axis]));
    }
    if (size == 0)
        return FacePlane{AcGeVector3d::kZAxis, true};
    if (!std::isfinite(size))
        return std::nullopt;
    // In units of the size, whose squares neither overflow nor vanish.
    std::array<AcGeVector3d, AcDbFace::kCorners> corners;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const AcGePoint3d& corner = face.corners[i];
        corners[i] = {(corner.x - origin.x) / size, (corner.y - origin.y) / size,
                      (corner.z - origin.z) / size};
    }
    const double tolerance = meetingTolerance(size, magnitude) / size;
    const AcGeVector3d triangle = largestTriangle(corners);
    if (triangle.length() <= tolerance) {
        const AcGeVector3d along = *std::ranges::max_element(corners, {}, &AcGeVector3d::lengthSqrd);
        return FacePlane{along.perpVector().normal(), true};
    }
    const AcGeVector3d normal = triangle / triangle.length();
    double lowest = 0, highest = 0;
    for (const AcGeVector3d& corner : corners) {
        lowest = std::min(lowest, corner.dotProduct(normal));
        highest = std::max(highest, corner.dotProduct(normal));
    }
    if (highest - lowest > tolerance)
        return std::nullopt;
    return FacePlane{normal, false};
}

}  // namespace drafthost
