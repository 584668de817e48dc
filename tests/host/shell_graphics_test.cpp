// Shells in plan pictures, where they can be picked, and in what is left of them when their class goes.

#include "host/database/memory_filer.h"
#include "host/database/state_filing.h"
#include "host/database/unknown_objects.h"
#include "host/editor/entity_outline.h"
#include "host/geometry/shell.h"
#include "host/geometry/triangulate.h"
#include "host/graphics/display_builder.h"
#include "tests/host/drum_entity.h"

using namespace drafthost;
using graphics::buildDisplayList;
using graphics::Polyline2d;

namespace {

class ShellGraphics : public DrumTest {
protected:
    // Straight pieces of all lines.
    static std::size_t pieces(const graphics::DisplayList& list) {
        std::size_t count = 0;
        for (const graphics::DisplayItem& item : list.items)
            count += std::get<Polyline2d>(item.shape).points.size() - 1;
        return count;
    }
    std::size_t drawnPieces() { return pieces(buildDisplayList(db())); }
    static editor::Outline outlineOf(AcDbObjectId id) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        return editor::outlineOf(*entity);
    }
};

// Area of all triangles; signedArea: what they enclose, less where they overlap the other way round.
double areaCut(const std::vector<AcGePoint3d>& points, const std::vector<std::int32_t>& corners,
               double& signedArea) {
    std::vector<std::array<std::int32_t, 3>> triangles;
    triangulateFace(points, corners, triangles);
    EXPECT_EQ(triangles.size(), corners.size() - 2);
    double area = 0;
    AcGeVector3d sum;
    for (const auto& triangle : triangles) {
        const auto at = [&](int i) { return points[static_cast<std::size_t>(triangle[i])]; };
        const AcGeVector3d twice = (at(1) - at(0)).crossProduct(at(2) - at(0));
        area += twice.length() / 2;
        sum += twice;
    }
    signedArea = sum.length() / 2;
    return area;
}

}  // namespace

TEST_F(ShellGraphics, EdgesAreDrawnOnceWhereOneOfTwoFacesShowsThem) {
    addDrum();
    EXPECT_EQ(drawnPieces(), 48u) << "24 sides around both ends";
    const auto items = buildDisplayList(db()).items;
    ASSERT_EQ(items.size(), 2u) << "in one line each, that dashes can run along";
    const auto& around = std::get<Polyline2d>(items[0].shape).points;
    EXPECT_TRUE(around.front().isEqualTo(around.back()));
}

TEST_F(ShellGraphics, HiddenFacesShowNoEdgesOfTheirOwn) {
    addDrum([](Drum& drum) { drum.isOpen = true; });
    EXPECT_EQ(drawnPieces(), 48u) << "the wall shows them";
}

TEST_F(ShellGraphics, DirectionOfViewIsThatOfTheEntityInsideBlocks) {
    const AcDbObjectId block = addBlock(L"LYING");
    addDrum([](Drum&) {}, block);
    auto* const reference = new AcDbBlockReference(AcGePoint3d(), block);
    // Lying along the world's X, twice as long: from above one sees along the drum's -X.
    ASSERT_EQ(reference->transformBy(AcGeMatrix3d::rotation(std::numbers::pi / 2, AcGeVector3d::kYAxis)),
              Acad::eOk);
    const AcDbObjectId id = append(reference);
    const auto items = buildDisplayList(db()).items;
    ASSERT_EQ(drawnPieces(), 49u);
    const auto& outline = std::get<Polyline2d>(items.back().shape).points;
    EXPECT_NEAR(std::abs(outline[0].x - outline[1].x), 2, 1e-9);
    EXPECT_NEAR(std::abs(outline[0].y), 1, 1e-9);
    EXPECT_NEAR(outline[0].y, outline[1].y, 1e-9);
    // It can be picked there too.
    EXPECT_EQ(outlineOf(id).lines.size(), 3u);
    EXPECT_LT(editor::distanceTo(outlineOf(id), {0, outline[0].y}).value(), 1e-9);
    EXPECT_GT(editor::distanceTo(outlineOf(id), {0, 0}).value(), 0.5) << "not inside";
}

