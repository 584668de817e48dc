// What operations make of a solid's bodies, and that refused ones leave everything alone.

#include "entity_samples.h"
#include "solid_checks.h"

#include <functional>
#include <limits>
#include <random>

using namespace entity_samples;

namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

AcDbSolidMeasures measuresOf(const SolidEntity& solid) {
    AcDbSolidMeasures measures;
    EXPECT_EQ(Acad::eOk, solid.getSolidMeasures(measures));
    return measures;
}

// Arguments of a square elbow from along x into along y, as a caller carries them.
struct SquareElbow {
    AcGePoint3d start{0, 0, 0}, end{20, 30, 0};
    AModeler::Point3d startLeg[8], endLeg[8];
    AcGePoint3d axis[8];
    double width = 4, height = 2;

    bool prepare(qn_hvacSolid& solid, double endHeight, double collar, bool withCollars = true) {
        return solid.addSquareElbowPrep(start, width, height, end, width, endHeight, kAlongX, kAlongY, true,
                                        startLeg, endLeg, axis, withCollars, collar);
    }
    bool build(qn_hvacSolid& solid, int flags = 0) const {
        return solid.addSquareElbow(start, width, height, end, width, height, kAlongX, kAlongY, true,
                                    startLeg, endLeg, axis, flags);
    }
};

struct Wye {
    AcGePoint3d start{-20, 0, 0}, end1{20, 0, 0}, end2{0, 20, 0}, junction{9, 9, 9};
    AModeler::Point3d legs[3][8];
    AcGePoint3d axes[3][8];

    bool prepare(qn_hvacSolid& solid) {
        return solid.addWyePrep(start, 4, 2, end1, 4, 2, end2, 4, 2, kAlongX, kAlongX, kAlongY, true, legs[0],
                                legs[1], legs[2], axes[0], axes[1], axes[2], true, 3);
    }
    bool build(qn_hvacSolid& solid) {
        return solid.addWye(start, 4, 2, end1, 4, 2, end2, 4, 2, junction, kAlongX, kAlongX, kAlongY, true,
                            legs[0], legs[1], legs[2], axes[0], axes[1], axes[2], 0);
    }
};

}  // namespace

class SolidOperations : public SolidTest {};

TEST_F(SolidOperations, BodiesAreMeasuredOnceWhereTheyOverlap) {
    const SolidPointer solid = crossing();
    expectSolid(solid->joined().mesh, 80 + 18);
    EXPECT_STREQ(L"joined", measuresOf(*solid).kind);
    EXPECT_NEAR(98, measuresOf(*solid).volume, 1e-9);
    // The box's walls without the hole, and the sides of what sticks out; three ends are no sheet.
    EXPECT_NEAR(120 - 2 + 9 * 6, measuresOf(*solid).sheetArea, 1e-9);
    EXPECT_NEAR(120 - 2 + 9 * 6 + 2 * 8 + 2, measuresOf(*solid).surfaceArea, 1e-9);
    solid->setFitting(HvacFitting::takeoff);
    EXPECT_STREQ(L"takeoff", measuresOf(*solid).kind);
    solid->setFitting(HvacFitting::hanger);
    EXPECT_STREQ(L"hanger", measuresOf(*solid).kind);
    EXPECT_EQ(0, measuresOf(*solid).sheetArea);
    EXPECT_STREQ(L"straight duct", measuresOf(*box()).kind);
}

TEST_F(SolidOperations, BodiesApartAndBodiesThatTouchAreOneSolid) {
    const SolidPointer apart = box();
    ASSERT_TRUE(addStraight(*apart, {0, 20, 0}, {10, 20, 0}, true, 4, 2));
    expectSolid(apart->joined().mesh, 160);
    const SolidPointer touching = box();
    ASSERT_TRUE(addStraight(*touching, {10, 0, 0}, {20, 0, 0}, true, 4, 2));
    expectSolid(touching->joined().mesh, 160);
    EXPECT_NEAR(2 * (20 * 6 + 8), measuresOf(*touching).surfaceArea, 1e-9);
}

