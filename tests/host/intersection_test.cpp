// Where curves meet.

#include <gtest/gtest.h>

#include "host/database/object_imp.h"
#include "tests/host/curve_samples.h"

namespace drafthost {
namespace {

using namespace samples;

std::vector<AcGePoint3d> meet(const AcDbEntity& first, const AcDbEntity& second,
                              AcDb::Intersect type = AcDb::kOnBothOperands) {
    AcGePoint3dArray points;
    EXPECT_EQ(first.intersectWith(&second, type, points), Acad::eOk);
    return {points.begin(), points.end()};
}

std::vector<AcGePoint3d> meetSeen(const AcDbEntity& first, const AcDbEntity& second,
                                  const AcGeVector3d& direction,
                                  AcDb::Intersect type = AcDb::kOnBothOperands) {
    AcGePoint3dArray points;
    EXPECT_EQ(first.intersectWith(&second, type, AcGePlane(AcGePoint3d(), direction), points), Acad::eOk);
    return {points.begin(), points.end()};
}

void expectPoints(const std::vector<AcGePoint3d>& actual, const std::vector<AcGePoint3d>& expected,
                  double tolerance = 1e-9) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_POINT_NEAR(actual[i], expected[i], tolerance);
}

std::vector<AcGePoint3d> sampled(const AcDbCurve& curve, int count) {
    std::vector<AcGePoint3d> points;
    const double length = lengthOf(curve);
    for (int i = 0; i <= count; ++i)
        points.push_back(pointAtDistance(curve, length * i / count));
    return points;
}

// Near the point, where the curves come closest to each other as seen along the direction: projected from one
// to the other until it settles. Returns the distance seen there.
double closestApproach(const AcDbCurve& a, const AcDbCurve& b, const AcGeVector3d& direction,
                       AcGePoint3d& onFirst) {
    AcGePoint3d onSecond;
    for (int i = 0; i < 400; ++i) {
        a.getClosestPointTo(i == 0 ? onFirst : onSecond, direction, onFirst);
        b.getClosestPointTo(onFirst, direction, onSecond);
    }
    return (onFirst - onSecond).crossProduct(direction).length();
}

// Every crossing of the chords of both, as seen along Z, must be near a found point, unless the curves pass
// each other.
void expectNoneMissed(const AcDbCurve& a, const AcDbCurve& b, const std::vector<AcGePoint3d>& found) {
    const std::vector<AcGePoint3d> p = sampled(a, 150), q = sampled(b, 150);
    const auto side = [](const AcGePoint3d& from, const AcGePoint3d& to, const AcGePoint3d& point) {
        return (to - from).crossProduct(point - from).z;
    };
    for (std::size_t i = 0; i + 1 < p.size(); ++i) {
        for (std::size_t k = 0; k + 1 < q.size(); ++k) {
            if (side(p[i], p[i + 1], q[k]) * side(p[i], p[i + 1], q[k + 1]) > 0)
                continue;
            if (side(q[k], q[k + 1], p[i]) * side(q[k], q[k + 1], p[i + 1]) > 0)
                continue;
            AcGePoint3d there = p[i];
            if (closestApproach(a, b, AcGeVector3d::kZAxis, there) > 1e-10)
                continue;
            double nearest = 1e300;
            for (const AcGePoint3d& point : found)
                nearest = std::min(nearest, point.distanceTo(there));
            EXPECT_LE(nearest, 1e-4) << "missed (" << there.x << " " << there.y << " " << there.z << ")";
        }
    }
}

TEST(Intersection, FlatCurvesMeetWhereTheirChordsCross) {
    Random random(21);
    int found = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<Sample> curves;
        for (int i = 0; i < 2; ++i) {
            const auto spot = [&] { return AcGePoint3d(random.real(-15, 15), random.real(-15, 15), 0); };
            curves.push_back({"line", std::make_unique<AcDbLine>(spot(), spot())});
            curves.push_back(
                {"circle", std::make_unique<AcDbCircle>(spot(), AcGeVector3d::kZAxis, random.real(1, 15))});
            curves.push_back({"arc", std::make_unique<AcDbArc>(spot(), random.real(1, 15), random.real(0, 6),
                                                               random.real(0, 6))});
            curves.push_back({"polyline", flatPolyline(random)});
        }
        const AcGeMatrix3d tilt = random.rotation();
        for (std::size_t i = 0; i < curves.size(); ++i) {
            for (std::size_t k = 0; k < i; ++k) {
                SCOPED_TRACE(curves[i].kind + " and " + curves[k].kind + " of round " +
                             std::to_string(round));
                const AcDbCurve &a = *curves[i].curve, &b = *curves[k].curve;
                const std::vector<AcGePoint3d> points = meet(a, b);
                double before = -1;
                for (const AcGePoint3d& point : points) {
                    double onFirst = -1, onSecond = -1;
                    EXPECT_EQ(a.getDistAtPoint(point, onFirst), Acad::eOk);
                    EXPECT_EQ(b.getDistAtPoint(point, onSecond), Acad::eOk);
                    EXPECT_POINT_NEAR(pointAtDistance(b, onSecond), point, 2e-8);
                    if (curves[i].kind != "polyline") {
                        EXPECT_GT(onFirst, before);
                    }
                    before = onFirst;
                }
                if (round < 15)
                    expectNoneMissed(a, b, points);
                EXPECT_EQ(meet(b, a).size(), points.size());
                expectPoints(meetSeen(a, b, AcGeVector3d::kZAxis), points, 1e-7);
                found += static_cast<int>(points.size());
            }
        }
        // Turning both anywhere in space turns the points along.
        const std::vector<AcGePoint3d> flat = meet(*curves[3].curve, *curves[6].curve);
        for (const int i : {3, 6})
            ASSERT_EQ(curves[static_cast<std::size_t>(i)].curve->transformBy(tilt), Acad::eOk);
        std::vector<AcGePoint3d> turned;
        for (const AcGePoint3d& point : flat)
            turned.push_back(tilt * point);
        expectPoints(meet(*curves[3].curve, *curves[6].curve), turned, 1e-7);
    }
    EXPECT_GT(found, 500);
}

