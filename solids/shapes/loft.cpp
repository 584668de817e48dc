#include "solids/shapes/loft.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace solids {

namespace {

// Of the size of an outline: points closer than this are one.
constexpr double kWeldTolerance = 1e-9;
// Of the size of an outline: how far the other's points must lie from its plane for the cheap test to be sure
// of their places.
constexpr double kPlaneTolerance = 1e-7;
// Of the largest coordinate: the height of a triangle that rounding may have made of none.
constexpr double kFlatTolerance = 1e-14;

double extentOf(const Outline& outline) {
    double extent = 0;
    for (const AcGePoint3d& point : outline) {
        extent = std::max(extent, (point - outline.front()).lengthSqrd());
    }
    return std::sqrt(extent);
}

AcGePoint3d centerOf(const Outline& outline) {
    AcGeVector3d sum;
    for (const AcGePoint3d& point : outline) {
        sum += point - outline.front();
    }
    return outline.front() + sum / kOutlinePoints;
}

// Twice the area, along the normal that the outline runs counter-clockwise about.
AcGeVector3d doubleAreaOf(const Outline& outline) {
    AcGeVector3d sum;
    for (int i = 1; i + 1 < kOutlinePoints; ++i) {
        sum += (outline[i] - outline.front()).crossProduct(outline[i + 1] - outline.front());
    }
    return sum;
}

double largestCoordinate(const Mesh& mesh) {
    double largest = 0;
    for (const AcGePoint3d& point : mesh.points) {
        largest = std::max({largest, std::abs(point.x), std::abs(point.y), std::abs(point.z)});
    }
    return largest;
}

bool isFlat(const Mesh& mesh, const Triangle& triangle, double smallestHeight) {
    const AcGeVector3d side = mesh.corner(triangle, 1) - mesh.corner(triangle, 0);
    const AcGeVector3d other = mesh.corner(triangle, 2) - mesh.corner(triangle, 0);
    const double longest = std::max({side.lengthSqrd(), other.lengthSqrd(), (other - side).lengthSqrd()});
    return !(side.crossProduct(other).lengthSqrd() > longest * smallestHeight * smallestHeight);
}

class Loft {
public:
    explicit Loft(std::span<const Outline> outlines)
        : outlines_(outlines), indices_(outlines.size() * kOutlinePoints) {}

    std::optional<Mesh> build() {
        runsBackwards_ = flow() < 0;
        weld();
        takePoints();
        mesh_.triangles.reserve(2 * indices_.size() + 2 * kOutlinePoints);
        for (std::size_t i = 0; i + 1 < outlines_.size(); ++i) {
            addWalls(i);
        }
        addCap(0, FaceKind::start);
        addCap(outlines_.size() - 1, FaceKind::end);
        return isValid() ? std::optional(std::move(mesh_)) : std::nullopt;
    }

private:
    // Positive when the outlines are counter-clockwise seen against the way from one to the next.
    double flow() const {
        double sum = 0;
        for (std::size_t i = 0; i + 1 < outlines_.size(); ++i) {
            sum += (doubleAreaOf(outlines_[i]) + doubleAreaOf(outlines_[i + 1]))
                       .dotProduct(centerOf(outlines_[i + 1]) - centerOf(outlines_[i]));
        }
        return sum;
    }

    std::int32_t& index(std::size_t outline, int label) {
        return indices_[outline * kOutlinePoints + static_cast<std::size_t>(label % kOutlinePoints)];
    }

