// Snap points, grips and stretch points: they lie where geometry says, and go with the entity.

#include <algorithm>
#include <limits>

#include "host/api/face.h"
#include "host/api/point.h"
#include "host/api/symbol_tables.h"
#include "host/api/text_entities.h"
#include "host/geometry/plane_axes.h"
#include "tests/host/curve_samples.h"
#include "tests/host/database_drawing.h"

namespace drafthost {
namespace {

using namespace samples;

constexpr AcDb::OsnapMode kCurveModes[] = {AcDb::kOsModeEnd,  AcDb::kOsModeMid, AcDb::kOsModeCen,
                                           AcDb::kOsModePerp, AcDb::kOsModeTan, AcDb::kOsModeNear};

struct Look {
    AcGePoint3d pick, last;
    AcGeMatrix3d view;
};

AcGePoint3dArray snap(const AcDbEntity& entity, AcDb::OsnapMode mode, const Look& look = {}) {
    AcGePoint3dArray points;
    AcDbIntArray ids;
    EXPECT_EQ(entity.getOsnapPoints(mode, 0, look.pick, look.last, look.view, points, ids), Acad::eOk);
    return points;
}

template <class T>
std::unique_ptr<T> copyOf(const T& entity) {
    return std::unique_ptr<T>(T::cast(entity.clone()));
}

AcGePoint3dArray gripsOf(const AcDbEntity& entity) {
    AcGePoint3dArray grips;
    AcDbIntArray modes, ids;
    EXPECT_EQ(entity.getGripPoints(grips, modes, ids), Acad::eOk);
    return grips;
}

AcGePoint3dArray stretchPointsOf(const AcDbEntity& entity) {
    AcGePoint3dArray points;
    EXPECT_EQ(entity.getStretchPoints(points), Acad::eOk);
    return points;
}

AcDbIntArray indices(std::initializer_list<int> values) {
    AcDbIntArray array;
    for (const int value : values)
        array.append(value);
    return array;
}

AcDbIntArray allOf(const AcGePoint3dArray& points) {
    AcDbIntArray all;
    for (int i = 0; i < points.length(); ++i)
        all.append(i);
    return all;
}

// The same points in any order.
void expectSamePoints(const AcGePoint3dArray& actual, const AcGePoint3dArray& expected, double tolerance) {
    ASSERT_EQ(actual.length(), expected.length());
    std::vector<AcGePoint3d> left(expected.begin(), expected.end());
    for (const AcGePoint3d& point : actual) {
        const auto partner =
            std::ranges::min_element(left, {}, [&](const AcGePoint3d& p) { return p.distanceTo(point); });
        EXPECT_POINT_NEAR(point, *partner, tolerance);
        left.erase(partner);
    }
}

double distanceTo(const AcDbCurve& curve, const AcGePoint3d& point) {
    AcGePoint3d closest;
    EXPECT_EQ(curve.getClosestPointTo(point, closest), Acad::eOk);
    return closest.distanceTo(point);
}

AcGeVector3d directionAt(const AcDbCurve& curve, const AcGePoint3d& point) {
    AcGeVector3d direction;
    EXPECT_EQ(curve.getFirstDeriv(point, direction), Acad::eOk);
    return direction.normal();
}

// Where the curve has no one direction.
bool isCorner(const AcDbCurve& curve, const AcGePoint3d& point) {
    return std::ranges::any_of(snap(curve, AcDb::kOsModeEnd),
                               [&](const AcGePoint3d& end) { return end.distanceTo(point) < 1e-6; });
}

// ---- Snap points of curves

TEST(CurveSnapPoints, GoWithTheCurve) {
    Random random(71);
    for (int round = 0; round < 200; ++round) {
        const AcGeMatrix3d motion = random.rotation();
        Look look{random.point(), random.point(), random.rotation()};
        const Look moved{motion * look.pick, motion * look.last, look.view * motion.inverse()};
        for (const Sample& sample : oneOfEach(random)) {
            const auto image = copyOf(*sample.curve);
            ASSERT_EQ(image->transformBy(motion), Acad::eOk);
            for (const AcDb::OsnapMode mode : kCurveModes) {
                SCOPED_TRACE(sample.kind + " of round " + std::to_string(round) + ", mode " +
                             std::to_string(mode));
                AcGePoint3dArray expected = snap(*sample.curve, mode, look);
                for (AcGePoint3d& point : expected)
                    point.transformBy(motion);
                expectSamePoints(snap(*image, mode, moved), expected, 1e-6);
            }
        }
    }
}

TEST(CurveSnapPoints, LieOnTheCurveAtTheRightAngles) {
    Random random(72);
    int feet = 0, tangents = 0;
    for (int round = 0; round < 300; ++round) {
        const Look look{random.point(), random.point(), {}};
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind + " of round " + std::to_string(round));
            const AcDbCurve& curve = *sample.curve;
            for (const AcDb::OsnapMode mode : {AcDb::kOsModeEnd, AcDb::kOsModeMid, AcDb::kOsModeQuad,
                                               AcDb::kOsModeNear, AcDb::kOsModePerp, AcDb::kOsModeTan}) {
                for (const AcGePoint3d& point : snap(curve, mode, look))
                    EXPECT_LE(distanceTo(curve, point), 1e-8) << "mode " << mode;
            }
            for (const AcGePoint3d& foot : snap(curve, AcDb::kOsModePerp, look)) {
                if (isCorner(curve, foot))
                    continue;
                ++feet;
                EXPECT_NEAR((foot - look.last).dotProduct(directionAt(curve, foot)), 0, 1e-6);
            }
            for (const AcGePoint3d& touch : snap(curve, AcDb::kOsModeTan, look)) {
                if (isCorner(curve, touch))
                    continue;
                ++tangents;
                // All three of a flat arc's points and the tangent lie in its plane.
                AcGeVector3d normal =
                    curve.isKindOf(AcDbArc::desc())      ? static_cast<const AcDbArc&>(curve).normal()
                    : curve.isKindOf(AcDbCircle::desc()) ? static_cast<const AcDbCircle&>(curve).normal()
                                                         : static_cast<const AcDbPolyline&>(curve).normal();
                AcGeVector3d drawn = touch - look.last;
                drawn = drawn - normal * drawn.dotProduct(normal);
                EXPECT_NEAR(drawn.normal().crossProduct(directionAt(curve, touch)).length(), 0, 1e-6);
            }
        }
    }
    EXPECT_GT(feet, 500);
    EXPECT_GT(tangents, 300);
}