TEST(Intersection, TiltedCurvesMeetWhereTheyAreSeenToCross) {
    Random random(22);
    int found = 0;
    for (int round = 0; round < 12; ++round) {
        const std::vector<Sample> first = oneOfEach(random), second = oneOfEach(random);
        for (const Sample& a : first) {
            for (const Sample& b : second) {
                SCOPED_TRACE(a.kind + " and " + b.kind + " of round " + std::to_string(round));
                const std::vector<AcGePoint3d> points = meetSeen(*a.curve, *b.curve, AcGeVector3d(0, 0, 2));
                for (const AcGePoint3d& point : points) {
                    double distance;
                    EXPECT_EQ(a.curve->getDistAtPoint(point, distance), Acad::eOk);
                    AcGePoint3d below;
                    ASSERT_EQ(b.curve->getClosestPointTo(point, AcGeVector3d::kZAxis, below), Acad::eOk);
                    EXPECT_LE((below - point).crossProduct(AcGeVector3d::kZAxis).length(), 2e-7);
                }
                expectNoneMissed(*a.curve, *b.curve, points);
                found += static_cast<int>(points.size());
            }
        }
    }
    EXPECT_GT(found, 30);
}

TEST(Intersection, CurvesInSpaceMeetOnlyWhereTheyTouch) {
    const AcDbLine low({0, 0, 0}, {10, 10, 0}), high({0, 10, 1}, {10, 0, 1});
    expectPoints(meet(low, high), {});
    expectPoints(meetSeen(low, high, AcGeVector3d::kZAxis), {{5, 5, 0}});
    expectPoints(meetSeen(high, low, AcGeVector3d::kZAxis), {{5, 5, 1}});

    const AcDbCircle flat(AcGePoint3d(), AcGeVector3d::kZAxis, 5),
        upright({5, 0, 0}, AcGeVector3d::kYAxis, 3);
    expectPoints(meet(flat, upright), {});
    const AcDbCircle linked({8, 0, 0}, AcGeVector3d::kYAxis, 3);
    expectPoints(meet(flat, linked), {{5, 0, 0}});
    const AcDbCircle crossed(AcGePoint3d(), AcGeVector3d::kYAxis, 5);
    expectPoints(meet(flat, crossed), {{5, 0, 0}, {-5, 0, 0}});
    expectPoints(meet(AcDbLine({3, 4, -1}, {3, 4, 1}), flat), {{3, 4, 0}});
    expectPoints(meetSeen(AcDbLine({3, 4, -9}, {3, 4, -7}), flat, AcGeVector3d::kZAxis), {{3, 4, -7}});
}