    // While welding, each point's index is another point that it is one with, in the end itself.
    std::int32_t rootOf(std::int32_t point) {
        while (indices_[point] != point) {
            point = indices_[point] = indices_[indices_[point]];
        }
        return point;
    }
    void join(std::size_t outline, int label, std::size_t otherOutline, int otherLabel, double tolerance) {
        const AcGePoint3d& point = outlines_[outline][label];
        const AcGePoint3d& other = outlines_[otherOutline][otherLabel];
        if ((point - other).lengthSqrd() <= tolerance * tolerance) {
            const std::int32_t first = rootOf(static_cast<std::int32_t>(outline * kOutlinePoints) + label);
            const std::int32_t second =
                rootOf(static_cast<std::int32_t>(otherOutline * kOutlinePoints) + otherLabel);
            indices_[std::max(first, second)] = std::min(first, second);
            pinched_ = pinched_ || (outline != otherOutline && first != second);
        }
    }
    void weld() {
        std::iota(indices_.begin(), indices_.end(), 0);
        for (std::size_t outline = 0; outline < outlines_.size(); ++outline) {
            const double tolerance = kWeldTolerance * extentOf(outlines_[outline]);
            for (int label = 0; label < kOutlinePoints; ++label) {
                join(outline, label, outline, (label + 1) % kOutlinePoints, tolerance);
                if (outline > 0) {
                    join(outline, label, outline - 1, label, tolerance);
                }
            }
        }
    }
    // Roots come before the points that are one with them.
    void takePoints() {
        mesh_.points.reserve(indices_.size());
        for (std::size_t i = 0; i < indices_.size(); ++i) {
            if (indices_[i] == static_cast<std::int32_t>(i)) {
                indices_[i] = static_cast<std::int32_t>(mesh_.points.size());
                mesh_.points.push_back(outlines_[i / kOutlinePoints][i % kOutlinePoints]);
            } else {
                indices_[i] = indices_[indices_[i]];
            }
        }
    }

    void addTriangle(std::int32_t a, std::int32_t b, std::int32_t c, FaceKind kind) {
        if (a != b && b != c && c != a) {
            mesh_.triangles.push_back({runsBackwards_ ? std::array{a, c, b} : std::array{a, b, c}, kind});
        }
    }
    void addWalls(std::size_t outline) {
        for (int label = 0; label < kOutlinePoints; ++label) {
            const std::int32_t a = index(outline, label);
            const std::int32_t b = index(outline, label + 1);
            const std::int32_t c = index(outline + 1, label + 1);
            const std::int32_t d = index(outline + 1, label);
            if (bulgesAlong(a, b, c, d)) {
                addTriangle(a, b, c, FaceKind::wall);
                addTriangle(a, c, d, FaceKind::wall);
            } else {
                addTriangle(a, b, d, FaceKind::wall);
                addTriangle(b, c, d, FaceKind::wall);
            }
        }
    }
    // Whether the fold along the diagonal from a to c is convex.
    bool bulgesAlong(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d) const {
        const AcGePoint3d& from = mesh_.points[a];
        const double height =
            (mesh_.points[b] - from).crossProduct(mesh_.points[c] - from).dotProduct(mesh_.points[d] - from);
        return runsBackwards_ ? height >= 0 : height <= 0;
    }

    // A strip that zigzags from one side of the outline to the other: of all ways to divide a circle, the one
    // with the fewest flat triangles.
    void addCap(std::size_t outline, FaceKind kind) {
        std::vector<std::int32_t> ring;
        ring.reserve(kOutlinePoints);
        for (int label = 0; label < kOutlinePoints; ++label) {
            if (index(outline, label) != index(outline, label + 1)) {
                ring.push_back(index(outline, label));
            }
        }
        if (kind == FaceKind::start) {
            std::reverse(ring.begin(), ring.end());
        }
        std::size_t low = 0;
        std::size_t high = ring.size();
        for (bool lowSide = true; low + 2 < high; lowSide = !lowSide) {
            if (lowSide) {
                addTriangle(ring[low], ring[low + 1], ring[high - 1], kind);
                ++low;
            } else {
                addTriangle(ring[high - 2], ring[high - 1], ring[low], kind);
                --high;
            }
        }
    }

    bool isValid() const {
        const double smallestHeight = kFlatTolerance * largestCoordinate(mesh_);
        const bool noneFlat =
            std::none_of(mesh_.triangles.begin(), mesh_.triangles.end(),
                         [&](const Triangle& triangle) { return isFlat(mesh_, triangle, smallestHeight); });
        // Only where outlines touch the joints may fail to close.
        return !mesh_.empty() && noneFlat && volumeOf(mesh_) > 0 && (!pinched_ || isClosed(mesh_));
    }