TEST(CurveSnapPoints, NearestIsNearerThanAnyOtherAsSeen) {
    Random random(73);
    for (int round = 0; round < 100; ++round) {
        const Look look{random.point(), {}, random.oneIn(2) ? AcGeMatrix3d() : random.rotation()};
        const auto seen = [&](const AcGePoint3d& p) {
            return (look.view * p).convert2d().distanceTo((look.view * look.pick).convert2d());
        };
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind + " of round " + std::to_string(round));
            const AcGePoint3dArray nearest = snap(*sample.curve, AcDb::kOsModeNear, look);
            ASSERT_EQ(nearest.length(), 1);
            const double length = lengthOf(*sample.curve);
            for (int i = 0; i <= 400; ++i)
                EXPECT_LE(seen(nearest[0]), seen(pointAtDistance(*sample.curve, length * i / 400)) + 1e-9);
        }
    }
}

// What the general search for the nearest point finds inside a curve is the foot of a perpendicular.
TEST(CurveSnapPoints, PerpendicularsIncludeTheShortest) {
    Random random(74);
    int inside = 0;
    for (int round = 0; round < 200; ++round) {
        const Look look{{}, random.point(), {}};
        for (const Sample& sample : oneOfEach(random)) {
            AcGePoint3d closest;
            ASSERT_EQ(sample.curve->getClosestPointTo(look.last, closest), Acad::eOk);
            if (isCorner(*sample.curve, closest))
                continue;
            ++inside;
            const AcGePoint3dArray feet = snap(*sample.curve, AcDb::kOsModePerp, look);
            EXPECT_TRUE(std::ranges::any_of(
                feet, [&](const AcGePoint3d& foot) { return foot.distanceTo(closest) < 1e-6; }))
                << sample.kind << " of round " << round;
        }
    }
    EXPECT_GT(inside, 200);
}

