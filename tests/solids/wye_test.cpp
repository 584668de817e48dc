#include "solid_checks.h"

#include "solids/shapes/loft.h"
#include "solids/shapes/wye.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

using namespace solids;

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kCollar = 3;

struct Runs {
    DuctEnd main, branch1, branch2;
};

// Level runs whose centre lines meet in one point. The main flows along angle 0, the branches turn left.
Runs levelRuns(const Section& main, double angle1, const Section& section1, double angle2,
               const Section& section2, double length = 200, double heading = 0.4) {
    const AcGePoint3d corner(70, 30, -4);
    const auto along = [&](double angle) {
        return AcGeVector3d(std::cos(heading + angle), std::sin(heading + angle), 0);
    };
    return {{corner - along(0) * length, main, frameAlong(along(0))},
            {corner + along(angle1) * length, section1, frameAlong(along(angle1))},
            {corner + along(angle2) * length, section2, frameAlong(along(angle2))}};
}

std::optional<WyePlan> planOf(const Runs& runs, double collar = kCollar) {
    return planWye(runs.main, runs.branch1, runs.branch2, collar);
}

Runs shortened(Runs runs, const WyePlan& plan) {
    runs.main.center = plan.start;
    runs.branch1.center = plan.end1;
    runs.branch2.center = plan.end2;
    return runs;
}

Body made(const Runs& runs, const WyePlan& plan) {
    const Runs own = shortened(runs, plan);
    const auto body = makeWye(own.main, own.branch1, own.branch2, plan.junction, 6);
    EXPECT_TRUE(body);
    return body.value_or(Body{});
}

double areaOfSection(const Section& section) {
    if (section.rectangular) {
        return section.width * section.height;
    }
    const double round = std::min(section.width, section.height);
    return roundArea(round) + round * (std::max(section.width, section.height) - round);
}

void expectWye(const Runs& runs, const Body& body) {
    EXPECT_TRUE(isSolid(body.mesh));
    const double ends = areaOfSection(runs.branch1.section) + areaOfSection(runs.branch2.section);
    const double start = areaOfSection(runs.main.section);
    EXPECT_NEAR(areaOf(body.mesh, FaceKind::start), start, 1e-8 * start);
    EXPECT_NEAR(areaOf(body.mesh, FaceKind::end), ends, 1e-8 * ends);
}

// The part of a convex polygon to the left of the line from a to b.
std::vector<AcGePoint2d> clipped(const std::vector<AcGePoint2d>& polygon, const AcGePoint2d& a,
                                 const AcGePoint2d& b) {
    const auto side = [&](const AcGePoint2d& p) {
        return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
    };
    std::vector<AcGePoint2d> kept;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const AcGePoint2d& from = polygon[i];
        const AcGePoint2d& to = polygon[(i + 1) % polygon.size()];
        if (side(from) >= 0) {
            kept.push_back(from);
        }
        if ((side(from) < 0) != (side(to) < 0)) {
            kept.push_back(from + (to - from) * (side(from) / (side(from) - side(to))));
        }
    }
    return kept;
}

double areaOfPolygon(const std::vector<AcGePoint2d>& polygon) {
    double doubled = 0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const AcGePoint2d& next = polygon[(i + 1) % polygon.size()];
        doubled += polygon[i].x * next.y - polygon[i].y * next.x;
    }
    return doubled / 2;
}

double overlapArea(std::vector<AcGePoint2d> first, const std::vector<AcGePoint2d>& second) {
    for (std::size_t i = 0; i < second.size() && !first.empty(); ++i) {
        first = clipped(first, second[i], second[(i + 1) % second.size()]);
    }
    return first.empty() ? 0 : areaOfPolygon(first);
}

// Plan of a mitred elbow of one width about the origin, as its two legs; counter-clockwise.
std::array<std::vector<AcGePoint2d>, 2> elbowPlan(double width, double angle, double mainLength,
                                                  double length) {
    const double mitre = std::tan(angle / 2) * width / 2;
    const AcGePoint2d inner(-mitre, width / 2);
    const AcGePoint2d outer(mitre, -width / 2);
    const AcGePoint2d end(length * std::cos(angle), length * std::sin(angle));
    const AcGeVector2d left{-std::sin(angle) * width / 2, std::cos(angle) * width / 2};
    return {std::vector<AcGePoint2d>{{-mainLength, -width / 2}, outer, inner, {-mainLength, width / 2}},
            std::vector<AcGePoint2d>{outer, end + left * -1, end + left, inner}};
}

