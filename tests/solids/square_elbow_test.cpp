#include "solid_checks.h"

#include "solids/shapes/loft.h"
#include "solids/shapes/square_elbow.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

using namespace solids;

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kCollar = 3;

AcGeVector3d levelDirection(double angle) {
    return {std::cos(angle), std::sin(angle), 0};
}

// Far ends of two level runs that meet in the corner, the second turning left by the angle.
struct Runs {
    DuctEnd start, end;
};
Runs levelRuns(double angle, const Section& first, const Section& last, double length = 200,
               const AcGePoint3d& corner = {50, -20, 7}) {
    const AcGeVector3d in = levelDirection(0.3);
    const AcGeVector3d out = levelDirection(0.3 + angle);
    return {{corner - in * length, first, frameAlong(in)}, {corner + out * length, last, frameAlong(out)}};
}

// The elbow's own ends.
Runs shortened(Runs runs, const SquareElbowPlan& plan) {
    runs.start.center = plan.start;
    runs.end.center = plan.end;
    return runs;
}

Body made(const Runs& runs, const SquareElbowPlan& plan) {
    const Runs own = shortened(runs, plan);
    const auto body = makeSquareElbow(own.start, own.end, plan.corner, 4);
    EXPECT_TRUE(body);
    return body.value_or(Body{});
}

// A straight duct from the elbow's end onwards.
Mesh ductBehind(const DuctEnd& end) {
    const FlatOutline flat = flatOutline(end.section);
    return loft(std::array{placedOutline(flat, end.center, end.frame),
                           placedOutline(flat, end.center + end.frame.x * 5, end.frame)})
        .value_or(Mesh{});
}

bool isRefused(const Runs& runs) {
    return !planSquareElbow(runs.start, runs.end, kCollar);
}

}  // namespace

TEST(SquareElbow, ThroatCollarsAndVolumeOfEqualSections) {
    const double area[] = {12 * 8, roundArea(12), roundArea(8) + 4 * 8};
    const Section sections[] = {rectangle(12, 8), circle(12), oval(12, 8)};
    for (const double angle : {0.02, 0.7, kPi / 2, 2.2, 174.5 * kPi / 180}) {
        for (int i = 0; i < 3; ++i) {
            const Runs runs = levelRuns(angle, sections[i], sections[i], 700);
            const auto plan = planSquareElbow(runs.start, runs.end, kCollar);
            ASSERT_TRUE(plan) << angle;
            const double leg = 6 * std::tan(angle / 2) + kCollar;
            EXPECT_NEAR(plan->start.distanceTo(plan->corner), leg, 1e-8);
            EXPECT_NEAR(plan->end.distanceTo(plan->corner), leg, 1e-8);
            EXPECT_NEAR(plan->corner.distanceTo({50, -20, 7}), 0, 1e-9);
            const Body body = made(runs, *plan);
            expectSolid(body.mesh, area[i] * 2 * leg, 1e-8);
            EXPECT_NEAR(areaOf(body.mesh, FaceKind::start), area[i], 1e-9 * area[i]);
            EXPECT_NEAR(areaOf(body.mesh, FaceKind::end), area[i], 1e-9 * area[i]);
        }
    }
}

