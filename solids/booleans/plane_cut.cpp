#include "solids/booleans/plane_cut.h"

#include "solids/booleans/outlines.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace solids {

namespace {

// A point lies in the plane when it is nearer than this part of the mesh's size, or of its farthest
// coordinate.
constexpr double kInPlane = 1e-10;
constexpr double kInPlaneOfCoordinate = 4e-15;

class Cutter {
public:
    Cutter(const Mesh& mesh, const Distances& distances, const AcGeVector3d& normal)
        : mesh_(mesh), distances_(distances.ofPoints), normal_(normal) {
        cut_.mesh.points = mesh.points;
    }

    std::optional<PlaneCut> run(FaceKind kindOfCut) {
        for (const Triangle& triangle : mesh_.triangles) {
            add(triangle);
        }
        if (!close(kindOfCut)) {
            return std::nullopt;
        }
        dropUnusedPoints(cut_.mesh);
        return std::move(cut_);
    }

private:
    void append(const Triangle& triangle, bool changed) {
        cut_.mesh.triangles.push_back(triangle);
        cut_.changed.push_back(changed);
    }

    void add(const Triangle& triangle) {
        const auto distance = [&](std::int32_t corner) {
            return distances_[static_cast<std::size_t>(corner)];
        };
        const auto count = [&](auto&& holds) {
            return std::count_if(triangle.corners.begin(), triangle.corners.end(),
                                 [&](std::int32_t corner) { return holds(distance(corner)); });
        };
        const auto above = count([](double d) { return d > 0; });
        const auto below = count([](double d) { return d < 0; });
        // A triangle in the plane bounds what lies above it or what lies below it.
        const bool bounds = above + below == 0 && doubleAreaNormal(mesh_, triangle).dotProduct(normal_) < 0;
        if (below == 0 && (above > 0 || bounds)) {
            append(triangle, false);
        } else if (above > 0) {
            addPartOf(triangle);
        }
    }

    void addPartOf(const Triangle& triangle) {
        std::vector<std::int32_t> outline;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::int32_t from = triangle.corners[i], to = triangle.corners[(i + 1) % 3];
            const double a = distances_[static_cast<std::size_t>(from)];
            const double b = distances_[static_cast<std::size_t>(to)];
            if (a >= 0) {
                outline.push_back(from);
            }
            if ((a < 0 && b > 0) || (a > 0 && b < 0)) {
                outline.push_back(crossing(std::minmax(from, to)));
            }
        }
        if (outline.size() == 4 && diagonal(outline, 1, 3) < diagonal(outline, 0, 2)) {
            std::rotate(outline.begin(), outline.begin() + 1, outline.end());
        }
        for (std::size_t i = 2; i < outline.size(); ++i) {
            append({{outline[0], outline[i - 1], outline[i]}, triangle.kind}, true);
        }
    }

    double diagonal(const std::vector<std::int32_t>& outline, std::size_t from, std::size_t to) const {
        const auto& points = cut_.mesh.points;
        return points[static_cast<std::size_t>(outline[from])].distanceTo(
            points[static_cast<std::size_t>(outline[to])]);
    }

    // The number of the point where an edge passes through the plane.
    std::int32_t crossing(const Edge& edge) {
        std::vector<AcGePoint3d>& points = cut_.mesh.points;
        const auto [found, isNew] = crossings_.emplace(edge, static_cast<std::int32_t>(points.size()));
        if (isNew) {
            const auto from = static_cast<std::size_t>(edge.first),
                       to = static_cast<std::size_t>(edge.second);
            const double part = distances_[from] / (distances_[from] - distances_[to]);
            points.push_back(points[from] + (points[to] - points[from]) * part);
        }
        return found->second;
    }

    // Fills the outlines of the cut.
    bool close(FaceKind kindOfCut) {
        std::vector<Edge> outline = openEdges(cut_.mesh.triangles);
        for (Edge& edge : outline) {
            std::swap(edge.first, edge.second);
        }
        const auto filling = fillFlat(cut_.mesh.points, outline, -normal_);
        if (!filling) {
            return false;
        }
        for (const auto& corners : *filling) {
            append({corners, kindOfCut}, true);
        }
        return true;
    }

    const Mesh& mesh_;
    const std::vector<double>& distances_;
    AcGeVector3d normal_;
    PlaneCut cut_;
    std::map<Edge, std::int32_t> crossings_;
};

}  // namespace

Distances distancesFrom(const AcGePoint3d& onPlane, const AcGeVector3d& normal, const Mesh& mesh) {
    const Box box = boxOf(mesh);
    double farthest = 0;
    for (int axis = 0; axis < 3; ++axis) {
        farthest = std::max({farthest, std::fabs(box.low[axis]), std::fabs(box.high[axis])});
    }
    const double inPlane =
        std::max(kInPlane * (box.high - box.low).length(), kInPlaneOfCoordinate * farthest);
    Distances distances;
    for (const AcGePoint3d& point : mesh.points) {
        const double exact = (point - onPlane).dotProduct(normal);
        const double distance = std::fabs(exact) <= inPlane ? 0.0 : exact;
        distances.ofPoints.push_back(distance);
        distances.anyAbove |= distance > 0;
        distances.anyBelow |= distance < 0;
    }
    return distances;
}

std::optional<PlaneCut> partAbove(const Mesh& mesh, const Distances& distances, const AcGeVector3d& normal,
                                  FaceKind kindOfCut) {
    return Cutter(mesh, distances, normal).run(kindOfCut);
}

}  // namespace solids
