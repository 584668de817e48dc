#include "solids/booleans/booleans.h"
#include "tests/solids/solid_checks.h"

#include <numbers>
#include <random>

using namespace solids;

namespace {

using FlatPoints = std::vector<AcGePoint2d>;  // y and z of a frame

FlatPoints rectanglePoints(double width, double height) {
    return {{-width / 2, -height / 2},
            {width / 2, -height / 2},
            {width / 2, height / 2},
            {-width / 2, height / 2}};
}

FlatPoints polygonPoints(double radius, int sides) {
    FlatPoints points;
    for (int i = 0; i < sides; ++i) {
        const double angle = 2 * std::numbers::pi * i / sides;
        points.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return points;
}

// From the origin along the frame's x. The outline is convex and counter-clockwise.
Mesh prism(const FlatPoints& outline, double length, const AcGePoint3d& origin = {},
           const Frame& frame = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}) {
    Mesh mesh;
    const auto n = static_cast<std::int32_t>(outline.size());
    for (const double x : {0.0, length}) {
        for (const AcGePoint2d& point : outline) {
            mesh.points.push_back(origin + frame.x * x + frame.y * point.x + frame.z * point.y);
        }
    }
    for (std::int32_t i = 0; i < n; ++i) {
        const std::int32_t next = (i + 1) % n;
        mesh.triangles.push_back({{i, next, n + i}, FaceKind::wall});
        mesh.triangles.push_back({{next, n + next, n + i}, FaceKind::wall});
    }
    for (std::int32_t i = 1; i + 1 < n; ++i) {
        mesh.triangles.push_back({{0, i + 1, i}, FaceKind::start});
        mesh.triangles.push_back({{n, n + i, n + i + 1}, FaceKind::end});
    }
    return mesh;
}

// Between two corners.
Mesh box(const AcGePoint3d& low, const AcGePoint3d& high) {
    const AcGePoint3d middle = low + (high - low) * 0.5;
    return prism(rectanglePoints(high.y - low.y, high.z - low.z), high.x - low.x,
                 {low.x, middle.y, middle.z});
}

Mesh unitBoxAt(double x, double y, double z) {
    return box({x, y, z}, {x + 1, y + 1, z + 1});
}

const Frame kAlongX{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const Frame kAlongY{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}};
const Frame kDown{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}};

Mesh moved(Mesh mesh, const AcGeVector3d& by) {
    transform(mesh, AcGeMatrix3d::translation(by));
    return mesh;
}

Mesh together(Mesh one, const Mesh& other) {
    append(one, other);
    return one;
}

double volumeOrNone(const Mesh& mesh) {
    return mesh.empty() ? 0 : volumeOf(mesh);
}

void expectResult(const std::optional<Mesh>& result, double volume, double tolerance = 1e-9) {
    ASSERT_TRUE(result);
    if (volume == 0) {
        EXPECT_TRUE(result->empty()) << volumeOf(*result);
        return;
    }
    expectSolid(*result, volume, tolerance);
    EXPECT_TRUE(isFreeOfSelfIntersection(*result));
}

// All that is above and below a plane, which together make up the mesh and share the cut.
void expectCut(const Mesh& mesh, const AcGePoint3d& onPlane, const AcGeVector3d& normal, double volumeAbove,
               double cutArea, double tolerance = 1e-9) {
    const auto above = cutByPlane(mesh, onPlane, normal, FaceKind::other);
    const auto below = cutByPlane(mesh, onPlane, -normal, FaceKind::other);
    expectResult(above, volumeAbove, tolerance);
    expectResult(below, volumeOf(mesh) - volumeAbove, tolerance);
    if (above && below) {
        EXPECT_NEAR(areaOf(*above, FaceKind::other), cutArea, tolerance * cutArea);
        EXPECT_NEAR(areaOf(*below, FaceKind::other), cutArea, tolerance * cutArea);
    }
}

}  // namespace

TEST(Booleans, OverlappingBoxesKeepTheKindsOfTheirFaces) {
    const Mesh main = box({0, 0, 0}, {4, 2, 2}), side = box({3, 1, 0.5}, {6, 3, 1.5});
    const auto joined = unite(main, side);
    expectResult(joined, 16 + 6 - 1);
    // Of the main's end a quarter lies inside the side, of the side's start one half inside the main.
    EXPECT_NEAR(areaOf(*joined, FaceKind::start), 4 + 1, 1e-12);
    EXPECT_NEAR(areaOf(*joined, FaceKind::end), 4 - 1 + 2, 1e-12);
    expectResult(subtract(main, side), 15);
    const auto rest = subtract(side, main);
    expectResult(rest, 5);
    EXPECT_NEAR(areaOf(*rest, FaceKind::start), 1, 1e-12);
    EXPECT_NEAR(areaOf(*rest, FaceKind::end), 2 + 1, 1e-12);
}

