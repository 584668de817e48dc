// Block references: what is drawn, measured, exploded and intersected must be the same thing, however the
// reference is turned, mirrored, stretched, repeated and nested.

#include <algorithm>
#include <numbers>

#include "host/api/text_entities.h"
#include "host/database/entity_data.h"
#include "host/graphics/display_builder.h"
#include "tests/host/database_drawing.h"

using namespace drafthost;

namespace {

constexpr double kPi = std::numbers::pi;

// How a reference stands; the block is shown at (10, 20).
struct Stand {
    const char* name;
    double rotation = 0;
    AcGeVector3d scale{1, 1, 1};
    AcGeVector3d normal{0, 0, 1};
};

const Stand kStands[] = {
    {"plain"},
    {"turned", 0.5},
    {"enlarged and turned", -2.0, {3, 3, 3}},
    {"mirrored", 0.4, {-2, 2, 2}},
    {"mirrored twice", 1.2, {-1, -1, 1}},
    {"seen from below", 0.7, {2, 2, 2}, {0, 0, -1}},
    {"stretched", 0, {3, 1, 1}},
    {"stretched, turned and mirrored", 1.0, {-0.5, 4, 1}},
};

class References : public DrawingTest {
protected:
    AcDbObjectId insert(AcDbObjectId block, const Stand& stand, AcDbObjectId owner = AcDbObjectId()) {
        auto* const reference = new AcDbBlockReference({10, 20, 0}, block);
        reference->setNormal(stand.normal);
        reference->setRotation(stand.rotation);
        EXPECT_EQ(reference->setScaleFactors(stand.scale), Acad::eOk);
        return append(reference, owner);
    }
    // A bent open shape of lines and a wide polyline, base point off the origin.
    AcDbObjectId straightBlock(const wchar_t* name) {
        const AcDbObjectId block = addBlock(name);
        AcDbObjectPointer<AcDbBlockTableRecord>(block, AcDb::kForWrite)->setOrigin({1, 1, 0});
        append(new AcDbLine({0, 0, 0}, {4, 1, 0}), block);
        append(new AcDbLine({4, 1, 0}, {2, 5, 0}), block);
        auto* const path = new AcDbPolyline;
        path->addVertexAt(0, {-1, 2});
        path->addVertexAt(1, {3, 3});
        append(path, block);
        return block;
    }
    AcDbObjectId roundBlock(const wchar_t* name) {
        const AcDbObjectId block = straightBlock(name);
        append(new AcDbCircle({2, 2, 0}, {0, 0, 1}, 1.5), block);
        append(new AcDbArc({0, 0, 0}, 3, 0.3, 2.9), block);
        return block;
    }
    static AcDbExtents extentsOf(AcDbObjectId id) {
        AcDbExtents extents;
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        EXPECT_EQ(entity->getGeomExtents(extents), Acad::eOk);
        return extents;
    }
    graphics::Bounds drawn(AcDbObjectId id) {
        graphics::DisplayBuilder builder(db(), 1e-5);
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        builder.draw(entity.object());
        return builder.take().bounds();
    }
    static AcDbExtents extentsOfParts(AcDbObjectId id, int& count) {
        AcDbEntityArray parts;
        AcDbExtents extents;
        EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->explode(parts), Acad::eOk);
        count = parts.length();
        for (AcDbEntity* const part : parts) {
            part->getGeomExtents(extents);
            delete part;
        }
        return extents;
    }
    static AcGePoint3dArray meet(AcDbObjectId first, AcDbObjectId second,
                                 AcDb::Intersect type = AcDb::kOnBothOperands) {
        AcGePoint3dArray points;
        const AcDbObjectPointer<AcDbEntity> a(first, AcDb::kForRead), b(second, AcDb::kForRead);
        EXPECT_EQ(a->intersectWith(b.object(), type, points), Acad::eOk);
        return points;
    }
};

void expectSameBox(const AcDbExtents& box, const graphics::Bounds& ink, double tolerance) {
    ASSERT_TRUE(box.isValid());
    ASSERT_TRUE(ink.valid);
    EXPECT_NEAR(box.minPoint().x, ink.minX, tolerance);
    EXPECT_NEAR(box.minPoint().y, ink.minY, tolerance);
    EXPECT_NEAR(box.maxPoint().x, ink.maxX, tolerance);
    EXPECT_NEAR(box.maxPoint().y, ink.maxY, tolerance);
}

