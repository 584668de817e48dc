#include "solid_checks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>
#include <vector>

using solids::FaceKind;
using solids::Mesh;
using solids::Triangle;

namespace {

using Wide = __float128;  // wide enough that the sign of a determinant of doubles is as good as exact

// Signs and sides

template <typename Number>
struct Vector {
    Number x, y, z;
};

template <typename Number>
Vector<Number> between(const AcGePoint3d& from, const AcGePoint3d& to) {
    return {Number(to.x) - Number(from.x), Number(to.y) - Number(from.y), Number(to.z) - Number(from.z)};
}

template <typename Number>
Number determinant(const Vector<Number>& a, const Vector<Number>& b, const Vector<Number>& c) {
    return a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z) + a.z * (b.x * c.y - b.y * c.x);
}

double length1(const Vector<double>& v) {
    return std::abs(v.x) + std::abs(v.y) + std::abs(v.z);
}

// On which side of the plane through a, b, c the point d lies: 1 where they run counter-clockwise, 0 in it.
int sideOf(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c, const AcGePoint3d& d) {
    const auto ab = between<double>(a, b);
    const auto ac = between<double>(a, c);
    const auto ad = between<double>(a, d);
    const double rough = determinant(ab, ac, ad);
    // The differences and the sum are each rounded a few times.
    if (std::abs(rough) > 1e-14 * length1(ab) * length1(ac) * length1(ad)) {
        return rough > 0 ? 1 : -1;
    }
    const Wide exact = determinant(between<Wide>(a, b), between<Wide>(a, c), between<Wide>(a, d));
    // Points exactly in a plane have products that should cancel, rounded to 113 bits eight times in a row.
    const Wide rounding = Wide(1e-33) * length1(ab) * length1(ac) * length1(ad);
    return exact > rounding ? 1 : exact < -rounding ? -1 : 0;
}

using Corners = std::array<AcGePoint3d, 3>;

// Two coordinates of a triangle's plane, that in which it is seen largest.
std::array<int, 2> planeAxes(const Corners& triangle) {
    const AcGeVector3d normal = (triangle[1] - triangle[0]).crossProduct(triangle[2] - triangle[0]);
    const double x = std::abs(normal.x);
    const double y = std::abs(normal.y);
    const double z = std::abs(normal.z);
    if (x >= y && x >= z) {
        return {1, 2};
    }
    return y >= z ? std::array{2, 0} : std::array{0, 1};
}

// Two points and one that may lie to the left of the line through them, in a plane of two coordinates.
int turnOf(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c, const std::array<int, 2>& axes) {
    const auto [u, v] = axes;
    const Wide product = (Wide(b[u]) - Wide(a[u])) * (Wide(c[v]) - Wide(a[v]));
    const Wide other = (Wide(b[v]) - Wide(a[v])) * (Wide(c[u]) - Wide(a[u]));
    const Wide rounding = Wide(1e-32) * ((product < 0 ? -product : product) + (other < 0 ? -other : other));
    const Wide turn = product - other;
    return turn > rounding ? 1 : turn < -rounding ? -1 : 0;
}

bool lieInPlaneApart(const AcGePoint3d& from, const AcGePoint3d& to, const Corners& triangle) {
    const std::array<int, 2> axes = planeAxes(triangle);
    const int winding = turnOf(triangle[0], triangle[1], triangle[2], axes);
    for (int i = 0; i < 3; ++i) {
        const AcGePoint3d& a = triangle[i];
        const AcGePoint3d& b = triangle[(i + 1) % 3];
        if (turnOf(a, b, from, axes) * winding < 0 && turnOf(a, b, to, axes) * winding < 0) {
            return true;
        }
    }
    const int first = turnOf(from, to, triangle[0], axes);
    const int second = turnOf(from, to, triangle[1], axes);
    const int third = turnOf(from, to, triangle[2], axes);
    return first != 0 && first == second && second == third;
}

bool meets(const AcGePoint3d& from, const AcGePoint3d& to, const Corners& triangle) {
    const int fromSide = sideOf(triangle[0], triangle[1], triangle[2], from);
    const int toSide = sideOf(triangle[0], triangle[1], triangle[2], to);
    if (fromSide * toSide > 0) {
        return false;
    }
    if (fromSide == 0 && toSide == 0) {
        return !lieInPlaneApart(from, to, triangle);
    }
    bool left = false;
    bool right = false;
    for (int i = 0; i < 3; ++i) {
        const int side = sideOf(from, to, triangle[i], triangle[(i + 1) % 3]);
        left = left || side > 0;
        right = right || side < 0;
    }
    return !(left && right);
}

// Pairs of triangles

struct Face {
    std::array<std::int32_t, 3> indices;
    Corners corners;
    AcGePoint3d low, high;
};

