// Display list and picture output: what a drawing's entities look like, down to pixels.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <sstream>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/database.h"
#include "host/graphics/canvas.h"
#include "host/graphics/dasher.h"
#include "host/graphics/display_builder.h"
#include "host/graphics/picture.h"

using namespace drafthost::graphics;

namespace {

constexpr Rgb kBlack{0, 0, 0}, kWhite{255, 255, 255}, kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255};

double inkOf(const Canvas& canvas) {
    double ink = 0;
    for (const Rgb& pixel : canvas.pixels())
        ink += pixel.red / 255.0;
    return ink;
}

template <class Record>
AcDbObjectId addRecord(AcDbDatabase& database, AcDbObjectId tableId, const ACHAR* name,
                       void (*prepare)(Record&)) {
    const AcDbObjectPointer<AcDbSymbolTable> table(tableId, AcDb::kForWrite);
    auto* record = new Record;
    record->setName(name);
    AcDbObjectId id;
    EXPECT_EQ(table->add(id, record), Acad::eOk) << database.blockTableId().handle().value();
    prepare(*record);
    record->close();
    return id;
}

AcDbObjectId append(AcDbObjectId block, AcDbEntity* entity) {
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
    AcDbObjectId id;
    EXPECT_EQ(record->appendAcDbEntity(id, entity), Acad::eOk);
    entity->close();
    return id;
}

AcDbLine* newLine(double x1, double y1, double x2, double y2) {
    return new AcDbLine(AcGePoint3d(x1, y1, 0), AcGePoint3d(x2, y2, 0));
}

class GraphicsTest : public testing::Test {
protected:
    AcDbDatabase database{true, true};
    AcDbObjectId layer(const ACHAR* name, std::uint16_t color) {
        const AcDbObjectId id = addRecord<AcDbLayerTableRecord>(database, database.layerTableId(), name,
                                                                [](AcDbLayerTableRecord&) {});
        const AcDbObjectPointer<AcDbLayerTableRecord> record(id, AcDb::kForWrite);
        EXPECT_EQ(record->setColorIndex(color), Acad::eOk);
        return id;
    }
    std::vector<DisplayItem> items() { return buildDisplayList(database).items; }
};

}  // namespace

TEST(CanvasTest, PolygonCoversItsExactArea) {
    Canvas canvas(60, 60, kBlack);
    const std::vector<std::vector<AcGePoint2d>> shapes[] = {
        {{{10.25, 10}, {40.5, 10}, {40.5, 30}, {10.25, 30}}},
        {{{10, 10}, {50, 20}, {20, 50}}},
    };
    const double areas[] = {30.25 * 20, 750};
    for (int i = 0; i < 2; ++i) {
        Canvas fresh(60, 60, kBlack);
        fresh.fill(shapes[i], FillRule::NonZero, kWhite);
        EXPECT_NEAR(inkOf(fresh), areas[i], areas[i] * 0.005);
    }
}

TEST(CanvasTest, HolesFollowTheFillRule) {
    const std::vector<AcGePoint2d> outer{{5, 5}, {45, 5}, {45, 45}, {5, 45}};
    const std::vector<AcGePoint2d> sameTurn{{15, 15}, {35, 15}, {35, 35}, {15, 35}};
    const std::vector<AcGePoint2d> opposite(sameTurn.rbegin(), sameTurn.rend());
    const auto ink = [&](const std::vector<AcGePoint2d>& inner, FillRule rule) {
        Canvas canvas(50, 50, kBlack);
        const std::vector<std::vector<AcGePoint2d>> contours{outer, inner};
        canvas.fill(contours, rule, kWhite);
        return inkOf(canvas);
    };
    EXPECT_NEAR(ink(sameTurn, FillRule::EvenOdd), 1200, 5);
    EXPECT_NEAR(ink(sameTurn, FillRule::NonZero), 1600, 5);
    EXPECT_NEAR(ink(opposite, FillRule::NonZero), 1200, 5);
}

TEST(CanvasTest, StrokesKeepTheirWidthAndNeverFadeWherePiecesOverlap) {
    Canvas canvas(100, 100, kBlack);
    const AcGePoint2d line[] = {{10, 10}, {50, 50}, {90, 90}};
    canvas.stroke(line, 4.0, kWhite);
    const double length = 80 * std::numbers::sqrt2;
    EXPECT_NEAR(inkOf(canvas), (length + 4) * 4, 12);
    EXPECT_EQ(canvas.pixels()[50 * 100 + 50], kWhite);
}

