#include "solids/booleans/short_edges.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace solids {

namespace {

// For each point the one that stands for it.
class Merging {
public:
    explicit Merging(std::size_t count) : parent_(count) { std::iota(parent_.begin(), parent_.end(), 0); }

    std::int32_t of(std::int32_t point) {
        while (parent_[point] != point) {
            point = parent_[point] = parent_[parent_[point]];
        }
        return point;
    }
    // The lower number stands for both.
    void merge(std::int32_t one, std::int32_t other) {
        const auto [low, high] = std::minmax({of(one), of(other)});
        parent_[high] = low;
    }

private:
    std::vector<std::int32_t> parent_;
};

// The corners from the lowest on, so that equal triangles have equal keys; the same for both sides of a
// sheet.
struct SheetKey {
    std::array<std::int32_t, 3> corners;
    bool turned;
};

SheetKey keyOf(const Triangle& triangle) {
    std::array<std::int32_t, 3> corners = triangle.corners;
    std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
    const bool turned = corners[1] > corners[2];
    if (turned) {
        std::swap(corners[1], corners[2]);
    }
    return {corners, turned};
}

// A triangle that faces another one with the same corners encloses nothing with it: both go.
void dropFoldedSheets(std::vector<Triangle>& triangles) {
    std::sort(triangles.begin(), triangles.end(), [](const Triangle& one, const Triangle& other) {
        const SheetKey a = keyOf(one), b = keyOf(other);
        return std::pair(a.corners, a.turned) < std::pair(b.corners, b.turned);
    });
    std::vector<Triangle> left;
    for (const Triangle& triangle : triangles) {
        const SheetKey key = keyOf(triangle);
        const bool folds = !left.empty() && keyOf(left.back()).corners == key.corners &&
                           keyOf(left.back()).turned != key.turned;
        if (folds) {
            left.pop_back();
        } else {
            left.push_back(triangle);
        }
    }
    triangles = std::move(left);
}

}  // namespace

std::optional<Mesh> withoutShortEdges(const Mesh& mesh, double length) {
    Merging merging(mesh.points.size());
    for (const Triangle& triangle : mesh.triangles) {
        for (int i = 0; i < 3; ++i) {
            const std::int32_t from = triangle.corners[i], to = triangle.corners[(i + 1) % 3];
            if (mesh.points[from].distanceTo(mesh.points[to]) < length) {
                merging.merge(from, to);
            }
        }
    }
    Mesh result;
    result.points = mesh.points;
    for (Triangle triangle : mesh.triangles) {
        for (std::int32_t& corner : triangle.corners) {
            corner = merging.of(corner);
        }
        const auto& [a, b, c] = triangle.corners;
        if (a != b && b != c && c != a) {
            result.triangles.push_back(triangle);
        }
    }
    dropFoldedSheets(result.triangles);
    if (result.empty() || !isClosed(result)) {
        return std::nullopt;
    }
    dropUnusedPoints(result);
    return result;
}

}  // namespace solids
