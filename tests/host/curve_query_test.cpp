// Parameters, distances, closest points, extents and areas of curves.

#include <gtest/gtest.h>

#include "host/geometry/tolerance.h"
#include "tests/host/curve_samples.h"

namespace drafthost {
namespace {

using namespace samples;

TEST(CurveQueries, DistancesComeBackFromThePointsThere) {
    Random random(11);
    for (int round = 0; round < 200; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind + " of round " + std::to_string(round));
            const double length = lengthOf(*sample.curve);
            for (const double fraction : {0.0, 1e-9, random.real(0, 1), random.real(0, 1), 1 - 1e-9, 1.0}) {
                const double distance = length * fraction;
                const AcGePoint3d point = pointAtDistance(*sample.curve, distance);
                double back = -1;
                ASSERT_EQ(sample.curve->getDistAtPoint(point, back), Acad::eOk);
                // A closed curve's end is its start, and curves may cross themselves: the point counts.
                EXPECT_POINT_NEAR(pointAtDistance(*sample.curve, back), point, 2e-9);
                EXPECT_LE(back, distance + 1e-7);
                EXPECT_GE(back, 0);
            }
        }
    }
}

TEST(CurveQueries, DistanceGrowsWithTheParameterAsTheChordsDo) {
    Random random(12);
    for (int round = 0; round < 40; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind);
            const AcDbCurve& curve = *sample.curve;
            double start = 0;
            ASSERT_EQ(curve.getStartParam(start), Acad::eOk);
            const double end = endParameter(curve);
            constexpr int kSteps = 5040;  // every vertex of up to ten segments is a step
            double sum = 0;
            AcGePoint3d before, after;
            ASSERT_EQ(curve.getStartPoint(before), Acad::eOk);
            for (int i = 1; i <= kSteps; ++i) {
                ASSERT_EQ(curve.getPointAtParam(start + (end - start) * i / kSteps, after), Acad::eOk);
                sum += before.distanceTo(after);
                before = after;
            }
            EXPECT_NEAR(sum, lengthOf(curve), 1e-4 * (1 + sum));
            AcGePoint3d endPoint;
            ASSERT_EQ(curve.getEndPoint(endPoint), Acad::eOk);
            EXPECT_POINT_NEAR(endPoint, after, 1e-9);
        }
    }
}

TEST(CurveQueries, DerivativesAreTheSlopeOfThePoints) {
    Random random(13);
    for (int round = 0; round < 100; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind);
            double start = 0;
            ASSERT_EQ(sample.curve->getStartParam(start), Acad::eOk);
            const double step = 1e-6;
            // Not beside a vertex, where the slope jumps.
            const double param =
                start + std::floor((endParameter(*sample.curve) - start) * 0.7) * 0.5 + 0.011;
            AcGePoint3d before, after;
            if (sample.curve->getPointAtParam(param - step, before) != Acad::eOk)
                continue;
            if (sample.curve->getPointAtParam(param + step, after) != Acad::eOk)
                continue;
            AcGeVector3d derivative;
            ASSERT_EQ(sample.curve->getFirstDeriv(param, derivative), Acad::eOk);
            EXPECT_LE(((after - before) / (2 * step) - derivative).length(),
                      1e-6 * (1 + derivative.length()));
        }
    }
}

TEST(CurveQueries, PointsAndDistancesOffTheCurveAreRefused) {
    Random random(14);
    for (int round = 0; round < 50; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind);
            const AcDbCurve& curve = *sample.curve;
            const double length = lengthOf(curve);
            const AcGePoint3d kept(1, 2, 3);
            AcGePoint3d point = kept;
            double value = 0;
            for (const double wrong : {-0.01, length + 0.01, std::nan("")}) {
                EXPECT_EQ(curve.getPointAtDist(wrong, point), Acad::eInvalidInput);
                EXPECT_EQ(curve.getParamAtDist(wrong, value), Acad::eInvalidInput);
            }
            EXPECT_POINT_NEAR(point, kept, 0);
            const AcGePoint3d aside = pointAtDistance(curve, length / 3) + random.direction() * 1e-3;
            AcGePoint3d closest;
            ASSERT_EQ(curve.getClosestPointTo(aside, closest), Acad::eOk);
            if (closest.distanceTo(aside) > 1e-4) {
                EXPECT_EQ(curve.getDistAtPoint(aside, value), Acad::eInvalidInput);
            }
            EXPECT_EQ(curve.getParamAtPoint({std::nan(""), 0, 0}, value), Acad::eInvalidInput);
        }
    }
}

