#include "solid_checks.h"

#include "solids/shapes/radius_elbow.h"

#include <cmath>
#include <numbers>

using namespace solids;

namespace {

constexpr double kRightAngle = std::numbers::pi / 2;

DuctEnd startOf(const Section& section) {
    return {{-100, 0, 0}, section, frameAlong({1, 0, 0})};
}

AcGeVector3d leaving(double angle) {
    return {std::cos(angle), std::sin(angle), 0};
}

// The plan's area: the two right-angled triangles between the arc's centre and the heel, less the stepped
// throat.
double planArea(double angle, int steps, double width, double radius) {
    const double heel = radius + width / 2;
    const double throat = radius - width / 2;
    return heel * heel * std::tan(angle / 2) - throat * throat / 2 * steps * std::sin(angle / steps);
}

void expectTray(double angle, int steps, double width, double radius) {
    SCOPED_TRACE(angle);
    const DuctEnd start = startOf(rectangle(width, 0.5));
    const AcGeVector3d out = leaving(angle);
    const AcGePoint3d far = AcGePoint3d() + out * 100;
    const auto elbow = makeCableTrayElbow(start, far, frameAlong(out), radius, 4);
    ASSERT_TRUE(elbow);
    expectSolid(elbow->body.mesh, 0.5 * planArea(angle, steps, width, radius));
    EXPECT_EQ(elbow->body.kind, BodyKind::cableTrayElbow);
    EXPECT_EQ(elbow->body.flags, 4);
    const auto before = makeTransition(start, {elbow->start, start.section, start.frame}, 0);
    const auto after = makeTransition({elbow->end, start.section, frameAlong(out)},
                                      {far, start.section, frameAlong(out)}, 0);
    ASSERT_TRUE(before && after);
    expectFacesMeet(before->mesh, FaceKind::end, elbow->body.mesh, FaceKind::start);
    expectFacesMeet(elbow->body.mesh, FaceKind::end, after->mesh, FaceKind::start);

    DuctEnd placed = start;
    placed.center = elbow->start;
    const auto again = makeCableTrayElbow(placed, elbow->end, frameAlong(out), radius, 4);
    ASSERT_TRUE(again);
    EXPECT_LT(again->start.distanceTo(elbow->start), 1e-12);
    EXPECT_LT(again->end.distanceTo(elbow->end), 1e-12);
}

}  // namespace

TEST(CableTrayElbow, RoundThroatSquareHeel) {
    expectTray(kRightAngle, 16, 4, 3);
    expectTray(0.3, 4, 4, 30);
    expectTray(0.001, 2, 4, 30);
    expectTray(2.7, 28, 4, 5);
    // The heel's corner is where the outer sides of both runs meet.
    const auto elbow =
        makeCableTrayElbow(startOf(rectangle(4, 0.5)), {0, 100, 0}, frameAlong({0, 1, 0}), 3, 0);
    ASSERT_TRUE(elbow);
    EXPECT_NEAR(boxOf(elbow->body.mesh).high.x, 2, 1e-9);
    EXPECT_NEAR(boxOf(elbow->body.mesh).low.y, -2, 1e-9);
}

TEST(CableTrayElbow, SectionOnEdge) {
    // Standing upright in both frames, and in a frame that shows it turned.
    const Section section = rectangle(0.5, 4);
    const DuctEnd start{{-100, 0, 0}, section, frameAlong({1, 0, 0}, kRightAngle)};
    const auto elbow = makeCableTrayElbow(start, {0, 100, 0}, frameAlong({0, 1, 0}, -kRightAngle), 3, 0);
    ASSERT_TRUE(elbow);
    expectSolid(elbow->body.mesh, 0.5 * planArea(kRightAngle, 16, 4, 3));
}

TEST(CableTrayElbow, RefusesWhatIsNotFlat) {
    const DuctEnd start = startOf(rectangle(4, 0.5));
    const AcGePoint3d far(0, 100, 0);
    const Frame frame = frameAlong({0, 1, 0});
    EXPECT_FALSE(makeCableTrayElbow(start, far, frame, 2, 0));
    EXPECT_FALSE(makeCableTrayElbow(start, far, frameAlong({0, 1, 0}, 0.1), 3, 0));
    EXPECT_FALSE(makeCableTrayElbow(start, far, frameAlong({0, 1, 0}, kRightAngle), 3, 0));
    EXPECT_FALSE(makeCableTrayElbow(start, {0, 100, 1}, frame, 3, 0));
    EXPECT_FALSE(makeCableTrayElbow(startOf(oval(4, 0.5)), far, frame, 3, 0));
    EXPECT_FALSE(makeCableTrayElbow(start, {100, 0, 0}, frameAlong({1, 0, 0}), 3, 0));
    EXPECT_FALSE(makeCableTrayElbow(start, far, frame, 101, 0));
    EXPECT_FALSE(makeCableTrayElbow(start, {0, std::nan(""), 0}, frame, 3, 0));
}