AcGePoint3dArray places(std::initializer_list<AcGePoint3d> points) {
    AcGePoint3dArray array;
    for (const AcGePoint3d& point : points)
        array.append(point);
    return array;
}

TEST(CurveSnapPoints, OfALine) {
    const AcDbLine line({0, 0, 0}, {4, 0, 2});
    expectSamePoints(snap(line, AcDb::kOsModeEnd), places({{0, 0, 0}, {4, 0, 2}}), 0);
    expectSamePoints(snap(line, AcDb::kOsModeMid), places({{2, 0, 1}}), 0);
    // Seen from above (3, 5) is over (3, 0, 1.5), though (2.4, 0, 1.2) is nearer in space.
    expectSamePoints(snap(line, AcDb::kOsModeNear, {{3, 5, 0}, {}, {}}), places({{3, 0, 1.5}}), 1e-12);
    expectSamePoints(snap(line, AcDb::kOsModePerp, {{}, {3, 5, 0}, {}}), places({{2.4, 0, 1.2}}), 1e-12);
    EXPECT_TRUE(snap(line, AcDb::kOsModePerp, {{}, {9, 0, 9}, {}}).isEmpty()) << "the foot is off the line";
    for (const AcDb::OsnapMode mode :
         {AcDb::kOsModeCen, AcDb::kOsModeQuad, AcDb::kOsModeTan, AcDb::kOsModeIns, AcDb::kOsModeNode})
        EXPECT_TRUE(snap(line, mode).isEmpty());
    const AcDbLine dot({1, 1, 0}, {1, 1, 0});
    expectSamePoints(snap(dot, AcDb::kOsModeNear), places({{1, 1, 0}}), 0);
    EXPECT_TRUE(snap(dot, AcDb::kOsModePerp).isEmpty());
}

TEST(CurveSnapPoints, OfCirclesAndArcs) {
    const AcDbCircle circle({1, 2, 3}, {0, 0, 1}, 5);
    EXPECT_TRUE(snap(circle, AcDb::kOsModeEnd).isEmpty());
    EXPECT_TRUE(snap(circle, AcDb::kOsModeMid).isEmpty());
    expectSamePoints(snap(circle, AcDb::kOsModeCen), places({{1, 2, 3}}), 0);
    expectSamePoints(snap(circle, AcDb::kOsModeQuad), places({{6, 2, 3}, {1, 7, 3}, {-4, 2, 3}, {1, -3, 3}}),
                     0);
    // 3-4-5: from 25/3 beside the centre the tangents touch at 3 and +-4.
    const double far = 25.0 / 3;
    expectSamePoints(snap(circle, AcDb::kOsModeTan, {{}, {1 + far, 2, 3}, {}}),
                     places({{4, 6, 3}, {4, -2, 3}}), 1e-12);
    EXPECT_TRUE(snap(circle, AcDb::kOsModeTan, {{}, {2, 2, 3}, {}}).isEmpty()) << "from inside";
    expectSamePoints(snap(circle, AcDb::kOsModeTan, {{}, {1, 7, 3}, {}}), places({{1, 7, 3}}), 1e-7);
    expectSamePoints(snap(circle, AcDb::kOsModePerp, {{}, {3, 2, 3}, {}}), places({{6, 2, 3}, {-4, 2, 3}}),
                     1e-12);
    expectSamePoints(snap(circle, AcDb::kOsModePerp, {{1, 30, 0}, {1, 2, 3}, {}}), places({{1, 7, 3}}),
                     1e-12);

    const AcDbArc arc({1, 2, 3}, 5, -0.1, kPi + 0.1);
    expectSamePoints(snap(arc, AcDb::kOsModeQuad), places({{6, 2, 3}, {1, 7, 3}, {-4, 2, 3}}), 1e-12);
    expectSamePoints(snap(arc, AcDb::kOsModeMid), places({{1, 7, 3}}), 1e-12);
    expectSamePoints(snap(arc, AcDb::kOsModeTan, {{}, {1 + far, 2, 3}, {}}), places({{4, 6, 3}}), 1e-12);
    expectSamePoints(snap(arc, AcDb::kOsModePerp, {{}, {1, 4, 3}, {}}), places({{1, 7, 3}}), 1e-12);
}