TEST(CurveQueries, APointWithinRoundingOfAnArcsStartIsItsStart) {
    const AcDbArc arc({1000, 2000, 0}, 500, 0.3, 5.9);
    for (const double turn : {-1e-12, -1e-10, 1e-12}) {
        const AcGePoint3d point(1000 + 500 * std::cos(0.3 + turn), 2000 + 500 * std::sin(0.3 + turn), 0);
        double distance = -1;
        ASSERT_EQ(arc.getDistAtPoint(point, distance), Acad::eOk);
        EXPECT_NEAR(distance, 0, 1e-6);
    }
    const AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 2);
    double distance = -1;
    ASSERT_EQ(circle.getDistAtPoint({2, -1e-12, 0}, distance), Acad::eOk);
    EXPECT_NEAR(distance, 0, 1e-9);
}

TEST(CurveQueries, NothingSampledIsCloserThanTheClosestPoint) {
    Random random(15);
    for (int round = 0; round < 60; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind + " of round " + std::to_string(round));
            const AcDbCurve& curve = *sample.curve;
            const AcGePoint3d given = random.point();
            const AcGeVector3d direction = random.oneIn(2) ? AcGeVector3d(0, 0, 1) : random.direction();
            AcGePoint3d closest, seen;
            ASSERT_EQ(curve.getClosestPointTo(given, closest), Acad::eOk);
            ASSERT_EQ(curve.getClosestPointTo(given, direction * 3, seen), Acad::eOk);
            double distance;
            EXPECT_EQ(curve.getDistAtPoint(closest, distance), Acad::eOk);
            EXPECT_EQ(curve.getDistAtPoint(seen, distance), Acad::eOk);
            const auto apart = [&](const AcGePoint3d& p) {
                return (p - given).crossProduct(direction).length();
            };
            const double length = lengthOf(curve);
            for (int i = 0; i <= 500; ++i) {
                const AcGePoint3d p = pointAtDistance(curve, length * i / 500);
                EXPECT_GE(p.distanceTo(given), closest.distanceTo(given) - 1e-9);
                EXPECT_GE(apart(p), apart(seen) - 1e-9);
            }
        }
    }
}

TEST(CurveQueries, ClosestPointsInPlanKeepTheHeightOfTheCurve) {
    const AcDbLine rising({0, 0, 0}, {10, 0, 10});
    AcGePoint3d closest;
    ASSERT_EQ(rising.getClosestPointTo({4, 3, 77}, AcGeVector3d::kZAxis, closest, false), Acad::eOk);
    EXPECT_POINT_NEAR(closest, AcGePoint3d(4, 0, 4), 1e-12);
    const AcDbLine upright({1, 1, 0}, {1, 1, 10});
    ASSERT_EQ(upright.getClosestPointTo({5, 5, 4}, AcGeVector3d::kZAxis, closest, false), Acad::eOk);
    EXPECT_POINT_NEAR(closest, AcGePoint3d(1, 1, 4), 1e-12);
    EXPECT_EQ(upright.getClosestPointTo({5, 5, 4}, AcGeVector3d(), closest, false), Acad::eInvalidInput);
}

TEST(CurveQueries, ExtendedCurvesGoOnBeyondTheirEnds) {
    AcGePoint3d closest;
    const AcDbLine line({0, 0, 0}, {1, 0, 0});
    ASSERT_EQ(line.getClosestPointTo({-5, 2, 0}, closest, true), Acad::eOk);
    EXPECT_POINT_NEAR(closest, AcGePoint3d(-5, 0, 0), 1e-12);
    const AcDbArc arc({0, 0, 0}, 1, 0, 1);
    ASSERT_EQ(arc.getClosestPointTo({-5, 0, 0}, closest, true), Acad::eOk);
    EXPECT_POINT_NEAR(closest, AcGePoint3d(-1, 0, 0), 1e-12);
    ASSERT_EQ(arc.getClosestPointTo({1, -5, 0}, closest, false), Acad::eOk);
    EXPECT_POINT_NEAR(closest, AcGePoint3d(1, 0, 0), 1e-12);
    AcDbPolyline polyline;
    for (unsigned i = 0; i < 3; ++i)
        polyline.addVertexAt(i, {i < 2 ? 10.0 * i : 10.0, i < 2 ? 0.0 : 10.0});
    ASSERT_EQ(polyline.getClosestPointTo({-5, -1, 0}, closest, true), Acad::eOk);
    EXPECT_POINT_NEAR(closest, AcGePoint3d(-5, 0, 0), 1e-12);
    // The corner stays a corner.
    ASSERT_EQ(polyline.getClosestPointTo({15, -1, 0}, closest, true), Acad::eOk);
    EXPECT_POINT_NEAR(closest, AcGePoint3d(10, 0, 0), 1.5);
}