// Both sections have the same height everywhere, so what they have in common is a square at each height.
TEST(Booleans, EqualCylindersThatCrossHaveSteinmetzVolumeInCommon) {
    for (const double turn : {0.0, 0.5}) {
        const AcGeVector3d x{std::cos(turn), std::sin(turn), 0}, y{-std::sin(turn), std::cos(turn), 0};
        const AcGeVector3d z{0, 0, 1};
        const FlatPoints circle = polygonPoints(1, 64);
        const Mesh one = prism(circle, 6, AcGePoint3d() - x * 3, {x, y, z});
        const Mesh other = prism(circle, 6, AcGePoint3d() - y * 3, {y, -x, z});
        double common = 0;
        for (std::size_t i = 48; i < 80; ++i) {
            const AcGePoint2d& low = circle[i % 64];
            const AcGePoint2d& high = circle[(i + 1) % 64];
            common += 4 * (high.y - low.y) * (low.x * low.x + low.x * high.x + high.x * high.x) / 3;
        }
        EXPECT_NEAR(common, 16.0 / 3, 0.02);
        expectResult(unite(one, other), volumeOf(one) + volumeOf(other) - common, 1e-6);
        expectResult(subtract(one, other), volumeOf(one) - common, 1e-6);
    }
}

// Faces, edges and corners that meet exactly, or but for rounding.
TEST(Booleans, BodiesThatTouchAreJoinedOrLeftAlone) {
    const Mesh unit = unitBoxAt(0, 0, 0);
    for (const double noise : {0.0, 3e-16, -3e-16, 2e-14, 1e-10, -1e-10}) {
        SCOPED_TRACE(noise);
        expectResult(unite(unit, unitBoxAt(1 + noise, 0, 0)), 2, 1e-7);
        expectResult(unite(unit, unitBoxAt(1 + noise, 0.5, 0.25)), 2, 1e-7);
        expectResult(unite(unit, unitBoxAt(1 + noise, 1 + noise, 0)), 2, 1e-7);
        expectResult(unite(unit, unitBoxAt(1 + noise, 1, 1)), 2, 1e-7);
        expectResult(subtract(unit, unitBoxAt(1 + noise, 0, 0)), 1, 1e-7);
        expectResult(subtract(unit, unitBoxAt(1 + noise, 1, 1)), 1, 1e-7);
        expectResult(unite(unit, unitBoxAt(noise, 0.5, noise)), 1.5, 1e-7);
        expectResult(subtract(unit, unitBoxAt(noise, 0.5, noise)), 0.5, 1e-7);
    }
    const auto flush = unite(unit, unitBoxAt(1, 0, 0));
    EXPECT_NEAR(areaOf(*flush), 10, 1e-12);
}

TEST(Booleans, OneInsideTheOtherOrIdentical) {
    const Mesh outer = unitBoxAt(0, 0, 0), inner = box({0.25, 0.25, 0.25}, {0.75, 0.5, 0.75});
    expectResult(unite(outer, inner), 1);
    expectResult(unite(inner, outer), 1);
    expectResult(subtract(outer, inner), 1 - 0.0625);
    expectResult(subtract(inner, outer), 0);
    expectResult(unite(outer, outer), 1);
    expectResult(subtract(outer, outer), 0);
    const Mesh round = prism(polygonPoints(1, 64), 3);
    expectResult(unite(round, round), volumeOf(round));
    expectResult(subtract(round, round), 0);
    // Cut through by something as tall as itself.
    expectResult(subtract(outer, box({0.25, 0, 0}, {0.5, 1, 1})), 0.75);
}

// Each of the faces in common has 62 triangles; taken one by one they kept exact arithmetic busy for seconds.
TEST(Booleans, RoundDuctsEndToEnd) {
    const Mesh duct = prism(polygonPoints(1, 64), 3);
    const double volume = volumeOf(duct);
    const auto joined = unite(duct, moved(duct, {3, 0, 0}));
    expectResult(joined, 2 * volume);
    EXPECT_EQ(joined->triangles.size(), 2 * (64 * 2 + 62));
    EXPECT_NEAR(areaOf(*joined, FaceKind::start), roundArea(2), 1e-12);
    expectResult(subtract(duct, moved(duct, {3, 0, 0})), volume);
    // Turned about their axis the corners of the ends do not meet.
    for (const double turn : {0.03, std::numbers::pi / 64}) {
        const AcGeVector3d y{0, std::cos(turn), std::sin(turn)}, z{0, -std::sin(turn), std::cos(turn)};
        expectResult(unite(duct, prism(polygonPoints(1, 64), 3, {3, 0, 0}, {{1, 0, 0}, y, z})), 2 * volume,
                     1e-6);
    }
    // Flush at the start only.
    expectResult(unite(duct, prism(polygonPoints(1, 64), 2)), volume, 1e-6);
    expectResult(subtract(duct, prism(polygonPoints(1, 64), 2)), volume / 3, 1e-6);
}