// What two such elbows cover together: of the legs of one elbow, that do not overlap, plus those of the
// other, less what lies in both.
double wyeArea(double width, double angle1, double angle2, double mainLength, double length1,
               double length2) {
    const auto first = elbowPlan(width, angle1, mainLength, length1);
    const auto second = elbowPlan(width, angle2, mainLength, length2);
    double area = 0;
    for (const auto& leg : first) {
        area += areaOfPolygon(leg);
        for (const auto& other : second) {
            area -= overlapArea(leg, other);
        }
    }
    return area + areaOfPolygon(second[0]) + areaOfPolygon(second[1]);
}

Mesh ductBehind(const DuctEnd& end) {
    const FlatOutline flat = flatOutline(end.section);
    return loft(std::array{placedOutline(flat, end.center, end.frame),
                           placedOutline(flat, end.center + end.frame.x * 5, end.frame)})
        .value_or(Mesh{});
}

// The mesh has a face in the plane of the end that a straight duct from there on fits.
void expectFlush(const Mesh& mesh, const DuctEnd& end) {
    const auto lies = [&](const AcGePoint3d& point) {
        return std::abs((point - end.center).dotProduct(end.frame.x)) <= 1e-9;
    };
    Mesh face{mesh.points, {}};
    for (const Triangle& triangle : mesh.triangles) {
        if (triangle.kind == FaceKind::end && lies(mesh.corner(triangle, 0)) &&
            lies(mesh.corner(triangle, 1)) && lies(mesh.corner(triangle, 2))) {
            face.triangles.push_back(triangle);
        }
    }
    expectFacesMeet(face, FaceKind::end, ductBehind(end), FaceKind::start);
}

// A level main along x and branches from its end, each with its frame's y level.
Runs runsInSpace(const Section& main, const AcGeVector3d& way1, const Section& section1,
                 const AcGeVector3d& way2, const Section& section2, double length = 300) {
    const AcGePoint3d corner(70, 30, -4);
    const auto branch = [&](const AcGeVector3d& way, const Section& section) {
        const Frame frame = frameAlong(way);
        return DuctEnd{corner + frame.x * length, section, frame};
    };
    return {{corner - AcGeVector3d(length, 0, 0), main, frameAlong(AcGeVector3d::kXAxis)},
            branch(way1, section1),
            branch(way2, section2)};
}

// Turned about the origin as a whole.
Runs turnedInSpace(Runs runs, double turn, const AcGeVector3d& axis) {
    for (DuctEnd* const end : {&runs.main, &runs.branch1, &runs.branch2}) {
        end->frame = rotated(end->frame, turn, axis / axis.length());
        end->center = AcGeMatrix3d::rotation(turn, axis / axis.length()) * end->center;
    }
    return runs;
}

// The sides of a round leg that is mitred lie as those of the main do.
void expectEndsFlush(const Mesh& mesh, const Runs& own) {
    for (const DuctEnd& branch : {own.branch1, own.branch2}) {
        if (!isRound(own.main.section) || !isRound(branch.section)) {
            expectFlush(mesh, branch);
        }
    }
}

// Plans and builds it, and looks at all that holds for any wye.
std::optional<WyePlan> expectBuilt(const Runs& runs, double collar = kCollar) {
    const auto plan = planOf(runs, collar);
    EXPECT_TRUE(plan);
    if (plan) {
        const Runs own = shortened(runs, *plan);
        const Body body = made(runs, *plan);
        expectWye(runs, body);
        expectEndsFlush(body.mesh, own);
    }
    return plan;
}

}  // namespace

