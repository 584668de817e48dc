#include "solids/booleans/outlines.h"

#include "solids/booleans/corefinement.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

// The coordinates but for the one along the axis that the normal is nearest to: so nothing is rounded. What
// runs counter-clockwise there does so seen against the normal.
struct Projection {
    int u, v;
    explicit Projection(const AcGeVector3d& normal) {
        const double along[] = {normal.x, normal.y, normal.z};
        const auto* const largest = std::max_element(
            along, along + 3, [](double a, double b) { return std::fabs(a) < std::fabs(b); });
        const int axis = static_cast<int>(largest - along);
        u = (axis + 1) % 3;
        v = (axis + 2) % 3;
        if (*largest < 0) {
            std::swap(u, v);
        }
    }
    AcGePoint2d operator()(const AcGePoint3d& point) const { return {point[u], point[v]}; }
};

}  // namespace

std::vector<Edge> openEdges(const std::vector<Triangle>& triangles) {
    std::vector<Edge> edges, open;
    edges.reserve(triangles.size() * 3);
    for (const Triangle& triangle : triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
            edges.emplace_back(triangle.corners[i], triangle.corners[(i + 1) % 3]);
        }
    }
    std::sort(edges.begin(), edges.end());
    std::copy_if(edges.begin(), edges.end(), std::back_inserter(open), [&](const Edge& edge) {
        return !std::binary_search(edges.begin(), edges.end(), Edge(edge.second, edge.first));
    });
    return open;
}

std::optional<std::vector<std::array<std::int32_t, 3>>>
fillFlat(const std::vector<AcGePoint3d>& points, const std::vector<Edge>& edges, const AcGeVector3d& normal) {
    std::vector<std::int32_t> corners;
    for (const Edge& edge : edges) {
        corners.push_back(edge.first);
    }
    std::sort(corners.begin(), corners.end());
    if (std::adjacent_find(corners.begin(), corners.end()) != corners.end()) {
        return std::nullopt;
    }
    const auto numberOf = [&](std::int32_t corner) {
        return static_cast<std::int32_t>(std::lower_bound(corners.begin(), corners.end(), corner) -
                                         corners.begin());
    };
    std::vector<std::array<std::int32_t, 2>> outline;
    for (const Edge& edge : edges) {
        outline.push_back({numberOf(edge.first), numberOf(edge.second)});
    }
    std::vector<AcGePoint2d> flat;
    const Projection projection(normal);
    for (const std::int32_t corner : corners) {
        flat.push_back(projection(points[static_cast<std::size_t>(corner)]));
    }
    auto triangles = fillOutlines(flat, outline);
    if (triangles) {
        for (auto& triangle : *triangles) {
            for (std::int32_t& corner : triangle) {
                corner = corners[static_cast<std::size_t>(corner)];
            }
        }
    }
    return triangles;
}

}  // namespace solids