TEST(Intersection, TouchingCurvesGiveOnePoint) {
    for (const double far : {0.0, 1e6}) {
        const AcDbCircle circle({far, far, 0}, AcGeVector3d::kZAxis, 2.5);
        expectPoints(meet(AcDbLine({far - 9, far + 2.5, 0}, {far + 9, far + 2.5, 0}), circle),
                     {{far, far + 2.5, 0}}, 1e-6);
        expectPoints(meet(circle, AcDbCircle({far + 3, far, 0}, AcGeVector3d::kZAxis, 0.5)),
                     {{far + 2.5, far, 0}}, 1e-6);
        expectPoints(meet(circle, AcDbCircle({far - 2, far, 0}, AcGeVector3d::kZAxis, 0.5)),
                     {{far - 2.5, far, 0}}, 1e-6);
        expectPoints(meet(circle, AcDbCircle({far - 2, far, 0}, AcGeVector3d::kZAxis, 4.5)),
                     {{far + 2.5, far, 0}}, 1e-6);
        expectPoints(meet(circle, AcDbCircle({far + 3.001, far, 0}, AcGeVector3d::kZAxis, 0.5)), {});
    }
}

// Programs lay runs of lines and arcs end to end with a pi of nine digits; the joint must be found, and once.
TEST(Intersection, EndsThatJoinTangentiallyMeetInSpiteOfRounding) {
    for (const double radius : {0.5, 100.0, 2e4}) {
        for (const double slip : {0.0, 1.8e-9, -1.8e-9}) {
            const double quarter = kPi / 2 + slip;
            const AcGePoint3d joint(1234.5, 678.9, 0);
            const AcGePoint3d center(joint.x + radius * std::cos(quarter),
                                     joint.y + radius * std::sin(quarter), 0);
            const double angle = (joint - center).convert2d().angle();
            const AcDbArc arc(center, radius, angle, angle + 1);
            const AcDbLine back(joint, {joint.x - 50, joint.y, 0});
            expectPoints(meet(back, arc), {joint}, 1e-6);
            expectPoints(meet(arc, back), {joint}, 1e-6);
        }
    }
}

TEST(Intersection, CurvesThatRunAlongEachOtherGiveTheEndsOfWhatTheyShare) {
    expectPoints(meet(AcDbLine({0, 0, 0}, {10, 0, 0}), AcDbLine({15, 0, 0}, {4, 0, 0})),
                 {{4, 0, 0}, {10, 0, 0}});
    expectPoints(meet(AcDbLine({0, 0, 0}, {10, 0, 0}), AcDbLine({10, 0, 0}, {14, 0, 0})), {{10, 0, 0}});
    expectPoints(meet(AcDbLine({0, 0, 0}, {10, 0, 0}), AcDbLine({11, 0, 0}, {14, 0, 0})), {});
    expectPoints(meet(AcDbLine({0, 0, 0}, {10, 0, 0}), AcDbLine({0, 1e-3, 0}, {10, 1e-3, 0})), {});
    const AcDbArc half(AcGePoint3d(), 2, 0, kPi), quarter(AcGePoint3d(), 2, kPi / 2, 1.5 * kPi);
    expectPoints(meet(half, quarter), {{0, 2, 0}, {-2, 0, 0}});
    expectPoints(meet(half, AcDbArc(AcGePoint3d(), 2, kPi, kTwoPi)), {{2, 0, 0}, {-2, 0, 0}});
    const AcDbCircle circle(AcGePoint3d(), AcGeVector3d::kZAxis, 2);
    expectPoints(meet(circle, circle), {});
    expectPoints(meet(circle, half), {{2, 0, 0}, {-2, 0, 0}});
}