TEST(Wye, VolumeAndEndsOfRectangularOnes) {
    const Section section = rectangle(10, 6);
    const std::pair<double, double> angles[] = {{0.6, -0.6}, {kPi / 4, -kPi / 4}, {kPi / 2, -kPi / 2},
                                                {0.3, -1.1}, {0, -kPi / 2},       {0.5, 0},
                                                {0.4, 1.3},  {2 * kPi / 3, -2},   {0, 2.6}};
    for (const auto& [angle1, angle2] : angles) {
        const Runs runs = levelRuns(section, angle1, section, angle2, section);
        const auto plan = planOf(runs);
        ASSERT_TRUE(plan) << angle1 << " " << angle2;
        const Body body = made(runs, *plan);
        expectWye(runs, body);
        const double area =
            wyeArea(10, angle1, angle2, plan->junction.distanceTo(plan->start),
                    plan->junction.distanceTo(plan->end1), plan->junction.distanceTo(plan->end2));
        EXPECT_NEAR(volumeOf(body.mesh), 6 * area, 1e-8 * area) << angle1 << " " << angle2;
        const Runs own = shortened(runs, *plan);
        expectFlush(body.mesh, own.branch1);
        expectFlush(body.mesh, own.branch2);
    }
}

TEST(Wye, BranchesEndBehindTheCrotch) {
    const Section section = rectangle(10, 6);
    // Walls at 0.6 radians to both sides of the main meet on its axis.
    const auto narrow = planOf(levelRuns(section, 0.6, section, -0.6, section));
    ASSERT_TRUE(narrow);
    EXPECT_NEAR(narrow->end1.distanceTo(narrow->junction), 5 / std::tan(0.6) + kCollar, 1e-9);
    EXPECT_NEAR(narrow->end2.distanceTo(narrow->junction), 5 / std::tan(0.6) + kCollar, 1e-9);
    EXPECT_NEAR(narrow->start.distanceTo(narrow->junction), 5 * std::tan(0.3) + kCollar, 1e-9);
    // Opposite branches need their throats only.
    const auto tee = planOf(levelRuns(section, kPi / 2, section, -kPi / 2, section));
    ASSERT_TRUE(tee);
    EXPECT_NEAR(tee->end1.distanceTo(tee->junction), 5 + kCollar, 1e-9);
    EXPECT_NEAR(tee->start.distanceTo(tee->junction), 5 + kCollar, 1e-9);
    // A branch at right angles to one that goes on ends that one behind its own outer wall.
    const auto side = planOf(levelRuns(section, 0, section, kPi / 2, rectangle(4, 6)));
    ASSERT_TRUE(side);
    EXPECT_NEAR(side->end1.distanceTo(side->junction), 2 + kCollar, 1e-9);
    EXPECT_NEAR(side->end2.distanceTo(side->junction), 5 + kCollar, 1e-9);
}

TEST(Wye, CenterLinesKindAndFlags) {
    const Section section = rectangle(10, 6);
    const Runs runs = levelRuns(section, 0.6, section, -0.9, section);
    const auto plan = planOf(runs);
    ASSERT_TRUE(plan);
    const Body body = made(runs, *plan);
    EXPECT_EQ(body.kind, BodyKind::wye);
    EXPECT_EQ(body.flags, 6);
    ASSERT_EQ(body.centerLines.size(), 2u);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(body.centerLines[i].size(), 3u);
        EXPECT_NEAR(body.centerLines[i][0].distanceTo(plan->start), 0, 1e-9);
        EXPECT_NEAR(body.centerLines[i][1].distanceTo(plan->junction), 0, 1e-9);
        EXPECT_NEAR(body.centerLines[i][2].distanceTo(i == 0 ? plan->end1 : plan->end2), 0, 1e-9);
    }
}

TEST(Wye, WidthsOfTheirOwn) {
    const Section main = rectangle(20, 8);
    const std::pair<double, double> angles[] = {{0.7, -0.7}, {kPi / 2, -kPi / 2}, {0, -0.8}, {0, kPi / 2}};
    for (const auto& [angle1, angle2] : angles) {
        for (const double width : {12.0, 26.0}) {
            const Runs runs = levelRuns(main, angle1, rectangle(width, 8), angle2, rectangle(9, 8), 400);
            const auto plan = planOf(runs);
            ASSERT_TRUE(plan) << angle1 << " " << angle2 << " " << width;
            expectWye(runs, made(runs, *plan));
        }
    }
}