// As ducts of different heights do that are flush at their bottoms. A leg that shifts is an oblique prism.
TEST(SquareElbow, RunsThatPassEachOtherAreJoinedByALegThatShifts) {
    const Section sections[] = {rectangle(12, 8), circle(12), oval(12, 8)};
    const double area[] = {12 * 8, roundArea(12), roundArea(8) + 4 * 8};
    for (const double shift : {1e-5, 2.0, -3.9}) {
        for (int i = 0; i < 3; ++i) {
            SCOPED_TRACE(shift);
            Runs runs = levelRuns(1, sections[i], sections[i]);
            runs.end.center.z += shift;
            const auto plan = planSquareElbow(runs.start, runs.end, kCollar);
            ASSERT_TRUE(plan);
            const Body body = made(runs, *plan);
            expectSolid(body.mesh, area[i] * 2 * (6 * std::tan(0.5) + kCollar), 1e-8);
            const Runs own = shortened(runs, *plan);
            expectFacesMeet(body.mesh, FaceKind::end, ductBehind(own.end), FaceKind::start);
            EXPECT_NEAR(own.end.center.z - own.start.center.z, shift, 1e-9);
        }
    }
    Runs runs = levelRuns(1, sections[0], sections[0]);
    runs.end.center.z += 1;
    const auto plan = planSquareElbow(runs.start, runs.end, 0);  // leaves no duct to shift on
    ASSERT_TRUE(plan);
    const Runs own = shortened(runs, *plan);
    EXPECT_FALSE(makeSquareElbow(own.start, own.end, plan->corner, 0));
}

TEST(SquareElbow, KeepsKindFlagsAndCenterLine) {
    const Runs runs = levelRuns(1, rectangle(12, 8), rectangle(12, 8));
    const auto plan = planSquareElbow(runs.start, runs.end, kCollar);
    ASSERT_TRUE(plan);
    const Body body = made(runs, *plan);
    EXPECT_EQ(body.kind, BodyKind::squareElbow);
    EXPECT_EQ(body.flags, 4);
    ASSERT_EQ(body.centerLines.size(), 1u);
    ASSERT_EQ(body.centerLines[0].size(), 3u);
    EXPECT_EQ(body.centerLines[0][0].distanceTo(plan->start), 0);
    EXPECT_EQ(body.centerLines[0][1].distanceTo(plan->corner), 0);
    EXPECT_EQ(body.centerLines[0][2].distanceTo(plan->end), 0);
}

// The mitre runs from where the inner walls meet to where the outer walls meet, so each leg is as long in the
// middle as from the end to the corner.
TEST(SquareElbow, WidthsInThePlaneOfTheBendMayDiffer) {
    for (const double angle : {0.5, kPi / 2, 2.5}) {
        for (const auto& [width1, width2] : {std::pair(12.0, 5.0), std::pair(5.0, 12.0)}) {
            const Runs runs = levelRuns(angle, rectangle(width1, 8), rectangle(width2, 8));
            const auto plan = planSquareElbow(runs.start, runs.end, kCollar);
            ASSERT_TRUE(plan);
            const double leg1 = plan->start.distanceTo(plan->corner);
            const double leg2 = plan->end.distanceTo(plan->corner);
            const double inner = (width2 - width1 * std::cos(angle)) / 2 / std::sin(angle);
            EXPECT_NEAR(leg1, std::abs(inner) + kCollar, 1e-9);
            const Body body = made(runs, *plan);
            expectSolid(body.mesh, 8 * (width1 * leg1 + width2 * leg2));
            const Runs own = shortened(runs, *plan);
            expectFacesMeet(body.mesh, FaceKind::end, ductBehind(own.end), FaceKind::start);
        }
    }
    const Runs ovals = levelRuns(1, oval(12, 8), oval(20, 8));
    const auto plan = planSquareElbow(ovals.start, ovals.end, kCollar);
    ASSERT_TRUE(plan);
    EXPECT_TRUE(isSolid(made(ovals, *plan).mesh));
}

// The second run's frame shows the section turned by quarter turns: its width is the first one's height.
TEST(SquareElbow, QuarterTurnsOfTheFrame) {
    for (int quarters = 0; quarters < 4; ++quarters) {
        const Section last = quarters % 2 == 0 ? rectangle(12, 8) : rectangle(8, 12);
        Runs runs = levelRuns(1.2, rectangle(12, 8), last);
        runs.end.frame = rotated(runs.end.frame, quarters * kPi / 2, runs.end.frame.x);
        const auto plan = planSquareElbow(runs.start, runs.end, kCollar);
        ASSERT_TRUE(plan) << quarters;
        const Body body = made(runs, *plan);
        expectSolid(body.mesh, 2 * 96 * (6 * std::tan(0.6) + kCollar));
        const Runs own = shortened(runs, *plan);
        expectFacesMeet(body.mesh, FaceKind::end, ductBehind(own.end), FaceKind::start);
        DuctEnd before = own.start;
        before.center = before.center - before.frame.x * 5;
        expectFacesMeet(body.mesh, FaceKind::start, ductBehind(before), FaceKind::end);
    }
}