    std::span<const Outline> outlines_;
    std::vector<std::int32_t> indices_;  // of all outlines' points, into the mesh's
    bool runsBackwards_ = false;
    bool pinched_ = false;  // outlines share points
    Mesh mesh_;
};

// An outline's plane, facing along the flow.
struct OutlinePlane {
    explicit OutlinePlane(const Outline& outline)
        : center(centerOf(outline)), doubleArea(doubleAreaOf(outline)) {
        normal = doubleArea / doubleArea.length();
    }
    double heightOf(const AcGePoint3d& point) const { return (point - center).dotProduct(normal); }

    AcGePoint3d center;
    AcGeVector3d doubleArea, normal;
};

double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
    return a.x * b.y - a.y * b.x;
}

// The edge runs counter-clockwise about the centre, seen from a point in this direction. An edge of no length
// does.
bool turnsForward(const AcGeVector2d& direction, const AcGeVector2d& edge) {
    constexpr double kSmallestSine = 1e-9;
    const double area = cross(direction, edge);
    return area > 0 ? area * area > kSmallestSine * kSmallestSine * direction.dotProduct(direction) *
                                        edge.dotProduct(edge)
                    : edge.x == 0 && edge.y == 0;
}

using Directions = std::array<AcGeVector2d, kOutlinePoints>;

// Seen from their middle.
void centerOn(Directions& points) {
    AcGeVector2d sum;
    for (const AcGeVector2d& point : points) {
        sum = sum + point;
    }
    for (AcGeVector2d& point : points) {
        point = point - sum * (1.0 / kOutlinePoints);
    }
}

// Whether a slice through the wall between two edges turns forward about the centre all the way. The fold
// that bulges makes it run first along the edge whose direction comes first; where the edges are as good as
// parallel, rounding may have folded the wall either way.
bool wallRunsForward(const Directions& start, const Directions& end, int i) {
    constexpr double kParallelSine = 1e-9;
    const int next = (i + 1) % kOutlinePoints;
    const AcGeVector2d first = start[next] - start[i];
    const AcGeVector2d last = end[next] - end[i];
    const double turn = cross(first, last);
    const double parallel = kParallelSine * first.length() * last.length();
    const bool firstLeads = turn >= -parallel;
    const bool lastLeads = turn <= parallel;
    return turnsForward(start[i], first) && turnsForward(end[i], last) &&
           (!firstLeads || (turnsForward(end[i], first) && turnsForward(start[next], last))) &&
           (!lastLeads || (turnsForward(start[i], last) && turnsForward(end[next], first)));
}

}  // namespace

std::optional<Mesh> loft(std::span<const Outline> outlines) {
    if (outlines.size() < 2) {
        return std::nullopt;
    }
    return Loft(outlines).build();
}

bool isCertainlySimple(const Outline& from, const Outline& to) {
    const OutlinePlane first(from);
    const OutlinePlane last(to);
    const double tolerance = kPlaneTolerance * std::max(extentOf(from), extentOf(to));
    const AcGeVector3d y = first.normal.perpVector();
    const AcGeVector3d z = first.normal.crossProduct(y);
    Directions start;
    Directions end;
    for (int i = 0; i < kOutlinePoints; ++i) {
        const double before = -last.heightOf(from[i]);
        const double beyond = first.heightOf(to[i]);
        if (!(before > tolerance && beyond > tolerance)) {
            return false;
        }
        const AcGeVector3d startArm = (from[i] - first.center) / before;
        const AcGeVector3d endArm = (to[i] - first.center) / beyond;
        start[i] = {startArm.dotProduct(y), startArm.dotProduct(z)};
        end[i] = {endArm.dotProduct(y), endArm.dotProduct(z)};
    }
    centerOn(start);
    centerOn(end);
    for (int i = 0; i < kOutlinePoints; ++i) {
        if (!wallRunsForward(start, end, i)) {
            return false;
        }
    }
    return true;
}

}  // namespace solids
