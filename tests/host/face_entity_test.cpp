// The face entity: its plane, what is drawn of it, what files hold of it, what it meets.

#include "host/api/face.h"

#include <limits>

#include "host/database/unknown_objects.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"
#include "tests/host/curve_samples.h"
#include "tests/host/database_drawing.h"

namespace drafthost {
namespace {

using samples::Random;

const double kInfinity = std::numeric_limits<double>::infinity();

std::vector<AcGePoint3d> cornersOf(const AcDbFace& face) {
    std::vector<AcGePoint3d> corners(AcDbFace::kCorners);
    for (int i = 0; i < AcDbFace::kCorners; ++i)
        EXPECT_EQ(face.getVertexAt(i, corners[static_cast<std::size_t>(i)]), Acad::eOk);
    return corners;
}

int hiddenEdges(const AcDbFace& face) {
    int bits = 0;
    for (int i = 0; i < AcDbFace::kCorners; ++i) {
        bool visible = false;
        EXPECT_EQ(face.isEdgeVisibleAt(i, visible), Acad::eOk);
        bits |= visible ? 0 : 1 << i;
    }
    return bits;
}

TEST(Faces, RefuseCornersThatAreNone) {
    AcDbFace face({0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}, true, false, true, false);
    EXPECT_EQ(hiddenEdges(face), 10);
    AcGePoint3d point;
    bool visible = false;
    for (const int index : {-1, 4}) {
        EXPECT_EQ(face.getVertexAt(index, point), Acad::eInvalidIndex);
        EXPECT_EQ(face.setVertexAt(index, {1, 1, 1}), Acad::eInvalidIndex);
        EXPECT_EQ(face.isEdgeVisibleAt(index, visible), Acad::eInvalidIndex);
        EXPECT_EQ(face.setEdgeVisibilityAt(index, true), Acad::eInvalidIndex);
    }
    EXPECT_EQ(face.setVertexAt(2, {4, kInfinity, 0}), Acad::eInvalidInput);
    ASSERT_EQ(face.setVertexAt(3, {1e308, 3, 0}), Acad::eOk);
    EXPECT_EQ(face.transformBy(AcGeMatrix3d::scaling(100)), Acad::eInvalidInput);
    AcDbIntArray last;
    last.append(0);
    last.append(3);
    EXPECT_EQ(face.moveStretchPointsAt(last, {1.7e308, 0, 0}), Acad::eInvalidInput);
    EXPECT_POINT_NEAR(cornersOf(face)[0], AcGePoint3d(0, 0, 0), 0);
    EXPECT_POINT_NEAR(cornersOf(face)[2], AcGePoint3d(4, 3, 0), 0);
    ASSERT_EQ(face.setEdgeVisibilityAt(1, true), Acad::eOk);
    ASSERT_EQ(face.setEdgeVisibilityAt(0, false), Acad::eOk);
    EXPECT_EQ(hiddenEdges(face), 9);
}

TEST(Faces, KnowTheirPlane) {
    struct {
        const char* what;
        AcDbFace face;
        AcDb::Planarity planarity;
    } const cases[] = {
        {"square", {{0, 0, 5}, {4, 0, 5}, {4, 4, 5}, {0, 4, 5}}, AcDb::kPlanar},
        {"three corners", {{0, 0, 0}, {4, 0, 1}, {4, 3, 7}, {4, 3, 7}}, AcDb::kPlanar},
        {"first corner twice", {{0, 0, 0}, {0, 0, 0}, {4, 3, 7}, {1, 3, 9}}, AcDb::kPlanar},
        {"crossing itself, diagonals parallel", {{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}}, AcDb::kPlanar},
        {"a corner in line with its neighbours", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 2, 0}}, AcDb::kPlanar},
        {"the first corner lifted", {{0, 0, 1}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}}, AcDb::kNonPlanar},
        {"the last corner lifted", {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 1e-4}}, AcDb::kNonPlanar},
        {"lifted by rounding", {{0, 0, 0}, {4e5, 0, 0}, {4e5, 4e5, 0}, {0, 4e5, 4e-10}}, AcDb::kPlanar},
        {"line", {{1, 1, 1}, {2, 2, 2}, {4, 4, 4}, {3, 3, 3}}, AcDb::kLinear},
        {"point", {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}}, AcDb::kLinear},
        {"huge", {{0, 0, 0}, {1e200, 0, 0}, {1e200, 1e200, 0}, {0, 1e200, 0}}, AcDb::kPlanar},
        {"too large to measure", {{-1.7e308, 0, 0}, {1.7e308, 0, 0}, {0, 1, 0}, {0, 1, 0}}, AcDb::kNonPlanar},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.what);
        AcGePlane plane;
        AcDb::Planarity planarity{};
        const auto status = expected.face.getPlane(plane, planarity);
        EXPECT_EQ(planarity, expected.planarity);
        EXPECT_EQ(expected.face.isPlanar(), expected.planarity != AcDb::kNonPlanar);
        EXPECT_EQ(status, expected.face.isPlanar() ? Acad::eOk : Acad::eNotApplicable);
        if (status != Acad::eOk)
            continue;
        EXPECT_NEAR(plane.normal().length(), 1, 1e-12);
        for (const AcGePoint3d& corner : cornersOf(expected.face))
            EXPECT_NEAR((corner - plane.pointOnPlane()).dotProduct(plane.normal()), 0, 1e-9);
    }
}