TEST(SquareElbow, SectionsThatDifferAcrossTheBendAreRefused) {
    EXPECT_FALSE(isRefused(levelRuns(1, rectangle(12, 8), rectangle(12, 8 * (1 + 1e-8)))));
    EXPECT_TRUE(isRefused(levelRuns(1, rectangle(12, 8), rectangle(12, 8.001))));
    EXPECT_TRUE(isRefused(levelRuns(1, rectangle(12, 8), rectangle(8, 12))));
    EXPECT_TRUE(isRefused(levelRuns(1, rectangle(8, 8), circle(8))));
    EXPECT_TRUE(isRefused(levelRuns(1, circle(8), circle(9))));
    EXPECT_TRUE(isRefused(levelRuns(1, circle(8), oval(12, 8))));

    Runs askew = levelRuns(1, rectangle(12, 8), rectangle(12, 8));
    askew.end.frame = rotated(askew.end.frame, 0.005, askew.end.frame.x);
    EXPECT_FALSE(isRefused(askew));
    askew.end.frame = rotated(askew.end.frame, 0.3, askew.end.frame.x);
    EXPECT_TRUE(isRefused(askew));
    askew.start.section = askew.end.section = circle(12);
    EXPECT_FALSE(isRefused(askew));
}

TEST(SquareElbow, RunsThatCannotBeJoinedAreRefused) {
    const Section section = rectangle(12, 8);
    EXPECT_TRUE(isRefused(levelRuns(0.0005, section, section, 1e6)));
    EXPECT_TRUE(isRefused(levelRuns(kPi, section, section, 1e6)));

    Runs passing = levelRuns(1, section, section);
    passing.end.center.z += 1e-7;
    EXPECT_FALSE(isRefused(passing));
    passing.end.center.z += 4;  // half of the smallest size
    EXPECT_TRUE(isRefused(passing));

    const double leg = 6 * std::tan(0.5) + kCollar;
    EXPECT_FALSE(isRefused(levelRuns(1, section, section, leg + 1e-6)));
    EXPECT_TRUE(isRefused(levelRuns(1, section, section, leg - 1e-6)));
    EXPECT_TRUE(isRefused(levelRuns(1, section, section, -50)));

    Runs bad = levelRuns(1, section, section);
    EXPECT_FALSE(planSquareElbow(bad.start, bad.end, -1));
    EXPECT_FALSE(planSquareElbow(bad.start, bad.end, std::numeric_limits<double>::quiet_NaN()));
    bad.end.section.width = 0;
    EXPECT_TRUE(isRefused(bad));
    bad.end.section.width = 12;
    bad.start.center.x = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(isRefused(bad));
}

TEST(SquareElbow, OnlyWhatWasPlannedTogetherIsBuilt) {
    const Runs runs = levelRuns(1, rectangle(12, 8), rectangle(12, 8));
    const auto plan = planSquareElbow(runs.start, runs.end, kCollar);
    ASSERT_TRUE(plan);
    const Runs own = shortened(runs, *plan);
    EXPECT_FALSE(makeSquareElbow(own.start, own.end, plan->corner + own.start.frame.x * 0.01, 0));
    EXPECT_FALSE(makeSquareElbow(own.start, own.end, plan->corner + own.start.frame.z, 0));
    Runs inside = own;
    inside.start.center = plan->corner - own.start.frame.x;
    EXPECT_FALSE(makeSquareElbow(inside.start, inside.end, plan->corner, 0));
    Runs behind = own;
    behind.end.center = plan->corner - own.end.frame.x * 20;
    EXPECT_FALSE(makeSquareElbow(behind.start, behind.end, plan->corner, 0));
    // Without collars the ends touch at the throat.
    const auto bare = planSquareElbow(runs.start, runs.end, 0);
    ASSERT_TRUE(bare);
    expectSolid(made(runs, *bare).mesh, 96 * 2 * 6 * std::tan(0.5));
}

