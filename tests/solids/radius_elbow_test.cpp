#include "solid_checks.h"

#include "solids/shapes/radius_elbow.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

using namespace solids;

namespace {

constexpr double kRightAngle = std::numbers::pi / 2;

// Two runs with a corner in the origin, each 100 long: the first arrives along X, the second leaves turned to
// the left by the angle.
struct Runs {
    DuctEnd start, end;
};
Runs levelRuns(double angle, const Section& section) {
    const AcGeVector3d out(std::cos(angle), std::sin(angle), 0);
    return {{{-100, 0, 0}, section, frameAlong({1, 0, 0})},
            {AcGePoint3d() + out * 100, section, frameAlong(out)}};
}

RadiusElbow made(const Runs& runs, double radius) {
    const std::optional<RadiusElbow> elbow = makeRadiusElbow(runs.start, runs.end, radius, 0, 3);
    EXPECT_TRUE(elbow);
    return elbow.value_or(RadiusElbow{});
}

// Stepped: of a full turn's volume or area, what equal steps of chords cover.
double stepped(double angle, double steps) {
    return steps * std::sin(angle / steps);
}

// The ends lie on the runs, and straight bodies that carry on from there meet the elbow's faces point by
// point.
void expectCarriesOn(const Runs& runs, const RadiusElbow& elbow) {
    const std::optional<Body> before =
        makeTransition(runs.start, {elbow.start, runs.start.section, runs.start.frame}, 0);
    const std::optional<Body> after =
        makeTransition({elbow.end, runs.end.section, runs.end.frame}, runs.end, 0);
    ASSERT_TRUE(before && after);
    EXPECT_EQ(before->kind, BodyKind::straight);
    EXPECT_EQ(after->kind, BodyKind::straight);
    expectFacesMeet(before->mesh, FaceKind::end, elbow.body.mesh, FaceKind::start);
    expectFacesMeet(elbow.body.mesh, FaceKind::end, after->mesh, FaceKind::start);
}

void expectStepped(double angle, double steps, const Section& section, double radius, double area) {
    SCOPED_TRACE(angle);
    const Runs runs = levelRuns(angle, section);
    const RadiusElbow elbow = made(runs, radius);
    ASSERT_FALSE(elbow.body.mesh.empty());
    expectSolid(elbow.body.mesh, area * radius * stepped(angle, steps));
    EXPECT_NEAR(volumeOf(elbow.body.mesh), area * radius * angle, 0.002 * area * radius * angle);
    expectCarriesOn(runs, elbow);
    EXPECT_NEAR(elbow.start.x, -radius * std::tan(angle / 2), 1e-9);
    EXPECT_EQ(elbow.body.kind, BodyKind::radiusElbow);
    EXPECT_EQ(elbow.body.flags, 3);
    ASSERT_EQ(elbow.body.centerLines.size(), 1u);
    EXPECT_EQ(elbow.body.centerLines[0].size(), static_cast<std::size_t>(steps) + 1);
    EXPECT_EQ(elbow.body.centerLines[0].back().distanceTo(elbow.end), 0);
}

}  // namespace

TEST(RadiusElbow, VolumeIsAreaTimesTheArcOfTheCentroid) {
    expectStepped(kRightAngle, 16, rectangle(4, 3), 6, 12);
    expectStepped(kRightAngle, 16, circle(4), 6, roundArea(4));
    expectStepped(kRightAngle, 16, oval(4, 7), 6, roundArea(4) + 12);
    expectStepped(std::numbers::pi / 4, 8, circle(4), 2.004, roundArea(4));
    expectStepped(0.001, 2, rectangle(4, 3), 6, 12);
    expectStepped(0.2, 3, circle(4), 40, roundArea(4));
    expectStepped(2.9, 30, rectangle(4, 3), 3, 12);
    const Mesh round = made(levelRuns(kRightAngle, circle(4)), 6).body.mesh;
    EXPECT_EQ(round.points.size(), 17 * 64u);
    EXPECT_EQ(round.triangles.size(), 16 * 64 * 2 + 2 * 62u);
}

TEST(RadiusElbow, WallsOfARectangularElbow) {
    const Mesh mesh = made(levelRuns(kRightAngle, rectangle(4, 3)), 6).body.mesh;
    const double chords = 2 * 16 * std::sin(kRightAngle / 32);
    const double flat = (8 * 8 - 4 * 4) / 2.0 * stepped(kRightAngle, 16);
    EXPECT_NEAR(areaOf(mesh, FaceKind::wall), (8 + 4) * chords * 3 + 2 * flat, 1e-9);
    EXPECT_NEAR(areaOf(mesh, FaceKind::start), 12, 1e-12);
    EXPECT_NEAR(areaOf(mesh, FaceKind::end), 12, 1e-9);
}

TEST(RadiusElbow, VerticalAndCompoundBends) {
    const AcGeVector3d up(0, 0, 1);
    const Section flat = rectangle(5, 2);
    const Runs rising{{{-50, 0, 0}, flat, frameAlong({1, 0, 0})},
                      {{0, 0, 50}, flat, rotated(frameAlong({1, 0, 0}), -kRightAngle, {0, 1, 0})}};
    const RadiusElbow riser = made(rising, 4);
    EXPECT_NEAR(riser.start.x, -4, 1e-9);
    EXPECT_NEAR(riser.end.z, 4, 1e-9);
    expectSolid(riser.body.mesh, 10 * 4 * stepped(kRightAngle, 16));
    expectCarriesOn(rising, riser);
    EXPECT_NEAR(boxOf(riser.body.mesh).high.y, 2.5, 1e-9);

    // From level to rising askew, as pipes turn; the frames do not show the same turn of the section.
    const AcGeVector3d askew = AcGeVector3d(0.3, 0.8, 0.6).normal();
    for (const Section& section : {circle(4), rectangle(4, 4), rectangle(5, 3), oval(5, 3)}) {
        const Runs runs{{{-50, 0, 0}, section, frameAlong({1, 0, 0})},
                        {AcGePoint3d() + askew * 50, section, frameAlong(askew)}};
        const RadiusElbow elbow = made(runs, 6);
        EXPECT_TRUE(isSolid(elbow.body.mesh));
        expectCarriesOn(runs, elbow);
    }
}

