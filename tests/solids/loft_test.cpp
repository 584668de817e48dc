#include "solid_checks.h"

#include "solids/shapes/loft.h"

#include <cmath>
#include <limits>
#include <numbers>

using namespace solids;

namespace {

// Square to the x axis.
Outline outlineAt(double x, const Section& section, double turn = 0) {
    return placedOutline(flatOutline(section), {x, 0, 0}, frameAlong({1, 0, 0}, turn));
}

Outline pointAt(double x) {
    Outline outline;
    outline.fill({x, 0, 0});
    return outline;
}

}  // namespace

TEST(Loft, OutlinesOneAfterTheOther) {
    const auto mesh = loft(std::array{outlineAt(0, rectangle(4, 4)), outlineAt(5, rectangle(4, 4)),
                                      outlineAt(8, rectangle(2, 2)), outlineAt(9, circle(3))});
    ASSERT_TRUE(mesh);
    const double lastPart = (4 + (2 + 2) * 3 / 2.0 + roundArea(3)) / 3;
    expectSolid(*mesh, 5 * 16 + prismatoidVolume(3, 16, 9, 4) + lastPart);
    EXPECT_NEAR(areaOf(*mesh, FaceKind::start), 16, 1e-12);
    EXPECT_NEAR(areaOf(*mesh, FaceKind::end), roundArea(3), 1e-12);
}

TEST(Loft, BackwardsItIsTurnedOutsideOut) {
    const auto mesh = loft(std::array{outlineAt(8, rectangle(4, 4)), outlineAt(0, circle(3))});
    ASSERT_TRUE(mesh);
    expectSolid(*mesh, (16 + 8 * 3 / 2.0 + roundArea(3)) * 8 / 3);
}

TEST(Loft, PointsThatTouchBecomeOne) {
    const auto pyramid = loft(std::array{outlineAt(0, rectangle(4, 3)), pointAt(5)});
    ASSERT_TRUE(pyramid);
    expectSolid(*pyramid, 4 * 3 * 5 / 3.0);
    EXPECT_EQ(pyramid->points.size(), 5u);
    EXPECT_EQ(pyramid->triangles.size(), 6u);
    // A wedge: the second outline opens from one side of the first.
    Outline opened = outlineAt(0, rectangle(4, 3));
    for (AcGePoint3d& point : opened) {
        point.x = point.z > 0 ? 2 : 0;
    }
    const auto wedge = loft(std::array{outlineAt(0, rectangle(4, 3)), opened});
    ASSERT_TRUE(wedge);
    expectSolid(*wedge, 4 * 3 * 2 / 2.0);
    EXPECT_EQ(wedge->points.size(), 6u);
    // Rounding of a far place parts no points.
    Outline jittered = outlineAt(5, circle(4));
    jittered[16].y += 1e-10;
    const auto tube = loft(std::array{outlineAt(0, circle(4)), jittered});
    ASSERT_TRUE(tube);
    EXPECT_EQ(tube->points.size(), 128u);
}

TEST(Loft, RefusesWhatHasNoVolume) {
    const Outline square = outlineAt(0, rectangle(4, 4));
    EXPECT_FALSE(loft(std::span(&square, 1)));
    EXPECT_FALSE(loft(std::array{square, square}));
    EXPECT_FALSE(loft(std::array{square, outlineAt(0, rectangle(2, 2))}));
    EXPECT_FALSE(loft(std::array{pointAt(0), pointAt(1)}));
    EXPECT_FALSE(loft(std::array{square, pointAt(std::numeric_limits<double>::quiet_NaN())}));
}

