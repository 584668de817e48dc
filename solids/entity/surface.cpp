#include "solids/entity/surface.h"

#include "solids/entity/part.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace solids {

namespace {

// Cosine of the feature angle, 20 degrees: above the steps of round sections and gores, below the folds of
// sheet metal.
constexpr double kFeatureCosine = 0.93969262078590838;
// Triangles are in one plane when their corners are this near to it, as a fraction of their longest edge, and
// of the size of their coordinates, which have been rounded.
constexpr double kFlatness = 1e-9;
constexpr double kRounding = 1e-14;
// A face whose normal is nearer than this to being at right angles to the view does not face the eye.
constexpr double kEdgeOn = 1e-9;

// A side of a triangle: three times its triangle and the number of its first corner.
using Side = std::int32_t;
constexpr Side kNoSide = -1;

int nextCorner(int corner) {
    return corner == 2 ? 0 : corner + 1;
}

Side sideAfter(Side side, int steps) {
    return side / 3 * 3 + (side % 3 + steps) % 3;
}

double longestEdge(const Mesh& mesh, const Triangle& triangle) {
    double longest = 0;
    for (int i = 0; i < 3; ++i) {
        longest =
            std::max(longest, (mesh.corner(triangle, nextCorner(i)) - mesh.corner(triangle, i)).lengthSqrd());
    }
    return std::sqrt(longest);
}

double coordinateSize(const AcGePoint3d& point) {
    return std::max({std::abs(point.x), std::abs(point.y), std::abs(point.z)});
}

// How the triangles of a mesh hang together, and which of them are one flat face.
class Neighbourhood {
public:
    explicit Neighbourhood(const Mesh& mesh) : mesh_(mesh) {
        findTwins();
        measure();
        findFlatFaces();
    }
    std::int32_t sideCount() const { return static_cast<std::int32_t>(twins_.size()); }
    const Triangle& triangleOf(Side side) const { return mesh_.triangles[side / 3]; }
    std::int32_t firstCorner(Side side) const { return triangleOf(side).corners[side % 3]; }
    std::int32_t oppositeCorner(Side side) const { return firstCorner(sideAfter(side, 2)); }
    Side twin(Side side) const { return twins_[side]; }
    // Of the flat face that the side's triangle is a part of, unit; zero for one without area.
    const AcGeVector3d& normal(Side side) const { return normals_[face(side)]; }
    // The flat face itself: an index below the number of triangles.
    std::int32_t face(Side side) const { return faces_[side / 3]; }
    EdgeLook look(Side side) const {
        const Side other = twins_[side];
        if (other == kNoSide || triangleOf(side).kind != triangleOf(other).kind) {
            return EdgeLook::feature;
        }
        if (faces_[side / 3] == faces_[other / 3]) {
            return EdgeLook::flat;
        }
        return normal(side).dotProduct(normal(other)) > kFeatureCosine ? EdgeLook::smooth : EdgeLook::feature;
    }

private:
    void findTwins() {
        struct Edge {
            std::uint64_t points;  // the smaller index first
            Side side;
        };
        std::vector<Edge> edges;
        edges.reserve(mesh_.triangles.size() * 3);
        for (std::size_t i = 0; i < mesh_.triangles.size(); ++i) {
            for (int corner = 0; corner < 3; ++corner) {
                const auto from = static_cast<std::uint32_t>(mesh_.triangles[i].corners[corner]);
                const auto to = static_cast<std::uint32_t>(mesh_.triangles[i].corners[nextCorner(corner)]);
                edges.push_back({(std::uint64_t{std::min(from, to)} << 32) | std::max(from, to),
                                 static_cast<Side>(i * 3) + corner});
            }
        }
        std::ranges::sort(edges, {}, &Edge::points);
        twins_.assign(edges.size(), kNoSide);
        for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
            if (edges[i].points == edges[i + 1].points) {
                twins_[edges[i].side] = edges[i + 1].side;
                twins_[edges[i + 1].side] = edges[i].side;
                ++i;
            }
        }
    }

    void measure() {
        for (const Triangle& triangle : mesh_.triangles) {
            const AcGeVector3d doubled = doubleAreaNormal(mesh_, triangle);
            const double length = doubled.length();
            areas_.push_back(length);
            normals_.push_back(length > 0 ? doubled / length : AcGeVector3d());
            sizes_.push_back(longestEdge(mesh_, triangle));
        }
    }

