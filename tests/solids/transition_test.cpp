#include "solid_checks.h"

#include <cmath>
#include <limits>
#include <numbers>

using namespace solids;

namespace {

constexpr double kRightAngle = std::numbers::pi / 2;
const AcGeVector3d kAlong{1, 0, 0};

DuctEnd endAt(const AcGePoint3d& center, const Section& section, double turn = 0,
              const AcGeVector3d& direction = kAlong) {
    return {center, section, frameAlong(direction, turn)};
}

Body made(const DuctEnd& start, const DuctEnd& end) {
    const std::optional<Body> body = makeTransition(start, end, 5);
    EXPECT_TRUE(body);
    return body.value_or(Body{});
}

void expectKind(const DuctEnd& start, const DuctEnd& end, BodyKind kind, double volume) {
    const Body body = made(start, end);
    ASSERT_FALSE(body.mesh.empty());
    expectSolid(body.mesh, volume);
    EXPECT_EQ(body.kind, kind);
    EXPECT_EQ(body.flags, 5);
    ASSERT_EQ(body.centerLines.size(), 1u);
    EXPECT_EQ(body.centerLines[0].front().distanceTo(start.center), 0);
    EXPECT_EQ(body.centerLines[0].back().distanceTo(end.center), 0);
}

// Between a rectangle and a circle: each section is the sum of both, scaled.
double rectangleToRoundVolume(double width, double height, double diameter, double length) {
    const auto areaAt = [&](double t) {
        return (1 - t) * (1 - t) * width * height + t * (1 - t) * (width + height) * diameter +
               t * t * roundArea(diameter);
    };
    return prismatoidVolume(length, areaAt(0), areaAt(0.5), areaAt(1));
}

}  // namespace

TEST(Transition, StraightBodiesOfAllShapes) {
    const AcGePoint3d from(100, 200, 300);
    const AcGePoint3d to(107, 200, 300);
    expectKind(endAt(from, rectangle(4, 3)), endAt(to, rectangle(4, 3)), BodyKind::straight, 84);
    expectKind(endAt(from, circle(4)), endAt(to, circle(4)), BodyKind::straight, 7 * roundArea(4));
    expectKind(endAt(from, oval(6, 4)), endAt(to, oval(6, 4)), BodyKind::straight, 7 * (roundArea(4) + 8));
    expectKind(endAt(from, oval(4, 6)), endAt(to, oval(4, 6)), BodyKind::straight, 7 * (roundArea(4) + 8));

    const Body box = made(endAt(from, rectangle(4, 3)), endAt(to, rectangle(4, 3)));
    EXPECT_EQ(box.mesh.points.size(), 8u);
    EXPECT_EQ(box.mesh.triangles.size(), 12u);
    EXPECT_NEAR(areaOf(box.mesh, FaceKind::wall), 2 * 7 * (4 + 3), 1e-12 * 98);
    const Body tube = made(endAt(from, circle(4)), endAt(to, circle(4)));
    EXPECT_EQ(tube.mesh.points.size(), 128u);
    EXPECT_EQ(tube.mesh.triangles.size(), 2 * 64u + 2 * 62u);
    EXPECT_NEAR(areaOf(tube.mesh, FaceKind::start), roundArea(4), 1e-9);
}

TEST(Transition, WidthLiesAlongYAndStartFaceAtStart) {
    const Body body = made(endAt({0, 0, 0}, rectangle(10, 2)), endAt({5, 0, 0}, rectangle(6, 1)));
    const Box box = boxOf(body.mesh);
    EXPECT_EQ(box.low.y, -5);
    EXPECT_EQ(box.high.z, 1);
    for (const Triangle& triangle : body.mesh.triangles) {
        if (triangle.kind != FaceKind::wall) {
            const double x = triangle.kind == FaceKind::start ? 0 : 5;
            const double outward = triangle.kind == FaceKind::start ? -1 : 1;
            EXPECT_EQ(body.mesh.corner(triangle, 0).x, x);
            EXPECT_GT(doubleAreaNormal(body.mesh, triangle).x * outward, 0);
        }
    }
}

