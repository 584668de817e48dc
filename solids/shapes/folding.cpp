#include "solids/shapes/folding.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>

namespace solids {

namespace {

constexpr double kLongestMove = 4;        // times the distance: folds up to 151 degrees
constexpr double kUnevenness = 0.1;       // of the distance
constexpr double kSameDirection = 1e-12;  // share of an eigenvalue that counts as none

using EdgeKey = std::pair<std::int32_t, std::int32_t>;

EdgeKey keyOf(std::int32_t a, std::int32_t b) {
    return {std::min(a, b), std::max(a, b)};
}

AcGeVector3d areaVector(std::span<const AcGePoint3d> points, const PointTriple& triangle) {
    const AcGePoint3d& first = points[triangle[0]];
    return (points[triangle[1]] - first).crossProduct(points[triangle[2]] - first);
}

// The two triangles at each edge; those at the rim have one.
class Folds {
public:
    Folds(std::span<const AcGePoint3d> points, std::span<const AcGePoint2d> plane,
          std::vector<PointTriple>& triangles);
    void optimize();

private:
    struct Quad {
        std::int32_t a = 0, b = 0;  // the diagonal
        std::int32_t c = 0, d = 0;  // the other corners; a, d, b, c run counter-clockwise
        std::array<std::int32_t, 2> triangles{};
    };
    std::optional<Quad> quadAround(const EdgeKey& diagonal) const;
    double foldBetween(const PointTriple& first, const PointTriple& second, const EdgeKey& edge) const;
    double foldAtRim(const PointTriple& inside, std::int32_t insideIndex, const EdgeKey& edge) const;
    double cost(const PointTriple& first, const PointTriple& second, const EdgeKey& diagonal,
                const Quad& quad) const;
    bool canSwap(const Quad& quad) const;
    void swap(const Quad& quad);