TEST(Loft, WallsOfUsualFittingsAreCertainlySimple) {
    const Outline flat = outlineAt(0, rectangle(20, 4));
    EXPECT_TRUE(isCertainlySimple(flat, outlineAt(1, rectangle(20, 4))));
    EXPECT_TRUE(isCertainlySimple(flat, outlineAt(1, rectangle(4, 20))));
    EXPECT_TRUE(isCertainlySimple(flat, outlineAt(1, circle(3))));
    EXPECT_TRUE(isCertainlySimple(flat, outlineAt(1, oval(30, 2))));
    EXPECT_TRUE(isCertainlySimple(outlineAt(0, rectangle(4, 4)), outlineAt(1, rectangle(4, 4), 0.7)));
    const Outline tilted = placedOutline(flatOutline(circle(4)), {5, 0, 0}, frameAlong({1, 1, 0}));
    EXPECT_TRUE(isCertainlySimple(outlineAt(0, circle(4)), tilted));
    // Backwards, in one plane, turned far, and with planes that meet in the sections.
    EXPECT_FALSE(isCertainlySimple(flat, outlineAt(-1, rectangle(20, 4))));
    EXPECT_FALSE(isCertainlySimple(flat, flat));
    EXPECT_FALSE(isCertainlySimple(outlineAt(0, rectangle(4, 4)), outlineAt(1, rectangle(4, 4), 2.9)));
    EXPECT_FALSE(isCertainlySimple(outlineAt(4, circle(4)), tilted));
}

TEST(Loft, WhatIsCertainlySimpleIsASolidAtEveryTurn) {
    int certain = 0;
    int crossing = 0;
    for (const Section& section : {rectangle(4, 4), rectangle(9, 2), oval(9, 2), circle(4)}) {
        for (int step = 0; step < 60; ++step) {
            const AcGeVector3d way = AcGeVector3d(1, step % 5 * 0.25, step % 3 * 0.1).normal();
            const std::array outlines{
                outlineAt(0, rectangle(6, 4)),
                placedOutline(flatOutline(section), {7, 1, 0}, frameAlong(way, step * 0.1))};
            const auto mesh = loft(outlines);
            const bool solid = mesh && isSolid(*mesh);
            const bool simple = isCertainlySimple(outlines[0], outlines[1]);
            EXPECT_TRUE(solid || !simple) << "step " << step;
            certain += simple ? 1 : 0;
            crossing += solid ? 0 : 1;
        }
    }
    EXPECT_GT(certain, 60);
    EXPECT_GT(crossing, 20);
}

TEST(Section, ReachAndFrames) {
    const Frame frame = frameAlong({0, 0, 1}, 0.3);
    EXPECT_NEAR(reach(rectangle(6, 4), frame, frame.y), 3, 1e-12);
    EXPECT_NEAR(reach(oval(6, 4), frame, -frame.z), 2, 1e-12);
    const AcGeVector3d aslant = frame.y * 0.6 + frame.z * 0.8;
    EXPECT_NEAR(reach(rectangle(6, 4), frame, aslant), 3 * 0.6 + 2 * 0.8, 1e-12);
    EXPECT_NEAR(reach(oval(6, 4), frame, aslant), 2 + 1 * 0.6, 1e-12);
    EXPECT_NEAR(reach(circle(4), frame, aslant), 2, 1e-12);

    const AcGeVector3d rough[3] = {{1 + 1e-8, 0, 0}, {1e-8, 1, 0}, {0, 0, 1}};
    const auto fixed = frameOf(rough);
    ASSERT_TRUE(fixed);
    EXPECT_EQ(fixed->x.x, 1);
    EXPECT_EQ(fixed->x.dotProduct(fixed->y), 0);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const AcGeVector3d leftHanded[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}};
    const AcGeVector3d aslantFrame[3] = {{1, 0, 0}, {0.6, 0.8, 0}, {0, 0, 1}};
    const AcGeVector3d longFrame[3] = {{2, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const AcGeVector3d noNumber[3] = {{1, 0, 0}, {0, nan, 0}, {0, 0, 1}};
    EXPECT_FALSE(frameOf(leftHanded) || frameOf(aslantFrame) || frameOf(longFrame) || frameOf(noNumber));
    EXPECT_FALSE(frameOf(nullptr));
}