TEST(RadiusElbow, SizesAndShapesChangeOnTheWay) {
    Runs runs = levelRuns(1.2, rectangle(6, 4));
    runs.end.section = circle(5);
    const RadiusElbow elbow = made(runs, 8);
    EXPECT_TRUE(isSolid(elbow.body.mesh));
    expectCarriesOn(runs, elbow);
    // The same section in a frame turned by a quarter makes no difference.
    const RadiusElbow plain = made(levelRuns(1.2, rectangle(6, 4)), 8);
    runs.end.section = rectangle(4, 6);
    runs.end.frame = rotated(runs.end.frame, kRightAngle, runs.end.frame.x);
    const RadiusElbow turned = made(runs, 8);
    expectSolid(turned.body.mesh, volumeOf(plain.body.mesh));
    expectCarriesOn(runs, turned);
}

TEST(RadiusElbow, TwistsEvenlyFromOneFrameToTheOther) {
    Runs runs = levelRuns(kRightAngle, rectangle(4, 4));
    runs.end.frame = rotated(runs.end.frame, 0.3, runs.end.frame.x);
    const RadiusElbow elbow = made(runs, 8);
    EXPECT_TRUE(isSolid(elbow.body.mesh));
    expectCarriesOn(runs, elbow);
    // The heel's corners move by 1.1 from step to step, all of the twist at once would add 0.8.
    for (const Triangle& triangle : elbow.body.mesh.triangles) {
        double shortest = 100;
        for (int i = 0; i < 3; ++i) {
            const AcGePoint3d& corner = elbow.body.mesh.corner(triangle, i);
            shortest = std::min(shortest, corner.distanceTo(elbow.body.mesh.corner(triangle, (i + 1) % 3)));
        }
        EXPECT_TRUE(triangle.kind != FaceKind::wall || shortest < 1.3) << shortest;
    }
}

TEST(RadiusElbow, CentreLinesThatPassEachOther) {
    Runs runs = levelRuns(kRightAngle, rectangle(4, 3));
    runs.end.center.z = 2;
    const RadiusElbow elbow = made(runs, 6);
    EXPECT_NEAR(elbow.end.z, 2, 1e-9);
    EXPECT_NEAR(elbow.start.z, 0, 1e-9);
    // A shift along the bend's axis keeps the volume but for its steps.
    expectSolid(elbow.body.mesh, 12 * 6 * stepped(kRightAngle, 16), 0.01);
    expectCarriesOn(runs, elbow);
    runs.end.center.z = 6 * kRightAngle / 2 + 0.01;
    EXPECT_FALSE(makeRadiusElbow(runs.start, runs.end, 6, 0, 0));
}

TEST(RadiusElbow, EndsAtTheTangentPointsStay) {
    Runs runs = levelRuns(1.1, circle(4));
    const RadiusElbow first = made(runs, 6);
    runs.start.center = first.start;
    runs.end.center = first.end;
    const RadiusElbow again = made(runs, 6);
    EXPECT_LT(again.start.distanceTo(first.start), 1e-12);
    EXPECT_LT(again.end.distanceTo(first.end), 1e-12);
}

TEST(RadiusElbow, RefusesWhatDoesNotFit) {
    const Runs runs = levelRuns(kRightAngle, rectangle(4, 3));
    const auto refuses = [](const Runs& refused, double radius, double wall = 0) {
        return !makeRadiusElbow(refused.start, refused.end, radius, wall, 0);
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(refuses(runs, 2.004));
    EXPECT_TRUE(refuses(runs, 2));
    EXPECT_TRUE(refuses(runs, 0));
    EXPECT_TRUE(refuses(runs, -6));
    EXPECT_TRUE(refuses(runs, nan));
    EXPECT_TRUE(refuses(runs, 100.1));
    EXPECT_FALSE(refuses(runs, 100));
    EXPECT_FALSE(refuses(runs, 6, 1.4));
    EXPECT_TRUE(refuses(runs, 6, 1.5));
    EXPECT_TRUE(refuses(runs, 6, -0.1));
    EXPECT_TRUE(refuses(runs, 6, nan));
    EXPECT_TRUE(refuses(levelRuns(0, rectangle(4, 3)), 6));
    EXPECT_TRUE(refuses(levelRuns(0.0009, rectangle(4, 3)), 6));
    EXPECT_TRUE(refuses(levelRuns(std::numbers::pi - 0.0009, rectangle(4, 3)), 6));
    EXPECT_TRUE(refuses(levelRuns(kRightAngle, rectangle(0, 3)), 6));
    Runs wide = runs;
    wide.end.section.width = 13;
    EXPECT_TRUE(refuses(wide, 6));
    // The second run ends before the corner.
    Runs behind = runs;
    behind.end.center = {0, -20, 0};
    EXPECT_TRUE(refuses(behind, 6));
}

TEST(RadiusElbow, NearlyBack) {
    const double angle = std::numbers::pi - 0.01;
    Runs runs = levelRuns(angle, circle(4));
    runs.start.center = {-5000, 0, 0};
    runs.end.center = AcGePoint3d() + runs.end.frame.x * 5000;
    const RadiusElbow elbow = made(runs, 6);
    expectSolid(elbow.body.mesh, roundArea(4) * 6 * stepped(angle, 32), 1e-8);
}