Face faceOf(const Mesh& mesh, const Triangle& triangle) {
    Face face{triangle.corners,
              {mesh.corner(triangle, 0), mesh.corner(triangle, 1), mesh.corner(triangle, 2)},
              {},
              {}};
    for (int axis = 0; axis < 3; ++axis) {
        const auto [low, high] =
            std::minmax({face.corners[0][axis], face.corners[1][axis], face.corners[2][axis]});
        face.low[axis] = low;
        face.high[axis] = high;
    }
    return face;
}

bool boxesMeet(const Face& a, const Face& b) {
    return a.low.y <= b.high.y && b.low.y <= a.high.y && a.low.z <= b.high.z && b.low.z <= a.high.z;
}

bool allOnOneSide(const Face& of, const Face& face) {
    const int first = sideOf(of.corners[0], of.corners[1], of.corners[2], face.corners[0]);
    return first != 0 && first == sideOf(of.corners[0], of.corners[1], of.corners[2], face.corners[1]) &&
           first == sideOf(of.corners[0], of.corners[1], of.corners[2], face.corners[2]);
}

// Any edge of the one against the other, each the other way round too.
bool facesMeet(const Face& a, const Face& b) {
    if (allOnOneSide(a, b) || allOnOneSide(b, a)) {
        return false;
    }
    for (int i = 0; i < 3; ++i) {
        if (meets(a.corners[i], a.corners[(i + 1) % 3], b.corners) ||
            meets(b.corners[i], b.corners[(i + 1) % 3], a.corners)) {
            return true;
        }
    }
    return false;
}

// Faces with one common point, the given corners: what they have in common besides shows on the sides
// opposite.
bool meetBesidePoint(const Face& a, int cornerOfA, const Face& b, int cornerOfB) {
    return meets(a.corners[(cornerOfA + 1) % 3], a.corners[(cornerOfA + 2) % 3], b.corners) ||
           meets(b.corners[(cornerOfB + 1) % 3], b.corners[(cornerOfB + 2) % 3], a.corners);
}

// Faces with a common edge: one lies on the other.
bool meetBesideEdge(const Face& a, const Face& b, const std::array<int, 2>& shared, int freeOfB) {
    const int freeOfA = 3 - shared[0] - shared[1];
    if (sideOf(a.corners[0], a.corners[1], a.corners[2], b.corners[freeOfB]) != 0) {
        return false;
    }
    const std::array<int, 2> axes = planeAxes(a.corners);
    const AcGePoint3d& from = a.corners[shared[0]];
    const AcGePoint3d& to = a.corners[shared[1]];
    return turnOf(from, to, a.corners[freeOfA], axes) * turnOf(from, to, b.corners[freeOfB], axes) > 0;
}

bool facesCross(const Face& a, const Face& b) {
    std::array<int, 3> sharedOfA{};
    std::array<int, 3> sharedOfB{};
    int shared = 0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (a.indices[i] == b.indices[j]) {
                sharedOfA[shared] = i;
                sharedOfB[shared] = j;
                ++shared;
            }
        }
    }
    switch (shared) {
        case 0: return facesMeet(a, b);
        case 1: return meetBesidePoint(a, sharedOfA[0], b, sharedOfB[0]);
        case 2: return meetBesideEdge(a, b, {sharedOfA[0], sharedOfA[1]}, 3 - sharedOfB[0] - sharedOfB[1]);
        default: return true;
    }
}

// The first two faces found that cross. Their boxes are swept along x.
std::optional<std::pair<Face, Face>> findCrossing(const Mesh& mesh) {
    std::vector<Face> faces;
    faces.reserve(mesh.triangles.size());
    for (const Triangle& triangle : mesh.triangles) {
        faces.push_back(faceOf(mesh, triangle));
    }
    std::sort(faces.begin(), faces.end(), [](const Face& a, const Face& b) { return a.low.x < b.low.x; });
    for (std::size_t i = 0; i < faces.size(); ++i) {
        for (std::size_t j = i + 1; j < faces.size() && faces[j].low.x <= faces[i].high.x; ++j) {
            if (boxesMeet(faces[i], faces[j]) && facesCross(faces[i], faces[j])) {
                return std::pair(faces[i], faces[j]);
            }
        }
    }
    return std::nullopt;
}

std::string textOf(const Face& face) {
    std::ostringstream text;
    text.precision(17);
    for (const AcGePoint3d& corner : face.corners) {
        text << " (" << corner.x << ", " << corner.y << ", " << corner.z << ")";
    }
    return text.str();
}

// Edges

// Every edge, as a pair of points, the smaller index first; 1 where a triangle runs along it this way, else
// -1.
struct Edge {
    std::int32_t from, to;
    int direction;
    auto operator<=>(const Edge&) const = default;
};