TEST(CurveSnapPoints, OfPolylines) {
    AcDbPolyline slot;  // two straight sides with a half circle at each end
    slot.addVertexAt(0, {0, 0});
    slot.addVertexAt(1, {10, 0}, 1);
    slot.addVertexAt(2, {10, 4});
    slot.addVertexAt(3, {0, 4}, 1);
    slot.setClosed(true);
    expectSamePoints(snap(slot, AcDb::kOsModeEnd), places({{0, 0, 0}, {10, 0, 0}, {10, 4, 0}, {0, 4, 0}}), 0);
    expectSamePoints(snap(slot, AcDb::kOsModeMid), places({{5, 0, 0}, {12, 2, 0}, {5, 4, 0}, {-2, 2, 0}}),
                     1e-12);
    expectSamePoints(snap(slot, AcDb::kOsModeCen), places({{10, 2, 0}, {0, 2, 0}}), 1e-12);
    expectSamePoints(snap(slot, AcDb::kOsModeNear, {{20, 2, 0}, {}, {}}), places({{12, 2, 0}}), 1e-12);
    const double across = 10 / std::sqrt(26.0), up = 2 + 2 / std::sqrt(26.0);
    expectSamePoints(snap(slot, AcDb::kOsModePerp, {{}, {5, 1, 0}, {}}),
                     places({{5, 0, 0}, {5, 4, 0}, {10 + across, up, 0}, {-across, up, 0}}), 1e-9);
    slot.setClosed(false);
    EXPECT_EQ(snap(slot, AcDb::kOsModeEnd).length(), 4);
    EXPECT_EQ(snap(slot, AcDb::kOsModeMid).length(), 3);
    AcDbPolyline empty;
    for (const AcDb::OsnapMode mode : kCurveModes)
        EXPECT_TRUE(snap(empty, mode).isEmpty());
    empty.addVertexAt(0, {3, 4});
    expectSamePoints(snap(empty, AcDb::kOsModeEnd), places({{3, 4, 0}}), 0);
}

TEST(CurveSnapPoints, RefuseWhatIsNoPlaceToLookFrom) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const AcDbLine line({0, 0, 0}, {4, 0, 2});
    AcGeMatrix3d flat;
    flat.entry[2][2] = 0;
    AcGePoint3dArray points;
    AcDbIntArray ids;
    const auto ask = [&](const Look& look) {
        return line.getOsnapPoints(AcDb::kOsModeNear, 0, look.pick, look.last, look.view, points, ids);
    };
    EXPECT_EQ(ask({{nan, 0, 0}, {}, {}}), Acad::eInvalidInput);
    EXPECT_EQ(ask({{}, {0, std::numeric_limits<double>::infinity(), 0}, {}}), Acad::eInvalidInput);
    EXPECT_EQ(ask({{}, {}, flat}), Acad::eInvalidInput);
    EXPECT_TRUE(points.isEmpty());
}

// ---- Block references