void expectHolds(const AcDbExtents& box, const graphics::Bounds& ink) {
    ASSERT_TRUE(box.isValid());
    ASSERT_TRUE(ink.valid);
    constexpr double kSlack = 1e-3;
    EXPECT_LE(box.minPoint().x, ink.minX + kSlack);
    EXPECT_LE(box.minPoint().y, ink.minY + kSlack);
    EXPECT_GE(box.maxPoint().x, ink.maxX - kSlack);
    EXPECT_GE(box.maxPoint().y, ink.maxY - kSlack);
}

bool contains(const AcGePoint3dArray& points, const AcGePoint3d& wanted) {
    return std::any_of(points.begin(), points.end(),
                       [&](const AcGePoint3d& point) { return point.distanceTo(wanted) < 1e-6; });
}

void expectSamePoints(const AcGePoint3dArray& found, const AcGePoint3dArray& wanted) {
    EXPECT_EQ(found.length(), wanted.length());
    for (const AcGePoint3d& point : wanted)
        EXPECT_TRUE(contains(found, point)) << point.x << ' ' << point.y;
}

}  // namespace

TEST_F(References, BoxIsThatOfTheInkAndOfTheParts) {
    const AcDbObjectId block = straightBlock(L"STRAIGHT");
    for (const Stand& stand : kStands) {
        SCOPED_TRACE(stand.name);
        const AcDbObjectId id = insert(block, stand);
        int count = 0;
        const AcDbExtents parts = extentsOfParts(id, count), box = extentsOf(id);
        EXPECT_EQ(count, 3);
        expectSameBox(box, drawn(id), 1e-4);
        EXPECT_TRUE(parts.isValid() && parts.minPoint().isEqualTo(box.minPoint()) &&
                    parts.maxPoint().isEqualTo(box.maxPoint()));
    }
}

TEST_F(References, BoxHoldsRoundInkEvenWhenItIsStretched) {
    const AcDbObjectId block = roundBlock(L"ROUND");
    for (const Stand& stand : kStands) {
        SCOPED_TRACE(stand.name);
        const AcDbObjectId id = insert(block, stand);
        expectHolds(extentsOf(id), drawn(id));
        const bool even = std::abs(stand.scale.x) == std::abs(stand.scale.y);
        if (even)
            expectSameBox(extentsOf(id), drawn(id), 1e-3);
    }
}

TEST_F(References, NestedOnesAreDrawnMeasuredAndExplodedAlike) {
    const AcDbObjectId inner = straightBlock(L"INNER");
    const AcDbObjectId middle = addBlock(L"MIDDLE");
    insert(inner, {"", 0.6, {-1, 2, 1}}, middle);
    append(new AcDbLine({0, 0, 0}, {-3, 2, 0}), middle);
    for (const Stand& stand : kStands) {
        SCOPED_TRACE(stand.name);
        const AcDbObjectId id = insert(middle, stand);
        expectHolds(extentsOf(id), drawn(id));
        int count = 0;
        expectSameBox(extentsOfParts(id, count), drawn(id), 1e-4);
    }
}

TEST_F(References, SkewedNestedReferencesGiveTheirParts) {
    const AcDbObjectId inner = straightBlock(L"INNER");
    const AcDbObjectId outer = addBlock(L"OUTER");
    insert(inner, {"", 0.6}, outer);
    int count = 0;
    extentsOfParts(insert(outer, {"", 0, {1, 1, 1}}), count);
    EXPECT_EQ(count, 1);
    extentsOfParts(insert(outer, {"", 0, {3, 1, 1}}), count);
    EXPECT_EQ(count, 3);
}