testing::AssertionResult edgesMatch(const Mesh& mesh) {
    std::vector<Edge> edges;
    for (const Triangle& triangle : mesh.triangles) {
        for (int i = 0; i < 3; ++i) {
            const std::int32_t from = triangle.corners[i];
            const std::int32_t to = triangle.corners[(i + 1) % 3];
            edges.push_back(from < to ? Edge{from, to, 1} : Edge{to, from, -1});
        }
    }
    std::sort(edges.begin(), edges.end());
    for (std::size_t i = 0; i < edges.size(); i += 2) {
        const bool paired = i + 1 < edges.size() && edges[i].from == edges[i + 1].from &&
                            edges[i].to == edges[i + 1].to && edges[i].direction == -1 &&
                            edges[i + 1].direction == 1;
        const bool again =
            i + 2 < edges.size() && edges[i].from == edges[i + 2].from && edges[i].to == edges[i + 2].to;
        if (!paired || again) {
            return testing::AssertionFailure() << "edge from point " << edges[i].from << " to " << edges[i].to
                                               << " does not belong to two triangles in opposite directions";
        }
    }
    return testing::AssertionSuccess();
}

std::vector<AcGePoint3d> pointsOf(const Mesh& mesh, FaceKind kind) {
    std::vector<AcGePoint3d> points;
    for (const Triangle& triangle : mesh.triangles) {
        for (int i = 0; triangle.kind == kind && i < 3; ++i) {
            points.push_back(mesh.corner(triangle, i));
        }
    }
    return points;
}

void expectEachNear(const std::vector<AcGePoint3d>& points, const std::vector<AcGePoint3d>& others,
                    double tolerance) {
    for (const AcGePoint3d& point : points) {
        EXPECT_TRUE(
            std::any_of(others.begin(), others.end(),
                        [&](const AcGePoint3d& other) { return point.distanceTo(other) <= tolerance; }))
            << "nothing meets (" << point.x << ", " << point.y << ", " << point.z << ")";
    }
}

}  // namespace

testing::AssertionResult isClosedAndOriented(const Mesh& mesh) {
    const auto count = static_cast<std::int32_t>(mesh.points.size());
    if (mesh.triangles.empty()) {
        return testing::AssertionFailure() << "no triangles";
    }
    for (const Triangle& triangle : mesh.triangles) {
        const auto& [a, b, c] = triangle.corners;
        if (std::min({a, b, c}) < 0 || std::max({a, b, c}) >= count) {
            return testing::AssertionFailure() << "a triangle's point is missing";
        }
        if (!(solids::doubleAreaNormal(mesh, triangle).lengthSqrd() > 0)) {
            return testing::AssertionFailure() << "no area:" << textOf(faceOf(mesh, triangle));
        }
    }
    if (testing::AssertionResult matched = edgesMatch(mesh); !matched) {
        return matched;
    }
    const double volume = solids::volumeOf(mesh);
    return volume > 0 ? testing::AssertionSuccess() : testing::AssertionFailure() << "volume " << volume;
}

testing::AssertionResult isSolid(const Mesh& mesh) {
    if (testing::AssertionResult closed = isClosedAndOriented(mesh); !closed) {
        return closed;
    }
    if (const auto crossing = findCrossing(mesh)) {
        return testing::AssertionFailure()
               << "triangles meet:" << textOf(crossing->first) << " and" << textOf(crossing->second);
    }
    return testing::AssertionSuccess();
}

void expectSolid(const Mesh& mesh, double volume, double tolerance) {
    EXPECT_TRUE(isSolid(mesh));
    EXPECT_NEAR(solids::volumeOf(mesh), volume, tolerance * volume);
}

double prismatoidVolume(double length, double startArea, double middleArea, double endArea) {
    return length / 6 * (startArea + 4 * middleArea + endArea);
}

double roundArea(double diameter) {
    return 8 * diameter * diameter * std::sin(2 * std::numbers::pi / 64);
}

void expectFacesMeet(const Mesh& mesh, FaceKind kind, const Mesh& other, FaceKind otherKind,
                     double tolerance) {
    const std::vector<AcGePoint3d> points = pointsOf(mesh, kind);
    const std::vector<AcGePoint3d> otherPoints = pointsOf(other, otherKind);
    EXPECT_FALSE(points.empty() || otherPoints.empty());
    expectEachNear(points, otherPoints, tolerance);
    expectEachNear(otherPoints, points, tolerance);
}

solids::Frame frameAlong(const AcGeVector3d& direction, double turn) {
    solids::Frame frame;
    frame.x = direction / direction.length();
    const AcGeVector3d level(-frame.x.y, frame.x.x, 0);
    frame.y = level.length() > 1e-9 ? level / level.length() : AcGeVector3d(0, 1, 0);
    frame.z = frame.x.crossProduct(frame.y);
    return solids::rotated(frame, turn, frame.x);
}

solids::Section rectangle(double width, double height) {
    return {true, width, height};
}

solids::Section oval(double width, double height) {
    return {false, width, height};
}

solids::Section circle(double diameter) {
    return oval(diameter, diameter);
}
