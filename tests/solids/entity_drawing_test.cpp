// What is drawn of solids, and what they explode into.

#include "entity_samples.h"
#include "recording_views.h"

#include "host/api/face.h"

#include <chrono>
#include <map>
#include <set>

using namespace entity_samples;

namespace {

RecordingGeometry drawn(SolidEntity& solid, bool isAllDrawn = false) {
    RecordingDraw draw;
    EXPECT_EQ(isAllDrawn, solid.worldDraw(&draw));
    return draw.drawn;
}

RecordingGeometry seen(SolidEntity& solid, const AcGeVector3d& toEye) {
    RecordingView view(toEye.normal());
    solid.viewportDraw(&view);
    return view.drawn;
}

// Edges of a shell by their points, in either direction, with whether they are shown.
std::map<std::pair<int, int>, std::vector<bool>> edgesOf(const RecordingGeometry::Shell& shell) {
    std::map<std::pair<int, int>, std::vector<bool>> edges;
    std::size_t edge = 0;
    for (std::size_t i = 0; i < shell.faceList.size();) {
        const int count = shell.faceList[i];
        for (int side = 0; side < count; ++side) {
            const int from = shell.faceList[i + 1 + side];
            const int to = shell.faceList[i + 1 + (side + 1) % count];
            edges[std::minmax(from, to)].push_back(shell.shownEdges[edge++]);
        }
        i += count + 1;
    }
    return edges;
}

int shownEdgeCount(const RecordingGeometry::Shell& shell) {
    return static_cast<int>(
        std::ranges::count_if(edgesOf(shell), [](const auto& edge) { return edge.second[0]; }));
}

struct Exploded {
    explicit Exploded(const SolidEntity& solid) { EXPECT_EQ(Acad::eOk, solid.explode(parts)); }
    ~Exploded() {
        for (AcDbEntity* const part : parts) {
            delete part;
        }
    }
    const AcDbFace& face(int i) const { return *AcDbFace::cast(parts[i]); }
    AcDbEntityArray parts;
};

AcGePoint3d cornerOf(const AcDbFace& face, int i) {
    AcGePoint3d corner;
    EXPECT_EQ(Acad::eOk, face.getVertexAt(i, corner));
    return corner;
}

double areaOfFace(const AcDbFace& face) {
    const AcGeVector3d across = cornerOf(face, 2) - cornerOf(face, 0);
    return across.crossProduct(cornerOf(face, 3) - cornerOf(face, 1)).length() / 2;
}

}  // namespace

class SolidDrawing : public SolidTest {};

TEST_F(SolidDrawing, BoxesAreSixFacesAndTwelveEdges) {
    const RecordingGeometry geometry = drawn(*box());
    ASSERT_EQ(1u, geometry.shells.size());
    EXPECT_EQ(0u, geometry.lines.size());
    EXPECT_EQ(std::vector<bool>(6, true), geometry.shells[0].shownFaces);
    EXPECT_EQ(12, shownEdgeCount(geometry.shells[0]));
    EXPECT_EQ(12u, edgesOf(geometry.shells[0]).size());
    for (const AcGeVector3d& view : {AcGeVector3d(0, 0, 1), AcGeVector3d(1, 2, 3)}) {
        EXPECT_TRUE(seen(*box(), view).lines.empty());
    }
    drawn(*newSolid(), true);
    EXPECT_TRUE(seen(*newSolid(), {0, 0, 1}).lines.empty());
}

TEST_F(SolidDrawing, PipesShowTheirRimsAndInEachViewTheirSides) {
    const SolidPointer solid = pipe();
    EXPECT_EQ(2 * 64, shownEdgeCount(drawn(*solid).shells.at(0)));
    const RecordingGeometry plan = seen(*solid, {0, 0, 1});
    ASSERT_EQ(2u, plan.lines.size());
    std::set<double> sides;
    for (const RecordingGeometry::Line& line : plan.lines) {
        ASSERT_EQ(2u, line.points.size());
        EXPECT_NEAR(10, std::abs(line.points[0].x - line.points[1].x), 1e-12);
        EXPECT_NEAR(0, line.points[0].z, 1e-12);
        sides.insert(std::round(line.points[0].y * 1e9) / 1e9);
    }
    EXPECT_EQ((std::set<double>{-2, 2}), sides);
    // From the side the sides are at the top and at the bottom; along the pipe there are none.
    for (const RecordingGeometry::Line& line : seen(*solid, {0, -1, 0}).lines) {
        EXPECT_NEAR(2, std::abs(line.points[0].z), 1e-12);
    }
    EXPECT_TRUE(seen(*solid, {1, 0, 0}).lines.empty());
}

TEST_F(SolidDrawing, OutlinesOfBendsAreDrawnInOnePiece) {
    const SolidPointer solid = newSolid();
    AcGePoint3d start(0, 0, 0), end(30, 30, 0);
    ASSERT_TRUE(
        solid->addRadiusElbow(start, 4, 4, 0, 0, end, 4, 4, kAlongX, kAlongY, false, 1.5, true, 0, true));
    const RecordingGeometry plan = seen(*solid, {0, 0, 1});
    ASSERT_EQ(2u, plan.lines.size());
    for (const RecordingGeometry::Line& line : plan.lines) {
        EXPECT_GT(line.points.size(), 8u);
        // Radius 6 about the bend's middle, two more or less.
        for (const AcGePoint3d& point : line.points) {
            EXPECT_NEAR(2, std::abs(point.distanceTo({24, 6, 0}) - 6), 0.02);
        }
    }
    EXPECT_EQ(2 * 64, shownEdgeCount(drawn(*solid).shells.at(0)));
}