    // The far corner of the smaller triangle is measured against the plane of the larger one: needles say
    // little about their planes.
    bool areInOnePlane(Side side, Side other) const {
        const Side larger = areas_[side / 3] >= areas_[other / 3] ? side : other;
        const Side smaller = larger == side ? other : side;
        const AcGePoint3d& onPlane = mesh_.points[firstCorner(larger)];
        const AcGePoint3d& far = mesh_.points[oppositeCorner(smaller)];
        const double distance = std::abs((far - onPlane).dotProduct(normals_[larger / 3]));
        const double allowed = std::max(kFlatness * std::max(sizes_[larger / 3], sizes_[smaller / 3]),
                                        kRounding * coordinateSize(far));
        // Folded back upon itself a sheet is in one plane too.
        return distance <= allowed && (normals_[larger / 3].dotProduct(normals_[smaller / 3]) > 0 ||
                                       areas_[smaller / 3] == 0 || isNeedle(smaller));
    }
    // Lower than the rounding of its coordinates: its normal points anywhere.
    bool isNeedle(Side side) const {
        const std::int32_t triangle = side / 3;
        return areas_[triangle] <=
               sizes_[triangle] * std::max(kFlatness * sizes_[triangle],
                                           kRounding * coordinateSize(mesh_.points[firstCorner(side)]));
    }

    std::int32_t rootOf(std::int32_t triangle) {
        while (faces_[triangle] != triangle) {
            triangle = faces_[triangle] = faces_[faces_[triangle]];
        }
        return triangle;
    }

    // The largest triangle stands for the face.
    void findFlatFaces() {
        faces_.resize(mesh_.triangles.size());
        std::iota(faces_.begin(), faces_.end(), 0);
        for (Side side = 0; side < sideCount(); ++side) {
            const Side other = twins_[side];
            if (other < side || triangleOf(side).kind != triangleOf(other).kind ||
                !areInOnePlane(side, other)) {
                continue;
            }
            const std::int32_t a = rootOf(side / 3), b = rootOf(other / 3);
            const bool isFirstLarger = areas_[a] >= areas_[b];
            faces_[isFirstLarger ? b : a] = isFirstLarger ? a : b;
        }
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(faces_.size()); ++i) {
            faces_[i] = rootOf(i);
        }
    }

    const Mesh& mesh_;
    std::vector<Side> twins_;            // by side
    std::vector<double> areas_;          // doubled, by triangle
    std::vector<double> sizes_;          // longest edges, by triangle
    std::vector<AcGeVector3d> normals_;  // by triangle
    std::vector<std::int32_t> faces_;    // by triangle: the triangle that stands for its flat face
};

// Puts triangles of one flat face together in pairs.
class FacetMaker {
public:
    FacetMaker(const Mesh& mesh, const Neighbourhood& around)
        : mesh_(mesh), around_(around), isTaken_(mesh.triangles.size(), false) {}

    std::vector<Facet> facets() {
        std::vector<Facet> made;
        made.reserve(mesh_.triangles.size());
        for (Side first = 0; first < around_.sideCount(); first += 3) {
            if (!isTaken_[first / 3]) {
                const Side shared = bestDiagonal(first);
                made.push_back(shared == kNoSide ? triangle(first) : quadrilateral(shared));
            }
        }
        return made;
    }

private:
    // The longest side across which there is a partner.
    Side bestDiagonal(Side first) const {
        Side best = kNoSide;
        double longest = -1;
        for (Side side = first; side < first + 3; ++side) {
            const Side other = around_.twin(side);
            if (other == kNoSide || around_.look(side) != EdgeLook::flat || isTaken_[other / 3]) {
                continue;
            }
            const double length =
                (mesh_.points[around_.firstCorner(other)] - mesh_.points[around_.firstCorner(side)]).length();
            if (length > longest && isConvex(side, other)) {
                longest = length;
                best = side;
            }
        }
        return best;
    }

    // The sides of the quadrilateral around the triangles on both sides of a diagonal.
    static std::array<Side, 4> around(Side side, Side other) {
        return {sideAfter(other, 1), sideAfter(other, 2), sideAfter(side, 1), sideAfter(side, 2)};
    }

    bool isConvex(Side side, Side other) const {
        const std::array<Side, 4> sides = around(side, other);
        for (int i = 0; i < 4; ++i) {
            const AcGePoint3d& corner = mesh_.points[around_.firstCorner(sides[(i + 1) % 4])];
            const AcGeVector3d in = corner - mesh_.points[around_.firstCorner(sides[i])];
            const AcGeVector3d out = mesh_.points[around_.firstCorner(sides[(i + 2) % 4])] - corner;
            if (in.crossProduct(out).dotProduct(around_.normal(side)) <=
                kFlatness * in.length() * out.length()) {
                return false;
            }
        }
        return true;
    }