TEST(Intersection, ExtensionLengthensOnlyTheOperandsNamed) {
    const AcDbLine shortOne({0, 0, 0}, {1, 0, 0}), upright({5, 1, 0}, {5, 2, 0});
    expectPoints(meet(shortOne, upright), {});
    expectPoints(meet(shortOne, upright, AcDb::kExtendThis), {});
    expectPoints(meet(shortOne, upright, AcDb::kExtendArg), {});
    expectPoints(meet(shortOne, upright, AcDb::kExtendBoth), {{5, 0, 0}});
    const AcDbLine crossing({5, -1, 0}, {5, 2, 0});
    expectPoints(meet(shortOne, crossing, AcDb::kExtendThis), {{5, 0, 0}});
    expectPoints(meet(crossing, shortOne, AcDb::kExtendArg), {{5, 0, 0}});
    const AcDbArc arc(AcGePoint3d(), 5, 0, 1);
    expectPoints(meet(arc, AcDbLine({-9, 0, 0}, {9, 0, 0}), AcDb::kExtendThis), {{5, 0, 0}, {-5, 0, 0}});
    AcDbPolyline corner;
    corner.addVertexAt(0, {0, 5});
    corner.addVertexAt(1, {0, 0});
    corner.addVertexAt(2, {5, 0});
    const AcDbLine diagonal({-9, 9, 0}, {9, -9.5, 0});
    EXPECT_EQ(meet(corner, diagonal).size(), 0u);
    expectPoints(meet(corner, AcDbLine({8, -1, 0}, {8, 1, 0}), AcDb::kExtendThis), {{8, 0, 0}});
    expectPoints(meet(corner, AcDbLine({-3, -1, 0}, {-3, 1, 0}), AcDb::kExtendThis), {});
}

TEST(Intersection, SharedVerticesAreGivenOnceAndInOrder) {
    AcDbPolyline zigzag;
    const double ys[] = {-1, 0, 1, 0, -1, -1};
    for (unsigned i = 0; i < 6; ++i)
        zigzag.addVertexAt(i, {i == 5 ? 4.0 : i, ys[i]});
    const AcDbLine axis({10, 0, 0}, {-10, 0, 0});
    expectPoints(meet(zigzag, axis), {{1, 0, 0}, {3, 0, 0}});
    expectPoints(meet(axis, zigzag), {{3, 0, 0}, {1, 0, 0}});
    AcGePoint3dArray points;
    points.append({7, 7, 7});
    EXPECT_EQ(axis.intersectWith(&zigzag, AcDb::kOnBothOperands, points), Acad::eOk);
    EXPECT_EQ(points.length(), 3);
}