TEST_F(SolidDrawing, OpenEndsAreHiddenAndTheirRimsAreNot) {
    const auto hiddenOf = [](int flags) {
        const RecordingGeometry::Shell shell = drawn(*pipe(flags)).shells.at(0);
        EXPECT_EQ(2 * 64, shownEdgeCount(shell));
        for (const auto& [points, shown] : edgesOf(shell)) {
            EXPECT_EQ(2u, shown.size());
            EXPECT_EQ(shown[0], shown[1]);
        }
        return std::ranges::count(shell.shownFaces, false);
    };
    EXPECT_EQ(0, hiddenOf(kHvacClosedBody));
    const auto oneEnd = hiddenOf(kHvacOpenStart);
    EXPECT_GE(oneEnd, 31);
    EXPECT_EQ(oneEnd, hiddenOf(kHvacOpenEnd));
    EXPECT_EQ(2 * oneEnd, hiddenOf(kHvacOpenStart | kHvacOpenEnd));
    // The body stays closed for those who measure it.
    EXPECT_EQ(volumeOf(*pipe()), volumeOf(*pipe(kHvacOpenStart | kHvacOpenEnd)));
    EXPECT_EQ(6, Exploded(*box()).parts.length());
    EXPECT_EQ(4, Exploded(*box(kHvacOpenStart | kHvacOpenEnd)).parts.length());
}

TEST_F(SolidDrawing, CentreLinesHaveTheirLinetypeIfThereIsOne) {
    const AcDbObjectId id = append(box(kHvacCenterline).release());
    const auto lineOf = [&] {
        const OpenSolid solid(id, AcDb::kForRead);
        const RecordingGeometry geometry = drawn(entityOf(solid));
        EXPECT_EQ(1u, geometry.lines.size());
        EXPECT_TRUE(geometry.lineTypeId().isNull());
        EXPECT_EQ(-1, geometry.lineWeight());
        return geometry.lines.at(0);
    };
    EXPECT_EQ(0, lineOf().points.front().distanceTo({0, 0, 0}));
    EXPECT_EQ(0, lineOf().points.back().distanceTo({10, 0, 0}));
    EXPECT_EQ(database.continuousLinetype(), lineOf().linetype);
    AcDbLinetypeTable* table = nullptr;
    AcDbObjectId center;
    auto* const record = new AcDbLinetypeTableRecord;
    record->setName(L"CENTER");
    ASSERT_EQ(Acad::eOk, database.getSymbolTable(table, AcDb::kForWrite));
    ASSERT_EQ(Acad::eOk, table->add(center, record));
    table->close();
    record->close();
    EXPECT_EQ(center, lineOf().linetype);
}

TEST_F(SolidDrawing, ExplodedFacesCoverTheSurfaceAndLookTheSame) {
    const SolidPointer solid = crossing();
    solid->setColorIndex(5);
    const Exploded exploded(*solid);
    double area = 0, edges = 0;
    for (int i = 0; i < exploded.parts.length(); ++i) {
        ASSERT_NE(nullptr, AcDbFace::cast(exploded.parts[i]));
        const AcDbFace& face = exploded.face(i);
        EXPECT_EQ(5, face.colorIndex());
        EXPECT_TRUE(face.isPlanar());
        area += areaOfFace(face);
        for (int corner = 0; corner < 4; ++corner) {
            bool isShown = false;
            face.isEdgeVisibleAt(corner, isShown);
            edges += isShown ? cornerOf(face, corner).distanceTo(cornerOf(face, (corner + 1) % 4)) : 0;
        }
    }
    AcDbSolidMeasures measures;
    ASSERT_EQ(Acad::eOk, solid->getSolidMeasures(measures));
    EXPECT_NEAR(measures.surfaceArea - 8 - 2, area, 1e-9);
    // Two rectangles and four edges of the box, less the hole's rim which is counted from both sides; edges
    // beside the open ends belong to one face each.
    EXPECT_NEAR(2 * (12 + 4 * 10) + 12 + 2 * (6 + 4 * 9) + 6, edges, 1e-9);
}

TEST_F(SolidDrawing, ManySidedEndsExplodeIntoQuadrilateralsWithoutInnerEdges) {
    const Exploded exploded(*pipe());
    // 64 sides, and two ends of 62 triangles in pairs.
    EXPECT_EQ(64 + 2 * 31, exploded.parts.length());
}

TEST_F(SolidDrawing, ViewsAreQuick) {
    const SolidPointer solid = newSolid();
    AcGePoint3d start(0, 0, 0), end(30, 30, 0);
    ASSERT_TRUE(
        solid->addRadiusElbow(start, 4, 4, 0, 0, end, 4, 4, kAlongX, kAlongY, false, 1.5, true, 0, true));
    using Clock = std::chrono::steady_clock;
    const auto timeOf = [](auto action) {
        const auto before = Clock::now();
        for (int i = 0; i < 100; ++i) {
            action();
        }
        return std::chrono::duration<double, std::milli>(Clock::now() - before).count() / 100;
    };
    // The measure is one pass over the same triangles.
    const double area = timeOf([&] { static_cast<void>(areaOf(solid->joined().mesh)); });
    seen(*solid, {0, 0, 1});
    EXPECT_LT(timeOf([&] { seen(*solid, {0, 0, 1}); }), 60 * area + 0.1);
}
