#include "solids/mesh/mesh.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

bool mirrors(const AcGeMatrix3d& matrix) {
    return matrix.det() < 0;
}

}  // namespace

Box boxOf(const Mesh& mesh) {
    Box box{mesh.points.front(), mesh.points.front()};
    for (const AcGePoint3d& point : mesh.points) {
        box.low = {std::min(box.low.x, point.x), std::min(box.low.y, point.y), std::min(box.low.z, point.z)};
        box.high = {std::max(box.high.x, point.x), std::max(box.high.y, point.y),
                    std::max(box.high.z, point.z)};
    }
    return box;
}

AcGeVector3d doubleAreaNormal(const Mesh& mesh, const Triangle& triangle) {
    const AcGePoint3d& first = mesh.corner(triangle, 0);
    return (mesh.corner(triangle, 1) - first).crossProduct(mesh.corner(triangle, 2) - first);
}

// By the divergence theorem: the volumes of the pyramids over all triangles, from a point of the mesh, near
// which the numbers are small.
double volumeOf(const Mesh& mesh) {
    double sixfold = 0;
    for (const Triangle& triangle : mesh.triangles) {
        sixfold +=
            (mesh.corner(triangle, 0) - mesh.points.front()).dotProduct(doubleAreaNormal(mesh, triangle));
    }
    return sixfold / 6;
}

double areaOf(const Mesh& mesh) {
    double doubled = 0;
    for (const Triangle& triangle : mesh.triangles) {
        doubled += doubleAreaNormal(mesh, triangle).length();
    }
    return doubled / 2;
}

double areaOf(const Mesh& mesh, FaceKind kind) {
    double doubled = 0;
    for (const Triangle& triangle : mesh.triangles) {
        doubled += triangle.kind == kind ? doubleAreaNormal(mesh, triangle).length() : 0.0;
    }
    return doubled / 2;
}

void transform(Mesh& mesh, const AcGeMatrix3d& matrix) {
    for (AcGePoint3d& point : mesh.points) {
        point = matrix * point;
    }
    if (mirrors(matrix)) {
        for (Triangle& triangle : mesh.triangles) {
            std::swap(triangle.corners[1], triangle.corners[2]);
        }
    }
}

bool isClosed(const Mesh& mesh) {
    const auto count = static_cast<std::int32_t>(mesh.points.size());
    std::vector<std::pair<std::int32_t, std::int32_t>> edges;
    edges.reserve(mesh.triangles.size() * 3);
    for (const Triangle& triangle : mesh.triangles) {
        for (int i = 0; i < 3; ++i) {
            const std::int32_t from = triangle.corners[i];
            const std::int32_t to = triangle.corners[(i + 1) % 3];
            if (from < 0 || from >= count || from == to) {
                return false;
            }
            edges.emplace_back(from, to);
        }
    }
    std::sort(edges.begin(), edges.end());
    if (std::adjacent_find(edges.begin(), edges.end()) != edges.end()) {
        return false;
    }
    return std::all_of(edges.begin(), edges.end(), [&](const auto& edge) {
        return std::binary_search(edges.begin(), edges.end(), std::pair(edge.second, edge.first));
    });
}

}  // namespace solids
