#include "solid_checks.h"

#include "solids/shapes/skin.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

using namespace solids;

namespace {

constexpr double kPi = std::numbers::pi;

using Points = std::vector<AcGePoint3d>;

Body made(const Points& points, double thickness) {
    const auto body = makeSkin(points, thickness);
    EXPECT_TRUE(body);
    return body.value_or(Body{});
}

// A strip of the width 10 along x, whose y and z follow a path: the points along one rim, then back along the
// other.
Points foldedStrip(const std::vector<AcGePoint2d>& path) {
    Points points;
    for (auto at = path.rbegin(); at != path.rend(); ++at) {
        points.emplace_back(0, at->x, at->y);
    }
    for (const AcGePoint2d& at : path) {
        points.emplace_back(10, at.x, at.y);
    }
    return points;
}

// Two strips of the width 10 and the length 5, the second folded up by the angle.
Points foldedUp(double angle) {
    return foldedStrip({{0, 0}, {5, 0}, {5 + 5 * std::cos(angle), 5 * std::sin(angle)}});
}

bool hasEdge(const Mesh& mesh, const AcGePoint3d& from, const AcGePoint3d& to) {
    for (const Triangle& triangle : mesh.triangles) {
        for (int i = 0; i < 3; ++i) {
            if (mesh.corner(triangle, i).distanceTo(from) == 0 &&
                mesh.corner(triangle, (i + 1) % 3).distanceTo(to) == 0) {
                return true;
            }
        }
    }
    return false;
}

// Radians by which the planes through both triangles that share the edge from b to c are folded.
double foldAngle(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c, const AcGePoint3d& d) {
    const AcGeVector3d first = (b - a).crossProduct(c - a);
    return first.angleTo((d - b).crossProduct(c - b));
}

// Behind each triangle of the wall there is one of the back, at the same distance everywhere.
bool keepsThickness(const Mesh& mesh, double thickness, double tolerance) {
    return std::all_of(mesh.triangles.begin(), mesh.triangles.end(), [&](const Triangle& wall) {
        const AcGeVector3d normal = doubleAreaNormal(mesh, wall).normal();
        const auto isBehind = [&](const Triangle& other, int i) {
            const double depth = (mesh.corner(wall, 0) - mesh.corner(other, i)).dotProduct(normal);
            return std::abs(depth - thickness) <= tolerance;
        };
        return wall.kind != FaceKind::wall ||
               std::any_of(mesh.triangles.begin(), mesh.triangles.end(), [&](const Triangle& other) {
                   return other.kind == FaceKind::other && isBehind(other, 0) && isBehind(other, 1) &&
                          isBehind(other, 2);
               });
    });
}

double areaOfPolygon(const std::vector<AcGePoint2d>& polygon) {
    double doubled = 0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const AcGePoint2d& next = polygon[(i + 1) % polygon.size()];
        doubled += polygon[i].x * next.y - polygon[i].y * next.x;
    }
    return doubled / 2;
}

double secondsFor(const Points& points, double thickness) {
    const auto before = std::chrono::steady_clock::now();
    made(points, thickness);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
}

}  // namespace

TEST(Skin, FlatPlatesOfAnyOutline) {
    const struct {
        Points points;
        double area;
    } plates[] = {
        {{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}}, 6},
        {{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}}, 12},
        {{{0, 0, 0}, {6, 0, 0}, {6, 2, 0}, {2, 2, 0}, {2, 5, 0}, {0, 5, 0}}, 18},
        // Points in the middle of straight edges.
        {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {4, 0, 0}, {4, 3, 0}, {2, 3, 0}, {0, 3, 0}, {0, 1, 0}}, 12},
        {{{0, 0, 0}, {2, 0, 0}, {4, 0, 0}, {2, 1.5, 0}, {0, 3, 0}, {0, 1.5, 0}}, 6},
        // A spiral.
        {{{0, 0, 0},
          {7, 0, 0},
          {7, 7, 0},
          {2, 7, 0},
          {2, 3, 0},
          {4, 3, 0},
          {4, 4, 0},
          {3, 4, 0},
          {3, 6, 0},
          {6, 6, 0},
          {6, 1, 0},
          {0, 1, 0}},
         21},
    };
    const AcGeMatrix3d tilt = AcGeMatrix3d::rotation(0.7, {0.6, 0, 0.8}, {30, 5, 1});
    for (const auto& [points, area] : plates) {
        for (const double thickness : {0.25, -0.25, 40.0}) {
            Points tilted = points;
            for (AcGePoint3d& point : tilted) {
                point = tilt * point;
            }
            const Body flat = made(points, thickness);
            expectSolid(flat.mesh, area * std::abs(thickness));
            EXPECT_NEAR(areaOf(flat.mesh, FaceKind::wall), area, 1e-9);
            expectSolid(made(tilted, thickness).mesh, area * std::abs(thickness));
            std::reverse(tilted.begin(), tilted.end());
            expectSolid(made(tilted, thickness).mesh, area * std::abs(thickness));
        }
    }
}