TEST(Intersection, ShallowAndFarAwayCrossingsLieOnBothCurves) {
    Random random(23);
    for (int round = 0; round < 400; ++round) {
        const AcGePoint3d far(random.real(-1e6, 1e6), random.real(-1e6, 1e6), 0);
        const double radius = std::pow(10, random.real(-2, 4));
        const double turn = random.real(0, kTwoPi), depth = radius * std::pow(10, random.real(-9, 0));
        const AcGeVector3d toward(std::cos(turn), std::sin(turn), 0), along(-toward.y, toward.x, 0);
        const AcDbCircle circle(far, AcGeVector3d::kZAxis, radius);
        const AcGePoint3d foot = far + toward * (radius - depth);
        const AcDbLine chord(foot - along * 2 * radius, foot + along * 2 * radius);
        const double other = std::pow(10, random.real(-2, 4));
        const AcDbCircle lens(far + toward * (radius + other - std::min(depth, other)), AcGeVector3d::kZAxis,
                              other);
        for (const AcDbCurve* second :
             {static_cast<const AcDbCurve*>(&chord), static_cast<const AcDbCurve*>(&lens)}) {
            const std::vector<AcGePoint3d> points = meet(circle, *second);
            EXPECT_GE(points.size(), 1u) << radius << " " << depth << " " << other;
            double distance;
            for (const AcGePoint3d& point : points) {
                EXPECT_EQ(circle.getDistAtPoint(point, distance), Acad::eOk);
                EXPECT_EQ(second->getDistAtPoint(point, distance), Acad::eOk);
            }
        }
    }
    const AcDbLine nearlyParallel({0, -1e-3, 0}, {1000, 1e-3, 0});
    expectPoints(meet(nearlyParallel, AcDbLine({0, 0, 0}, {1000, 0, 0})), {{500, 0, 0}}, 1e-5);
    // A segment whose bulge is hardly one.
    AcDbPolyline bow;
    bow.addVertexAt(0, {0, 0}, 1e-7);
    bow.addVertexAt(1, {1000, 0});
    expectPoints(meet(bow, AcDbLine({250, -1, 0}, {250, 1, 0})), {{250, -1000 * 1e-7 / 2 * 0.75, 0}}, 1e-8);
}

// An entity of a class that only says what it explodes into.
struct CrossMark final : AcDbEntity {
    struct State : ClonedState<State, EntityState> {};
    CrossMark() : AcDbEntity(newImp<State>()) {}
    bool opaque = false;

protected:
    Acad::ErrorStatus subExplode(AcDbEntityArray& parts) const override {
        if (opaque)
            return Acad::eNotApplicable;
        parts.append(new AcDbLine({-1, 0, 0}, {1, 0, 0}));
        parts.append(new AcDbLine({0, -1, 0}, {0, 1, 0}));
        return Acad::eOk;
    }
};

TEST(Intersection, OtherEntitiesMeetByTheirParts) {
    CrossMark mark;
    const AcDbCircle circle(AcGePoint3d(), AcGeVector3d::kZAxis, 0.5);
    expectPoints(meet(mark, circle), {{-0.5, 0, 0}, {0.5, 0, 0}, {0, -0.5, 0}, {0, 0.5, 0}});
    EXPECT_EQ(meet(circle, mark).size(), 4u);
    EXPECT_EQ(meetSeen(circle, mark, AcGeVector3d::kZAxis).size(), 4u);
    mark.opaque = true;
    AcGePoint3dArray points;
    EXPECT_EQ(circle.intersectWith(&mark, AcDb::kOnBothOperands, points), Acad::eNotApplicable);
    EXPECT_EQ(mark.intersectWith(&circle, AcDb::kExtendThis, points), Acad::eNotApplicable);
    EXPECT_EQ(mark.intersectWith(&mark, AcDb::kOnBothOperands, points), Acad::eNotApplicable);
}

TEST(Intersection, WrongRequestsAreRefused) {
    const AcDbLine line({0, 0, 0}, {1, 0, 0});
    AcGePoint3dArray points;
    EXPECT_EQ(line.intersectWith(nullptr, AcDb::kOnBothOperands, points), Acad::eNullObjectPointer);
    EXPECT_EQ(
        line.intersectWith(&line, AcDb::kOnBothOperands, AcGePlane(AcGePoint3d(), AcGeVector3d()), points),
        Acad::eInvalidInput);
    const AcDbLine nowhere({std::nan(""), 0, 0}, {1, 0, 0});
    EXPECT_EQ(line.intersectWith(&nowhere, AcDb::kOnBothOperands, points), Acad::eOk);
    EXPECT_EQ(points.length(), 0);
}

}  // namespace
}  // namespace drafthost