TEST(Transition, BetweenRectangles) {
    const double middle = 13 * 8;
    expectKind(endAt({0, 0, 0}, rectangle(10, 8)), endAt({11, 0, 0}, rectangle(16, 8)), BodyKind::transition,
               prismatoidVolume(11, 80, middle, 128));
    // Offset sideways the sections stay, at the same heights.
    expectKind(endAt({0, 0, 0}, rectangle(10, 8)), endAt({11, 30, -7}, rectangle(16, 8)),
               BodyKind::transition, prismatoidVolume(11, 80, middle, 128));
    expectKind(endAt({0, 0, 0}, rectangle(10, 8)), endAt({11, 3, 0}, rectangle(10, 8)), BodyKind::transition,
               880);
}

TEST(Transition, BetweenRectangleAndRound) {
    const double volume = rectangleToRoundVolume(20, 10, 12, 15);
    expectKind(endAt({0, 0, 0}, rectangle(20, 10)), endAt({15, 0, 0}, circle(12)), BodyKind::transition,
               volume);
    expectKind(endAt({0, 0, 0}, circle(12)), endAt({15, 6, 2}, rectangle(20, 10)), BodyKind::transition,
               volume);
    // Four flat triangles and four corners of 16.
    const Body body = made(endAt({0, 0, 0}, rectangle(20, 10)), endAt({15, 0, 0}, circle(12)));
    EXPECT_EQ(body.mesh.points.size(), 4u + 64u);
    EXPECT_EQ(body.mesh.triangles.size(), 4 + 4 * 16u + 2 + 62);
    // The frame of a round end turns the polygon, hardly the body.
    const Body turned = made(endAt({0, 0, 0}, rectangle(20, 10)), endAt({15, 0, 0}, circle(12), 1.0));
    expectSolid(turned.mesh, volume, 1e-3);
    const Body begun = made(endAt({0, 0, 0}, circle(12), 1.0), endAt({15, 0, 0}, rectangle(20, 10)));
    expectSolid(begun.mesh, volume, 1e-3);
}

TEST(Transition, RoundReducerAndOvals) {
    const double meanArea = roundArea(7);
    expectKind(endAt({0, 0, 0}, circle(10)), endAt({9, 0, 0}, circle(4)), BodyKind::transition,
               prismatoidVolume(9, roundArea(10), meanArea, roundArea(4)));
    // An oval lying to one standing: half way it is a square with rounded corners.
    const double ovalArea = roundArea(4) + 4 * 4;
    const double squareArea = roundArea(4) + 4 * 4 + 2 * 2;
    expectKind(endAt({0, 0, 0}, oval(8, 4)), endAt({9, 0, 0}, oval(4, 8)), BodyKind::transition,
               prismatoidVolume(9, ovalArea, squareArea, ovalArea));
}

TEST(Transition, FramesTurnedByQuartersGiveTheSameBody) {
    const DuctEnd start = endAt({0, 0, 0}, rectangle(10, 4));
    expectKind(start, endAt({7, 0, 0}, rectangle(10, 4), 2 * kRightAngle), BodyKind::straight, 280);
    expectKind(start, endAt({7, 0, 0}, rectangle(4, 10), kRightAngle), BodyKind::straight, 280);
    expectKind(start, endAt({7, 0, 0}, rectangle(4, 10), -kRightAngle), BodyKind::straight, 280);
    expectKind(start, endAt({7, 0, 0}, rectangle(10, 4), kRightAngle), BodyKind::transition,
               prismatoidVolume(7, 40, 49, 40));
    expectKind(endAt({0, 0, 0}, circle(5)), endAt({7, 0, 0}, circle(5), kRightAngle), BodyKind::straight,
               7 * roundArea(5));
    EXPECT_EQ(made(endAt({0, 0, 0}, circle(5)), endAt({7, 0, 0}, circle(5), 0.7)).kind, BodyKind::straight);
    EXPECT_EQ(made(endAt({0, 0, 0}, rectangle(5, 5)), endAt({7, 0, 0}, rectangle(5, 5), 0.7)).kind,
              BodyKind::transition);
}