TEST(Wye, RoundAndOvalOnes) {
    const std::pair<double, double> angles[] = {{0.6, -0.6}, {kPi / 2, -kPi / 2}, {0, 0.8}, {0.3, -1.2}};
    for (const Section& section : {circle(10), oval(16, 8), oval(8, 16)}) {
        for (const auto& [angle1, angle2] : angles) {
            const Runs runs = levelRuns(section, angle1, section, angle2, section);
            const auto plan = planOf(runs);
            ASSERT_TRUE(plan);
            const Body body = made(runs, *plan);
            expectWye(runs, body);
            const Runs own = shortened(runs, *plan);
            expectFlush(body.mesh, own.branch1);
        }
    }
}

// One branch turns left, one up: each matches across the plane of its own bend.
TEST(Wye, BranchesInDifferentPlanes) {
    Runs runs = levelRuns(rectangle(10, 6), kPi / 2, rectangle(10, 6), 0, rectangle(10, 6), 200, 0);
    const AcGePoint3d corner = runs.main.center + runs.main.frame.x * 200;
    runs.branch2.frame = {{0, 0, 1}, {0, 1, 0}, {-1, 0, 0}};
    runs.branch2.center = corner + runs.branch2.frame.x * 200;
    const auto plan = planOf(runs);
    ASSERT_TRUE(plan);
    const Body body = made(runs, *plan);
    expectWye(runs, body);
    expectFlush(body.mesh, shortened(runs, *plan).branch2);
}

// Level sections of rising branches do not agree with the main's across the planes of their bends.
TEST(Wye, BranchesThatRiseAreBuilt) {
    const Section section = rectangle(24, 16);
    for (const double rise : {-60.0, -15.0, 30.0, 90.0}) {
        for (const double across : {20.0, 90.0, 300.0}) {
            SCOPED_TRACE(testing::Message() << rise << " " << across);
            expectBuilt(runsInSpace(section, {90, across, rise}, section, {90, -across, rise}, section));
            expectBuilt(runsInSpace(section, {90, across, rise}, rectangle(12, 16), {90, -across, -rise},
                                    rectangle(30, 16)));
        }
    }
    // Back along the main, and side by side to one side of it.
    expectBuilt(runsInSpace(section, {-60, 90, 30}, section, {-60, -90, 30}, section));
    expectBuilt(runsInSpace(section, {90, 20, 30}, section, {10, 90, 30}, section));
}

TEST(Wye, SweptLegsAreAsTightAsTheirSectionsAllow) {
    // The wider oval reaches 12 towards the inside, and a tenth of that is the throat.
    const Runs runs = runsInSpace(circle(16), {0, 1, 0}, oval(24, 16), {0, -1, 0}, oval(20, 16));
    const auto plan = expectBuilt(runs);
    ASSERT_TRUE(plan);
    EXPECT_NEAR(plan->start.distanceTo(plan->junction), 12 * 1.1 + kCollar, 1e-9);
    EXPECT_NEAR(plan->end1.distanceTo(plan->junction), 12 * 1.1 + kCollar, 1e-9);
    EXPECT_NEAR(plan->end2.distanceTo(plan->junction), 10 * 1.1 + kCollar, 1e-9);
    const Frame& frame1 = runs.branch1.frame;
    for (int i = 0; i < 4; ++i) {
        const double y = i == 0 || i == 3 ? 1 : -1;
        const double z = i < 2 ? 1 : -1;
        const AcGePoint3d throat = plan->junction - runs.main.frame.x * 13.2;
        const AcGeVector3d onMain = runs.main.frame.y * (8 * y) + runs.main.frame.z * (8 * z);
        EXPECT_NEAR(plan->mainLeg[i].distanceTo(plan->start + onMain), 0, 1e-9);
        EXPECT_NEAR(plan->mainLeg[i + 4].distanceTo(throat + onMain), 0, 1e-9);
        const AcGeVector3d onBranch = frame1.y * (12 * y) + frame1.z * (8 * z);
        EXPECT_NEAR(plan->leg1[i].distanceTo(plan->end1 + onBranch), 0, 1e-9);
        EXPECT_NEAR(plan->leg1[i + 4].distanceTo(plan->junction + frame1.x * 13.2 + onBranch), 0, 1e-9);
    }
    const Body body = made(runs, *plan);
    ASSERT_EQ(body.centerLines.size(), 2u);
    for (const auto& line : body.centerLines) {
        ASSERT_EQ(line.size(), 2u + 17u);
        EXPECT_NEAR(line.front().distanceTo(plan->start), 0, 1e-9);
    }
    EXPECT_NEAR(body.centerLines[1].back().distanceTo(plan->end2), 0, 1e-9);
    // A slight bend is drawn out so that the section, turned on its way by 0.4 radians, has room to change.
    Runs slight = runsInSpace(circle(16), {1, 0.02, 0}, oval(24, 16), {0, -1, 0}, circle(16), 2000);
    slight.branch1.frame = rotated(slight.branch1.frame, 0.4, slight.branch1.frame.x);
    const auto drawnOut = expectBuilt(slight);
    ASSERT_TRUE(drawnOut);
    EXPECT_GT(drawnOut->leg1[4].distanceTo(drawnOut->mainLeg[4]), 4);
}

