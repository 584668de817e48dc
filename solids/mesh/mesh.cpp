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

// Edges are sorted by their points: the two directions of each stand side by side, and once.
bool isClosed(const Mesh& mesh) {
    const auto count = static_cast<std::int32_t>(mesh.points.size());
    std::vector<std::uint64_t> edges;  // smaller index, larger index, direction
    edges.reserve(mesh.triangles.size() * 3);
    for (const Triangle& triangle : mesh.triangles) {
        for (int i = 0; i < 3; ++i) {
            const std::int32_t from = triangle.corners[i];
            const std::int32_t to = triangle.corners[(i + 1) % 3];
            if (from < 0 || from >= count || from == to) {
                return false;
            }
            const auto low = static_cast<std::uint64_t>(std::min(from, to));
            const auto high = static_cast<std::uint64_t>(std::max(from, to));
            edges.push_back(low << 33 | high << 1 | (from > to ? 1 : 0));
        }
    }
    std::sort(edges.begin(), edges.end());
    for (std::size_t i = 0; i + 1 < edges.size(); i += 2) {
        const bool isPair = edges[i] % 2 == 0 && edges[i + 1] == edges[i] + 1;
        const bool isRepeated = i + 2 < edges.size() && edges[i + 2] / 2 == edges[i] / 2;
        if (!isPair || isRepeated) {
            return false;
        }
    }
    return edges.size() % 2 == 0;
}

bool overlap(const Box& one, const Box& other) {
    return one.low.x <= other.high.x && other.low.x <= one.high.x && one.low.y <= other.high.y &&
           other.low.y <= one.high.y && one.low.z <= other.high.z && other.low.z <= one.high.z;
}

void append(Mesh& mesh, const Mesh& other) {
    const auto offset = static_cast<std::int32_t>(mesh.points.size());
    mesh.points.insert(mesh.points.end(), other.points.begin(), other.points.end());
    mesh.triangles.reserve(mesh.triangles.size() + other.triangles.size());
    for (Triangle triangle : other.triangles) {
        for (std::int32_t& corner : triangle.corners) {
            corner += offset;
        }
        mesh.triangles.push_back(triangle);
    }
}

void dropUnusedPoints(Mesh& mesh) {
    std::vector<std::int32_t> number(mesh.points.size(), -1);
    std::vector<AcGePoint3d> points;
    for (Triangle& triangle : mesh.triangles) {
        for (std::int32_t& corner : triangle.corners) {
            std::int32_t& found = number[static_cast<std::size_t>(corner)];
            if (found < 0) {
                found = static_cast<std::int32_t>(points.size());
                points.push_back(mesh.points[static_cast<std::size_t>(corner)]);
            }
            corner = found;
        }
    }
    mesh.points = std::move(points);
}

}  // namespace solids
