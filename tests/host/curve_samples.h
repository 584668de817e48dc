#pragma once

// Random curves of every kind, in tilted planes, for tests that hold for any curve.

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "host/api/curves.h"
#include "host/geometry/angles.h"

namespace drafthost::samples {

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    double real(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(engine_);
    }
    int integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
    bool oneIn(int count) { return integer(1, count) == 1; }
    AcGePoint3d point(double reach = 50) {
        return {real(-reach, reach), real(-reach, reach), real(-reach, reach)};
    }
    AcGeVector3d direction() {
        for (;;) {
            const AcGeVector3d v(real(-1, 1), real(-1, 1), real(-1, 1));
            if (v.length() > 0.1)
                return v.normal();
        }
    }
    // Flat as often as tilted.
    AcGeVector3d normal() { return oneIn(2) ? AcGeVector3d(0, 0, 1) : direction(); }
    AcGeMatrix3d rotation() { return AcGeMatrix3d::rotation(real(-4, 4), direction(), point()); }

private:
    std::mt19937 engine_;
};

// With straight and arc segments, sharp and flat bulges, and vertices given twice; in the XY plane.
inline std::unique_ptr<AcDbPolyline> flatPolyline(Random& random) {
    auto polyline = std::make_unique<AcDbPolyline>();
    const int count = random.integer(2, 9);
    AcGePoint2d point(random.real(-20, 20), random.real(-20, 20));
    for (int i = 0; i < count; ++i) {
        const double bulge = random.oneIn(3) ? 0 : random.real(-1.5, 1.5) * (random.oneIn(4) ? 1e-4 : 1);
        polyline->addVertexAt(static_cast<unsigned>(i), point, bulge);
        if (!random.oneIn(6))
            point = point + AcGeVector2d(random.real(-9, 9), random.real(-9, 9));
    }
    polyline->setClosed(random.oneIn(2));
    return polyline;
}

struct Sample {
    std::string kind;
    std::unique_ptr<AcDbCurve> curve;
};

inline std::vector<Sample> oneOfEach(Random& random) {
    std::vector<Sample> samples;
    samples.push_back({"line", std::make_unique<AcDbLine>(random.point(), random.point())});
    samples.push_back(
        {"circle", std::make_unique<AcDbCircle>(random.point(), random.normal(), random.real(0.01, 40))});
    samples.push_back(
        {"arc", std::make_unique<AcDbArc>(random.point(), random.normal(), random.real(0.01, 40),
                                          random.real(-9, 9), random.real(-9, 9))});
    samples.push_back({"flat polyline", flatPolyline(random)});
    samples.push_back({"tilted polyline", flatPolyline(random)});
    samples.back().curve->transformBy(random.rotation());
    return samples;
}

inline double endParameter(const AcDbCurve& curve) {
    double end = -1;
    EXPECT_EQ(curve.getEndParam(end), Acad::eOk);
    return end;
}
inline double lengthOf(const AcDbCurve& curve) {
    double length = -1;
    EXPECT_EQ(curve.getDistAtParam(endParameter(curve), length), Acad::eOk);
    return length;
}
inline AcGePoint3d pointAtDistance(const AcDbCurve& curve, double distance) {
    AcGePoint3d point(1e9, 1e9, 1e9);
    EXPECT_EQ(curve.getPointAtDist(distance, point), Acad::eOk);
    return point;
}

#define EXPECT_POINT_NEAR(actual, expected, tolerance)                                                       \
    do {                                                                                                     \
        const AcGePoint3d actualPoint = (actual), expectedPoint = (expected);                                \
        EXPECT_LE(actualPoint.distanceTo(expectedPoint), tolerance)                                          \
            << "(" << actualPoint.x << " " << actualPoint.y << " " << actualPoint.z << ") instead of ("      \
            << expectedPoint.x << " " << expectedPoint.y << " " << expectedPoint.z << ")";                   \
    } while (false)

}  // namespace drafthost::samples