TEST(Wye, OneLegIsMitredAndTheOtherSwept) {
    const Section section = rectangle(24, 16);
    const Runs level = runsInSpace(section, {1, 1, 0}, section, {0, -1, 0}, section);
    const Runs rising = runsInSpace(section, {1, 1, 0}, section, {0, -1, 0.4}, section);
    const auto planned = planOf(level);
    const auto plan = expectBuilt(rising);
    ASSERT_TRUE(planned && plan);
    for (int i = 4; i < 8; ++i) {
        EXPECT_NEAR(plan->leg1[i].distanceTo(planned->leg1[i]), 0, 1e-9);
        EXPECT_NEAR(plan->mainLeg[i].distanceTo(planned->mainLeg[i]), 0, 1e-9);
    }
    expectBuilt(runsInSpace(section, {1, 0, 0}, section, {1, -1, 0.4}, rectangle(12, 16)));
    expectBuilt(runsInSpace(circle(10), {1, 1, 1}, circle(10), {1, -1, 1}, oval(16, 10)));
    // No height in common.
    expectBuilt(runsInSpace(section, {1, 1, 0}, rectangle(20, 20), {1, -1, 0}, section));
}

// The main goes up with the first branch's level axis, which the others have no reason to share.
TEST(Wye, UprightMainBetweenLevelBranches) {
    const Section section = rectangle(24, 16);
    for (const AcGeVector3d& way2 :
         {AcGeVector3d(-1, 0.7, 0), AcGeVector3d(-0.3, -1, 0.5), AcGeVector3d(0, 0, 1)}) {
        Runs runs = runsInSpace(section, {1, 0.2, 0}, section, way2, section);
        runs.main.frame = {{0, 0, 1}, runs.branch1.frame.y, -runs.branch1.frame.x};
        runs.main.center = {70, 30, -304};
        expectBuilt(runs);
    }
}

TEST(Wye, BranchesOneAfterTheOther) {
    const Section section = rectangle(10, 6);
    for (const double angle1 : {0.0, 0.6, kPi / 2}) {
        Runs runs = levelRuns(section, angle1, section, -kPi / 2, section);
        runs.branch2.center = runs.branch2.center + runs.main.frame.x * 2.9;
        const auto plan = planOf(runs);
        ASSERT_TRUE(plan) << angle1;
        expectWye(runs, made(runs, *plan));
        const double expected = angle1 == 0 ? 202.9 : 200;
        EXPECT_NEAR(plan->junction.distanceTo(runs.main.center), expected, 1e-9);
        runs.branch2.center = runs.branch2.center + runs.main.frame.x * 0.2;
        EXPECT_EQ(planOf(runs).has_value(), angle1 == 0);
    }
    // A straight branch flush with one wall of the main.
    Runs beside = levelRuns(section, 0, rectangle(6, 6), 1, section);
    beside.branch1.center = beside.branch1.center - beside.main.frame.y * 2;
    const auto plan = planOf(beside);
    ASSERT_TRUE(plan);
    expectWye(beside, made(beside, *plan));
    expectFlush(made(beside, *plan).mesh, shortened(beside, *plan).branch1);
    beside.branch1.center = beside.branch1.center - beside.main.frame.y * 2;
    EXPECT_FALSE(planOf(beside));
}