TEST_F(ShellGraphics, ProxyKeepsShellAndSilhouette) {
    const AcDbObjectId id = addDrum();
    {
        const AcDbObjectPointer<AcDbEntity> drum(id, AcDb::kForWrite);
        drum->setColorIndex(1);
    }
    const AcDbObjectId lying = addBlock(L"LYING");
    addDrum([](Drum&) {}, lying);
    auto* const reference = new AcDbBlockReference(AcGePoint3d(), lying);
    ASSERT_EQ(reference->transformBy(AcGeMatrix3d::rotation(std::numbers::pi / 2, AcGeVector3d::kYAxis)),
              Acad::eOk);
    append(reference);
    EXPECT_EQ(drawnPieces(), 48u + 49u);
    removeClass();
    ASSERT_TRUE(AcDbObjectPointer<AcDbUnknownEntity>(id, AcDb::kForRead));
    // Upright no silhouette; lying, the drum drew one line of it and the proxy finds both.
    const auto items = buildDisplayList(db()).items;
    EXPECT_EQ(drawnPieces(), 48u + 48u + 2u);
    EXPECT_EQ(items.front().color, (graphics::Rgb{255, 0, 0}));
    // And through filing.
    const AcDbObjectPointer<AcDbEntity> proxy(id, AcDb::kForRead);
    MemoryFiler out(&db(), AcDb::kUndoFiler);
    ASSERT_EQ(fileStateOut(out, readState<UnknownEntityState>(proxy.object())), Acad::eOk);
    UnknownEntityState read;
    MemoryFiler in(&db(), AcDb::kUndoFiler, out.record());
    ASSERT_EQ(fileStateIn(in, read), Acad::eOk);
    graphics::DisplayBuilder builder(db(), 1e-3);
    EXPECT_FALSE(read.graphics.draw(builder, *proxy.object())) << "something is left to be drawn for views";
    EXPECT_EQ(pieces(builder.take()), 48u);
}

TEST(ShellReading, UnusableFacesAreLeftOutAndTheOthersKeepTheirEdges) {
    const AcGePoint3d points[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {NAN, 0, 0}, {1, 1, 0}};
    // A triangle with a point that is not there, one with no number, two corners, a good one, a cut one.
    const std::int32_t faces[] = {3, 0, 1, 9, 3, 0, 1, 3, 2, 0, 1, 0, 3, 1, 4, 2, 4, 0, 1};
    const bool edges[] = {true, true, true, true, true, true, true, true, true, false, true};
    const AcGiEdgeData edgeData{edges};
    const Shell shell = readShell(5, points, std::size(faces), faces, &edgeData, nullptr);
    ASSERT_EQ(shell.faces.size(), 1u);
    EXPECT_EQ(shell.corners, (std::vector<std::int32_t>{1, 4, 2}));
    EXPECT_EQ(shell.cornerVisible, (std::vector<std::uint8_t>{1, 0, 1}));
}

TEST(FaceTriangulation, CoversConcaveFacesAndFacesWithHoles) {
    struct Case {
        const char* name;
        std::vector<AcGePoint3d> points;
        std::vector<std::int32_t> corners;
        double area;
    };
    const Case cases[] = {
        {"an L on its side",
         {{0, 0, 0}, {0, 4, 0}, {0, 4, 1}, {0, 1, 1}, {0, 1, 4}, {0, 0, 4}},
         {0, 1, 2, 3, 4, 5},
         7},
        {"clockwise",
         {{0, 0, 0}, {4, 0, 0}, {4, 1, 0}, {1, 1, 0}, {1, 4, 0}, {0, 4, 0}},
         {5, 4, 3, 2, 1, 0},
         7},
        {"corners on straight lines",
         {{0, 0, 5}, {1, 0, 5}, {2, 0, 5}, {2, 1, 5}, {2, 2, 5}, {1, 2, 5}, {0, 2, 5}, {0, 1, 5}},
         {0, 1, 2, 3, 4, 5, 6, 7},
         4},
        {"a hole reached by a cut",
         {{0, 0, 0}, {6, 0, 0}, {6, 6, 0}, {0, 6, 0}, {2, 2, 0}, {2, 4, 0}, {4, 4, 0}, {4, 2, 0}},
         {0, 1, 2, 3, 0, 4, 5, 6, 7, 4},
         32},
        {"a comb",
         {{0, 0, 0},
          {9, 0, 0},
          {9, 5, 0},
          {8, 5, 0},
          {7, 1, 0},
          {6, 5, 0},
          {5, 5, 0},
          {4, 1, 0},
          {3, 5, 0},
          {2, 5, 0},
          {1, 1, 0},
          {0, 5, 0}},
         {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11},
         45 - 2 * (4 * 2 / 2.0) - 4 * 2 / 2.0},
    };
    for (const Case& one : cases) {
        double enclosed = 0;
        const double cut = areaCut(one.points, one.corners, enclosed);
        EXPECT_NEAR(enclosed, one.area, 1e-9) << one.name;
        EXPECT_NEAR(cut, one.area, 1e-9) << one.name << ": triangles overlap";
    }
}