TEST(Skin, ThicknessLiesWhereThePointsRunCounterClockwise) {
    Points points{{0, 0, 1}, {4, 0, 1}, {4, 3, 1}};
    EXPECT_NEAR(boxOf(made(points, 0.5).mesh).high.z, 1.5, 1e-12);
    EXPECT_NEAR(boxOf(made(points, 0.5).mesh).low.z, 1, 1e-12);
    EXPECT_NEAR(boxOf(made(points, -0.5).mesh).low.z, 0.5, 1e-12);
    std::reverse(points.begin(), points.end());
    const Body below = made(points, 0.5);
    EXPECT_NEAR(boxOf(below.mesh).low.z, 0.5, 1e-12);
    EXPECT_EQ(below.kind, BodyKind::skin);
    EXPECT_TRUE(below.centerLines.empty());
    // The wall is the face through the points, looking away from the sheet.
    for (const Triangle& triangle : below.mesh.triangles) {
        if (triangle.kind == FaceKind::wall) {
            EXPECT_EQ(below.mesh.corner(triangle, 0).z, 1);
            EXPECT_GT(doubleAreaNormal(below.mesh, triangle).z, 0);
        } else {
            EXPECT_EQ(triangle.kind, FaceKind::other);
        }
    }
}

TEST(Skin, RepeatedPointsCountOnce) {
    const Body body =
        made({{0, 0, 0}, {0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {4, 3, 1e-9}, {0, 3, 0}, {0, 0, 0}}, 0.5);
    EXPECT_EQ(body.mesh.points.size(), 8u);
    expectSolid(body.mesh, 6);
}

TEST(Skin, FoldsKeepTheThicknessOfEveryFace) {
    for (const double angle : {0.01, 0.5, kPi / 2, 2.0}) {
        const Points points = foldedUp(angle);
        const double corner = 0.25 * 0.25 * std::tan(angle / 2);
        const Body inside = made(points, 0.25);
        expectSolid(inside.mesh, 10 * (0.25 * 10 - corner));
        EXPECT_NEAR(areaOf(inside.mesh, FaceKind::wall), 100, 1e-9);
        EXPECT_TRUE(keepsThickness(inside.mesh, 0.25, 1e-9));
        expectSolid(made(points, -0.25).mesh, 10 * (0.25 * 10 + corner));
    }
    // A trapezoidal channel: two folds, the outer corners of which are filled.
    const Points channel = foldedStrip({{-4, 4}, {0, 0}, {6, 0}, {10, 4}});
    const double sides = 2 * 4 * std::numbers::sqrt2 + 6;
    expectSolid(made(channel, -0.5).mesh, 10 * (0.5 * sides + 2 * 0.25 * std::tan(kPi / 8)));
    expectSolid(made(channel, 0.5).mesh, 10 * (0.5 * sides - 2 * 0.25 * std::tan(kPi / 8)));
}

TEST(Skin, ThreePlanesMeetInOnePoint) {
    // However five points are folded, there is one that belongs to all three triangles.
    const Points points{{0, 0, 0}, {10, 0, 0}, {10, 10, 3}, {0, 10, 4}, {-10, 6, 0}};
    for (const double thickness : {0.5, -0.5}) {
        const Body body = made(points, thickness);
        EXPECT_TRUE(isSolid(body.mesh));
        EXPECT_TRUE(keepsThickness(body.mesh, 0.5, 1e-9));
    }
}

TEST(Skin, FoldsAlongTheFlatterDiagonal) {
    const Points shapes[] = {{{0, 0, 0}, {10, 0, 0}, {10, 4, 3}, {0, 10, 0}},
                             {{0, 0, 2}, {10, 0, 0}, {14, 12, 0}, {0, 5, 1}},
                             {{0, 0, 0}, {10, 0, 3}, {12, 7, 0}, {3, 10, -1}}};
    for (const Points& p : shapes) {
        const double along02 = p[0].distanceTo(p[2]) * foldAngle(p[1], p[2], p[0], p[3]);
        const double along13 = p[1].distanceTo(p[3]) * foldAngle(p[0], p[1], p[3], p[2]);
        const Body body = made(p, 0.1);
        EXPECT_TRUE(isSolid(body.mesh));
        EXPECT_EQ(hasEdge(body.mesh, p[0], p[2]), along02 < along13) << along02 << " " << along13;
        EXPECT_EQ(hasEdge(body.mesh, p[1], p[3]), along13 < along02);
    }
}

TEST(Skin, OutlinesThatMakeNoSheetAreRefused) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const Points refused[] = {
        {},
        {{0, 0, 0}},
        {{0, 0, 0}, {1, 0, 0}},
        {{0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {1, 0, 0}},
        {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {5, 5, 5}},
        {{0, 0, 0}, {4, 3, 0}, {4, 0, 0}, {0, 3, 0}},
        {{0, 0, 0}, {4, 3, 0}, {4, 0, 0}, {0, 7, 0}},
        // A spike, a corner that touches an edge, and an edge that is passed twice.
        {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {4, 9, 0}, {4, 3, 0}, {0, 3, 0}},
        {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {2, 0, 0}, {0, 3, 0}},
        {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}, {0, 0, 0}, {3, 3, 0}, {3, 6, 0}, {6, 3, 0}, {3, 3, 0}},
        {{0, 0, 0}, {4, 0, 0}, {4, 3, none}},
        {{0, 0, 0}, {4, 0, 0}, {4, std::numeric_limits<double>::infinity(), 0}},
    };
    for (std::size_t i = 0; i < std::size(refused); ++i) {
        EXPECT_FALSE(makeSkin(refused[i], 0.1)) << i;
    }
    const Points triangle{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}};
    for (const double thickness : {0.0, 1e-9, none, std::numeric_limits<double>::infinity()}) {
        EXPECT_FALSE(makeSkin(triangle, thickness)) << thickness;
    }
}