TEST(Faces, TakeTheirPlaneWithThem) {
    Random random(401);
    for (int round = 0; round < 200; ++round) {
        const double x = random.real(1, 2000), y = random.real(1, 2000);
        AcDbFace face({0, 0, 0}, {x, 0, 0}, {x, y, 0}, {0, y * random.real(-1, 1), 0});
        const AcGeMatrix3d motion =
            AcGeMatrix3d::translation(random.point(1e6).asVector()) * random.rotation();
        ASSERT_EQ(face.transformBy(motion), Acad::eOk);
        AcGePlane plane;
        AcDb::Planarity planarity{};
        ASSERT_EQ(face.getPlane(plane, planarity), Acad::eOk) << "round " << round;
        EXPECT_EQ(planarity, AcDb::kPlanar);
        EXPECT_LE((motion * AcGeVector3d::kZAxis).crossProduct(plane.normal()).length(), 1e-6);
        EXPECT_POINT_NEAR(cornersOf(face)[1], motion * AcGePoint3d(x, 0, 0), 0);
    }
}

// Writes down shells and lines: "face 012 hidden 1", "line". Edges count from the face's own first.
class Recorder : public AcGiWorldDraw, public AcGiSubEntityTraits, public AcGiWorldGeometry {
public:
    std::vector<std::string> calls;
    std::vector<AcGePoint3d> points;

    AcGiWorldGeometry& geometry() const override { return const_cast<Recorder&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<Recorder&>(*this); }
    double deviation() const override { return 0.01; }
    bool shell(std::uint32_t count, const AcGePoint3d* places, std::uint32_t size, const std::int32_t* list,
               const AcGiEdgeData* edges, const AcGiFaceData*) override {
        points.assign(places, places + count);
        std::uint32_t edge = 0;
        for (std::uint32_t at = 0; at < size; at += static_cast<std::uint32_t>(list[at]) + 1) {
            std::string face = "face ", hidden;
            for (int i = 0; i < list[at]; ++i, ++edge) {
                face += std::to_string(list[at + 1 + static_cast<std::uint32_t>(i)]);
                if (edges && !edges->visibility[edge])
                    hidden += std::to_string(i);
            }
            calls.push_back(face + (hidden.empty() ? "" : " hidden " + hidden));
        }
        return false;
    }
    bool polyline(std::uint32_t count, const AcGePoint3d* places, const AcGeVector3d*,
                  std::int64_t) override {
        calls.push_back("line");
        points.assign(places, places + count);
        return false;
    }
    bool polygon(std::uint32_t, const AcGePoint3d*) override { return false; }
    bool polyPolygon(std::uint32_t, const std::uint32_t*, const AcGePoint3d*) override { return false; }
    bool circle(const AcGePoint3d&, double, const AcGeVector3d&) override { return false; }
    bool circularArc(const AcGePoint3d&, double, const AcGeVector3d&, const AcGeVector3d&, double) override {
        return false;
    }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const ACHAR*, int,
              const AcGiTextStyle&) override {
        return false;
    }
    bool draw(AcGiDrawable* drawable) override { return drawable->worldDraw(this); }
    void pushModelTransform(const AcGeMatrix3d&) override {}
    void popModelTransform() override {}
    void setColor(std::uint16_t) override {}
    std::uint16_t color() const override { return 256; }
    void setBackgroundColor() override {}
    void setTrueColor(std::uint32_t) override {}
    void setLayer(AcDbObjectId) override {}
    AcDbObjectId layerId() const override { return {}; }
    void setLineType(AcDbObjectId) override {}
    AcDbObjectId lineTypeId() const override { return {}; }
    void setLineTypeScale(double) override {}
    double lineTypeScale() const override { return 1; }
    void setLineWeight(int) override {}
    int lineWeight() const override { return -1; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool) override {}
};

