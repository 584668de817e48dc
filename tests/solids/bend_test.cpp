#include "solids/shapes/bend.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

using namespace solids;

namespace {

void expectNear(const AcGeVector3d& found, const AcGeVector3d& wanted, double tolerance = 1e-12) {
    EXPECT_LE((found - wanted).length(), tolerance) << found.x << ", " << found.y << ", " << found.z;
}

}  // namespace

TEST(Bend, NearestPointsOfRunsThatPassEachOther) {
    const auto bend = findBend({-7, 3, 1}, {1, 0, 0}, {20, 90, 5}, {0, 1, 0});
    ASSERT_TRUE(bend);
    expectNear(bend->corner1.asVector(), {20, 3, 1});
    expectNear(bend->corner2.asVector(), {20, 3, 5});
    expectNear(bend->normal, {0, 0, 1});
    expectNear(bend->inward1, {0, 1, 0});
    expectNear(bend->inward2, {-1, 0, 0});
    EXPECT_NEAR(bend->angle, std::numbers::pi / 2, 1e-15);
    // Turning to the right, the normal points down, and inwards is right.
    const auto right = findBend({-7, 3, 1}, {1, 0, 0}, {20, -90, 1}, {0, -1, 0});
    ASSERT_TRUE(right);
    expectNear(right->normal, {0, 0, -1});
    expectNear(right->inward1, {0, -1, 0});
}

TEST(Bend, SlightAndSharpTurns) {
    const auto angleOf = [](double angle) {
        const auto bend = findBend({-5, 0, 0}, {1, 0, 0}, {5 * std::cos(angle), 5 * std::sin(angle), 0},
                                   {std::cos(angle), std::sin(angle), 0});
        if (bend) {
            EXPECT_LT(bend->corner1.asVector().length(), 1e-9);
            EXPECT_LT(bend->corner2.asVector().length(), 1e-9);
        }
        return bend ? bend->angle : 0;
    };
    EXPECT_NEAR(angleOf(0.001), 0.001, 1e-12);
    EXPECT_NEAR(angleOf(3.14), 3.14, 1e-12);
    EXPECT_EQ(angleOf(0.0009), 0);
    EXPECT_EQ(angleOf(std::numbers::pi - 0.0009), 0);
    EXPECT_EQ(angleOf(0), 0);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(findBend({nan, 0, 0}, {1, 0, 0}, {0, 5, 0}, {0, 1, 0}));
    EXPECT_FALSE(findBend({0, 0, 0}, {nan, 0, 0}, {0, 5, 0}, {0, 1, 0}));
}
