// Curves as entities: transformation, explosion, drawing and filing.

#include <gtest/gtest.h>

#include <limits>

#include "host/api/filer.h"
#include "host/database/group_filer.h"
#include "tests/host/curve_samples.h"

namespace drafthost {
namespace {

using namespace samples;

// ---- Transformation
// -------------------------------------------------------------------------------------------------

std::unique_ptr<AcDbCurve> copyOf(const AcDbCurve& curve) {
    return std::unique_ptr<AcDbCurve>(AcDbCurve::cast(curve.clone()));
}

// Arcs keep running counter-clockwise, so a reflected arc runs from the image of its end.
double imageDistance(const AcDbCurve& image, const AcDbCurve& original, double fraction,
                     const AcGeMatrix3d& matrix) {
    AcGePoint3d start, imageStart;
    original.getStartPoint(start);
    image.getStartPoint(imageStart);
    const bool turnedRound = AcDbArc::cast(&image) && imageStart.distanceTo(matrix * start) > 1e-6;
    return lengthOf(image) * (turnedRound ? 1 - fraction : fraction);
}

TEST(CurveTransformation, PointsMoveWithTheCurve) {
    Random random(31);
    for (int round = 0; round < 150; ++round) {
        AcGeMatrix3d matrix =
            random.rotation() * AcGeMatrix3d::scaling(random.real(0.01, 20), random.point());
        if (random.oneIn(2))
            matrix = matrix * AcGeMatrix3d::mirroring(random.point(), random.direction());
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind + " of round " + std::to_string(round));
            if (sample.kind == "circle")
                continue;  // where a circle starts is not its own
            const auto image = copyOf(*sample.curve);
            ASSERT_EQ(image->transformBy(matrix), Acad::eOk);
            for (const double fraction : {0.0, 0.1, 0.37, 0.5, 0.82, 1.0}) {
                const AcGePoint3d before = pointAtDistance(*sample.curve, lengthOf(*sample.curve) * fraction);
                const AcGePoint3d after =
                    pointAtDistance(*image, imageDistance(*image, *sample.curve, fraction, matrix));
                EXPECT_POINT_NEAR(after, matrix * before, 1e-8 * (1 + matrix.scale() * 100));
            }
        }
    }
}

TEST(CurveTransformation, CirclesKeepTheirPoints) {
    Random random(32);
    for (int round = 0; round < 50; ++round) {
        const AcDbCircle circle(random.point(), random.normal(), random.real(0.1, 9));
        AcDbCircle image(circle.center(), circle.normal(), circle.radius());
        const AcGeMatrix3d matrix =
            random.rotation() * AcGeMatrix3d::mirroring(random.point(), random.direction());
        ASSERT_EQ(image.transformBy(matrix), Acad::eOk);
        AcGePoint3d closest;
        for (int i = 0; i < 8; ++i) {
            const AcGePoint3d expected = matrix * pointAtDistance(circle, lengthOf(circle) * i / 8);
            ASSERT_EQ(image.getClosestPointTo(expected, closest, false), Acad::eOk);
            EXPECT_POINT_NEAR(closest, expected, 1e-9);
        }
    }
}

TEST(CurveTransformation, MirroringInThePlaneKeepsTheNormal) {
    const AcGeMatrix3d mirror = AcGeMatrix3d::mirroring({0, 0, 0}, {0, 1, 0});
    AcDbArc arc({3, 1, 0}, 2, 0, kPi / 2);
    ASSERT_EQ(arc.transformBy(mirror), Acad::eOk);
    EXPECT_EQ(arc.normal().z, 1);
    EXPECT_POINT_NEAR(arc.center(), AcGePoint3d(-3, 1, 0), 1e-12);
    EXPECT_NEAR(arc.startAngle(), kPi / 2, 1e-12);
    EXPECT_NEAR(arc.endAngle(), kPi, 1e-12);

    AcDbPolyline polyline;
    polyline.addVertexAt(0, {0, 0}, 0.5, 0.2, 0.4);
    polyline.addVertexAt(1, {4, 0});
    ASSERT_EQ(polyline.transformBy(mirror * AcGeMatrix3d::scaling(3)), Acad::eOk);
    EXPECT_EQ(polyline.normal().z, 1);
    double bulge = 0, startWidth = 0, endWidth = 0;
    polyline.getBulgeAt(0, bulge);
    polyline.getWidthsAt(0, startWidth, endWidth);
    EXPECT_EQ(bulge, -0.5);
    EXPECT_NEAR(startWidth, 0.6, 1e-12);
    EXPECT_NEAR(endWidth, 1.2, 1e-12);
    // Reflected in its own plane nothing changes.
    AcGeMatrix3d flip;
    flip.entry[2][2] = -1;
    ASSERT_EQ(polyline.transformBy(flip), Acad::eOk);
    polyline.getBulgeAt(0, bulge);
    EXPECT_EQ(bulge, -0.5);
    EXPECT_EQ(polyline.normal().z, 1);
}