TEST(CanvasTest, ShapesFarOutsideAndBadNumbersAreHarmless) {
    Canvas canvas(20, 20, kBlack);
    const AcGePoint2d wild[] = {{-1e12, 5}, {1e12, 5}, {NAN, 3}, {1e300, -1e300}};
    canvas.stroke(wild, 2.0, kWhite);
    EXPECT_EQ(canvas.pixels()[5 * 20 + 10], kWhite);
    EXPECT_EQ(canvas.pixels()[15 * 20 + 10], kBlack);
}

TEST(DasherTest, BothEndsLieOnADashAndThePatternFillsTheRest) {
    const double pattern[] = {0.5, -0.25, 0.0, -0.25};
    for (const double length : {1.0, 1.7, 3.0, 10.3, 99.99}) {
        const auto spans = dashSpans(length, pattern);
        ASSERT_GE(spans.size(), 2u);
        EXPECT_DOUBLE_EQ(spans.front().first, 0.0);
        EXPECT_NEAR(spans.back().second, length, 1e-9);
        EXPECT_NEAR(spans.front().second, spans.back().second - spans.back().first, 1e-9) << length;
        for (std::size_t i = 1; i < spans.size(); ++i) {
            EXPECT_NEAR(spans[i].first - spans[i - 1].second, 0.25, 1e-9) << length << " gap " << i;
        }
    }
    EXPECT_EQ(dashSpans(0.9, pattern).size(), 1u) << "too short for one repetition";
    EXPECT_EQ(dashSpans(1e9, pattern).size(), 1u) << "too many dashes to tell apart";
}

TEST(DasherTest, DashesOfABentLineStayOnIt) {
    const Polyline2d bent{{{0, 0}, {3, 0}, {3, 4}, {3, 4}, {0, 4}}};
    const double pattern[] = {1.0, -0.5};
    std::vector<Polyline2d> pieces;
    appendDashes(bent, pattern, pieces);
    double drawn = 0;
    for (const Polyline2d& piece : pieces) {
        for (std::size_t i = 1; i < piece.points.size(); ++i)
            drawn += piece.points[i - 1].distanceTo(piece.points[i]);
        for (const AcGePoint2d& p : piece.points) {
            const bool onLine = p.y == 0 || std::fabs(p.x - 3) < 1e-12 || std::fabs(p.y - 4) < 1e-12;
            EXPECT_TRUE(onLine) << p.x << ' ' << p.y;
        }
    }
    EXPECT_NEAR(drawn, 10 - 0.5 * 6, 1e-9);
}

TEST(ColorTableTest, HuesAndGreysAreThoseOfTheIndexTable) {
    EXPECT_EQ(colorOfIndex(1), kRed);
    EXPECT_EQ(colorOfIndex(10), kRed);
    EXPECT_EQ(colorOfIndex(11), (Rgb{255, 127, 127}));
    EXPECT_EQ(colorOfIndex(90), kGreen);
    EXPECT_EQ(colorOfIndex(170), kBlue);
    EXPECT_EQ(colorOfIndex(50), (Rgb{255, 255, 0}));
    EXPECT_EQ(colorOfIndex(14), (Rgb{127, 0, 0}));
    EXPECT_EQ(colorOfIndex(252), (Rgb{132, 132, 132}));
}

TEST_F(GraphicsTest, ColoursComeByLayerByBlockAndFromTheEntity) {
    const AcDbObjectId red = layer(L"RED", 1), green = layer(L"GREEN", 3);
    const AcDbObjectId block = addRecord<AcDbBlockTableRecord>(database, database.blockTableId(), L"SYMBOL",
                                                               [](AcDbBlockTableRecord&) {});
    auto* byBlock = newLine(0, 0, 1, 0);
    byBlock->setColorIndex(0);
    append(block, byBlock);
    append(block, newLine(0, 1, 1, 1));  // layer 0, by layer: looks like the insert's layer
    auto* fixed = newLine(0, 2, 1, 2);
    append(block, fixed);
    {
        const AcDbObjectPointer<AcDbEntity> open(fixed->objectId(), AcDb::kForWrite);
        open->setLayer(green);
    }
    auto* insert = new AcDbBlockReference(AcGePoint3d(10, 0, 0), block);
    insert->setColorIndex(5);
    const AcDbObjectId insertId = append(database.modelSpaceId(), insert);
    {
        const AcDbObjectPointer<AcDbEntity> open(insertId, AcDb::kForWrite);
        open->setLayer(red);
    }
    const auto drawn = items();
    ASSERT_EQ(drawn.size(), 3u);
    EXPECT_EQ(drawn[0].color, kBlue);
    EXPECT_EQ(drawn[1].color, kRed);
    EXPECT_EQ(drawn[2].color, kGreen);
    EXPECT_DOUBLE_EQ(std::get<Polyline2d>(drawn[0].shape).points[0].x, 10);
}