class ReferencePoints : public DrawingTest {
protected:
    AcDbObjectId insert(AcDbObjectId block, double rotation = 0, const AcGeVector3d& scale = {1, 1, 1},
                        const AcGeVector3d& normal = {0, 0, 1}, AcDbObjectId owner = AcDbObjectId()) {
        auto* const reference = new AcDbBlockReference({10, 20, 0}, block);
        reference->setNormal(normal);
        reference->setRotation(rotation);
        reference->setScaleFactors(scale);
        return append(reference, owner);
    }
    AcDbObjectId partsBlock(const wchar_t* name) {
        const AcDbObjectId block = addBlock(name);
        AcDbObjectPointer<AcDbBlockTableRecord>(block, AcDb::kForWrite)->setOrigin({1, 1, 0});
        append(new AcDbLine({0, 0, 0}, {4, 1, 0}), block);
        append(new AcDbArc({0, 0, 0}, 3, 0.3, 2.9), block);
        append(new AcDbCircle({2, 2, 1}, {0, 0.6, 0.8}, 1.5), block);
        auto* const path = new AcDbPolyline;
        path->addVertexAt(0, {-1, 2}, 0.3);
        path->addVertexAt(1, {3, 3});
        path->addVertexAt(2, {3, 7}, -0.8);
        path->addVertexAt(3, {5, 6});
        append(path, block);
        append(new AcDbPoint({7, 7, 1}), block);
        append(new AcDbFace({9, 0, 0}, {12, 1, 0}, {11, 4, 2}, {8, 3, 1}, true, false), block);
        return block;
    }
    AcGePoint3dArray snapTo(AcDbObjectId id, AcDb::OsnapMode mode, const Look& look = {}) {
        return snap(*AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead), mode, look);
    }
    AcGePoint3dArray snapToParts(AcDbObjectId id, AcDb::OsnapMode mode, const Look& look) {
        AcDbEntityArray parts;
        AcGePoint3dArray points;
        EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->explode(parts), Acad::eOk);
        for (AcDbEntity* const part : parts) {
            points.append(snap(*part, mode, look));
            delete part;
        }
        return points;
    }
};

const Look kLook{{11, 23, 4}, {-7, 40, 2}, {}};

TEST_F(ReferencePoints, AreThoseOfTheParts) {
    const AcDbObjectId parts = partsBlock(L"PARTS"), outer = addBlock(L"OUTER");
    insert(parts, 0.7, {2, 2, 2}, {0, 0, 1}, outer);
    append(new AcDbLine({0, 0, 0}, {-5, 5, 0}), outer);
    const AcDbObjectId references[] = {insert(parts),
                                       insert(parts, 0.5),
                                       insert(parts, -2, {3, 3, 3}),
                                       insert(parts, 0.4, {-2, 2, 2}),
                                       insert(parts, 0.7, {2, 2, 2}, {0, 0, -1}),
                                       insert(parts, 0.3, {1, 1, 1}, {0.6, 0, 0.8}),
                                       insert(outer, 1.1, {0.5, 0.5, 0.5})};
    for (const AcDbObjectId reference : references) {
        for (const AcDb::OsnapMode mode : {AcDb::kOsModeEnd, AcDb::kOsModeMid, AcDb::kOsModeCen,
                                           AcDb::kOsModeNode, AcDb::kOsModePerp, AcDb::kOsModeTan}) {
            SCOPED_TRACE("reference " + std::to_string(reference.handle().value()) + ", mode " +
                         std::to_string(mode));
            const AcGePoint3dArray expected = snapToParts(reference, mode, kLook);
            EXPECT_FALSE(expected.isEmpty());
            expectSamePoints(snapTo(reference, mode, kLook), expected, 1e-8);
        }
    }
}

