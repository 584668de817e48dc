// The host's vectors and matrices, and the mathematics under the curves.

#include <gtest/gtest.h>

#include <random>

#include "host/database/angle_groups.h"
#include "host/geometry/angles.h"
#include "host/geometry/harmonic.h"
#include "tests/host/curve_samples.h"

namespace drafthost {
namespace {

using samples::Random;

constexpr double kRounding = 1e-12;

void expectEqual(const AcGeVector3d& actual, const AcGeVector3d& expected, double tolerance = kRounding) {
    EXPECT_LE((actual - expected).length(), tolerance)
        << actual.x << " " << actual.y << " " << actual.z << " instead of " << expected.x << " " << expected.y
        << " " << expected.z;
}

TEST(Geometry, AnglesOfPlaneVectorsNeverReachAFullTurn) {
    EXPECT_EQ(AcGeVector2d(1, -0.0).angle(), 0);
    EXPECT_FALSE(std::signbit(AcGeVector2d(1, -0.0).angle()));
    EXPECT_EQ(AcGeVector2d(1, -1e-300).angle(), 0);
    EXPECT_EQ(AcGeVector2d(-0.0, -0.0).angle(), 0);
    EXPECT_LT(AcGeVector2d(1, -1e-15).angle(), kTwoPi);
    EXPECT_DOUBLE_EQ(AcGeVector2d(0, -2).angle(), 1.5 * kPi);
    EXPECT_DOUBLE_EQ(AcGeVector2d(-1, 0).angle(), kPi);
    for (const double angle : {-kTwoPi, kTwoPi, 1e300, -1e-20, std::nan(""), HUGE_VAL}) {
        EXPECT_GE(normalizeAngle(angle), 0) << angle;
        EXPECT_LT(normalizeAngle(angle), kTwoPi) << angle;
    }
}

TEST(Geometry, SmallAnglesBetweenVectorsKeepTheirDigits) {
    const AcGeVector3d x(1, 0, 0), nearX(1, 1e-9, 0);
    EXPECT_NEAR(x.angleTo(nearX), 1e-9, 1e-20);
    EXPECT_NEAR(x.angleTo(-nearX), kPi - 1e-9, 1e-15);
    EXPECT_NEAR(nearX.angleTo(x, AcGeVector3d::kZAxis), kTwoPi - 1e-9, 1e-15);
    EXPECT_NEAR(nearX.angleTo(x, -AcGeVector3d::kZAxis), 1e-9, 1e-20);
}

TEST(Geometry, TooShortVectorsAreNotNormalized) {
    expectEqual(AcGeVector3d(0, 0, 1e-13).normal(), {0, 0, 1e-13}, 0);
    expectEqual(AcGeVector3d(0, 3e-5, 4e-5).normal(), {0, 0.6, 0.8});
    expectEqual(AcGeVector3d(3e200, 4e200, 0).normal(), {0.6, 0.8, 0});
    EXPECT_FALSE(AcGeVector3d().isParallelTo(AcGeVector3d::kXAxis));
    EXPECT_TRUE(AcGeVector3d(-3, -6, 9).isParallelTo({1, 2, -3}));
}

TEST(Geometry, PlanesOfNormalsFollowTheArbitraryAxisRule) {
    struct {
        AcGeVector3d normal, xAxis;
    } const cases[] = {
        {{0, 0, 1}, {1, 0, 0}},
        {{0, 0, -1}, {-1, 0, 0}},
        {{0, 1, 0}, {-1, 0, 0}},
        {{1, 0, 0}, {0, 1, 0}},
        // Just inside and just outside 1/64 of the Z axis.
        {{0, 0.0156, std::sqrt(1 - 0.0156 * 0.0156)}, {1, 0, 0}},
        {{0, 0.0157, std::sqrt(1 - 0.0157 * 0.0157)}, {-1, 0, 0}},
    };
    for (const auto& [normal, xAxis] : cases) {
        expectEqual(AcGeMatrix3d::planeToWorld(normal) * AcGeVector3d::kXAxis, xAxis);
        expectEqual(normal.perpVector(), xAxis);
    }
    Random random(1);
    for (int i = 0; i < 100; ++i) {
        const AcGeVector3d normal = random.direction() * random.real(0.5, 3);
        const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal);
        EXPECT_TRUE(toWorld.isUniScaledOrtho());
        EXPECT_NEAR(toWorld.det(), 1, kRounding);
        expectEqual(toWorld * AcGeVector3d::kZAxis, normal.normal());
        EXPECT_TRUE((AcGeMatrix3d::worldToPlane(normal) * toWorld).isEqualTo(AcGeMatrix3d::kIdentity));
    }
}

TEST(Geometry, RotationsTurnRightHandedAboutTheirCenter) {
    expectEqual(AcGeVector3d(1, 0, 0).rotateBy(kPi / 2, {0, 0, 5}), {0, 1, 0});
    expectEqual(AcGeVector3d(1, 2, 3).rotateBy(1, AcGeVector3d()), {1, 2, 3}, 0);
    const AcGePoint3d center(3, 4, 5);
    const AcGeMatrix3d quarter = AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis, center);
    EXPECT_POINT_NEAR(quarter * center, center, kRounding);
    EXPECT_POINT_NEAR(quarter * AcGePoint3d(4, 4, 9), AcGePoint3d(3, 5, 9), kRounding);
}