TEST(Transition, BackwardsIsTheSameBodyTheOtherWayRound) {
    const DuctEnd start = endAt({10, 0, 0}, rectangle(10, 8));
    const DuctEnd end = endAt({-1, 2, 0}, circle(6));
    const Body body = made(start, end);
    expectSolid(body.mesh, rectangleToRoundVolume(10, 8, 6, 11));
    EXPECT_NEAR(areaOf(body.mesh, FaceKind::start), 80, 1e-9);
    expectKind(endAt({10, 0, 0}, rectangle(10, 8)), endAt({0, 0, 0}, rectangle(10, 8)), BodyKind::straight,
               800);
}

TEST(Transition, TurnedEndsOfAPipe) {
    // Cut by planes through the centre line's ends, a prism keeps length times area.
    const AcGeVector3d tilted(std::cos(0.4), std::sin(0.4), 0);
    const DuctEnd start = endAt({0, 0, 0}, rectangle(6, 4));
    const DuctEnd end = endAt({20, 0, 0}, rectangle(6 / std::cos(0.4), 4), 0, tilted);
    expectKind(start, end, BodyKind::transition, 20 * 24);

    // Twisted, the walls fold outwards: what lies between is the sum of both ends, scaled.
    const double turn = 0.5;
    const double acrossBoth =
        6 * (6 * std::sin(turn) + 4 * std::cos(turn)) + 4 * (6 * std::cos(turn) + 4 * std::sin(turn));
    expectKind(endAt({0, 0, 0}, rectangle(6, 4)), endAt({20, 0, 0}, rectangle(6, 4), turn),
               BodyKind::transition, prismatoidVolume(20, 24, 24.0 / 4 + acrossBoth / 4 + 24.0 / 4, 24));
}

TEST(Transition, RefusesWhatIsNoBody) {
    const DuctEnd start = endAt({0, 0, 0}, rectangle(10, 8));
    const auto refuses = [&](const DuctEnd& end) {
        return !makeTransition(start, end, 0) && !makeTransition(end, start, 0);
    };
    EXPECT_TRUE(refuses(start));
    EXPECT_TRUE(refuses(endAt({0, 30, 5}, rectangle(10, 8))));
    EXPECT_TRUE(refuses(endAt({9, 0, 0}, rectangle(10, 8), 0, {-1, 0, 0})));
    EXPECT_TRUE(refuses(endAt({9, 0, 0}, rectangle(0, 8))));
    EXPECT_TRUE(refuses(endAt({9, 0, 0}, rectangle(-10, 8))));
    EXPECT_TRUE(refuses(endAt({9, 0, 0}, circle(kSmallestSize / 2))));
    EXPECT_TRUE(refuses(endAt({9, 0, 0}, circle(std::numeric_limits<double>::quiet_NaN()))));
    EXPECT_TRUE(refuses(endAt({9, 0, 0}, rectangle(1, std::numeric_limits<double>::infinity()))));
    EXPECT_TRUE(refuses(endAt({std::numeric_limits<double>::quiet_NaN(), 0, 0}, rectangle(10, 8))));
    EXPECT_TRUE(refuses(endAt({1e13, 0, 0}, rectangle(10, 8))));
    EXPECT_TRUE(refuses(endAt({1e6, 0, 0}, circle(1e-5))));
    DuctEnd noFrame = endAt({9, 0, 0}, rectangle(10, 8));
    noFrame.frame.y.x = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(refuses(noFrame));
    // The planes of both ends meet inside the sections.
    EXPECT_TRUE(refuses(endAt({2, 0, 0}, rectangle(10, 8), 0, {1, 1, 0})));
}

TEST(Transition, FarFromTheOriginAndTiny) {
    const AcGePoint3d far(5e9, -3e9, 2e9);
    const Body body = made(endAt(far, circle(10)), endAt(far + AcGeVector3d(30, 4, 0), rectangle(12, 8)));
    expectSolid(body.mesh, rectangleToRoundVolume(12, 8, 10, 30), 1e-5);
    expectSolid(made(endAt({0, 0, 0}, circle(1e-6)), endAt({1e-6, 0, 0}, circle(1e-6))).mesh,
                1e-6 * roundArea(1e-6));
}