// Stretched circles are ellipses, which no entity here can be, so the geometry itself is the judge.
TEST_F(ReferencePoints, OfASkewedCircle) {
    const AcDbObjectId block = addBlock(L"ROUND");
    const AcDbCircle circle({1, 2, 0}, {0, 0, 1}, 3);
    append(AcDbCircle::cast(circle.clone()), block);
    const AcDbObjectId id = insert(block, 0.6, {4, 0.5, 1});
    const AcGeMatrix3d toWorld = AcDbObjectPointer<AcDbBlockReference>(id, AcDb::kForRead)->blockTransform();
    const auto tangentAt = [&](const AcGePoint3d& point) {
        const AcGePoint3d onCircle = toWorld.inverse() * point;
        EXPECT_LE(distanceTo(circle, onCircle), 1e-8);
        return (toWorld * directionAt(circle, onCircle)).normal();
    };
    for (const AcGePoint3d& last :
         {AcGePoint3d(-7, 40, 0), AcGePoint3d(14, 22.5, 0), AcGePoint3d(60, 60, 5)}) {
        const AcGePoint3dArray feet = snapTo(id, AcDb::kOsModePerp, {{}, last, {}});
        EXPECT_GE(feet.length(), 2);
        for (const AcGePoint3d& foot : feet)
            EXPECT_NEAR((foot - last).normal().dotProduct(tangentAt(foot)), 0, 1e-7);
    }
    const AcGePoint3d outside(-7, 40, 0);
    const AcGePoint3dArray touches = snapTo(id, AcDb::kOsModeTan, {{}, outside, {}});
    EXPECT_EQ(touches.length(), 2);
    for (const AcGePoint3d& touch : touches)
        EXPECT_NEAR((touch - outside).normal().crossProduct(tangentAt(touch)).length(), 0, 1e-7);
    const AcGePoint3d pick(20, 25, 0);
    const AcGePoint3dArray nearest = snapTo(id, AcDb::kOsModeNear, {pick, {}, {}});
    ASSERT_EQ(nearest.length(), 1);
    for (int i = 0; i < 720; ++i) {
        AcGePoint3d point;
        circle.getPointAtParam(i * kPi / 360, point);
        EXPECT_LE(nearest[0].distanceTo(pick), (toWorld * point).distanceTo(pick) + 1e-9);
    }
    expectSamePoints(snapTo(id, AcDb::kOsModeQuad),
                     places({toWorld * AcGePoint3d(4, 2, 0), toWorld * AcGePoint3d(1, 5, 0),
                             toWorld * AcGePoint3d(-2, 2, 0), toWorld * AcGePoint3d(1, -1, 0)}),
                     1e-9);
}

TEST_F(ReferencePoints, InsertionPointsAreTheReferencesAndItsAttributes) {
    const AcDbObjectId block = addBlock(L"TAGGED");
    append(new AcDbText({3, 3, 0}, L"inside"), block);
    append(new AcDbLine({0, 0, 0}, {1, 0, 0}), block);
    const AcDbObjectId id = insert(block, 0.4, {2, 2, 2});
    AcDbObjectId attributeId;
    auto* const attribute = new AcDbAttribute;
    attribute->setPosition({12, 24, 0});
    ASSERT_EQ(
        AcDbObjectPointer<AcDbBlockReference>(id, AcDb::kForWrite)->appendAttribute(attributeId, attribute),
        Acad::eOk);
    attribute->close();
    expectSamePoints(snapTo(id, AcDb::kOsModeIns), places({{10, 20, 0}, {12, 24, 0}}), 1e-12);
    AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForWrite);
    EXPECT_EQ(gripsOf(*reference).length(), 1);
    EXPECT_EQ(reference->moveGripPointsAt(indices({0}), {5, 0, 1}), Acad::eOk);
    expectSamePoints(snap(*reference, AcDb::kOsModeIns), places({{15, 20, 1}, {17, 24, 1}}), 1e-12);
}

TEST_F(ReferencePoints, NothingIsOfferedThatDoesNotShow) {
    const AcDbObjectId block = addBlock(L"HIDING");
    auto* const layer = new AcDbLayerTableRecord;
    const AcDbObjectId frozen = addRecord<AcDbLayerTable>(L"FROZEN", layer);
    append(new AcDbLine({0, 0, 0}, {1, 0, 0}), block);
    const AcDbObjectId hidden = append(new AcDbLine({5, 0, 0}, {6, 0, 0}), block);
    AcDbObjectPointer<AcDbEntity>(hidden, AcDb::kForWrite)->setLayer(frozen);
    const AcDbObjectId id = insert(block);
    EXPECT_EQ(snapTo(id, AcDb::kOsModeEnd).length(), 4);
    AcDbObjectPointer<AcDbLayerTableRecord>(frozen, AcDb::kForWrite)->setIsFrozen(true);
    EXPECT_EQ(snapTo(id, AcDb::kOsModeEnd).length(), 2);
    const AcDbObjectId flat = insert(block, 0, {0, 1, 1});
    for (const AcDb::OsnapMode mode : kCurveModes)
        EXPECT_TRUE(snapTo(flat, mode).isEmpty());
    EXPECT_EQ(snapTo(flat, AcDb::kOsModeIns).length(), 1);
    const AcDbBlockReference none({1, 2, 3}, AcDbObjectId());
    for (const AcDb::OsnapMode mode : kCurveModes)
        EXPECT_TRUE(snap(none, mode).isEmpty());
}