    template <std::size_t Count>
    Facet facetOf(const std::array<Side, Count>& sides) {
        Facet facet;
        facet.count = static_cast<std::uint8_t>(Count);
        facet.kind = around_.triangleOf(sides[0]).kind;
        for (std::size_t i = 0; i < Count; ++i) {
            facet.corners[i] = around_.firstCorner(sides[i]);
            facet.isEdgeShown[i] = around_.look(sides[i]) == EdgeLook::feature;
            isTaken_[sides[i] / 3] = true;
        }
        return facet;
    }
    Facet triangle(Side first) { return facetOf(std::array<Side, 3>{first, first + 1, first + 2}); }
    Facet quadrilateral(Side shared) { return facetOf(around(shared, around_.twin(shared))); }

    const Mesh& mesh_;
    const Neighbourhood& around_;
    std::vector<bool> isTaken_;  // by triangle
};

}  // namespace

Surface::Surface(const Mesh& mesh) {
    const Neighbourhood around(mesh);
    facets_ = FacetMaker(mesh, around).facets();
    std::vector<std::int32_t> indices(mesh.triangles.size(), -1);  // of normals, by flat face
    const auto normalIndex = [&](Side side) {
        std::int32_t& index = indices[around.face(side)];
        if (index < 0) {
            index = static_cast<std::int32_t>(normals_.size());
            normals_.push_back(around.normal(side));
        }
        return index;
    };
    for (Side side = 0; side < around.sideCount(); ++side) {
        const Side other = around.twin(side);
        if (other != kNoSide && other < side) {
            continue;
        }
        const bool isSeen = !isOpen(around.triangleOf(side).kind) ||
                            (other != kNoSide && !isOpen(around.triangleOf(other).kind));
        const PointPair points(around.firstCorner(side), around.firstCorner(sideAfter(side, 1)));
        const EdgeLook look = around.look(side);
        if (isSeen && look == EdgeLook::feature) {
            featureEdges_.push_back(points);
        } else if (isSeen && look == EdgeLook::smooth) {
            smoothEdges_.push_back({points, normalIndex(side), normalIndex(other)});
        }
    }
    featureEdges_.shrink_to_fit();
    smoothEdges_.shrink_to_fit();
    normals_.shrink_to_fit();
    makeShell();
}

void Surface::makeShell() {
    std::vector<bool> edges;
    shownFaces_ = std::make_unique<bool[]>(facets_.size());
    for (std::size_t i = 0; i < facets_.size(); ++i) {
        const Facet& facet = facets_[i];
        shellFaces_.push_back(facet.count);
        shellFaces_.insert(shellFaces_.end(), facet.corners.begin(), facet.corners.begin() + facet.count);
        edges.insert(edges.end(), facet.isEdgeShown.begin(), facet.isEdgeShown.begin() + facet.count);
        shownFaces_[i] = !isOpen(facet.kind);
    }
    shownEdges_ = std::make_unique<bool[]>(edges.size());
    std::ranges::copy(edges, shownEdges_.get());
}

std::vector<PointChain> Surface::outline(const AcGeVector3d& toEye) const {
    std::vector<bool> isFacing;
    isFacing.reserve(normals_.size());
    for (const AcGeVector3d& normal : normals_) {
        isFacing.push_back(normal.dotProduct(toEye) > kEdgeOn);
    }
    std::vector<PointPair> edges;
    for (const SmoothEdge& edge : smoothEdges_) {
        if (isFacing[edge.face1] != isFacing[edge.face2]) {
            edges.push_back(edge.points);
        }
    }
    return chainEdges(edges);
}

std::vector<PointChain> chainEdges(const std::vector<PointPair>& edges) {
    struct End {
        std::int32_t point;
        std::size_t edge;
    };
    std::vector<End> ends;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        ends.push_back({edges[i].first, i});
        ends.push_back({edges[i].second, i});
    }
    std::ranges::sort(ends, {}, &End::point);
    std::vector<bool> isTaken(edges.size(), false);
    const auto endsAt = [&](std::int32_t point) {
        return std::ranges::equal_range(ends, point, {}, &End::point);
    };
    const auto walk = [&](std::int32_t point) {
        PointChain chain{point};
        for (;;) {
            const auto here = endsAt(point);
            const auto next = std::ranges::find_if(here, [&](const End& end) { return !isTaken[end.edge]; });
            // Where more than two edges meet, none goes on.
            if (next == here.end() || (chain.size() > 1 && here.size() != 2)) {
                return chain;
            }
            isTaken[next->edge] = true;
            const PointPair& edge = edges[next->edge];
            point = edge.first == point ? edge.second : edge.first;
            chain.push_back(point);
        }
    };
    std::vector<PointChain> chains;
    const auto collect = [&](bool closed) {
        for (const End& end : ends) {
            while (!isTaken[end.edge] && (closed || endsAt(end.point).size() != 2)) {
                chains.push_back(walk(end.point));
            }
        }
    };
    collect(false);
    collect(true);
    return chains;
}

}  // namespace solids