TEST_F(SolidOperations, SlicesCutTheLastBodyOnly) {
    const SolidPointer solid = crossing();
    // At y = 7, the side of the box is kept.
    ASSERT_TRUE(solid->sliceLast({0, 7, 0}, {1, 7, 0}, {0, 7, 1}, {0, 0, 0}));
    expectSolid(solid->joined().mesh, 80 + 10);
    AcDbExtents extents;
    ASSERT_EQ(Acad::eOk, solid->getGeomExtents(extents));
    EXPECT_NEAR(7, extents.maxPoint().y, 1e-12);
    EXPECT_NEAR(7, solid->joined().centerLines[1].points.back().y, 1e-12);
    // The new end is as open as the one that was cut off.
    EXPECT_NEAR(8 + 2, areaOf(solid->joined().mesh, solids::FaceKind::openEnd), 1e-9);
    const drafthost::DwgRecord before = filed(*solid);
    EXPECT_TRUE(solid->sliceLast({0, 50, 0}, {1, 50, 0}, {0, 50, 1}, {0, 0, 0}));
    EXPECT_EQ(before.values.size(), filed(*solid).values.size());
    EXPECT_NEAR(90, volumeOf(*solid), 1e-9);
    // Nothing would be left; no plane; no side; no body; no numbers.
    EXPECT_FALSE(solid->sliceLast({0, 50, 0}, {1, 50, 0}, {0, 50, 1}, {0, 60, 0}));
    EXPECT_FALSE(solid->sliceLast({0, 1, 0}, {1, 1, 0}, {2, 1, 0}, {0, 0, 0}));
    EXPECT_FALSE(solid->sliceLast({0, 1, 0}, {1, 1, 0}, {0, 1, 1}, {7, 1, 3}));
    EXPECT_FALSE(solid->sliceLast({0, kNotANumber, 0}, {1, 1, 0}, {0, 1, 1}, {0, 0, 0}));
    EXPECT_FALSE(newSolid()->sliceLast({0, 1, 0}, {1, 1, 0}, {0, 1, 1}, {0, 0, 0}));
    EXPECT_EQ(2, solid->bodyCount());
    EXPECT_NEAR(90, volumeOf(*solid), 1e-9);
}

// The ends of ring and opening lie in one plane, but for the rounding of a direction that is no round number.
TEST_F(SolidOperations, OpeningsLeaveNoMembrane) {
    for (const double angle : {0.1, 0.5, 1.0, 2.3}) {
        const AcGeVector3d along(std::cos(angle), std::sin(angle), 0);
        const AcGeVector3d frame[] = {along, {-along.y, along.x, 0}, AcGeVector3d::kZAxis};
        const AcGePoint3d start = AcGePoint3d(31, 7, 5) - along, end = AcGePoint3d(31, 7, 5) + along;
        const auto solid = newSolid();
        ASSERT_TRUE(solid->addTransition(start, true, 22, 14, end, true, 22, 14, frame, frame, 0));
        ASSERT_TRUE(solid->subtractTransition(start, true, 20, 12, end, true, 20, 12, frame, frame, 0));
        AcDbSolidMeasures measures;
        ASSERT_EQ(Acad::eOk, solid->getSolidMeasures(measures));
        EXPECT_NEAR(2 * (22 * 14 - 20 * 12), measures.volume, 1e-4);
        EXPECT_NEAR(2 * (22 * 14 - 20 * 12) + 4 * (22 + 14 + 20 + 12), measures.surfaceArea, 1e-4) << angle;
    }
}

TEST_F(SolidOperations, SubtractionTakesFromAllBodies) {
    const SolidPointer solid = crossing();
    const auto subtract = [&](SolidEntity& from, double x, double size) {
        return from.subtractTransition({x, 0, -50}, true, size, size, {x, 0, 50}, true, size, size, kAlongZ,
                                       kAlongZ, 0);
    };
    ASSERT_TRUE(subtract(*solid, 5, 1));
    expectSolid(solid->joined().mesh, 98 - 2);
    EXPECT_EQ(1, solid->bodyCount());
    EXPECT_STREQ(L"joined", solid->kindText());
    EXPECT_FALSE(subtract(*solid, 5, 1000));
    EXPECT_FALSE(subtract(*solid, 5, -1));
    EXPECT_FALSE(subtract(*newSolid(), 5, 1));
    EXPECT_NEAR(96, volumeOf(*solid), 1e-9);
    solid->clearBodies();
    EXPECT_EQ(0, solid->bodyCount());
    EXPECT_EQ(-1, volumeOf(*solid));
}