using Calls = std::vector<std::string>;

Calls drawn(AcDbFace&& face) {
    Recorder recorder;
    EXPECT_TRUE(face.worldDraw(&recorder));
    return recorder.calls;
}

TEST(Faces, AreDrawnAsFlatPieces) {
    const AcGePoint3d a(0, 0, 0), b(4, 0, 0), c(4, 3, 0), d(0, 3, 0), lifted(0, 3, 2);
    EXPECT_EQ(drawn({a, b, c, d}), (Calls{"face 0123"}));
    EXPECT_EQ(drawn({a, b, c, d, true, false, true, false}), (Calls{"face 0123 hidden 13"}));
    EXPECT_EQ(drawn({a, b, c, lifted, false}), (Calls{"face 012 hidden 02", "face 023 hidden 0"}));
    EXPECT_EQ(drawn({a, b, c, lifted, true, true, false, false}),
              (Calls{"face 012 hidden 2", "face 023 hidden 012"}));
    // The edge without length is none, hidden or not; the one back to the first corner is edge 3.
    EXPECT_EQ(drawn({a, b, c, c, true, true, false, true}), (Calls{"face 012"}));
    EXPECT_EQ(drawn({a, b, c, c, true, true, true, false}), (Calls{"face 012 hidden 2"}));
    EXPECT_EQ(drawn({a, b, b, c, true, false, true, false}), (Calls{"face 012 hidden 2"}));
    // No area: the edges alone.
    EXPECT_EQ(drawn({a, b, b, b}), (Calls{"line", "line"}));
    EXPECT_EQ(drawn({a, b, b, b, false}), (Calls{"line"}));
    EXPECT_EQ(drawn({c, c, c, c, true, false}), (Calls{"line"}));
    EXPECT_EQ(drawn({c, c, c, c, false, false, false, false}), Calls());
    Recorder recorder;
    AcDbFace(a, b, b, c).worldDraw(&recorder);
    ASSERT_EQ(recorder.points.size(), 3u);
    EXPECT_POINT_NEAR(recorder.points[2], c, 0);
}

TEST(Faces, AreMetAtTheEdgesThatAreShown) {
    const AcDbFace face({0, 0, 0}, {10, 0, 0}, {10, 5, 0}, {0, 5, 0}, true, true, false, true);
    const AcDbLine across({7, -3, 0}, {7, 8, 0}), above({7, -3, 1}, {7, 8, 1}), off({20, 0, 0}, {30, 0, 0});
    const auto count = [&](const AcDbEntity& a, const AcDbEntity& b, AcDb::Intersect type) {
        AcGePoint3dArray points;
        EXPECT_EQ(a.intersectWith(&b, type, points), Acad::eOk);
        return points.length();
    };
    EXPECT_EQ(count(face, across, AcDb::kOnBothOperands), 1);
    EXPECT_EQ(count(across, face, AcDb::kOnBothOperands), 1);
    EXPECT_EQ(count(face, above, AcDb::kOnBothOperands), 0);
    EXPECT_EQ(count(face, off, AcDb::kExtendArg), 2) << "its line is an edge's";
    EXPECT_EQ(count(face, AcDbLine({15, -1, 0}, {15, 1, 0}), AcDb::kExtendThis), 0) << "a face ends";
    AcGePoint3dArray points;
    ASSERT_EQ(face.intersectWith(&above, AcDb::kOnBothOperands, AcGePlane(), points), Acad::eOk);
    ASSERT_EQ(points.length(), 1);
    EXPECT_POINT_NEAR(points[0], AcGePoint3d(7, 0, 0), 1e-9);
}

// ---- Files

std::string drawing(const std::string& version, const std::string& entities) {
    return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n" + version + "\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" +
           entities + "0\nENDSEC\n0\nEOF\n";
}

