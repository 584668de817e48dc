// Leaders as the host's editing sees them: points, transformations, measures, drawing, parts.

#include "tests/module/leader_samples.h"
#include "tests/module/recording_draw.h"
#include "tests/module/value_filer.h"

#include <algorithm>
#include <string>

namespace tessary::testing {

namespace {

using Points = std::vector<AcGePoint3d>;

Points listOf(const AcGePoint3dArray& array) {
    return Points(array.begin(), array.end());
}

AcDbIntArray indicesOf(std::initializer_list<int> list) {
    AcDbIntArray indices;
    for (const int index : list) {
        indices.append(index);
    }
    return indices;
}

class LeaderPoints : public LeaderTest {
protected:
    // Knee at (4 3), symbol of scale 2 at (10 3), tail point (8 3).
    QNLeader sample{{0, 0, 1}, {4, 3, 1}, {10, 3, 1}, 2, symbol, layer};
};

TEST_F(LeaderPoints, gripsAreTheThreePointsWithoutKinds) {
    AcGePoint3dArray grips, stretch;
    AcDbIntArray modes, ids;
    grips.append({7, 7, 7});
    EXPECT_EQ(Acad::eOk, sample.getGripPoints(grips, modes, ids));
    EXPECT_EQ(Acad::eOk, sample.getStretchPoints(stretch));
    expectNear({{7, 7, 7}, {0, 0, 1}, {4, 3, 1}, {10, 3, 1}}, listOf(grips));
    expectNear(pointsOf(sample), listOf(stretch));
    EXPECT_EQ(0, modes.length());
    EXPECT_EQ(0, ids.length());
}

TEST_F(LeaderPoints, indicesGivenTwiceMoveOnceAndOthersNothing) {
    EXPECT_EQ(Acad::eOk, sample.moveStretchPointsAt(indicesOf({2, 2, 0}), {0, 6, 0}));
    expectNear({{0, 6, 1}, {4, 3, 1}, {10, 9, 1}}, pointsOf(sample));
    EXPECT_NEAR(std::numbers::pi / 4, sample.blockReference().rotation(), 1e-9);
    expectPlacedSymbol(sample);
    EXPECT_EQ(Acad::eOk, sample.moveGripPointsAt(indicesOf({-1, 3, 1000000, 1}), {1, 0, 0}));
    expectNear({{0, 6, 1}, {5, 3, 1}, {10, 9, 1}}, pointsOf(sample));
    expectPlacedSymbol(sample);
    EXPECT_EQ(Acad::eOk, sample.moveGripPointsAt(indicesOf({}), {1, 0, 0}));
    expectNear({0, 6, 1}, sample.startPoint());
}

TEST_F(LeaderPoints, gripsMoveWhatTheyMark) {
    RandomLeaders random(41);
    for (int i = 0; i < 60; ++i) {
        const auto leader = random.leader(symbol, layer);
        const int index = i % 3;
        const AcGeVector3d offset = random.point().asVector();
        Points wanted = pointsOf(*leader);
        wanted[static_cast<std::size_t>(index)] += offset;
        ASSERT_EQ(Acad::eOk, leader->moveGripPointsAt(indicesOf({index}), offset));
        expectNear(wanted, pointsOf(*leader));
        expectPlacedSymbol(*leader);
    }
}

TEST_F(LeaderPoints, editingKeepsTheSymbolInItsPlace) {
    EXPECT_EQ(Acad::eOk, sample.setOffset(5));
    expectPlacedSymbol(sample);
    EXPECT_EQ(Acad::eOk, sample.setPoints({1, 1, 1}, {2, 2, 2}, {2, -5, 3}));
    expectPlacedSymbol(sample);
    EXPECT_EQ(Acad::eOk, sample.setOffset(0));
    expectPlacedSymbol(sample);
    expectNear(sample.endPoint(), sample.tailPoint());
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Acad::eInvalidInput, sample.setPoints({}, {0, notANumber, 0}, {}));
    EXPECT_EQ(Acad::eInvalidInput, sample.setOffset(std::numeric_limits<double>::infinity()));
    expectNear({2, -5, 3}, sample.endPoint());
    EXPECT_EQ(0, sample.offset());
}

TEST_F(LeaderPoints, offsetBeyondTheKneeDrawsBackPastIt) {
    expectNear({8, 3, 1}, sample.tailPoint());
    EXPECT_EQ(Acad::eOk, sample.setOffset(7));
    expectNear({3, 3, 1}, sample.tailPoint());
}

TEST_F(LeaderPoints, layersGoToTheSymbolWhenAsked) {
    const AcDbObjectId other = addLayer(L"Other");
    const AcDbObjectId hidden = addHiddenLayer(L"*Hidden");
    EXPECT_EQ(layer, sample.blockReference().layerId());
    EXPECT_EQ(Acad::eOk, sample.setLayer(other, false));
    EXPECT_EQ(other, sample.layerId());
    EXPECT_EQ(layer, sample.blockReference().layerId());
    EXPECT_NE(Acad::eOk, sample.setLayer(hidden));
    EXPECT_EQ(other, sample.layerId());
    EXPECT_EQ(layer, sample.blockReference().layerId());
    EXPECT_EQ(Acad::eOk, sample.setLayer(hidden, true, true));
    EXPECT_EQ(hidden, sample.blockReference().layerId());
    const QNLeader onHidden({}, {1, 0, 0}, {2, 0, 0}, 1, symbol, hidden);
    EXPECT_TRUE(onHidden.layerId().isNull());
    EXPECT_TRUE(onHidden.blockReference().layerId().isNull());
    const AcDbObjectId frozen = addLayer(L"Frozen", true);
    const QNLeader onFrozen({}, {1, 0, 0}, {2, 0, 0}, 1, symbol, frozen);
    EXPECT_EQ(frozen, onFrozen.layerId());
    EXPECT_EQ(frozen, onFrozen.blockReference().layerId());
}

// Rigid motions in the plane move the whole picture, and commute with filing.
TEST_F(LeaderPoints, motionsInThePlaneMoveTheSymbolRigidly) {
    RandomLeaders random(42);
    for (int i = 0; i < 100; ++i) {
        const auto leader = random.leader(symbol, layer);
        const AcGeMatrix3d motion = random.motion(AcGeVector3d::kZAxis);
        const AcGeMatrix3d before = leader->blockReference().blockTransform();
        Points wanted = pointsOf(*leader);
        wanted.push_back(leader->tailPoint());
        for (AcGePoint3d& point : wanted) {
            point.transformBy(motion);
        }
        ValueFiler filer;
        ASSERT_EQ(Acad::eOk, leader->dwgOutFields(&filer));
        QNLeader read;
        ASSERT_EQ(Acad::eOk, read.dwgInFields(&filer));
        for (QNLeader* const moved : {leader.get(), &read}) {
            ASSERT_EQ(Acad::eOk, moved->transformBy(motion));
            Points points = pointsOf(*moved);
            points.push_back(moved->tailPoint());
            expectNear(wanted, points);
            EXPECT_TRUE((motion * before).isEqualTo(moved->blockReference().blockTransform(), {1e-8, 1e-8}));
        }
        ValueFiler first, second;
        leader->dwgOutFields(&first);
        read.dwgOutFields(&second);
        EXPECT_EQ(shown(first.values), shown(second.values));
    }
}

TEST_F(LeaderPoints, otherTransformationsMoveThePointsOnly) {
    RandomLeaders random(43);
    for (int i = 0; i < 100; ++i) {
        const auto leader = random.leader(symbol, layer);
        const double offset = leader->offset();
        AcGeMatrix3d matrix = random.motion(random.direction());
        if (i % 3 == 1) {
            matrix = matrix * AcGeMatrix3d::scaling(random.number(0.1, 9), random.point());
        } else if (i % 3 == 2) {
            matrix = AcGeMatrix3d::mirroring(random.point(), random.direction());
        }
        Points wanted = pointsOf(*leader);
        for (AcGePoint3d& point : wanted) {
            point.transformBy(matrix);
        }
        ASSERT_EQ(Acad::eOk, leader->transformBy(matrix));
        expectNear(wanted, pointsOf(*leader));
        EXPECT_EQ(offset, leader->offset());
        expectPlacedSymbol(*leader);
    }
}

TEST_F(LeaderPoints, drawsTwoSegmentsThenTheSymbolOnTheLeadersLayer) {
    RecordingDraw draw;
    draw.setColor(3);
    draw.colorOfDrawables = 5;
    EXPECT_TRUE(sample.worldDraw(&draw));
    const std::vector<std::string> wanted = {"color 3",
                                             "polyline (0 0 1) (4 3 1) marker -1",
                                             "polyline (4 3 1) (8 3 1) marker -1",
                                             "layer Leaders",
                                             "draw",
                                             "color 5",
                                             "color 3"};
    EXPECT_EQ(wanted, draw.calls);
    draw.drawsCompletely = false;
    EXPECT_FALSE(sample.worldDraw(&draw));
}

TEST_F(LeaderPoints, extentsHoldEverythingDrawn) {
    RandomLeaders random(44);
    for (int i = 0; i < 100; ++i) {
        const auto leader = random.leader(symbol, layer);
        RecordingDraw draw;
        draw.entersDrawables = true;
        EXPECT_TRUE(leader->worldDraw(&draw));
        AcDbExtents extents;
        ASSERT_EQ(Acad::eOk, leader->getGeomExtents(extents));
        ASSERT_GT(draw.points.size(), 10u);
        for (const AcGePoint3d& point : draw.points) {
            for (int axis = 0; axis < 3; ++axis) {
                EXPECT_GE(point[axis], extents.minPoint()[axis] - 1e-9);
                EXPECT_LE(point[axis], extents.maxPoint()[axis] + 1e-9);
            }
        }
    }
}

// In a block the symbol is scaled with everything else, though the offset does not change when a leader is.
TEST_F(LeaderPoints, extentsOfATurnedInsertionHoldTheSymbol) {
    const AcDbObjectId block = addRecord<AcDbBlockTable>(L"Detail", new AcDbBlockTableRecord);
    append(new QNLeader({0, 0, 0}, {4, 3, 0}, {10, 3, 0}, 2, symbol, layer), block);
    AcDbBlockReference insertion({100, 0, 0}, block);
    insertion.setRotation(std::numbers::pi / 4);
    for (const AcGeVector3d& scale :
         {AcGeVector3d(5, 5, 5), AcGeVector3d(0.2, 0.2, 0.2), AcGeVector3d(3, 1, 1)}) {
        insertion.setScaleFactors(scale);
        RecordingDraw draw;
        draw.entersDrawables = true;
        insertion.worldDraw(&draw);
        ASSERT_GT(draw.points.size(), 10u);
        AcDbExtents extents, drawn;
        ASSERT_EQ(Acad::eOk, insertion.getGeomExtents(extents));
        for (const AcGePoint3d& point : draw.points) {
            drawn.addPoint(point);
        }
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_LE(extents.minPoint()[axis], drawn.minPoint()[axis] + 1e-9);
            EXPECT_GE(extents.maxPoint()[axis], drawn.maxPoint()[axis] - 1e-9);
        }
    }
}