TEST(Skin, FoldsTooSharpForTheThicknessAreRefused) {
    EXPECT_TRUE(makeSkin(foldedUp(2.5), 0.1));
    EXPECT_FALSE(makeSkin(foldedUp(2.9), 0.1));
    // Inside the fold the sheet would be longer than its strips.
    EXPECT_TRUE(makeSkin(foldedUp(kPi / 2), 4.9));
    EXPECT_FALSE(makeSkin(foldedUp(kPi / 2), 5.1));
    EXPECT_TRUE(makeSkin(foldedUp(kPi / 2), -5.1));
    // The sides of a channel would meet.
    const Points channel = foldedStrip({{-1, 9}, {0, 0}, {6, 0}, {7, 9}});
    EXPECT_TRUE(makeSkin(channel, 2.9));
    EXPECT_FALSE(makeSkin(channel, 4.1));
}

TEST(Skin, ThousandsOfPointsAreQuick) {
    Points circle;
    Points comb{{0, 0, 0}};
    std::vector<AcGePoint2d> wave;
    for (int i = 0; i < 4000; ++i) {
        const double angle = 2 * kPi * i / 4000;
        circle.emplace_back(100 * std::cos(angle), 100 * std::sin(angle), 0);
        comb.emplace_back(0.5 * (i + 1), i % 2 == 0 ? 500 : 1, 0);
    }
    comb.emplace_back(2000.5, 0, 0);
    for (int i = 0; i < 1000; ++i) {
        wave.emplace_back(0.1 * i, 3 * std::sin(0.01 * i));
    }
    // Of each, generously: the machines that run this are not all quick.
    EXPECT_LT(secondsFor(circle, 1), 2);
    EXPECT_LT(secondsFor(comb, 1), 2);
    std::reverse(comb.begin(), comb.end());
    for (AcGePoint3d& point : comb) {
        std::swap(point.x, point.y);
    }
    EXPECT_LT(secondsFor(comb, 1), 2);
    EXPECT_LT(secondsFor(foldedStrip(wave), 0.05), 3);
    EXPECT_NEAR(volumeOf(made(circle, 2).mesh), 2 * 2000 * 1e4 * std::sin(2 * kPi / 4000), 1e-4);
    EXPECT_TRUE(isClosedAndOriented(made(comb, 1).mesh));
    EXPECT_TRUE(isSolid(made(foldedStrip(wave), 0.05).mesh));
}

TEST(Skin, AnyOutlineIsValidOrRefused) {
    std::mt19937 random(815);
    std::uniform_real_distribution<double> unit(0, 1);
    int flat = 0;
    int folded = 0;
    for (int i = 0; i < 400; ++i) {
        const int count = 3 + static_cast<int>(30 * unit(random));
        const double unevenness = i % 2 == 0 ? 0 : 0.3 * unit(random);
        const AcGeVector3d axis(unit(random) - 0.5, unit(random) - 0.5, unit(random) - 0.5);
        const AcGeMatrix3d tilt = AcGeMatrix3d::rotation(6 * unit(random), axis / axis.length());
        const AcGeVector3d offset(1e4 * unit(random), 1e4 * unit(random), 0);
        Points points;
        std::vector<AcGePoint2d> seen;
        for (int k = 0; k < count; ++k) {
            const double angle = 2 * kPi * (k + 0.9 * unit(random)) / count;
            const double radius = 1 + 9 * unit(random);
            const AcGePoint2d at(radius * std::cos(angle), radius * std::sin(angle));
            points.push_back(tilt * AcGePoint3d(at.x, at.y, radius * unevenness * unit(random)) + offset);
            seen.push_back(at);
        }
        const auto body = makeSkin(points, i % 3 == 0 ? -0.05 : 0.05);
        if (body) {
            SCOPED_TRACE(i);
            ++(unevenness == 0 ? flat : folded);
            EXPECT_TRUE(isSolid(body->mesh));
            const double area = areaOf(body->mesh, FaceKind::wall);
            EXPECT_NEAR(volumeOf(body->mesh), 0.05 * area, (unevenness == 0 ? 1e-8 : 0.05) * area * 0.05);
            EXPECT_TRUE(keepsThickness(body->mesh, 0.05, 0.0051));
            // A folded sheet is larger than its shadow.
            EXPECT_GE(area, areaOfPolygon(seen) * (1 - 1e-9));
        }
    }
    EXPECT_EQ(flat, 200);
    EXPECT_GT(folded, 60);
}