TEST_F(GraphicsTest, LayersThatAreOffOrFrozenAreNotDrawn) {
    const AcDbObjectId off = layer(L"OFF", 1);
    append(database.modelSpaceId(), newLine(0, 0, 1, 1));
    auto* hidden = newLine(0, 0, 2, 2);
    hidden->setLayer(off);
    append(database.modelSpaceId(), hidden);
    EXPECT_EQ(items().size(), 2u);
    {
        const AcDbObjectPointer<AcDbLayerTableRecord> record(off, AcDb::kForWrite);
        record->setIsOff(true);
    }
    EXPECT_EQ(items().size(), 1u);
}

TEST_F(GraphicsTest, ArcsStayArcsUntilTheyAreSquashed) {
    const AcDbObjectId block = addRecord<AcDbBlockTableRecord>(database, database.blockTableId(), L"ROUND",
                                                               [](AcDbBlockTableRecord&) {});
    append(block, new AcDbArc(AcGePoint3d(0, 0, 0), 1.0, 0.0, std::numbers::pi / 2));
    auto* mirrored = new AcDbBlockReference(AcGePoint3d(0, 0, 0), block);
    mirrored->setScaleFactors({-2, 2, 2});
    append(database.modelSpaceId(), mirrored);
    auto* squashed = new AcDbBlockReference(AcGePoint3d(0, 0, 0), block);
    squashed->setScaleFactors({3, 1, 1});
    append(database.modelSpaceId(), squashed);
    const auto drawn = items();
    ASSERT_EQ(drawn.size(), 2u);
    const Arc2d& arc = std::get<Arc2d>(drawn[0].shape);
    EXPECT_NEAR(arc.radius, 2, 1e-12);
    EXPECT_NEAR(arc.at(0).x, -2, 1e-12);
    EXPECT_NEAR(arc.at(1).y, 2, 1e-12);
    EXPECT_NEAR(arc.at(0.5).x, -std::numbers::sqrt2, 1e-12);
    for (const AcGePoint2d& p : std::get<Polyline2d>(drawn[1].shape).points) {
        EXPECT_NEAR(p.x * p.x / 9 + p.y * p.y, 1.0, 1e-9);
    }
}

TEST_F(GraphicsTest, SvgDrawsAFullCircleOfTheRightSize) {
    append(database.modelSpaceId(), new AcDbCircle(AcGePoint3d(5, 5, 0), AcGeVector3d::kZAxis, 5));
    const DisplayList list = buildDisplayList(database);
    const PictureFrame frame = fitPicture(list.bounds());
    EXPECT_EQ(frame.width, kPictureSize);
    const std::string svg = svgText(list, frame);
    std::istringstream stream(svg.substr(svg.find("d=\"M") + 4));
    double x0, y0;
    stream >> x0 >> y0;
    EXPECT_NEAR(x0, kPictureSize / 2.0 + 5 * frame.scale, 0.01);
    EXPECT_NEAR(y0, kPictureSize / 2.0, 0.01);
    const std::size_t end = svg.find('"', svg.find("d=\"M") + 4);
    const std::string path = svg.substr(0, end);
    std::istringstream last(path.substr(path.rfind(' ', path.rfind(' ') - 1)));
    double x1, y1;
    last >> x1 >> y1;
    EXPECT_NEAR(x1, x0, 0.02) << "the last arc closes the circle";
    EXPECT_NEAR(y1, y0, 0.02);
}

TEST_F(GraphicsTest, PicturesReplaceTheOldFileOnlyWhenTheyAreWhole) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "tessary-picture-test";
    std::filesystem::create_directories(folder);
    append(database.modelSpaceId(), newLine(0, 0, 10, 5));
    std::wstring problem;
    const auto target = folder / "a.png";
    EXPECT_TRUE(writePicture(database, target.wstring(), problem));
    std::ifstream file(target, std::ios::binary);
    char signature[8] = {};
    file.read(signature, 8);
    EXPECT_EQ(std::string(signature + 1, 3), "PNG");
    file.close();

    EXPECT_FALSE(writePicture(database, (folder / "missing" / "a.png").wstring(), problem));
    EXPECT_FALSE(writePicture(database, (folder / "a.bmp").wstring(), problem));
    EXPECT_FALSE(problem.empty());
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 1u) << "no part is left behind";
    std::filesystem::remove_all(folder);
}