// A drawing read from a file; its first entity is what the tests are about.
struct Read {
    AcDbDatabase database{false, true};
    exchange::DxfReadResult result;

    explicit Read(const std::string& bytes) : result(exchange::readDxfBytes(database, bytes, L"faces.dxf")) {}
    AcDbObjectId first() const {
        const AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForRead);
        return space->entityIds().isEmpty() ? AcDbObjectId() : space->entityIds()[0];
    }
    std::string written() { return exchange::dxfBytes(database); }
};

// Line ends are CR LF.
std::string asWritten(std::string text) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, "\r");
    return text;
}

TEST(FaceFiles, OldFilesGiveFaces) {
    Read old(drawing("AC1009", "0\n3DFACE\n8\nROOF\n62\n3\n10\n1\n20\n2\n30\n3\n11\n4\n21\n5\n31\n6\n"
                               "12\n7\n22\n8\n32\n8\n39\n2.5\n70\n5\n"));
    ASSERT_EQ(old.result.status, Acad::eOk);
    {
        const AcDbObjectPointer<AcDbFace> face(old.first(), AcDb::kForRead);
        ASSERT_TRUE(face);
        EXPECT_POINT_NEAR(cornersOf(*face.object())[3], AcGePoint3d(7, 8, 8), 0);
        EXPECT_EQ(hiddenEdges(*face.object()), 5);
        EXPECT_EQ(face->colorIndex(), 3);
    }
    const std::string written = old.written();
    EXPECT_NE(written.find(asWritten("100\nAcDbFace\n 10\n1")), std::string::npos);
    EXPECT_NE(written.find(asWritten("13\n7.0\n 23\n8.0\n 33\n8.0\n 70\n5\n 39\n2.5\n")), std::string::npos)
        << "what is no face's own is kept behind";
    EXPECT_EQ(Read(written).written(), written);
}

TEST(FaceFiles, UnknownGroupsAreKept) {
    const std::string face =
        "0\n3DFACE\n5\n2F0\n100\nAcDbEntity\n8\n0\n100\nAcDbFace\n10\n0\n20\n0\n30\n0\n11\n4\n"
        "21\n0\n31\n0\n12\n4\n22\n3\n32\n0\n13\n0\n23\n3\n33\n0\n70\n17\n";
    Read read(drawing("AC1015", face + "210\n0\n220\n0.6\n230\n0.8\n100\nAcDbOther\n40\n7.5\n"));
    ASSERT_EQ(read.result.status, Acad::eOk);
    {
        const AcDbObjectPointer<AcDbFace> opened(read.first(), AcDb::kForWrite);
        ASSERT_TRUE(opened);
        EXPECT_EQ(opened->setEdgeVisibilityAt(1, false), Acad::eOk);
        EXPECT_EQ(hiddenEdges(*opened.object()), 3);
    }
    const std::string written = read.written();
    EXPECT_NE(written.find(asWritten(" 70\n19\n210\n0.0\n220\n0.6\n230\n0.8\n100\nAcDbOther\n 40\n7.5\n")),
              std::string::npos);
    EXPECT_EQ(Read(written).written(), written);
}

TEST(FaceFiles, DamagedFacesAreReported) {
    Read nothing(drawing("AC1015",
                         "0\n3DFACE\n100\nAcDbEntity\n8\n0\n100\nAcDbFace\n10\n0\n20\n0\n30\n0\n11\n"
                         "nan\n21\n0\n31\n0\n12\n4\n22\n3\n32\n0\n"));
    EXPECT_NE(nothing.result.status, Acad::eOk);
    Read belowItsMarker(drawing("AC1015",
                                "0\n3DFACE\n100\nAcDbEntity\n100\nAcDbFace\n8\nROOF\n10\n0\n20\n0\n30\n"
                                "0\n11\n4\n21\n0\n31\n0\n12\n4\n22\n3\n32\n0\n"));
    ASSERT_EQ(belowItsMarker.result.status, Acad::eOk);
    const AcDbObjectPointer<AcDbFace> face(belowItsMarker.first(), AcDb::kForRead);
    ASSERT_TRUE(face);
    ACHAR* layer = face->layer();
    EXPECT_STREQ(layer, L"ROOF");
    acutDelString(layer);
}

}  // namespace
}  // namespace drafthost