TEST(CurveTransformation, UnequalScalesLeaveArcsAsTheyWere) {
    AcGeMatrix3d stretch;
    stretch.entry[0][0] = 2;
    Random random(33);
    for (Sample& sample : oneOfEach(random)) {
        if (sample.kind == "line" || sample.kind == "tilted polyline")
            continue;
        sample.curve = std::make_unique<AcDbArc>(AcGePoint3d(1, 2, 0), 3, 0, 1);
        const AcGePoint3d before = pointAtDistance(*sample.curve, 1);
        EXPECT_EQ(sample.curve->transformBy(stretch), Acad::eNonUniformScale);
        EXPECT_POINT_NEAR(pointAtDistance(*sample.curve, 1), before, 0);
    }
    AcDbLine line({1, 1, 1}, {2, 2, 2});
    EXPECT_EQ(line.transformBy(stretch), Acad::eOk);
    EXPECT_POINT_NEAR(line.endPoint(), AcGePoint3d(4, 2, 2), 0);
}

// ---- Explosion
// ------------------------------------------------------------------------------------------------------

TEST(CurveExplosion, PolylinesBecomeLinesAndArcsInTheirPlace) {
    Random random(34);
    for (int round = 0; round < 60; ++round) {
        const auto polyline = flatPolyline(random);
        if (random.oneIn(2))
            polyline->transformBy(random.rotation());
        AcDbEntityArray parts;
        ASSERT_EQ(polyline->explode(parts), Acad::eOk);
        double length = 0;
        for (AcDbEntity* part : parts) {
            const std::unique_ptr<AcDbEntity> owned(part);
            const AcDbCurve& curve = *AcDbCurve::cast(part);
            length += lengthOf(curve);
            double distance;
            for (const double fraction : {0.0, 0.3, 1.0}) {
                EXPECT_EQ(
                    polyline->getDistAtPoint(pointAtDistance(curve, lengthOf(curve) * fraction), distance),
                    Acad::eOk);
            }
        }
        EXPECT_NEAR(length, lengthOf(*polyline), 1e-8);
    }
}

// ---- Drawing
// --------------------------------------------------------------------------------------------------------

struct Canvas final : AcGiWorldDraw, AcGiWorldGeometry, AcGiSubEntityTraits {
    std::vector<std::vector<AcGePoint3d>> lines, polygons;
    bool filled = false;
    double allowed = 0.01;

    AcGiWorldGeometry& geometry() const override { return const_cast<Canvas&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<Canvas&>(*this); }
    double deviation() const override { return allowed; }
    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                  std::int64_t) override {
        lines.emplace_back(points, points + count);
        return false;
    }
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override {
        EXPECT_TRUE(filled);
        polygons.emplace_back(points, points + count);
        return false;
    }
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep) override {
        lines.emplace_back();
        for (int i = 0; i <= 200; ++i) {
            AcGeVector3d ray = start;
            lines.back().push_back(center + ray.rotateBy(sweep * i / 200, normal) * radius);
        }
        return false;
    }
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override {
        return circularArc(center, radius, normal, normal.perpVector(), kTwoPi);
    }
    bool polyPolygon(std::uint32_t, const std::uint32_t*, const AcGePoint3d*) override { return false; }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const ACHAR*, int,
              const AcGiTextStyle&) override {
        return false;
    }
    bool draw(AcGiDrawable*) override { return false; }
    void pushModelTransform(const AcGeMatrix3d&) override {}
    void popModelTransform() override {}
    void setColor(std::uint16_t) override {}
    std::uint16_t color() const override { return 256; }
    void setTrueColor(std::uint32_t) override {}
    void setBackgroundColor() override {}
    void setLayer(AcDbObjectId) override {}
    AcDbObjectId layerId() const override { return {}; }
    void setLineType(AcDbObjectId) override {}
    AcDbObjectId lineTypeId() const override { return {}; }
    void setLineTypeScale(double) override {}
    double lineTypeScale() const override { return 1; }
    void setLineWeight(int) override {}
    int lineWeight() const override { return -1; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool on) override { filled = on; }
};

