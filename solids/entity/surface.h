#pragma once

// What is seen of a closed mesh: flat faces, the edges between them, and its outline in a view.

#include "solids/mesh/mesh.h"

#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace solids {

// How the triangles on both sides of an edge meet.
enum class EdgeLook : std::uint8_t {
    flat = 0,     // in one plane
    smooth = 1,   // as parts of one curved surface: by less than the feature angle
    feature = 2,  // in an edge that is drawn, as always between faces of different kinds
};

// A triangle, or two in one plane that make a convex quadrilateral.
struct Facet {
    std::array<std::int32_t, 4> corners{};  // indices of points, counter-clockwise seen from outside
    std::array<bool, 4> isEdgeShown{};      // from each corner to the next
    std::uint8_t count = 3;
    FaceKind kind = FaceKind::wall;
};

using PointPair = std::pair<std::int32_t, std::int32_t>;
using PointChain = std::vector<std::int32_t>;

// Lines of edges end to end, as long as they can be; a closed one ends with its first point.
std::vector<PointChain> chainEdges(const std::vector<PointPair>& edges);

class Surface {
public:
    explicit Surface(const Mesh& mesh);

    const std::vector<Facet>& facets() const { return facets_; }
    // Edges that are drawn in all views. None between two open ends.
    const std::vector<PointPair>& featureEdges() const { return featureEdges_; }
    // The outline against a direction towards the eye, as far as feature edges do not show it: edges of round
    // surfaces between what faces the eye and what does not.
    std::vector<PointChain> outline(const AcGeVector3d& toEye) const;

    // The facets as the list of a shell (host/api/graphics.h), with what is shown of its edges and faces.
    const std::vector<std::int32_t>& shellFaces() const { return shellFaces_; }
    const bool* shownEdges() const { return shownEdges_.get(); }
    const bool* shownFaces() const { return shownFaces_.get(); }

private:
    struct SmoothEdge {
        PointPair points;
        std::int32_t face1, face2;  // beside it: indices of normals
    };
    void makeShell();

    std::vector<Facet> facets_;
    std::vector<PointPair> featureEdges_;
    std::vector<SmoothEdge> smoothEdges_;
    std::vector<AcGeVector3d> normals_;  // of the flat faces beside smooth edges, unit
    std::vector<std::int32_t> shellFaces_;
    std::unique_ptr<bool[]> shownEdges_, shownFaces_;
};

}  // namespace solids