TEST(CurveQueries, ExtentsHoldTheCurveAndNothingMore) {
    Random random(16);
    for (int round = 0; round < 100; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind);
            AcDbExtents extents, sampled;
            ASSERT_EQ(sample.curve->getGeomExtents(extents), Acad::eOk);
            const double length = lengthOf(*sample.curve);
            for (int i = 0; i <= 3000; ++i)
                sampled.addPoint(pointAtDistance(*sample.curve, length * i / 3000));
            for (int axis = 0; axis < 3; ++axis) {
                EXPECT_LE(extents.minPoint()[axis], sampled.minPoint()[axis] + 1e-9);
                EXPECT_GE(extents.maxPoint()[axis], sampled.maxPoint()[axis] - 1e-9);
            }
            EXPECT_POINT_NEAR(extents.minPoint(), sampled.minPoint(), 2e-3 * (1 + length));
            EXPECT_POINT_NEAR(extents.maxPoint(), sampled.maxPoint(), 2e-3 * (1 + length));
        }
    }
}

TEST(CurveQueries, PolylineAreaIsThatOfItsChords) {
    Random random(17);
    for (int round = 0; round < 100; ++round) {
        const auto polyline = flatPolyline(random);
        const double length = lengthOf(*polyline);
        constexpr int kChords = 20000;
        double twice = 0;
        const AcGePoint3d first = pointAtDistance(*polyline, 0);
        AcGeVector3d before;
        for (int i = 1; i <= kChords; ++i) {
            const AcGeVector3d after = pointAtDistance(*polyline, length * i / kChords) - first;
            twice += before.crossProduct(after).z;
            before = after;
        }
        double area = -1;
        ASSERT_EQ(polyline->getArea(area), Acad::eOk);
        EXPECT_NEAR(area, std::abs(twice) / 2, 1e-4 * (1 + length * length));
        ASSERT_EQ(polyline->transformBy(random.rotation()), Acad::eOk);
        double turned = -1;
        ASSERT_EQ(polyline->getArea(turned), Acad::eOk);
        EXPECT_NEAR(turned, area, 1e-8 * (1 + area));
    }
    double area = 0;
    AcDbArc(AcGePoint3d(), 2, 0, kPi).getArea(area);
    EXPECT_NEAR(area, 2 * kPi, 1e-12);
}

TEST(CurveQueries, CurvesWithoutLengthAnswerWithoutNonsense) {
    const AcGePoint3d spot(1, 2, 3);
    AcDbPolyline twice, once;
    for (unsigned i = 0; i < 2; ++i)
        twice.addVertexAt(i, {1, 2}, 0.7);
    once.addVertexAt(0, {1, 2});
    const AcDbLine line(spot, spot);
    const AcDbCircle circle(spot, AcGeVector3d::kZAxis, 0);
    const AcDbArc arc(spot, std::nan(""), std::nan(""), 1);
    for (const AcDbCurve* curve :
         {static_cast<const AcDbCurve*>(&line), static_cast<const AcDbCurve*>(&circle),
          static_cast<const AcDbCurve*>(&arc), static_cast<const AcDbCurve*>(&twice),
          static_cast<const AcDbCurve*>(&once)}) {
        AcGePoint3d point(9, 9, 9);
        EXPECT_EQ(lengthOf(*curve), 0);
        ASSERT_EQ(curve->getPointAtDist(0, point), Acad::eOk);
        EXPECT_NEAR(point.x, 1, 0);
        ASSERT_EQ(curve->getClosestPointTo({5, 5, 5}, AcGeVector3d::kZAxis, point), Acad::eOk);
        EXPECT_NEAR(point.y, 2, 0);
        double distance = -1;
        ASSERT_EQ(curve->getDistAtPoint(point, distance), Acad::eOk);
        EXPECT_EQ(distance, 0);
        AcGeVector3d derivative(7, 7, 7);
        ASSERT_EQ(curve->getFirstDeriv(point, derivative), Acad::eOk);
        EXPECT_EQ(derivative.length(), 0);
    }
    AcDbPolyline empty;
    AcGePoint3d point;
    double value;
    AcDbExtents extents;
    EXPECT_EQ(empty.getStartPoint(point), Acad::eInvalidInput);
    EXPECT_EQ(empty.getParamAtDist(0, value), Acad::eInvalidInput);
    EXPECT_EQ(empty.getClosestPointTo(spot, point, false), Acad::eInvalidInput);
    EXPECT_EQ(empty.getGeomExtents(extents), Acad::eInvalidExtents);
}