// As branches lower than the main do that are flush with it at the bottom: each shifts behind its mitre, or
// on its way.
TEST(Wye, BranchesWhoseCenterLinesPassTheMains) {
    for (const auto& [shift1, shift2] : {std::pair(-1.0, -2.0), std::pair(1e-7, 2.5), std::pair(3.0, -3.0)}) {
        SCOPED_TRACE(shift1);
        for (const Section& section : {rectangle(12, 8), circle(10)}) {
            Runs runs = levelRuns(section, 0.7, section, -0.6, section);
            runs.branch1.center.z += shift1;
            runs.branch2.center.z += shift2;
            const auto plan = planOf(runs);
            ASSERT_TRUE(plan);
            const Body body = made(runs, *plan);
            expectWye(runs, body);
            EXPECT_NEAR(plan->end1.z - plan->start.z, shift1, 1e-9);
            EXPECT_NEAR(plan->end2.z - plan->start.z, shift2, 1e-9);
        }
    }
    Runs rising = levelRuns(rectangle(12, 8), 0.7, rectangle(12, 8), -0.6, rectangle(12, 8));
    const AcGeVector3d up = AcGeVector3d(rising.branch1.frame.x.x, rising.branch1.frame.x.y, 0.4).normal();
    rising.branch1.frame = frameAlong(up);
    rising.branch1.center.z += 80 + 1.5;
    const auto plan = planOf(rising);
    ASSERT_TRUE(plan);
    expectWye(rising, made(rising, *plan));
}

TEST(Wye, RunsThatMakeNoWyeAreRefused) {
    const Section section = rectangle(10, 6);
    EXPECT_FALSE(planOf(levelRuns(section, 0.6, section, 0.6005, section, 1e5)));
    EXPECT_FALSE(planOf(levelRuns(section, 0, section, 0, section)));
    EXPECT_FALSE(planOf(levelRuns(section, kPi, section, 0.5, section)));
    EXPECT_FALSE(planOf(runsInSpace(section, {-1, 0, 0}, section, {0, 1, 0}, section)));
    EXPECT_FALSE(planOf(levelRuns(section, 0.6, circle(6), -0.6, section)));
    EXPECT_FALSE(planOf(levelRuns(section, 0.05, section, -0.05, section, 99)));
    EXPECT_TRUE(planOf(levelRuns(section, 0.05, section, -0.05, section, 104)));
    EXPECT_FALSE(planOf(levelRuns(section, kPi / 2, section, 0, section, 7.9)));
    Runs runs = levelRuns(section, 0.6, section, -0.6, section);
    EXPECT_FALSE(planOf(runs, -1));
    EXPECT_FALSE(planOf(runs, std::numeric_limits<double>::infinity()));
    runs.branch2.center.z += 0.51 * std::min(section.width, section.height);
    EXPECT_FALSE(planOf(runs));
    runs.branch2.center.z = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(planOf(runs));
}

TEST(Wye, OnlyWhatWasPlannedTogetherIsBuilt) {
    const Section section = rectangle(10, 6);
    const Runs runs = levelRuns(section, 0.6, section, -0.6, section);
    const auto plan = planOf(runs);
    ASSERT_TRUE(plan);
    const Runs own = shortened(runs, *plan);
    EXPECT_FALSE(makeWye(own.main, own.branch1, own.branch2, plan->start, 0));
    DuctEnd inside = own.branch1;
    inside.center = plan->junction + inside.frame.x * 2;
    EXPECT_FALSE(makeWye(own.main, inside, own.branch2, plan->junction, 0));
    DuctEnd late = own.main;
    late.center = plan->junction;
    EXPECT_FALSE(makeWye(late, own.branch1, own.branch2, plan->junction, 0));
}