    std::span<const AcGePoint3d> points_;
    std::span<const AcGePoint2d> plane_;
    std::vector<PointTriple>& triangles_;
    std::map<EdgeKey, std::vector<std::int32_t>> sides_;
    double tolerance_;  // of lengths
};

Folds::Folds(std::span<const AcGePoint3d> points, std::span<const AcGePoint2d> plane,
             std::vector<PointTriple>& triangles)
    : points_(points), plane_(plane), triangles_(triangles), tolerance_(extentOf(plane) * 1e-9) {
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(triangles.size()); ++i) {
        for (int side = 0; side < 3; ++side) {
            sides_[keyOf(triangles[i][side], triangles[i][(side + 1) % 3])].push_back(i);
        }
    }
}

std::int32_t cornerOpposite(const PointTriple& triangle, const EdgeKey& edge) {
    return *std::find_if(triangle.begin(), triangle.end(),
                         [&](std::int32_t corner) { return corner != edge.first && corner != edge.second; });
}

std::optional<Folds::Quad> Folds::quadAround(const EdgeKey& diagonal) const {
    const auto found = sides_.find(diagonal);
    if (found == sides_.end() || found->second.size() != 2) {
        return std::nullopt;
    }
    Quad quad{diagonal.first, diagonal.second, 0, 0, {found->second[0], found->second[1]}};
    quad.c = cornerOpposite(triangles_[quad.triangles[0]], diagonal);
    quad.d = cornerOpposite(triangles_[quad.triangles[1]], diagonal);
    if (turn(plane_[quad.a], plane_[quad.b], plane_[quad.c]) < 0) {
        std::swap(quad.a, quad.b);
    }
    return quad;
}

double Folds::foldBetween(const PointTriple& first, const PointTriple& second, const EdgeKey& edge) const {
    const AcGeVector3d normal1 = areaVector(points_, first);
    const AcGeVector3d normal2 = areaVector(points_, second);
    const double angle = std::atan2(normal1.crossProduct(normal2).length(), normal1.dotProduct(normal2));
    return points_[edge.first].distanceTo(points_[edge.second]) * angle;
}

// Between a triangle of the quad and its neighbour outside, if there is one.
double Folds::foldAtRim(const PointTriple& inside, std::int32_t insideIndex, const EdgeKey& edge) const {
    const std::vector<std::int32_t>& sides = sides_.at(edge);
    if (sides.size() != 2) {
        return 0;
    }
    const std::int32_t outside = sides[0] == insideIndex ? sides[1] : sides[0];
    return foldBetween(inside, triangles_[outside], edge);
}

// Of the quad filled with these two triangles: its diagonal and its rim.
double Folds::cost(const PointTriple& first, const PointTriple& second, const EdgeKey& diagonal,
                   const Quad& quad) const {
    double sum = foldBetween(first, second, diagonal);
    for (const PointTriple& triangle : {first, second}) {
        for (int side = 0; side < 3; ++side) {
            const EdgeKey edge = keyOf(triangle[side], triangle[(side + 1) % 3]);
            if (edge == diagonal) {
                continue;
            }
            const std::vector<std::int32_t>& sides = sides_.at(edge);
            const bool isFirst = std::find(sides.begin(), sides.end(), quad.triangles[0]) != sides.end();
            sum += foldAtRim(triangle, quad.triangles[isFirst ? 0 : 1], edge);
        }
    }
    return sum;
}

bool Folds::canSwap(const Quad& quad) const {
    const double least =
        tolerance_ * (plane_[quad.c].distanceTo(plane_[quad.d]) + plane_[quad.a].distanceTo(plane_[quad.b]));
    return turn(plane_[quad.a], plane_[quad.d], plane_[quad.c]) > least &&
           turn(plane_[quad.d], plane_[quad.b], plane_[quad.c]) > least;
}

void Folds::swap(const Quad& quad) {
    const auto [first, second] = quad.triangles;
    sides_.erase(keyOf(quad.a, quad.b));
    triangles_[first] = {quad.a, quad.d, quad.c};
    triangles_[second] = {quad.d, quad.b, quad.c};
    sides_[keyOf(quad.c, quad.d)] = {first, second};
    std::vector<std::int32_t>& moved1 = sides_.at(keyOf(quad.a, quad.d));
    std::replace(moved1.begin(), moved1.end(), second, first);
    std::vector<std::int32_t>& moved2 = sides_.at(keyOf(quad.b, quad.c));
    std::replace(moved2.begin(), moved2.end(), first, second);
}

// Each swap makes the sum of all folds smaller by more than rounding, so that they come to an end; the bound
// keeps surfaces of thousands of points quick.
void Folds::optimize() {
    std::deque<EdgeKey> waiting;
    for (const auto& [edge, sides] : sides_) {
        if (sides.size() == 2) {
            waiting.push_back(edge);
        }
    }
    std::size_t swapsLeft = 1000 + 10 * triangles_.size();
    while (!waiting.empty() && swapsLeft > 0) {
        const auto quad = quadAround(waiting.front());
        waiting.pop_front();
        if (!quad || !canSwap(*quad)) {
            continue;
        }
        const double now =
            cost({quad->a, quad->b, quad->c}, {quad->b, quad->a, quad->d}, keyOf(quad->a, quad->b), *quad);
        const double swapped =
            cost({quad->a, quad->d, quad->c}, {quad->d, quad->b, quad->c}, keyOf(quad->c, quad->d), *quad);
        if (swapped < now - tolerance_) {
            swap(*quad);
            --swapsLeft;
            for (const auto& [from, to] : {EdgeKey(quad->a, quad->d), EdgeKey(quad->d, quad->b),
                                           EdgeKey(quad->b, quad->c), EdgeKey(quad->c, quad->a)}) {
                waiting.push_back(keyOf(from, to));
            }
        }
    }
}

using Symmetric = std::array<std::array<double, 3>, 3>;

// One rotation of Jacobi's method: makes the entry (p, q) zero and turns the vectors along.
void rotateOut(Symmetric& matrix, std::array<AcGeVector3d, 3>& vectors, int p, int q) {
    if (matrix[p][q] == 0) {
        return;
    }
    const double theta = (matrix[q][q] - matrix[p][p]) / (2 * matrix[p][q]);
    const double tangent = (theta < 0 ? -1.0 : 1.0) / (std::abs(theta) + std::hypot(theta, 1.0));
    const double cosine = 1 / std::hypot(tangent, 1.0);
    const double sine = tangent * cosine;
    for (int k = 0; k < 3; ++k) {
        const double atP = matrix[k][p];
        matrix[k][p] = cosine * atP - sine * matrix[k][q];
        matrix[k][q] = sine * atP + cosine * matrix[k][q];
    }
    for (int k = 0; k < 3; ++k) {
        const double atP = matrix[p][k];
        matrix[p][k] = cosine * atP - sine * matrix[q][k];
        matrix[q][k] = sine * atP + cosine * matrix[q][k];
    }
    const AcGeVector3d atP = vectors[p];
    vectors[p] = atP * cosine - vectors[q] * sine;
    vectors[q] = atP * sine + vectors[q] * cosine;
}

// The planes around one point that it must stay on when they move.
struct Planes {
    Symmetric sumOfSquares{};
    AcGeVector3d sum;