TEST_F(LeaderPoints, insertionsAreMetWhereTheSymbolShows) {
    const AcDbObjectId block = addRecord<AcDbBlockTable>(L"Detail", new AcDbBlockTableRecord);
    append(new QNLeader({0, 0, 0}, {4, 3, 0}, {10, 3, 0}, 2, symbol, layer), block);
    AcDbBlockReference insertion({0, 0, 0}, block);
    insertion.setScaleFactors({5, 5, 5});
    // The circle, 10 about (50 15), left of its arrow.
    const AcDbLine across({44, 20, 0}, {44, 99, 0});
    AcGePoint3dArray found, reversed;
    EXPECT_EQ(Acad::eOk, insertion.intersectWith(&across, AcDb::kOnBothOperands, found));
    expectNear(Points{{44, 23, 0}}, listOf(found));
    EXPECT_EQ(Acad::eOk, across.intersectWith(&insertion, AcDb::kOnBothOperands, reversed));
    expectNear(Points{{44, 23, 0}}, listOf(reversed));
}

// The block of a leader may be the one that it lies in.
TEST_F(LeaderPoints, symbolThatShowsItsLeaderIsNotTakenApartForEver) {
    const AcDbObjectId block = addRecord<AcDbBlockTable>(L"Loop", new AcDbBlockTableRecord);
    const AcDbObjectId id = append(new QNLeader({0, 0, 0}, {4, 3, 0}, {10, 3, 0}, 2, block, layer), block);
    append(new QNLeader({0, 1, 0}, {4, 4, 0}, {10, 4, 0}, 2, block, layer), block);
    const AcDbLine across({2, -9, 0}, {2, 9, 0});
    const AcDbObjectPointer<AcDbEntity> leader(id, AcDb::kForRead);
    AcGePoint3dArray found, ofInsertion;
    EXPECT_EQ(Acad::eOk, leader->intersectWith(&across, AcDb::kOnBothOperands, found));
    expectNear(Points{{2, 1.5, 0}}, listOf(found));
    AcDbBlockReference insertion({0, 0, 0}, block);
    insertion.setRotation(0.3);
    EXPECT_EQ(Acad::eOk, insertion.intersectWith(&across, AcDb::kOnBothOperands, ofInsertion));
    EXPECT_GE(ofInsertion.length(), 2);
    AcDbExtents extents;
    EXPECT_EQ(Acad::eOk, insertion.getGeomExtents(extents));
    insertion.setScaleFactors({1, 0, 1});
    insertion.getGeomExtents(extents);
    AcDbEntityArray parts;
    EXPECT_EQ(Acad::eOk, leader->explode(parts));
    EXPECT_EQ(4, parts.length());
    std::ranges::for_each(parts, [](AcDbEntity* part) { delete part; });
}