TEST(CurveDrawing, ChordsStayWithinTheDeviation) {
    Random random(35);
    for (int round = 0; round < 40; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            SCOPED_TRACE(sample.kind);
            Canvas canvas;
            ASSERT_TRUE(sample.curve->worldDraw(&canvas));
            ASSERT_EQ(canvas.lines.size(), 1u);
            double drawn = 0;
            for (std::size_t i = 1; i < canvas.lines[0].size(); ++i) {
                const AcGePoint3d &from = canvas.lines[0][i - 1], &to = canvas.lines[0][i];
                drawn += from.distanceTo(to);
                const AcGePoint3d middle = from + (to - from) / 2;
                AcGePoint3d closest;
                ASSERT_EQ(sample.curve->getClosestPointTo(middle, closest), Acad::eOk);
                EXPECT_LE(closest.distanceTo(middle), 0.0101);
            }
            EXPECT_NEAR(drawn, lengthOf(*sample.curve), 0.03 * (1 + drawn));
        }
    }
}

double areaOf(const std::vector<AcGePoint3d>& polygon) {
    AcGeVector3d twice;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        twice += polygon[i].asVector().crossProduct(polygon[(i + 1) % polygon.size()].asVector());
    }
    return twice.length() / 2;
}

TEST(CurveDrawing, WidthsBecomeFilledBands) {
    AcDbPolyline tapered, ring, corner;
    tapered.addVertexAt(0, {0, 0}, 0, 2, 4);
    tapered.addVertexAt(1, {10, 0});
    Canvas canvas;
    tapered.worldDraw(&canvas);
    ASSERT_EQ(canvas.polygons.size(), 1u);
    EXPECT_NEAR(areaOf(canvas.polygons[0]), 30, 1e-9);
    AcDbExtents extents;
    tapered.getGeomExtents(extents);
    EXPECT_POINT_NEAR(extents.minPoint(), AcGePoint3d(0, -2, 0), 1e-12);

    for (unsigned i = 0; i < 2; ++i)
        ring.addVertexAt(i, {i * 10.0, 0}, 1, 2, 2);
    ring.setClosed(true);
    canvas.polygons.clear();
    canvas.allowed = 1e-5;
    ring.worldDraw(&canvas);
    ASSERT_EQ(canvas.polygons.size(), 2u);
    EXPECT_NEAR(areaOf(canvas.polygons[0]) + areaOf(canvas.polygons[1]), kPi * (36 - 16), 1e-3);
    AcDbExtents round;
    ring.getGeomExtents(round);
    EXPECT_POINT_NEAR(round.maxPoint(), AcGePoint3d(11, 6, 0), 1e-9);

    // A corner of one width is mitred: both bands together are the outline of a gnomon.
    corner.addVertexAt(0, {0, 0}, 0, 2, 2);
    corner.addVertexAt(1, {10, 0}, 0, 2, 2);
    corner.addVertexAt(2, {10, 10}, 0, 2, 2);
    canvas.polygons.clear();
    corner.worldDraw(&canvas);
    ASSERT_EQ(canvas.polygons.size(), 2u);
    EXPECT_NEAR(areaOf(canvas.polygons[0]) + areaOf(canvas.polygons[1]), 11 * 11 - 9 * 9, 1e-9);
}

// ---- Filing
// ---------------------------------------------------------------------------------------------------------

std::vector<DxfGroup> filed(const AcDbEntity& entity, AcDb::FilerType type) {
    GroupFiler filer(nullptr, type);
    EXPECT_EQ(entity.dxfOutFields(&filer), Acad::eOk);
    return filer.groups();
}

const DxfGroup* find(const std::vector<DxfGroup>& groups, short code) {
    const auto found =
        std::find_if(groups.begin(), groups.end(), [&](const DxfGroup& g) { return g.code == code; });
    return found == groups.end() ? nullptr : &*found;
}

std::unique_ptr<AcDbCurve> emptyLike(const AcDbCurve& curve) {
    return std::unique_ptr<AcDbCurve>(AcDbCurve::cast(curve.isA()->create()));
}

TEST(CurveFiling, GroupsReadBackGiveTheSameCurve) {
    Random random(36);
    for (int round = 0; round < 40; ++round) {
        for (const Sample& sample : oneOfEach(random)) {
            for (const AcDb::FilerType type : {AcDb::kFileFiler, AcDb::kBagFiler}) {
                SCOPED_TRACE(sample.kind);
                GroupFiler reader(nullptr, filed(*sample.curve, type), type);
                const auto copy = emptyLike(*sample.curve);
                ASSERT_EQ(copy->dxfInFields(&reader), Acad::eOk);
                const double length = lengthOf(*sample.curve);
                EXPECT_NEAR(lengthOf(*copy), length, 1e-12 * length);
                for (const double fraction : {0.0, 0.4, 1.0}) {
                    EXPECT_POINT_NEAR(pointAtDistance(*copy, length * fraction),
                                      pointAtDistance(*sample.curve, length * fraction), 1e-11);
                }
                const std::vector<DxfGroup> first = filed(*sample.curve, type), second = filed(*copy, type);
                ASSERT_EQ(first.size(), second.size());
                for (std::size_t i = 0; i < first.size(); ++i)
                    EXPECT_EQ(first[i].code, second[i].code);
            }
        }
    }
}