TEST(SquareElbow, BoxesSurroundTheLegs) {
    const Runs runs = levelRuns(kPi / 2, circle(12), circle(12));
    const auto plan = planSquareElbow(runs.start, runs.end, kCollar);
    ASSERT_TRUE(plan);
    const Frame& frame = runs.start.frame;
    for (int i = 0; i < 4; ++i) {
        const double y = i == 0 || i == 3 ? 6 : -6;
        const double z = i < 2 ? 6 : -6;
        EXPECT_NEAR(plan->startLeg[i].distanceTo(plan->start + frame.y * y + frame.z * z), 0, 1e-9);
        // The mitre reaches as far back as its point lies to the left, towards the inside.
        const AcGePoint3d onMitre = plan->corner - frame.x * y + frame.y * y + frame.z * z;
        EXPECT_NEAR(plan->startLeg[i + 4].distanceTo(onMitre), 0, 1e-9);
        EXPECT_NEAR(plan->endLeg[i + 4].distanceTo(onMitre), 0, 1e-9);
        EXPECT_NEAR((plan->endLeg[i] - plan->end).dotProduct(runs.end.frame.x), 0, 1e-9);
        EXPECT_NEAR((plan->endLeg[i] - plan->end).dotProduct(runs.end.frame.y), y, 1e-9);
    }
}

TEST(SquareElbow, AnyBendInSpaceIsValid) {
    std::mt19937 random(20110);
    std::uniform_real_distribution<double> unit(0, 1);
    std::normal_distribution<double> normal;
    const auto direction = [&] {
        const AcGeVector3d any(normal(random), normal(random), normal(random));
        return any / any.length();
    };
    int built = 0;
    for (int i = 0; i < 400; ++i) {
        const double size = std::pow(10, 3 * unit(random) - 1);
        const double width = size * (0.2 + unit(random));
        const double height = size * (0.2 + unit(random));
        const bool isOnItsSide = i % 2 == 1;
        const Section firsts[] = {rectangle(width, height), oval(width, height), circle(width)};
        const Section lasts[] = {rectangle(height, width), oval(height, width), circle(width)};
        const Frame in = frameAlong(direction(), 6 * unit(random));
        const double tilt = 6 * unit(random);
        const double angle = 0.002 + 3.05 * unit(random);
        const Frame swung = rotated(in, angle, in.y * std::cos(tilt) + in.z * std::sin(tilt));
        const Frame out = isOnItsSide ? rotated(swung, kPi / 2, swung.x) : swung;
        const AcGePoint3d corner = AcGePoint3d() + direction() * (size * 1000 * unit(random));
        const Runs runs{{corner - in.x * (200 * size), firsts[i % 3], in},
                        {corner + out.x * (200 * size), isOnItsSide ? lasts[i % 3] : firsts[i % 3], out}};
        const auto plan = planSquareElbow(runs.start, runs.end, 0.1 * size * unit(random));
        if (!plan) {
            continue;
        }
        ++built;
        const Body body = made(runs, *plan);
        const double area = areaOf(body.mesh, FaceKind::start);
        const double length = plan->start.distanceTo(plan->corner) + plan->end.distanceTo(plan->corner);
        EXPECT_TRUE(isSolid(body.mesh)) << i;
        EXPECT_NEAR(volumeOf(body.mesh), area * length, 1e-6 * area * length) << i;
    }
    EXPECT_GT(built, 300);
}