TEST_F(References, MeetOtherEntitiesWhereTheirPartsDo) {
    const AcDbObjectId block = straightBlock(L"STRAIGHT");
    for (const Stand& stand : kStands) {
        SCOPED_TRACE(stand.name);
        const AcDbObjectId id = insert(block, stand);
        // The second line of the block, seen through the reference, is crossed in its middle.
        const AcGeMatrix3d shown =
            AcDbObjectPointer<AcDbBlockReference>(id, AcDb::kForRead)->blockTransform();
        const AcGePoint3d from = shown * AcGePoint3d(2, 3, 0), to = shown * AcGePoint3d(5, 3, 0);
        const AcDbObjectId line = append(new AcDbLine(from, to));
        const AcGePoint3dArray points = meet(id, line);
        EXPECT_EQ(points.length(), 1);
        EXPECT_TRUE(contains(points, shown * AcGePoint3d(3, 3, 0)));
        expectSamePoints(meet(line, id), points);
    }
}

TEST_F(References, AreNotLengthenedFromEitherSide) {
    const AcDbObjectId block = addBlock(L"BAR");
    append(new AcDbLine({0, 0, 0}, {4, 0, 0}), block);
    const AcDbObjectId bar = insert(block, {"", kPi / 2});  // x = 10, y from 20 to 24
    const AcDbObjectId line = append(new AcDbLine({12, 22, 0}, {15, 22, 0}));
    const AcDbObjectId high = append(new AcDbLine({8, 30, 0}, {15, 30, 0}));
    EXPECT_EQ(meet(bar, line).length(), 0);
    EXPECT_TRUE(contains(meet(bar, line, AcDb::kExtendArg), {10, 22, 0}));
    EXPECT_TRUE(contains(meet(bar, line, AcDb::kExtendBoth), {10, 22, 0}));
    EXPECT_TRUE(contains(meet(line, bar, AcDb::kExtendThis), {10, 22, 0}));
    for (const AcDb::Intersect type : {AcDb::kExtendThis, AcDb::kExtendArg, AcDb::kExtendBoth}) {
        EXPECT_EQ(meet(bar, high, type).length(), 0) << type;
        EXPECT_EQ(meet(high, bar, type).length(), 0) << type;
    }
}

TEST_F(References, TwoOfThemMeetAlikeFromBothSides) {
    const AcDbObjectId block = straightBlock(L"STRAIGHT");
    const AcDbObjectId outer = addBlock(L"OUTER");
    insert(block, {"", 0.3}, outer);
    const AcDbObjectId first = insert(outer, {"", 0.2}), cross = addBlock(L"CROSS");
    append(new AcDbLine({-100, 0, 0}, {100, 0, 0}), cross);
    append(new AcDbLine({0, -100, 0}, {0, 100, 0}), cross);
    const AcDbObjectId second = insert(cross, {"", -0.9, {6, 6, 6}});
    const AcDbExtents box = extentsOf(first);
    AcDbObjectPointer<AcDbBlockReference>(second, AcDb::kForWrite)
        ->setPosition(box.minPoint() + (box.maxPoint() - box.minPoint()) * 0.5);
    const AcGePoint3dArray there = meet(first, second);
    EXPECT_GT(there.length(), 1);
    expectSamePoints(meet(second, first), there);
}

TEST_F(References, ArraysAreMeasuredDrawnAndMetAtEveryPlace) {
    const AcDbObjectId block = addBlock(L"TICK");
    append(new AcDbLine({0, 0, 0}, {0, 1, 0}), block);
    const ads_point place = {7, 0, 0};
    const List groups(acutBuildList(RTDXF0, L"INSERT", 2, L"TICK", 10, place, 70, 4, 71, 2, 44, 3.0, 45, -5.0,
                                    50, 0.25, 42, 2.0, RTNONE));
    ads_name name;
    ASSERT_EQ(acdbEntMakeX(groups.get(), name), RTNORM);
    AcDbObjectId id;
    ASSERT_EQ(acdbGetObjectId(id, name), Acad::eOk);
    int count = 0;
    const AcDbExtents parts = extentsOfParts(id, count);
    EXPECT_EQ(count, 8);
    expectSameBox(parts, drawn(id), 1e-6);
    expectSameBox(extentsOf(id), drawn(id), 1e-6);
    // Along the first row, half way up: one point for each place.
    const AcGeVector3d right(std::cos(0.25), std::sin(0.25), 0), up(-right.y, right.x, 0);
    const AcGePoint3d start = AcGePoint3d(7, 0, 0) + up;
    const AcDbObjectId line = append(new AcDbLine(start - right, start + right * 10));
    const AcGePoint3dArray points = meet(id, line);
    EXPECT_EQ(points.length(), 4);
    EXPECT_TRUE(contains(points, start + right * 9));
}