TEST(Booleans, EmptyAndDistantOperands) {
    const Mesh unit = unitBoxAt(0, 0, 0), far = unitBoxAt(5, 0, 0);
    expectResult(unite(unit, Mesh()), 1);
    expectResult(unite(Mesh(), unit), 1);
    expectResult(subtract(unit, Mesh()), 1);
    expectResult(subtract(Mesh(), unit), 0);
    expectResult(unite(unit, far), 2);
    expectResult(subtract(unit, far), 1);
    // Several surfaces in one operand.
    expectResult(subtract(together(unit, far), box({0.5, 0.25, 0.25}, {5.5, 0.75, 0.75})), 2 - 2 * 0.125);
}

// A rod that starts on a bar's underside, as a hanger's do, level and on a slope.
TEST(Booleans, RodsThatStartOnABar) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-1, 1);
    for (int i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        const Frame frame =
            i == 0 ? kAlongX : frameAlong({any(random), any(random), any(random)}, any(random));
        const AcGePoint3d origin{100 * any(random), 100 * any(random), 100 * any(random)};
        const Mesh bar = prism(rectanglePoints(1, 1), 22, origin, frame);
        std::optional<Mesh> hanger = bar;
        double volume = volumeOf(bar);
        for (const double at : {2.0, 20.0}) {
            const Mesh rod = prism(polygonPoints(0.25, 64), 10, origin + frame.x * at - frame.z * 0.5,
                                   {-frame.z, frame.y, frame.x});
            volume += volumeOf(rod);
            hanger = unite(*hanger, rod);
            ASSERT_TRUE(hanger);
        }
        expectResult(hanger, volume, 1e-6);
        EXPECT_NEAR(areaOf(*hanger, FaceKind::end), 1 + 2 * roundArea(0.5), 1e-5);
    }
}

// On a face, as far as within its outline; over its edge, touching the edge, and with another body there too.
// Surfaces are what both have, less the foot on both sides.
TEST(Booleans, BodiesThatStandOnAFace) {
    const Mesh bar = box({0, 0, 0}, {22, 4, 1});
    for (const auto& [x, z, turned] : {std::tuple(5.0, 1.0, false), std::tuple(5.0, 0.0, true),
                                       std::tuple(21.5, 1.0, false), std::tuple(22.0, 1.0, false)}) {
        SCOPED_TRACE(x);
        const Frame frame = turned ? Frame{-AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, -AcGeVector3d::kYAxis}
                                   : Frame{AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis};
        const Mesh rod = prism(polygonPoints(0.5, 64), 10, {x, 2, z}, frame);
        const std::optional<Mesh> hanger = unite(bar, rod);
        expectResult(hanger, volumeOf(bar) + volumeOf(rod), 1e-6);
        const double foot = areaOf(rod, FaceKind::start) * (x == 22.0 ? 0.5 : 1.0);
        EXPECT_NEAR(areaOf(bar) + areaOf(rod) - 2 * foot, areaOf(*hanger), 1e-5);
    }
    const Mesh rods = together(prism(polygonPoints(0.5, 64), 10, {5, 2, 1}, frameAlong({0, 0, 1}, 0.3)),
                               prism(polygonPoints(0.5, 64), 10, {9, 2, 1}, frameAlong({0, 0, 1}, 0.3)));
    const std::optional<Mesh> trapeze = unite(rods, bar);
    expectResult(trapeze, volumeOf(bar) + volumeOf(rods));
    EXPECT_NEAR(areaOf(bar) + areaOf(rods) - 4 * areaOf(rods, FaceKind::start) / 2, areaOf(*trapeze), 1e-9);
}