TEST_F(LeaderPoints, anyFailingPartFailsTheExtents) {
    const QNLeader without({0, 0, 0}, {1, 0, 0}, {2, 0, 0}, 1, AcDbObjectId::kNull, layer);
    AcDbExtents ofNothing, extents;
    const Acad::ErrorStatus status = AcDbBlockReference().getGeomExtents(ofNothing);
    EXPECT_NE(Acad::eOk, status);
    EXPECT_EQ(status, without.getGeomExtents(extents));
    // The segments have been measured by then.
    ASSERT_TRUE(extents.isValid());
    expectNear({0, 0, 0}, extents.minPoint());
    expectNear({1, 0, 0}, extents.maxPoint());
}

TEST_F(LeaderPoints, explodesIntoLinesAndTheBlocksContents) {
    const auto kindsOf = [](const QNLeader& leader) {
        AcDbEntityArray parts;
        EXPECT_EQ(Acad::eOk, leader.explode(parts));
        std::vector<std::wstring> kinds;
        for (AcDbEntity* const part : parts) {
            kinds.push_back(part->isA()->name());
            delete part;
        }
        return kinds;
    };
    using Names = std::vector<std::wstring>;
    EXPECT_EQ((Names{L"AcDbLine", L"AcDbLine", L"AcDbCircle", L"AcDbLine"}), kindsOf(sample));
    const QNLeader without({0, 0, 0}, {1, 0, 0}, {2, 0, 0}, 1, AcDbObjectId::kNull, layer);
    EXPECT_EQ((Names{L"AcDbLine", L"AcDbLine"}), kindsOf(without));
    const QNLeader withoutOffset({0, 0, 0}, {1, 0, 0}, {2, 0, 0}, 0, AcDbObjectId::kNull, layer);
    EXPECT_EQ((Names{L"AcDbLine", L"AcDbLine"}), kindsOf(withoutOffset));

    AcDbEntityArray parts;
    sample.explode(parts);
    expectNear({8, 3, 1}, AcDbLine::cast(parts[1])->endPoint());
    expectNear({10, 3, 1}, AcDbCircle::cast(parts[2])->center());
    EXPECT_NEAR(2, AcDbCircle::cast(parts[2])->radius(), 1e-9);
    std::ranges::for_each(parts, [](AcDbEntity* part) { delete part; });
}

