// The point entity: what is filed, transformed and drawn.

#include "host/api/point.h"
#include "host/database/database_impl.h"
#include "host/geometry/angles.h"
#include "host/graphics/display_builder.h"
#include "tests/host/curve_samples.h"
#include "tests/host/database_drawing.h"

namespace drafthost {
namespace {

class Points : public DrawingTest {
protected:
    void setMark(int mode, double size) {
        HeaderVariables& header = db().impl().settings.header;
        header.setInteger(L"$PDMODE", mode);
        header.setReal(L"$PDSIZE", size);
    }
    std::size_t shapes() { return graphics::buildDisplayList(db()).items.size(); }
    graphics::Bounds ink() { return graphics::buildDisplayList(db()).bounds(); }
};

TEST_F(Points, AreMarkedAsTheDrawingSays) {
    append(new AcDbPoint({5, 7, 1}));
    struct {
        int mode;
        std::size_t shapes;
        double half;  // of the ink, in sizes
    } const cases[] = {{0, 1, 0},    {1, 0, 0},  {2, 2, 1},    {3, 2, 1}, {32, 2, 0.5},
                       {33, 1, 0.5}, {34, 3, 1}, {65, 1, 0.5}, {98, 4, 1}};
    for (const auto& expected : cases) {
        setMark(expected.mode, 2);
        EXPECT_EQ(shapes(), expected.shapes) << "PDMODE " << expected.mode;
        if (expected.shapes == 0)
            continue;
        EXPECT_NEAR(ink().minX, 5 - 2 * expected.half, 1e-9) << "PDMODE " << expected.mode;
        EXPECT_NEAR(ink().maxY, 7 + 2 * expected.half, 1e-9) << "PDMODE " << expected.mode;
    }
    setMark(4, 2);  // a tick upwards from the point
    EXPECT_NEAR(ink().minY, 7, 1e-9);
    EXPECT_NEAR(ink().maxY, 8, 1e-9);
}

TEST_F(Points, SizesWithoutUnitsFollowTheDrawing) {
    append(new AcDbPoint({0, 0, 0}));
    append(new AcDbPoint({30, 40, 0}));
    setMark(33, 0);  // a circle of 5 percent of 50 units
    EXPECT_NEAR(ink().minX, -1.25, 1e-6);
    setMark(33, -10);
    EXPECT_NEAR(ink().minX, -2.5, 1e-6);
    AcDbExtents extents;
    ASSERT_EQ(AcDbPoint({3, 4, 5}).getGeomExtents(extents), Acad::eOk);
    EXPECT_POINT_NEAR(extents.minPoint(), extents.maxPoint(), 0);
}

// The direction in which the mark stands turns with the point.
TEST_F(Points, TurnWithTheirMark) {
    samples::Random random(81);
    for (int round = 0; round < 100; ++round) {
        AcDbPoint point(random.point());
        point.setNormal(random.normal());
        point.setEcsRotation(random.real(0, 6));
        const auto direction = [](const AcDbPoint& p) {
            AcGeVector3d x = AcGeMatrix3d::planeToWorld(p.normal()) * AcGeVector3d::kXAxis;
            return x.rotateBy(p.ecsRotation(), p.normal());
        };
        const AcGeMatrix3d motion = random.rotation();
        const AcGePoint3d place = motion * point.position();
        const AcGeVector3d ahead = motion * direction(point);
        ASSERT_EQ(point.transformBy(motion), Acad::eOk);
        EXPECT_POINT_NEAR(point.position(), place, 1e-9);
        EXPECT_LE((direction(point) - ahead).length(), 1e-9);
        const double kept = point.ecsRotation();
        ASSERT_EQ(point.transformBy(AcGeMatrix3d::translation({1, 2, 3})), Acad::eOk);
        EXPECT_EQ(point.ecsRotation(), kept);
    }
}

}  // namespace
}  // namespace drafthost