TEST_F(References, RedefinitionShowsThroughNestedReferences) {
    const AcDbObjectId inner = addBlock(L"INNER"), outer = addBlock(L"OUTER");
    append(new AcDbLine({0, 0, 0}, {1, 0, 0}), inner);
    insert(inner, {""}, outer);
    const AcDbObjectId id = insert(outer, {"", 0.0, {2, 2, 2}});
    const double before = extentsOf(id).maxPoint().x;
    EXPECT_NEAR(before, 10 + 2 * 11, 1e-9);
    const ads_point base = {0, 0, 0}, far = {5, 0, 0};
    const List lists[] = {List(acutBuildList(RTDXF0, L"BLOCK", 2, L"inner", 10, base, RTNONE)),
                          List(acutBuildList(RTDXF0, L"LINE", 10, base, 11, far, RTNONE)),
                          List(acutBuildList(RTDXF0, L"ENDBLK", RTNONE))};
    for (const List& list : lists)
        ASSERT_EQ(acdbEntMake(list.get()), RTNORM);
    EXPECT_NEAR(extentsOf(id).maxPoint().x, 10 + 2 * 15, 1e-9);
    EXPECT_NEAR(drawn(id).maxX, 10 + 2 * 15, 1e-6);
}

TEST_F(References, AbortedRedefinitionBringsTheOldContentsBack) {
    const AcDbObjectId block = addBlock(L"B");
    const AcDbObjectId old = append(new AcDbLine({0, 0, 0}, {1, 0, 0}), block);
    const AcDbObjectId id = insert(block, {""});
    const ads_point base = {3, 0, 0}, far = {5, 0, 0};
    AcDbTransactionManager& manager = *db().transactionManager();
    manager.startTransaction();
    const List lists[] = {List(acutBuildList(RTDXF0, L"BLOCK", 2, L"B", 10, base, RTNONE)),
                          List(acutBuildList(RTDXF0, L"LINE", 10, base, 11, far, RTNONE)),
                          List(acutBuildList(RTDXF0, L"ENDBLK", RTNONE))};
    for (const List& list : lists)
        ASSERT_EQ(acdbEntMake(list.get()), RTNORM);
    EXPECT_TRUE(old.isErased());
    EXPECT_NEAR(extentsOf(id).maxPoint().x, 12, 1e-9);
    manager.abortTransaction();
    EXPECT_FALSE(old.isErased());
    EXPECT_NEAR(extentsOf(id).maxPoint().x, 11, 1e-9);
    EXPECT_EQ(AcDbObjectPointer<AcDbBlockTableRecord>(block, AcDb::kForRead)->entityIds().length(), 1);
}

TEST_F(References, TextsAndAttributesInkLiesInTheBox) {
    const AcDbObjectId block = addBlock(L"LABEL");
    append(new AcDbText({1, 1, 0}, L"Quay 17", AcDbObjectId(), 2, 0.3), block);
    auto* const paragraph = new AcDbMText;
    paragraph->setContents(L"{\\H3;Tall}\\Pgjpq");
    paragraph->setTextHeight(1);
    paragraph->setLocation({-2, -1, 0});
    paragraph->setRotation(0.8);
    append(paragraph, block);
    for (const Stand& stand : kStands) {
        SCOPED_TRACE(stand.name);
        const AcDbObjectId id = insert(block, stand);
        AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForWrite);
        auto* const attribute = new AcDbAttribute;
        attribute->setTextString(L"value");
        attribute->setHeight(1.5);
        attribute->setPosition({30, 5, 0});
        AcDbObjectId ignored;
        ASSERT_EQ(reference->appendAttribute(ignored, attribute), Acad::eOk);
        attribute->close();
        reference.close();
        expectHolds(extentsOf(id), drawn(id));
    }
}
