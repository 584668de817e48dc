#include "host/graphics/surface_normals.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/geometry/triangulate.h"

namespace drafthost::graphics {

namespace {

// Sets of corners that share a normal.
class CornerSets {
public:
    explicit CornerSets(std::size_t count) : parent_(count) {
        std::iota(parent_.begin(), parent_.end(), std::uint32_t{0});
    }
    std::uint32_t rootOf(std::uint32_t corner) {
        while (parent_[corner] != corner)
            corner = parent_[corner] = parent_[parent_[corner]];
        return corner;
    }
    void join(std::uint32_t a, std::uint32_t b) { parent_[rootOf(a)] = rootOf(b); }

private:
    std::vector<std::uint32_t> parent_;
};

// Where in the list of corners the face names the point.
std::uint32_t cornerAt(const Shell& shell, std::int32_t face, std::int32_t point) {
    const Shell::Face& entry = shell.faces[static_cast<std::size_t>(face)];
    const auto corners = shell.cornersOf(entry);
    return entry.first + static_cast<std::uint32_t>(std::ranges::find(corners, point) - corners.begin());
}

double angleAt(const Shell& shell, const Shell::Face& face, std::uint32_t i) {
    const auto corners = shell.cornersOf(face);
    const auto at = [&](std::uint32_t j) {
        return shell.points[static_cast<std::size_t>(corners[j % face.count])];
    };
    const AcGeVector3d before = at(i + face.count - 1) - at(i), after = at(i + 1) - at(i);
    return std::atan2(before.crossProduct(after).length(), before.dotProduct(after));
}

AcGeVector3d unit(const AcGeVector3d& v, const AcGeVector3d& instead) {
    const double length = v.length();
    return length > 0 ? v / length : instead;
}

class SurfaceMaker {
public:
    SurfaceMaker(const Shell& shell, Rgb color) : shell_(shell), sets_(shell.corners.size()) {
        surface_.color = color;
        surface_.enclosesBody = isClosed(shell) || isClosed(welded(shell));
    }
    SceneSurface make() {
        joinAcrossHiddenEdges();
        findNormals();
        for (const Shell::Face& face : shell_.faces) {
            if (face.shown)
                addTriangles(face);
        }
        return std::move(surface_);
    }

private:
    void joinAcrossHiddenEdges() {
        for (const ShellEdge& edge : edgesOf(shell_)) {
            if (edge.visible || edge.otherFace < 0)
                continue;
            for (const std::int32_t point : {edge.from, edge.to})
                sets_.join(cornerAt(shell_, edge.face, point), cornerAt(shell_, edge.otherFace, point));
        }
    }

    void findNormals() {
        std::vector<AcGeVector3d> sums(shell_.corners.size());
        normalOf_.resize(shell_.corners.size());
        for (const Shell::Face& face : shell_.faces) {
            const AcGeVector3d own = unit(doubleAreaOf(shell_, face), {});
            for (std::uint32_t i = 0; face.shown && i < face.count; ++i)
                sums[sets_.rootOf(face.first + i)] += own * angleAt(shell_, face, i);
        }
        std::vector<std::int32_t> numbers(shell_.corners.size(), -1);
        for (const Shell::Face& face : shell_.faces) {
            for (std::uint32_t corner = face.first; face.shown && corner < face.first + face.count;
                 ++corner) {
                const std::uint32_t root = sets_.rootOf(corner);
                if (numbers[root] < 0) {
                    numbers[root] = static_cast<std::int32_t>(surface_.normals.size());
                    surface_.normals.push_back(unit(sums[root], AcGeVector3d::kZAxis));
                }
                normalOf_[corner] = static_cast<std::uint32_t>(numbers[root]);
            }
        }
    }

    std::uint32_t pointNumber(std::int32_t point) {
        std::int32_t& number = points_[static_cast<std::size_t>(point)];
        if (number < 0) {
            number = static_cast<std::int32_t>(surface_.points.size());
            surface_.points.push_back(shell_.points[static_cast<std::size_t>(point)]);
        }
        return static_cast<std::uint32_t>(number);
    }

    // Triangulated by the numbers of its corners, not of its points: a point that a face names twice has two
    // corners.
    void addTriangles(const Shell::Face& face) {
        places_.clear();
        numbers_.clear();
        triangles_.clear();
        for (std::uint32_t i = 0; i < face.count; ++i) {
            places_.push_back(shell_.points[static_cast<std::size_t>(shell_.corners[face.first + i])]);
            numbers_.push_back(static_cast<std::int32_t>(i));
        }
        triangulateFace(places_, numbers_, triangles_);
        const auto corner = [&](std::int32_t i) {
            const std::uint32_t at = face.first + static_cast<std::uint32_t>(i);
            return SceneSurface::Corner{pointNumber(shell_.corners[at]), normalOf_[at]};
        };
        for (const auto& triangle : triangles_)
            surface_.triangles.push_back({corner(triangle[0]), corner(triangle[1]), corner(triangle[2])});
    }

    const Shell& shell_;
    CornerSets sets_;
    SceneSurface surface_;
    std::vector<std::uint32_t> normalOf_;  // of each corner
    std::vector<std::int32_t> points_ = std::vector<std::int32_t>(shell_.points.size(), -1);
    std::vector<AcGePoint3d> places_;  // of the face that is cut at present
    std::vector<std::int32_t> numbers_;
    std::vector<std::array<std::int32_t, 3>> triangles_;
};

}  // namespace

SceneSurface surfaceOf(const Shell& shell, Rgb color) {
    return SurfaceMaker(shell, color).make();
}

}  // namespace drafthost::graphics
