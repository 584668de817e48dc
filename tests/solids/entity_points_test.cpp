// Points that solids offer.

#include "entity_samples.h"

using namespace entity_samples;

namespace {

std::vector<AcGePoint3d> snaps(const SolidEntity& solid, AcDb::OsnapMode mode, const AcGePoint3d& pick = {},
                               const AcGePoint3d& last = {}, const AcGeMatrix3d& view = {}) {
    AcGePoint3dArray points;
    AcDbIntArray ids;
    EXPECT_EQ(Acad::eOk, solid.getOsnapPoints(mode, 0, pick, last, view, points, ids));
    return {points.begin(), points.end()};
}

bool holds(const std::vector<AcGePoint3d>& points, const AcGePoint3d& wanted) {
    return std::ranges::any_of(points,
                               [&](const AcGePoint3d& point) { return point.distanceTo(wanted) < 1e-9; });
}

}  // namespace

class SolidPoints : public SolidTest {};

TEST_F(SolidPoints, EndsAndMiddlesAreThoseOfEdgesAndCentreLines) {
    const SolidPointer solid = box();
    const auto ends = snaps(*solid, AcDb::kOsModeEnd), middles = snaps(*solid, AcDb::kOsModeMid);
    for (const double x : {0.0, 10.0}) {
        EXPECT_TRUE(holds(ends, {x, 0, 0}));
        for (const double y : {-2.0, 2.0}) {
            EXPECT_TRUE(holds(ends, {x, y, 1}));
            EXPECT_TRUE(holds(middles, {5, y, 1}));
            EXPECT_TRUE(holds(middles, {x, y, 0}));
        }
    }
    EXPECT_TRUE(holds(middles, {5, 0, 0}));
    EXPECT_EQ(13u, middles.size());
    EXPECT_TRUE(snaps(*solid, AcDb::kOsModeNode).empty());
    // The chords of a rim have neither.
    EXPECT_EQ(2u, snaps(*pipe(), AcDb::kOsModeEnd).size());
    EXPECT_EQ(1u, snaps(*pipe(), AcDb::kOsModeMid).size());
}

TEST_F(SolidPoints, NearestIsTheOnePointAsSeenInTheView) {
    // On the outline of the pipe, which is no edge.
    const auto plan = snaps(*pipe(), AcDb::kOsModeNear, {3, 5, 99});
    ASSERT_EQ(1u, plan.size());
    EXPECT_NEAR(0, plan[0].distanceTo({3, 2, 0}), 1e-9);
    const AcGeMatrix3d front = AcGeMatrix3d::rotation(-1.5707963267948966, AcGeVector3d::kXAxis);
    const auto elevation = snaps(*pipe(), AcDb::kOsModeNear, {3, 99, 5}, {}, front);
    ASSERT_EQ(1u, elevation.size());
    EXPECT_NEAR(0, elevation[0].distanceTo({3, 0, 2}), 1e-9);
    AcGeMatrix3d blind;
    blind.entry[0][0] = blind.entry[1][1] = blind.entry[2][2] = 0;
    EXPECT_LE(snaps(*pipe(), AcDb::kOsModeNear, {3, 5, 0}, {}, blind).size(), 1u);
}

TEST_F(SolidPoints, PerpendicularsStandOnEdges) {
    const auto feet = snaps(*box(), AcDb::kOsModePerp, {}, {7, 50, 1});
    EXPECT_TRUE(holds(feet, {7, 2, 1}));
    EXPECT_TRUE(holds(feet, {7, -2, -1}));
    EXPECT_FALSE(holds(feet, {7, 50, 1}));
}

TEST_F(SolidPoints, GripsMoveTheWholeSolid) {
    const auto at = [](const std::vector<int>& indices) {
        AcDbIntArray array;
        for (const int index : indices) {
            array.append(index);
        }
        return array;
    };
    const SolidPointer solid = crossing();
    AcGePoint3dArray grips, stretches;
    AcDbIntArray modes, ids;
    ASSERT_EQ(Acad::eOk, solid->getGripPoints(grips, modes, ids));
    ASSERT_EQ(Acad::eOk, solid->getStretchPoints(stretches));
    ASSERT_EQ(5, grips.length());
    EXPECT_EQ(5, stretches.length());
    EXPECT_TRUE(holds({grips.begin(), grips.end()}, {5, 11, 0}));
    EXPECT_TRUE(holds({grips.begin(), grips.end()}, {5, 4.5, 0}));
    EXPECT_EQ(Acad::eOk, solid->moveGripPointsAt(at({}), {1, 2, 3}));
    EXPECT_EQ(Acad::eOk, solid->moveGripPointsAt(at({-1, 5}), {1, 2, 3}));
    expectSame(*crossing(), *solid);
    const SolidPointer moved = crossing();
    moved->transformBy(AcGeMatrix3d::translation({1, 2, 3}));
    EXPECT_EQ(Acad::eOk, solid->moveGripPointsAt(at({0, 3}), {1, 2, 3}));
    expectSame(*moved, *solid);
    moved->transformBy(AcGeMatrix3d::translation({-1, 0, 0}));
    EXPECT_EQ(Acad::eOk, solid->moveStretchPointsAt(at({4}), {-1, 0, 0}));
    expectSame(*moved, *solid);
}