TEST(Geometry, MirroringKeepsTheLineAndSwapsTheSides) {
    const AcGeMatrix3d mirror = AcGeMatrix3d::mirroring({1, 1, 0}, {2, 2, 0});
    EXPECT_POINT_NEAR(mirror * AcGePoint3d(7, 7, 3), AcGePoint3d(7, 7, 3), kRounding);
    EXPECT_POINT_NEAR(mirror * AcGePoint3d(3, 0, 8), AcGePoint3d(0, 3, 8), kRounding);
    EXPECT_NEAR(mirror.det(), -1, kRounding);
}

TEST(Geometry, InversesUndoAnyRegularMatrix) {
    Random random(2);
    for (int i = 0; i < 100; ++i) {
        AcGeMatrix3d m = random.rotation() * AcGeMatrix3d::scaling(random.real(1e-4, 1e4), random.point());
        m.entry[0][1] += m.scale() * random.real(-0.3, 0.3);
        if (m.isSingular())
            continue;
        const AcGePoint3d p = random.point();
        EXPECT_POINT_NEAR(m.inverse() * (m * p), p, 1e-8);
    }
    EXPECT_FALSE(AcGeMatrix3d::scaling(1e-6).isSingular());
    AcGeMatrix3d flat;
    flat.entry[2][2] = 0;
    EXPECT_TRUE(flat.isSingular());
    EXPECT_TRUE(flat.inverse().isEqualTo(flat));
    EXPECT_FALSE(flat.isUniScaledOrtho());
}

TEST(Geometry, ZerosOfHarmonicSumsAreAllFound) {
    Random random(3);
    for (int i = 0; i < 300; ++i) {
        const Harmonic sum{random.real(-1, 1), random.real(-1, 1), random.real(-1, 1), random.real(-1, 1),
                           random.real(-1, 1)};
        const HarmonicAngles zeros = zerosOf(sum, 1e-12);
        for (int k = 0; k < zeros.count; ++k)
            EXPECT_NEAR(sum.value(zeros.angles[k]), 0, 1e-12);
        int signChanges = 0;
        constexpr int kSamples = 20000;
        for (int k = 0; k < kSamples; ++k) {
            const double before = sum.value(kTwoPi * k / kSamples),
                         after = sum.value(kTwoPi * (k + 1) / kSamples);
            signChanges += (before > 0) != (after > 0);
        }
        EXPECT_GE(zeros.count, signChanges);
    }
    const HarmonicAngles touch = zerosOf({1, -1, 0, 0, 0}, 1e-12);  // 1 - cos t
    ASSERT_EQ(touch.count, 1);
    EXPECT_NEAR(std::sin(touch.angles[0]), 0, 1e-7);
}

TEST(AngleGroups, DegreesOfFilesComeBackAsTheyStood) {
    for (int degrees = 0; degrees <= 3600; ++degrees) {
        const double filed = degrees / 10.0;
        EXPECT_EQ(degreesOf(filed * (kPi / 180)), filed);
    }
    std::mt19937 random(5);
    std::uniform_real_distribution<double> angles(-7, 7);
    for (int i = 0; i < 1000; ++i) {
        const double radians = angles(random);
        EXPECT_NEAR(degreesOf(radians) * (kPi / 180), radians, 1e-15);
    }
}

}  // namespace
}  // namespace drafthost