TEST(CurveQueries, ArcsKeepTheirAnglesInOneTurn) {
    const AcDbArc acrossXAxis(AcGePoint3d(), 10, kTwoPi - 0.5, kTwoPi + 0.5);
    EXPECT_NEAR(acrossXAxis.endAngle(), 0.5, 1e-15);
    EXPECT_NEAR(acrossXAxis.totalAngle(), 1, 1e-14);
    AcGePoint3d point;
    ASSERT_EQ(acrossXAxis.getPointAtParam(0, point),
              Acad::eOk);  // a whole turn less than the parameters in between
    EXPECT_POINT_NEAR(point, AcGePoint3d(10, 0, 0), 1e-12);
    for (const double start : {0.0, 1.0, 5.0, 6.28}) {
        EXPECT_EQ(AcDbArc(AcGePoint3d(), 1, start, start + kTwoPi).totalAngle(), kTwoPi) << start;
        EXPECT_EQ(AcDbArc(AcGePoint3d(), 1, start, start).totalAngle(), kTwoPi) << start;
    }
    EXPECT_NEAR(AcDbArc(AcGePoint3d(), 1, 1, 1 + 1e-9).length(), 1e-9, 1e-15);

    AcDbArc arc(AcGePoint3d(), -3, 0, 1);
    EXPECT_EQ(arc.radius(), 3);
    EXPECT_EQ(arc.setRadius(0), Acad::eInvalidInput);
    EXPECT_EQ(arc.setRadius(-1), Acad::eInvalidInput);
    EXPECT_EQ(arc.setNormal(AcGeVector3d()), Acad::eInvalidInput);
    EXPECT_EQ(arc.setEndAngle(-1), Acad::eOk);
    EXPECT_NEAR(arc.endAngle(), kTwoPi - 1, 1e-15);
    EXPECT_EQ(arc.setCenter({1, 2, 3}), Acad::eOk);
    EXPECT_EQ(arc.setNormal({0, 2, 0}), Acad::eOk);
    EXPECT_POINT_NEAR(arc.center(), AcGePoint3d(1, 2, 3), 1e-15);
}

TEST(CurveQueries, ChangedVerticesChangeTheLength) {
    AcDbPolyline polyline;
    for (unsigned i = 0; i < 4; ++i)
        polyline.addVertexAt(i, {i == 1 || i == 2 ? 3.0 : 0.0, i < 2 ? 0.0 : 4.0});
    EXPECT_NEAR(lengthOf(polyline), 10, 1e-12);
    polyline.setClosed(true);
    EXPECT_NEAR(lengthOf(polyline), 14, 1e-12);
    polyline.setBulgeAt(0, 1);
    EXPECT_NEAR(lengthOf(polyline), 11 + 1.5 * kPi, 1e-12);
    polyline.removeVertexAt(0);
    EXPECT_NEAR(lengthOf(polyline), 12, 1e-12);
    polyline.setPointAt(0, {0, 0});
    EXPECT_NEAR(lengthOf(polyline), 3 + 4 + 5, 1e-12);
    EXPECT_EQ(polyline.setPointAt(3, {0, 0}), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.addVertexAt(5, {0, 0}), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.addVertexAt(0, {0, std::nan("")}), Acad::eInvalidInput);
    double startWidth = 1, endWidth = 1;
    polyline.addVertexAt(0, {9, 9}, 0, -1, -1);
    polyline.getWidthsAt(0, startWidth, endWidth);
    EXPECT_EQ(startWidth, 0);
    EXPECT_EQ(endWidth, 0);
}

}  // namespace
}  // namespace drafthost