// ---- Grips and stretch points

std::vector<std::unique_ptr<AcDbEntity>> oneOfEachEntity(Random& random) {
    std::vector<std::unique_ptr<AcDbEntity>> entities;
    for (Sample& sample : oneOfEach(random))
        entities.push_back(std::move(sample.curve));
    for (int mode = 0; mode <= 5; ++mode) {
        const AcGePoint3d start = random.point();
        auto text = std::make_unique<AcDbText>(start, L"Words", AcDbObjectId(), 2, random.real(-3, 3));
        text->setAlignmentPoint(start + AcGeVector3d(random.real(-9, 9), random.real(-9, 9), 0));
        text->setHorizontalMode(mode);
        entities.push_back(std::move(text));
    }
    auto mtext = std::make_unique<AcDbMText>();
    mtext->setContents(L"Words");
    mtext->setLocation(random.point());
    entities.push_back(std::move(mtext));
    entities.push_back(std::make_unique<AcDbPoint>(random.point()));
    entities.push_back(
        std::make_unique<AcDbFace>(random.point(), random.point(), random.point(), random.point()));
    entities.push_back(std::make_unique<AcDbBlockReference>(random.point(), AcDbObjectId()));
    return entities;
}

std::string className(const AcDbEntity& entity) {
    std::string name;
    for (const wchar_t* c = entity.isA()->name(); *c; ++c)
        name += static_cast<char>(*c);
    return name;
}

TEST(StretchPoints, AllTogetherMoveTheEntity) {
    Random random(75);
    for (int round = 0; round < 60; ++round) {
        for (const auto& entity : oneOfEachEntity(random)) {
            SCOPED_TRACE(className(*entity) + " of round " + std::to_string(round));
            const AcGeVector3d offset = random.point().asVector();
            const auto moved = copyOf(*entity), translated = copyOf(*entity);
            const AcGePoint3dArray before = stretchPointsOf(*entity);
            ASSERT_FALSE(before.isEmpty());
            ASSERT_EQ(moved->moveStretchPointsAt(allOf(before), offset), Acad::eOk);
            ASSERT_EQ(translated->transformBy(AcGeMatrix3d::translation(offset)), Acad::eOk);
            const AcGePoint3dArray after = gripsOf(*moved), expected = gripsOf(*translated);
            ASSERT_EQ(after.length(), expected.length());
            for (int i = 0; i < after.length(); ++i)
                EXPECT_POINT_NEAR(after[i], expected[i], 1e-9);
            for (int i = 0; i < before.length(); ++i)
                EXPECT_POINT_NEAR(stretchPointsOf(*moved)[i], before[i] + offset, 1e-9);
        }
    }
}

// An offset that leaves a flat entity flat.
AcGeVector3d offsetFor(const AcDbEntity& entity, int grip, Random& random) {
    if (const auto* circle = AcDbCircle::cast(&entity); circle && grip > 0)
        return (gripsOf(entity)[grip] - circle->center()) * random.real(-0.5, 2);
    AcGeVector3d normal(0, 0, 1);
    if (const auto* arc = AcDbArc::cast(&entity)) {
        normal = arc->normal();
        const AcGePoint3dArray grips = gripsOf(entity);
        if (grip == 2) {  // outwards or across the chord, where the middle stays the middle
            const double factor = random.oneIn(2) ? random.real(0.1, 2) : random.real(-4, -1.5);
            return (grips[2] - (grips[0] + (grips[1] - grips[0]) * 0.5)) * factor;
        }
    } else if (const auto* polyline = AcDbPolyline::cast(&entity)) {
        normal = polyline->normal();
    } else if (!entity.isKindOf(AcDbText::desc())) {
        return random.point().asVector();
    }
    const AcGeVector3d offset = random.point().asVector();
    return offset - normal * offset.dotProduct(normal);
}