TEST_F(SolidOperations, UnionsMergeAnotherSolidAndLeaveItAlone) {
    const SolidPointer solid = box(), other = newSolid();
    ASSERT_TRUE(addStraight(*other, {5, 0, 0}, {5, 11, 0}, true, 2, 1, kAlongY));
    const SolidPointer copy(static_cast<SolidEntity*>(other->clone()));
    ASSERT_TRUE(solid->doUnion(*other));
    expectSolid(solid->joined().mesh, 98);
    EXPECT_EQ(1, solid->bodyCount());
    EXPECT_STREQ(L"joined", solid->kindText());
    expectSame(*copy, *other);
    EXPECT_FALSE(solid->doUnion(*solid));
    EXPECT_FALSE(solid->doUnion(*newSolid()));
    EXPECT_FALSE(newSolid()->doUnion(*solid));
    EXPECT_NEAR(98, volumeOf(*solid), 1e-9);
}

TEST_F(SolidOperations, RefusedBodiesChangeNeitherTheSolidNorThePoints) {
    const SolidPointer solid = box();
    AcGePoint3d start(0, 0, 0), end(30, 30, 0);
    const auto elbow = [&](double ratio, double wall, bool roundThroat, const AcGeVector3d* frame = kAlongY) {
        return solid->addRadiusElbow(start, 4, 2, wall, 0, end, 4, 2, kAlongX, frame, true, ratio,
                                     roundThroat, 0, true);
    };
    const auto skin = [&](std::initializer_list<AcGePoint3d> corners, double thickness) {
        AcGePoint3dArray points;
        for (const AcGePoint3d& corner : corners) {
            points.append(corner);
        }
        return solid->addSkin(points, thickness);
    };
    const AcGeVector3d skewed[] = {{1, 0, 0}, {0.1, 1, 0}, {0, 0, 1}};
    const std::function<bool()> refused[] = {
        [&] {
            return addStraight(*solid, {0, 0, 0}, {0, 0, 0}, true, 4, 2);
        },
        [&] {
            return addStraight(*solid, {0, 0, 0}, {kNotANumber, 0, 0}, true, 4, 2);
        },
        [&] {
            return addStraight(*solid, {0, 0, 0}, {1e120, 0, 0}, true, 4, 2);
        },
        [&] {
            return addStraight(*solid, {0, 0, 0}, {10, 0, 0}, true, 0, 2);
        },
        [&] {
            return addStraight(*solid, {0, 0, 0}, {10, 0, 0}, true, 4, kNotANumber);
        },
        [&] {
            return addStraight(*solid, {0, 0, 0}, {10, 0, 0}, true, 4, 2, nullptr);
        },
        [&] {
            return addStraight(*solid, {0, 0, 0}, {10, 0, 0}, true, 4, 2, skewed);
        },
        [&] { return elbow(1.5, 0, false); },
        [&] { return elbow(1.5, -0.1, true); },
        [&] { return elbow(1.5, 1.1, true); },
        [&] { return elbow(kNotANumber, 0, true); },
        [&] { return elbow(1.5, 0, true, kAlongX); },
        [&] { return elbow(1.5, 0, true, nullptr); },
        [&] { return elbow(100, 0, true); },
        [&] { return solid->addCableTraySquareRadiusElbow(start, 4, 2, end, kAlongX, kAlongX, 1.5, 0); },
        [&] { return skin({}, 0.1); },
        [&] {
            return skin({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, 0.1);
        },
        [&] {
            return skin({{0, 0, 0}, {1, 0, 0}, {0, kNotANumber, 0}}, 0.1);
        },
        [&] {
            return skin({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, 0);
        },
    };
    for (std::size_t i = 0; i < std::size(refused); ++i) {
        EXPECT_FALSE(refused[i]()) << i;
        expectSame(*box(), *solid);
        EXPECT_EQ(0, start.distanceTo({0, 0, 0}));
        EXPECT_EQ(0, end.distanceTo({30, 30, 0}));
    }
    EXPECT_TRUE(elbow(1.5, 0.5, true));
    EXPECT_EQ(2, solid->bodyCount());
    EXPECT_TRUE(skin({{0, 0, 9}, {5, 0, 9}, {0, 5, 9}}, 0.1));
}

TEST_F(SolidOperations, RadiusAndTrayElbowsReturnTheirEnds) {
    const SolidPointer solid = newSolid();
    AcGePoint3d start(0, 0, 0), end(30, 30, 0);
    ASSERT_TRUE(
        solid->addRadiusElbow(start, 4, 2, 0, 0, end, 4, 2, kAlongX, kAlongY, true, 1.5, true, 0, false));
    EXPECT_NEAR(0, start.distanceTo({24, 0, 0}), 1e-9);
    EXPECT_NEAR(0, end.distanceTo({30, 6, 0}), 1e-9);
    EXPECT_STREQ(L"radius elbow", solid->kindText());
    solid->clearBodies();
    ASSERT_TRUE(solid->addCableTraySquareRadiusElbow(start, 4, 2, end, kAlongX, kAlongY, 1.5, 0));
    EXPECT_NEAR(0, start.distanceTo({24, 0, 0}), 1e-9);
    EXPECT_NEAR(0, end.distanceTo({30, 6, 0}), 1e-9);
    EXPECT_STREQ(L"cable tray elbow", solid->kindText());
}

TEST_F(SolidOperations, PreparedSquareElbowsTakeTheirOwnArraysOnly) {
    const SolidPointer solid = newSolid();
    SquareElbow elbow;
    EXPECT_FALSE(elbow.prepare(*solid, 3, 3));
    EXPECT_FALSE(elbow.prepare(*solid, 2, -1));
    EXPECT_FALSE(elbow.prepare(*solid, 2, kNotANumber));
    EXPECT_EQ(0, elbow.start.distanceTo({0, 0, 0}));
    ASSERT_TRUE(elbow.prepare(*solid, 2, 3));
    EXPECT_EQ(0, solid->bodyCount());
    EXPECT_NEAR(0, elbow.start.distanceTo({15, 0, 0}), 1e-9);
    EXPECT_NEAR(0, elbow.end.distanceTo({20, 5, 0}), 1e-9);
    EXPECT_NEAR(0, elbow.axis[1].distanceTo({20, 0, 0}), 1e-9);
    const std::function<void(SquareElbow&)> damages[] = {
        [](SquareElbow& e) { e.axis[1].x += 1; },
        [](SquareElbow& e) { e.axis[7].y += 1; },
        [](SquareElbow& e) { e.start.x -= 1; },
        [](SquareElbow& e) { e.endLeg[2].z = kNotANumber; },
        [](SquareElbow& e) { std::swap(e.startLeg, e.endLeg); },
        [](SquareElbow& e) { std::ranges::fill(e.startLeg, AModeler::Point3d()); },
    };
    for (const auto& damage : damages) {
        SquareElbow damaged = elbow;
        damage(damaged);
        EXPECT_FALSE(damaged.build(*solid));
        EXPECT_EQ(0, solid->bodyCount());
    }
    ASSERT_TRUE(elbow.build(*solid));
    EXPECT_STREQ(L"square elbow", solid->kindText());
    // Two legs of 5 from the corner: the square at the corner and what is left of both.
    expectSolid(solid->joined().mesh, 2 * (4 * 4 + 2 * 3 * 4));

    SquareElbow plain;
    ASSERT_TRUE(plain.prepare(*solid, 2, 3, false));
    EXPECT_NEAR(0, plain.start.distanceTo({18, 0, 0}), 1e-9);
}

TEST_F(SolidOperations, PreparedWyesTellTheirJunction) {
    const SolidPointer solid = newSolid();
    Wye wye;
    EXPECT_FALSE(wye.build(*solid));
    ASSERT_TRUE(wye.prepare(*solid));
    EXPECT_EQ(0, solid->bodyCount());
    Wye damaged = wye;
    std::swap(damaged.axes[1], damaged.axes[2]);
    EXPECT_FALSE(damaged.build(*solid));
    EXPECT_EQ(0, damaged.junction.distanceTo({9, 9, 9}));
    const AcGePoint3d start = wye.start;
    ASSERT_TRUE(wye.build(*solid));
    EXPECT_NEAR(0, wye.junction.distanceTo({0, 0, 0}), 1e-9);
    EXPECT_EQ(0, wye.start.distanceTo(start));
    EXPECT_STREQ(L"wye", solid->kindText());
    EXPECT_TRUE(isSolid(solid->joined().mesh));
}

TEST_F(SolidOperations, NeedTheSolidOpenForWrite) {
    const AcDbObjectId id = append(crossing().release());
    const SolidPointer wanted = crossing(), other = box();
    {
        const OpenSolid solid(id, AcDb::kForRead);
        EXPECT_FALSE(addStraight(*solid, {0, 0, 0}, {10, 0, 0}, true, 4, 2));
        EXPECT_FALSE(solid->sliceLast({0, 7, 0}, {1, 7, 0}, {0, 7, 1}, {0, 0, 0}));
        EXPECT_FALSE(solid->doUnion(*other));
        EXPECT_FALSE(
            solid->subtractTransition({5, 0, -50}, true, 1, 1, {5, 0, 50}, true, 1, 1, kAlongZ, kAlongZ, 0));
        solid->clearBodies();
        solid->setFitting(HvacFitting::hanger);
        EXPECT_EQ(Acad::eNotOpenForWrite, solid->transformBy(AcGeMatrix3d::scaling(2)));
        expectSame(*wanted, entityOf(solid));
    }
    const OpenSolid solid(id, AcDb::kForWrite);
    EXPECT_TRUE(other->doUnion(*solid));
    EXPECT_TRUE(solid->doUnion(*box()));
}

TEST_F(SolidOperations, AnEmptySolidIsALegalEntity) {
    const SolidPointer solid = newSolid();
    AcDbExtents extents;
    AcDbSolidMeasures measures;
    AcDbEntityArray parts;
    AcGePoint3dArray points;
    AcDbIntArray modes, ids;
    EXPECT_EQ(Acad::eInvalidExtents, solid->getGeomExtents(extents));
    EXPECT_EQ(Acad::eNotApplicable, solid->getSolidMeasures(measures));
    EXPECT_EQ(Acad::eOk, solid->explode(parts));
    EXPECT_EQ(0, parts.length());
    EXPECT_EQ(Acad::eOk, solid->getGripPoints(points, modes, ids));
    EXPECT_EQ(0, points.length());
    EXPECT_EQ(Acad::eOk, solid->transformBy(AcGeMatrix3d::scaling(2)));
    const std::unique_ptr<AcDbObject> copy(solid->clone());
    ASSERT_NE(nullptr, copy);
    expectSame(*solid, static_cast<SolidEntity&>(*copy));
    const AcDbObjectId id = append(newSolid().release());
    const OpenSolid appended(id, AcDb::kForWrite);
    EXPECT_TRUE(addStraight(*appended, {0, 0, 0}, {10, 0, 0}, true, 4, 2));
}

// Bodies of all kinds in any place, put together in any way.
TEST_F(SolidOperations, RandomBodiesJoinIntoSoundSolids) {
    std::mt19937 random(5);
    const auto number = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const auto point = [&] { return AcGePoint3d(number(-9, 9), number(-9, 9), number(-9, 9)); };
    int joined = 0;
    for (int round = 0; round < 60; ++round) {
        const SolidPointer solid = newSolid();
        double sum = 0;
        for (int body = 0; body < 3; ++body) {
            const SolidPointer one = newSolid();
            const AcGePoint3d from = point(), to = point();
            const solids::Frame frame = frameAlong((to - from).normal(), number(0, 3));
            const AcGeVector3d vectors[] = {frame.x, frame.y, frame.z};
            const bool isRectangular = random() % 2 == 0;
            const double width = number(1, 5), height = random() % 2 ? width : number(1, 5);
            const bool isAdded =
                addStraight(*solid, from, to, isRectangular, width, height, vectors, round % 8);
            EXPECT_EQ(isAdded, addStraight(*one, from, to, isRectangular, width, height, vectors));
            sum += isAdded ? volumeOf(*one) : 0;
        }
        if (round % 3 == 0) {
            solid->sliceLast(point(), point(), point(), point());
        }
        if (solid->bodyCount() == 0) {
            continue;
        }
        EXPECT_TRUE(isClosedAndOriented(solid->joined().mesh)) << round;
        EXPECT_FALSE(solid->joined().mayOverlap) << round;
        EXPECT_LE(volumeOf(*solid), sum * (1 + 1e-6)) << round;
        const SolidPointer copy = newSolid();
        drafthost::MemoryFiler filer(nullptr, AcDb::kCopyFiler, filed(*solid));
        ASSERT_EQ(Acad::eOk, copy->dwgIn(&filer)) << round;
        expectSame(*solid, *copy);
        ++joined;
    }
    EXPECT_GT(joined, 50);
}
