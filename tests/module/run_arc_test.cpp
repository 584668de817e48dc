#include "module/ducts/run_arc.h"

#include "module/drawing/geometry_helpers.h"
#include "tests/module/value_lists.h"

#include <gtest/gtest.h>

#include <memory>
#include <numbers>

namespace tessary::testing {

namespace {

constexpr double tolerance = 1e-7;  // the product's pi is exact to 4e-9

// An arc of radius 2 from the origin, at first along +X, turning a quarter.
std::unique_ptr<RunArc> quarterArc(int turn, double extension) {
    ads_point given = {0, 0, 7};
    ads_real* const start = given;
    const ValueList list = makeList(int{RT3DPOINT}, start, int{RTREAL}, 0.0, int{RTSHORT}, turn, int{RTSHORT},
                                    2, int{RTREAL}, std::numbers::pi / 2);
    ArgCursor cursor = list.get();
    auto run = std::make_unique<RunArc>();
    EXPECT_TRUE(readArcArgument(cursor, extension, *run));
    EXPECT_EQ(nullptr, cursor);
    return run;
}

void expectPoint(double x, double y, const AcGePoint3d& point) {
    EXPECT_NEAR(x, point.x, tolerance);
    EXPECT_NEAR(y, point.y, tolerance);
    EXPECT_EQ(0.0, point.z);
}

TEST(RunArc, leftTurnRunsFromTheStartPoint) {
    const auto run = quarterArc(1, 3);
    expectPoint(0, 2, run->arc->center());
    expectPoint(0, 0, run->head.startPoint());
    expectPoint(-3, 0, run->head.endPoint());
    expectPoint(2, 2, run->tail.startPoint());
    expectPoint(2, 5, run->tail.endPoint());
    EXPECT_NEAR(std::numbers::pi, run->length, tolerance);
    EXPECT_FALSE(run->countsBackwards());
}

// The arc itself is counter-clockwise, so it ends where the run starts, and both extensions lie behind the
// start.
TEST(RunArc, rightTurnEndsAtTheStartPoint) {
    const auto run = quarterArc(-1, 3);
    expectPoint(0, -2, run->arc->center());
    expectPoint(-3, 0, run->head.endPoint());
    expectPoint(0, 0, run->tail.startPoint());
    expectPoint(-3, 0, run->tail.endPoint());
    EXPECT_TRUE(run->countsBackwards());
}

TEST(RunArc, turnOfZeroIsCentredAheadAndClockwise) {
    const auto run = quarterArc(0, 0);
    expectPoint(2, 0, run->arc->center());
    AcGePoint3d end;
    EXPECT_EQ(Acad::eOk, run->arc->getEndPoint(end));
    expectPoint(0, 0, end);
    EXPECT_FALSE(run->countsBackwards());
}

TEST(RunArc, anyMissingValueLeavesNoArc) {
    ads_point given = {0, 0, 0};
    ads_real* const start = given;
    const ValueList list =
        makeList(int{RT3DPOINT}, start, int{RTREAL}, 0.0, int{RTSHORT}, 1, int{RTSTR}, L"radius");
    ArgCursor cursor = list.get();
    RunArc run;
    EXPECT_FALSE(readArcArgument(cursor, 0, run));
    EXPECT_EQ(nullptr, run.arc);
}

TEST(GeometryHelpers, anglesCoverOneTurnInFullPrecision) {
    EXPECT_DOUBLE_EQ(std::numbers::pi, angleTo({1, 1, 0}, {0, 1, 5}));
    EXPECT_DOUBLE_EQ(1.5 * std::numbers::pi, angleTo({0, 0, 0}, {0, -1, 0}));
    EXPECT_EQ(0.0, angleTo({1, 1, 0}, {1, 1, 0}));
    EXPECT_DOUBLE_EQ(3.14159265, degToRad(180));
    EXPECT_DOUBLE_EQ(180.0, radToDeg(3.14159265));
    const AcGePoint3d point = polarPoint({1, 2, 3}, std::numbers::pi / 2, 4);
    EXPECT_NEAR(1, point.x, 1e-12);
    EXPECT_NEAR(6, point.y, 1e-12);
    EXPECT_EQ(3, point.z);
}

}  // namespace

}  // namespace tessary::testing