TEST(Grips, GoWhereTheyAreMoved) {
    Random random(76);
    for (int round = 0; round < 60; ++round) {
        for (const auto& entity : oneOfEachEntity(random)) {
            const AcGePoint3dArray before = gripsOf(*entity);
            for (int grip = 0; grip < before.length(); ++grip) {
                SCOPED_TRACE(className(*entity) + " of round " + std::to_string(round) + ", grip " +
                             std::to_string(grip));
                const AcGeVector3d offset = offsetFor(*entity, grip, random);
                const auto moved = copyOf(*entity);
                // Indices out of range and given twice change nothing.
                ASSERT_EQ(moved->moveGripPointsAt(indices({grip, -1, grip, 1000}), offset), Acad::eOk);
                EXPECT_POINT_NEAR(gripsOf(*moved)[grip], before[grip] + offset, 1e-7);
            }
            const auto untouched = copyOf(*entity);
            ASSERT_EQ(untouched->moveGripPointsAt(indices({-1, 1000}), {1, 2, 3}), Acad::eOk);
            expectSamePoints(gripsOf(*untouched), before, 0);
        }
    }
}

TEST(StretchPoints, AnArcKeepsItsIncludedAngleAndItsOtherEnd) {
    Random random(77);
    for (int round = 0; round < 200; ++round) {
        const AcDbArc arc(random.point(), random.normal(), random.real(0.1, 40), random.real(-9, 9),
                          random.real(-9, 9));
        const AcGePoint3dArray before = stretchPointsOf(arc);
        const int end = random.integer(0, 1);
        AcGeVector3d offset = random.point().asVector();
        offset = offset - arc.normal() * offset.dotProduct(arc.normal());
        const auto stretched = copyOf(arc);
        ASSERT_EQ(stretched->moveStretchPointsAt(indices({end}), offset), Acad::eOk);
        EXPECT_NEAR(stretched->totalAngle(), arc.totalAngle(), 1e-9);
        EXPECT_TRUE(stretched->normal().isEqualTo(arc.normal()));
        const double tolerance = 1e-9 * (1 + stretched->radius());
        EXPECT_POINT_NEAR(stretchPointsOf(*stretched)[end], before[end] + offset, tolerance);
        EXPECT_POINT_NEAR(stretchPointsOf(*stretched)[1 - end], before[1 - end], tolerance);
    }
}

TEST(StretchPoints, WhatWouldCollapseStays) {
    AcDbArc arc({0, 0, 0}, 2, 0, kPi);
    EXPECT_EQ(arc.moveStretchPointsAt(indices({0}), {-4, 0, 0}), Acad::eInvalidInput);
    EXPECT_EQ(arc.moveGripPointsAt(indices({2}), {0, -2, 0}), Acad::eInvalidInput);
    EXPECT_EQ(arc.radius(), 2);
    AcDbCircle circle({0, 0, 0}, {0, 0, 1}, 2);
    EXPECT_EQ(circle.moveGripPointsAt(indices({1}), {-2, 0, 0}), Acad::eInvalidInput);
    EXPECT_EQ(circle.moveGripPointsAt(indices({1}), {std::numeric_limits<double>::quiet_NaN(), 0, 0}),
              Acad::eInvalidInput);
    EXPECT_EQ(circle.radius(), 2);
    AcDbArc turn({0, 0, 0}, 2, 1, 1);  // a full turn has nothing to stretch
    EXPECT_EQ(turn.moveStretchPointsAt(indices({0}), {5, 0, 0}), Acad::eOk);
    EXPECT_POINT_NEAR(turn.center(), AcGePoint3d(5, 0, 0), 1e-12);
}

TEST(StretchPoints, FittedTextRunsToWhereItsEndIsMoved) {
    AcDbText text({0, 0, 0}, L"Between", AcDbObjectId(), 2, 0);
    text.setAlignmentPoint({10, 0, 0});
    text.setHorizontalMode(5);
    ASSERT_EQ(stretchPointsOf(text).length(), 2);
    ASSERT_EQ(text.moveStretchPointsAt(indices({1}), {10, 0, 0}), Acad::eOk);
    AcDbExtents box;
    ASSERT_EQ(text.getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.maxPoint().x, 20, 0.5);
    EXPECT_POINT_NEAR(text.position(), AcGePoint3d(0, 0, 0), 1e-12);
}

}  // namespace
}  // namespace drafthost