TEST(Booleans, FarFromTheOriginAndVerySmall) {
    const Mesh branch = prism(polygonPoints(0.4, 64), 2, {1, 0, 0}, kAlongY);
    const Mesh main = prism(rectanglePoints(1, 1), 3);
    const double common = volumeOf(branch) / 4;
    for (const AcGeVector3d& place :
         {AcGeVector3d{1e6, -1e6, 5e5}, AcGeVector3d{123456.789, 0.1, -98765.4321}}) {
        const Mesh a = moved(main, place), b = moved(branch, place);
        expectResult(unite(a, b), volumeOf(main) + volumeOf(branch) - common, 1e-6);
        expectResult(subtract(a, b), volumeOf(main) - common, 1e-6);
    }
    Mesh smallMain = main, smallBranch = branch;
    transform(smallMain, AcGeMatrix3d::scaling(1e-3));
    transform(smallBranch, AcGeMatrix3d::scaling(1e-3));
    expectResult(unite(smallMain, smallBranch), (volumeOf(main) + volumeOf(branch) - common) * 1e-9, 1e-6);
}

// Boxes, prisms and cylinders in all positions, half of them on a grid, where faces and edges coincide.
class RandomBodies {
public:
    explicit RandomBodies(unsigned seed) : random_(seed) {}
    double any(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random_); }
    Mesh next() {
        const bool grid = random_() % 2 == 0;
        const auto number = [&](double low, double high) {
            const double value = any(low, high);
            return grid ? std::round(value * 4) / 4 : value;
        };
        const Frame frames[] = {kAlongX, kAlongY, kDown,
                                frameAlong({any(-1, 1), any(-1, 1), any(-1, 1)}, any(-1, 1))};
        const Frame& frame = frames[random_() % 4];
        const AcGePoint3d origin{number(-1, 1), number(-1, 1), number(-1, 1)};
        const double width = number(0.4, 2), height = number(0.4, 2), length = number(0.5, 3);
        const int sides = static_cast<int>(3 + random_() % 10);
        return prism(random_() % 2 ? rectanglePoints(width, height) : polygonPoints(width / 2, sides), length,
                     origin, frame);
    }
    AcGeVector3d direction() { return AcGeVector3d{any(-1, 1), any(-1, 1), any(-1, 1)}.normal(); }

private:
    std::mt19937 random_;
};

// By exact arithmetic: where faces nearly coincide, the check of the other tests' arithmetic is too short.
bool isValid(const Mesh& mesh) {
    return isClosedAndOriented(mesh) && isFreeOfSelfIntersection(mesh);
}

TEST(Booleans, VolumesOfRandomPairsAddUp) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        SCOPED_TRACE(seed);
        RandomBodies bodies(seed);
        const Mesh a = bodies.next(), b = bodies.next();
        const auto both = unite(a, b), onlyA = subtract(a, b), onlyB = subtract(b, a);
        ASSERT_TRUE(both && onlyA && onlyB);
        for (const Mesh& result : {*both, *onlyA, *onlyB}) {
            ASSERT_TRUE(result.empty() || isValid(result));
        }
        const double all = volumeOf(a) + volumeOf(b);
        const double common = volumeOf(a) - volumeOrNone(*onlyA);
        EXPECT_NEAR(volumeOf(*both) + common, all, 1e-5 * all);
        EXPECT_NEAR(volumeOf(b) - volumeOrNone(*onlyB), common, 1e-5 * all);

        const AcGeVector3d normal = seed % 2 ? bodies.direction() : AcGeVector3d{0, 0, 1};
        const AcGePoint3d onPlane = both->points[seed % both->points.size()];
        const auto above = cutByPlane(*both, onPlane, normal, FaceKind::other);
        const auto below = cutByPlane(*both, onPlane, -normal, FaceKind::other);
        ASSERT_TRUE(above && below);
        for (const Mesh& part : {*above, *below}) {
            ASSERT_TRUE(part.empty() || isValid(part));
        }
        EXPECT_NEAR(volumeOrNone(*above) + volumeOrNone(*below), volumeOf(*both), 1e-5 * all);
    }
}

TEST(Booleans, PlanesCutBoxesAndCylinders) {
    const Mesh unit = unitBoxAt(0, 0, 0);
    expectCut(unit, {0, 0, 0.25}, {0, 0, 1}, 0.75, 1);
    expectCut(unit, {0, 0, 0.25}, {0, 0, 7}, 0.75, 1);
    // Along a diagonal, through four corners; through three corners; through a corner only.
    expectCut(unit, {0, 0, 0}, {1, -1, 0}, 0.5, std::sqrt(2.0));
    expectCut(unit, {1, 0, 0}, {1, 1, 1}, 1 - 1.0 / 6, std::sqrt(3.0) / 2);
    expectResult(cutByPlane(unit, {1, 1, 1}, {1, 1, 1}, FaceKind::other), 0);
    const Mesh round = prism(polygonPoints(1, 64), 4);
    const double section = roundArea(2);
    expectCut(round, {2, 0, 0}, {1, 0, 1}, 2 * section, section * std::sqrt(2.0));
}