    void add(const AcGeVector3d& normal, double weight) {
        const std::array<double, 3> n{normal.x, normal.y, normal.z};
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                sumOfSquares[row][column] += weight * n[row] * n[column];
            }
        }
        sum += normal * weight;
    }
    // The least move that takes the point as near as can be to all planes, which have moved by 1.
    AcGeVector3d move() const;
};

AcGeVector3d Planes::move() const {
    Symmetric matrix = sumOfSquares;
    const double whole = matrix[0][0] + matrix[1][1] + matrix[2][2];
    std::array<AcGeVector3d, 3> vectors{AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis};
    for (int sweep = 0; sweep < 10; ++sweep) {
        rotateOut(matrix, vectors, 0, 1);
        rotateOut(matrix, vectors, 0, 2);
        rotateOut(matrix, vectors, 1, 2);
    }
    AcGeVector3d result;
    for (int i = 0; i < 3; ++i) {
        if (matrix[i][i] > kSameDirection * whole) {
            result += vectors[i] * (sum.dotProduct(vectors[i]) / matrix[i][i]);
        }
    }
    return result;
}

double angleAt(std::span<const AcGePoint3d> points, const PointTriple& triangle, int corner) {
    const AcGePoint3d& at = points[triangle[corner]];
    const AcGeVector3d to1 = points[triangle[(corner + 1) % 3]] - at;
    const AcGeVector3d to2 = points[triangle[(corner + 2) % 3]] - at;
    return std::atan2(to1.crossProduct(to2).length(), to1.dotProduct(to2));
}

}  // namespace

void flatten(std::span<const AcGePoint3d> points, std::span<const AcGePoint2d> plane,
             std::vector<PointTriple>& triangles) {
    Folds(points, plane, triangles).optimize();
}

std::optional<std::vector<AcGeVector3d>>
displacements(std::span<const AcGePoint3d> points, std::span<const PointTriple> triangles, double distance) {
    std::vector<Planes> planes(points.size());
    for (const PointTriple& triangle : triangles) {
        const AcGeVector3d normal = areaVector(points, triangle);
        for (int corner = 0; corner < 3; ++corner) {
            planes[triangle[corner]].add(normal / normal.length(), angleAt(points, triangle, corner));
        }
    }
    std::vector<AcGeVector3d> moves;
    std::vector<AcGePoint3d> moved;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const AcGeVector3d move = planes[i].move();
        if (!(move.length() <= kLongestMove)) {
            return std::nullopt;
        }
        moves.push_back(move * distance);
        moved.push_back(points[i] + moves.back());
    }
    for (const PointTriple& triangle : triangles) {
        const AcGeVector3d normal = areaVector(points, triangle);
        const bool isEven = std::all_of(triangle.begin(), triangle.end(), [&](std::int32_t corner) {
            const double moveAlong = moves[corner].dotProduct(normal) / normal.length();
            return std::abs(moveAlong - distance) <= kUnevenness * std::abs(distance);
        });
        if (!isEven || areaVector(moved, triangle).dotProduct(normal) <= 0) {
            return std::nullopt;
        }
    }
    return moves;
}

}  // namespace solids