TEST_F(LeaderPoints, asACurveItIsTheStraightLineFromStartToEnd) {
    const QNLeader curve({1, 0, 0}, {5, 9, 0}, {4, 4, 0}, 1, symbol, layer);
    double value = -1;
    AcGePoint3d point;
    EXPECT_EQ(Acad::eOk, curve.getStartParam(value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(Acad::eOk, curve.getEndParam(value));
    EXPECT_DOUBLE_EQ(5, value);
    EXPECT_EQ(Acad::eOk, curve.getStartPoint(point));
    expectNear({1, 0, 0}, point);
    EXPECT_EQ(Acad::eOk, curve.getEndPoint(point));
    expectNear({4, 4, 0}, point);
    for (const double distance : {0.0, 2.5, 5.0, -5.0, 20.0}) {
        const AcGePoint3d wanted(1 + 0.6 * distance, 0.8 * distance, 0);
        EXPECT_EQ(Acad::eOk, curve.getPointAtParam(distance, point));
        expectNear(wanted, point);
        EXPECT_EQ(Acad::eOk, curve.getPointAtDist(distance, point));
        expectNear(wanted, point);
        EXPECT_EQ(Acad::eOk, curve.getDistAtParam(distance, value));
        EXPECT_EQ(distance, value);
        EXPECT_EQ(Acad::eOk, curve.getParamAtDist(-distance, value));
        EXPECT_EQ(-distance, value);
        EXPECT_EQ(Acad::eOk, curve.getParamAtPoint(wanted, value));
        EXPECT_NEAR(distance, value, 1e-12);
    }
    // Off the line: the parameter is projected, the distance is not.
    EXPECT_EQ(Acad::eOk, curve.getParamAtPoint({1, 10, 0}, value));
    EXPECT_DOUBLE_EQ(8, value);
    EXPECT_EQ(Acad::eOk, curve.getDistAtPoint({1, 10, 0}, value));
    EXPECT_DOUBLE_EQ(10, value);
    EXPECT_EQ(Acad::eOk, curve.getDistAtPoint({-2, -4, 0}, value));
    EXPECT_DOUBLE_EQ(5, value);

    const QNLeader closed({3, 3, 3}, {5, 9, 0}, {3, 3, 3}, 1, symbol, layer);
    EXPECT_EQ(Acad::eOk, closed.getEndParam(value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(Acad::eOk, closed.getPointAtDist(7, point));
    expectNear({3, 3, 3}, point);
}

// Only callers that name the class reach its own intersections.
TEST_F(LeaderPoints, intersectionsOfItsOwnDoNotReplaceTheHosts) {
    const QNLeader flat({0, 0, 0}, {4, 3, 0}, {10, 3, 0}, 2, symbol, layer);
    const AcDbLine across({2, -9, 0}, {2, 9, 0});
    const AcDbLine throughSymbol({10.5, -9, 0}, {10.5, 9, 0});
    AcGePoint3dArray found;
    found.append({7, 7, 7});
    EXPECT_EQ(Acad::eOk, flat.intersectWith(&across, AcDb::kOnBothOperands, found));
    expectNear({{7, 7, 7}, {2, 1.5, 0}}, listOf(found));
    AcGePoint3dArray projected;
    const AcDbLine above({2, -9, 50}, {2, 9, 50});
    EXPECT_EQ(Acad::eOk, flat.intersectWith(&above, AcDb::kOnBothOperands, AcGePlane(), projected, 1, 2));
    expectNear(Points{{2, 1.5, 0}}, listOf(projected));
    AcGePoint3dArray extended;
    EXPECT_EQ(Acad::eOk, flat.intersectWith(&across, AcDb::kExtendThis, extended));
    expectNear({{2, 1.5, 0}, {2, 3, 0}}, listOf(extended));
    AcGePoint3dArray ofSymbol;
    EXPECT_EQ(Acad::eOk, flat.intersectWith(&throughSymbol, AcDb::kOnBothOperands, ofSymbol));
    EXPECT_EQ(3, ofSymbol.length());

    // Each segment answers for itself, so the knee is found twice; the host tells every point once.
    const AcDbLine throughKnee({4, -9, 0}, {4, 9, 0});
    const AcDbEntity& entity = flat;
    AcGePoint3dArray own, hosts;
    EXPECT_EQ(Acad::eOk, flat.intersectWith(&throughKnee, AcDb::kOnBothOperands, own));
    EXPECT_EQ(2, own.length());
    EXPECT_EQ(Acad::eOk, entity.intersectWith(&throughKnee, AcDb::kOnBothOperands, hosts));
    EXPECT_EQ(1, hosts.length());
}

TEST_F(LeaderPoints, snapPointsAreThoseOfItsParts) {
    const auto snap = [&](AcDb::OsnapMode mode) {
        AcGePoint3dArray points, parts;
        AcDbIntArray ids, partIds;
        const AcGePoint3d pick(8, 3, 1), last(0, 9, 1);
        EXPECT_EQ(Acad::eOk, sample.getOsnapPoints(mode, 0, pick, last, AcGeMatrix3d(), points, ids));
        AcDbLine(sample.startPoint(), sample.middlePoint())
            .getOsnapPoints(mode, 0, pick, last, AcGeMatrix3d(), parts, partIds);
        AcDbLine(sample.middlePoint(), sample.tailPoint())
            .getOsnapPoints(mode, 0, pick, last, AcGeMatrix3d(), parts, partIds);
        sample.blockReference().getOsnapPoints(mode, 0, pick, last, AcGeMatrix3d(), parts, partIds);
        expectNear(listOf(parts), listOf(points));
        return points.length();
    };
    EXPECT_GE(snap(AcDb::kOsModeEnd), 4);
    EXPECT_GE(snap(AcDb::kOsModeMid), 2);
    EXPECT_GE(snap(AcDb::kOsModeCen), 1);
    EXPECT_GE(snap(AcDb::kOsModeIns), 1);
    snap(AcDb::kOsModeNear);
    snap(AcDb::kOsModePerp);
}

}  // namespace

}  // namespace tessary::testing