TEST(Booleans, PlanesThatDoNotCut) {
    const Mesh unit = unitBoxAt(0, 0, 0);
    for (const double noise : {0.0, 1e-16, -1e-16, 1e-13}) {
        expectResult(cutByPlane(unit, {0, 0, noise}, {0, 0, 1}, FaceKind::other), 1);
        expectResult(cutByPlane(unit, {0, 0, 1 + noise}, {0, 0, 1}, FaceKind::other), 0);
    }
    const auto whole = cutByPlane(unit, {0, 0, -3}, {0, 0.5, 1}, FaceKind::other);
    expectResult(whole, 1);
    EXPECT_EQ(areaOf(*whole, FaceKind::other), 0);
    expectResult(cutByPlane(Mesh(), {0, 0, 0}, {0, 0, 1}, FaceKind::other), 0);
    EXPECT_FALSE(cutByPlane(unit, {0, 0, 0.5}, {0, 0, 0}, FaceKind::other));
}

// Cuts with holes and of several pieces, and planes that some of the faces lie in.
TEST(Booleans, PlanesCutHollowAndSteppedBodies) {
    const auto tube = subtract(prism(polygonPoints(1, 64), 4), prism(polygonPoints(0.5, 64), 6, {-1, 0, 0}));
    ASSERT_TRUE(tube);
    const double ring = roundArea(2) - roundArea(1);
    expectCut(*tube, {1, 0, 0}, {1, 0, 0}, 3 * ring, ring);
    expectCut(*tube, {0, 0, 0}, {0, 0, 1}, 2 * ring, 4.0);
    const auto step = unite(box({0, 0, 0}, {2, 1, 1}), box({0, 0, 1}, {1, 1, 2}));
    ASSERT_TRUE(step);
    expectCut(*step, {0, 0, 1}, {0, 0, 1}, 1, 1);
    expectCut(*step, {1, 0, 0}, {1, 0, 0}, 1, 1);
}

TEST(Booleans, FindsWhatIsNoValidMesh) {
    const Mesh unit = unitBoxAt(0, 0, 0);
    EXPECT_TRUE(isFreeOfSelfIntersection(unit));
    EXPECT_TRUE(isFreeOfSelfIntersection(together(unit, unitBoxAt(3, 0, 0))));
    EXPECT_FALSE(isFreeOfSelfIntersection(together(unit, unitBoxAt(0.5, 0.5, 0.5))));
    EXPECT_FALSE(isFreeOfSelfIntersection(together(unit, unitBoxAt(1, 1, 1))));  // touch in a corner
    EXPECT_FALSE(isFreeOfSelfIntersection(together(unit, unitBoxAt(1, 0.5, 0.5))));
    Mesh open = unit;
    open.triangles.pop_back();
    EXPECT_FALSE(isFreeOfSelfIntersection(open));
    Mesh dented = unit;
    dented.points[0] = {1.5, 0.5, 0.5};  // pushed through the opposite face
    EXPECT_FALSE(isFreeOfSelfIntersection(dented));
    Mesh flat = unit;
    flat.points[0] = flat.points[1];
    EXPECT_FALSE(isFreeOfSelfIntersection(flat));
}

// They are refused, or give a valid mesh: what they may not do is crash or run on.
TEST(Booleans, UnusableOperands) {
    const Mesh unit = unitBoxAt(0, 0, 0), other = unitBoxAt(0.5, 0.25, 0.125);
    Mesh open = unit, nowhere = unit, astray = unit;
    open.triangles.pop_back();
    nowhere.points[3].y = std::nan("");
    astray.triangles[4].corners[1] = 99;
    for (const Mesh& bad : {open, nowhere, astray}) {
        EXPECT_FALSE(unite(bad, other));
        EXPECT_FALSE(unite(other, bad));
        EXPECT_FALSE(subtract(other, bad));
        EXPECT_FALSE(cutByPlane(bad, {0.5, 0, 0}, {1, 0, 0}, FaceKind::other));
    }
    Mesh dented = unit;
    dented.points[0] = {1.5, 0.5, 0.5};
    for (const Mesh& crossing : {dented, together(unit, unitBoxAt(0.5, 0.5, 0.5))}) {
        for (const auto& result :
             {unite(crossing, other), subtract(crossing, other), subtract(other, crossing),
              cutByPlane(crossing, {0.5, 0, 0}, {1, 0.1, 0.2}, FaceKind::other)}) {
            EXPECT_TRUE(!result || isFreeOfSelfIntersection(*result));
        }
    }
}