TEST(CurveFiling, FilesHoldDegreesAndEntityDataRadians) {
    const AcDbArc arc({1, 2, 3}, 4, kPi / 2, kPi);
    const std::vector<DxfGroup> file = filed(arc, AcDb::kFileFiler), memory = filed(arc, AcDb::kBagFiler);
    EXPECT_DOUBLE_EQ(std::get<double>(find(file, 50)->value), 90);
    EXPECT_DOUBLE_EQ(std::get<double>(find(file, 51)->value), 180);
    EXPECT_DOUBLE_EQ(std::get<double>(find(memory, 50)->value), kPi / 2);
    EXPECT_DOUBLE_EQ(std::get<double>(find(memory, 51)->value), kPi);
    EXPECT_EQ(find(file, 39), nullptr);
    EXPECT_EQ(find(file, 210), nullptr);
}

std::vector<DxfGroup> withGroup(std::vector<DxfGroup> groups, short code, DxfValue value) {
    for (DxfGroup& group : groups) {
        if (group.code == code) {
            group.value = value;
            return groups;
        }
    }
    groups.push_back({code, value});
    return groups;
}

TEST(CurveFiling, BadGroupsAreRefusedAndChangeNothing) {
    AcDbPolyline polyline;
    polyline.addVertexAt(0, {0, 0}, 0.5, 1, 2);
    polyline.addVertexAt(1, {4, 0});
    const AcDbArc arc({1, 2, 3}, 4, 1, 2);
    const AcDbLine line({1, 2, 3}, {4, 5, 6});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const AcDbCurve& curve;
        short code;
        DxfValue value;
    } cases[] = {
        {arc, 40, -1.0},
        {arc, 40, 0.0},
        {arc, 40, nan},
        {arc, 40, std::wstring(L"wide")},
        {arc, 50, HUGE_VAL},
        {arc, 10, AcGePoint3d(nan, 0, 0)},
        {arc, 10, 7.0},
        {line, 210, AcGePoint3d(0, 0, 0)},
        {line, 11, AcGePoint3d(0, HUGE_VAL, 0)},
        {line, 39, std::wstring(L"thick")},
        {polyline, 42, nan},
        {polyline, 40, -2.0},
        {polyline, 10, std::wstring(L"here")},
        {polyline, 90, std::wstring(L"many")},
    };
    for (const auto& [curve, code, value] : cases) {
        SCOPED_TRACE(std::to_string(code));
        const auto target = copyOf(curve);
        GroupFiler reader(nullptr, withGroup(filed(curve, AcDb::kFileFiler), code, value));
        EXPECT_NE(target->dxfInFields(&reader), Acad::eOk);
        EXPECT_FALSE(reader.problem().empty());
        EXPECT_POINT_NEAR(pointAtDistance(*target, 1), pointAtDistance(curve, 1), 0);
    }
}

TEST(CurveFiling, WrongVertexCountsAreForgiven) {
    AcDbPolyline polyline;
    for (unsigned i = 0; i < 5; ++i)
        polyline.addVertexAt(i, {i * 1.0, i * i * 1.0});
    AcDbPolyline copy;
    GroupFiler reader(nullptr, withGroup(filed(polyline, AcDb::kFileFiler), 90, std::int64_t{99}));
    ASSERT_EQ(copy.dxfInFields(&reader), Acad::eOk);
    EXPECT_EQ(copy.numVerts(), 5u);
}

TEST(CurveFiling, ConstantWidthReachesEveryVertex) {
    AcDbPolyline polyline, copy;
    for (unsigned i = 0; i < 3; ++i)
        polyline.addVertexAt(i, {i * 1.0, 0});
    std::vector<DxfGroup> groups = withGroup(filed(polyline, AcDb::kBagFiler), 43, 0.25);
    double startWidth = 0, endWidth = 0;
    // Changed in entity data whose vertices still say the old width.
    GroupFiler changed(nullptr, groups, AcDb::kBagFiler);
    ASSERT_EQ(polyline.dxfInFields(&changed), Acad::eOk);
    polyline.getWidthsAt(2, startWidth, endWidth);
    EXPECT_EQ(startWidth, 0.25);
    EXPECT_EQ(endWidth, 0.25);
    // From a file that gives it alone.
    GroupFiler reader(nullptr, filed(polyline, AcDb::kFileFiler));
    ASSERT_EQ(copy.dxfInFields(&reader), Acad::eOk);
    copy.getWidthsAt(1, startWidth, endWidth);
    EXPECT_EQ(startWidth, 0.25);
    EXPECT_EQ(find(filed(copy, AcDb::kFileFiler), 40), nullptr);
}

}  // namespace
}  // namespace drafthost