TEST(Wye, BoxesSurroundTheLegs) {
    const Section section = rectangle(10, 6);
    const Runs runs = levelRuns(section, kPi / 2, section, 0, section);
    const auto plan = planOf(runs);
    ASSERT_TRUE(plan);
    const Frame& frame = runs.main.frame;
    for (int i = 0; i < 4; ++i) {
        const AcGeVector3d across =
            frame.y * (i == 0 || i == 3 ? 5.0 : -5.0) + frame.z * (i < 2 ? 3.0 : -3.0);
        EXPECT_NEAR(plan->mainLeg[i].distanceTo(plan->start + across), 0, 1e-9);
        EXPECT_NEAR(plan->leg2[i].distanceTo(plan->end2 + across), 0, 1e-9);
        EXPECT_NEAR(plan->leg2[i + 4].distanceTo(plan->junction + across), 0, 1e-9);
        EXPECT_NEAR(plan->mainLeg[i + 4].distanceTo(plan->leg1[i + 4]), 0, 1e-9);
        EXPECT_NEAR((plan->leg1[i] - plan->end1).dotProduct(runs.branch1.frame.x), 0, 1e-9);
    }
}

TEST(Wye, AnyPairOfBranchesIsValid) {
    std::mt19937 random(4711);
    std::uniform_real_distribution<double> unit(0, 1);
    int built = 0;
    int planned = 0;
    for (int i = 0; i < 120; ++i) {
        const double size = std::pow(10, 2 * unit(random) - 0.5);
        const double height = size * (0.3 + unit(random));
        const bool isRound = i % 4 == 3;
        const auto section = [&] {
            return isRound ? circle(height) : rectangle(size * (0.3 + unit(random)), height);
        };
        // Now and then angles that make walls meet or lie in one plane.
        const auto angle = [&] {
            return i % 3 == 0 ? kPi / 12 * std::round(16 * (unit(random) - 0.5)) : 5 * (unit(random) - 0.5);
        };
        Runs runs =
            levelRuns(section(), angle(), section(), angle(), section(), 100 * size, 6 * unit(random));
        const AcGeVector3d axis(unit(random) - 0.5, unit(random) - 0.5, unit(random) - 0.5);
        runs = turnedInSpace(runs, 3 * unit(random), axis);
        const auto plan = planOf(runs, size * unit(random));
        if (!plan) {
            continue;
        }
        ++planned;
        const Runs own = shortened(runs, *plan);
        const auto body = makeWye(own.main, own.branch1, own.branch2, plan->junction, 0);
        if (body) {
            ++built;
            SCOPED_TRACE(i);
            expectWye(runs, *body);
        }
    }
    EXPECT_GT(planned, 90);
    EXPECT_EQ(built, planned);
}

TEST(Wye, AnyPairOfBranchesInSpaceIsValid) {
    std::mt19937 random(815);
    std::uniform_real_distribution<double> unit(0, 1);
    int built = 0;
    int planned = 0;
    for (int i = 0; i < 60; ++i) {
        const double height = std::pow(10, 2 * unit(random) - 0.5);
        const bool isBox = i % 3 != 2;
        const auto section = [&] {
            const double width = height * (0.3 + 2 * unit(random));
            return Section{isBox, isBox ? width : std::max(width, height), height};
        };
        const auto way = [&](double side) {
            const double angle = side * kPi / 180 * (20 + 100 * unit(random));
            return AcGeVector3d(std::cos(angle), std::sin(angle), 1.6 * (unit(random) - 0.5));
        };
        Runs runs = runsInSpace(section(), way(1), section(), way(-1), section(), 100 * height);
        const AcGeVector3d axis(unit(random) - 0.5, unit(random) - 0.5, unit(random) - 0.5);
        runs = turnedInSpace(runs, 3 * unit(random), axis);
        if (i % 2 == 0) {
            runs.branch2.frame = rotated(runs.branch2.frame, 6 * unit(random), runs.branch2.frame.x);
        }
        const auto plan = planOf(runs, height * (0.05 + unit(random)));
        planned += plan ? 1 : 0;
        const Runs own = plan ? shortened(runs, *plan) : runs;
        const auto body =
            plan ? makeWye(own.main, own.branch1, own.branch2, plan->junction, 0) : std::nullopt;
        if (body) {
            ++built;
            SCOPED_TRACE(i);
            expectWye(runs, *body);
            expectEndsFlush(body->mesh, own);
        }
    }
    EXPECT_EQ(planned, 60);
    EXPECT_GE(built, 58);
}
