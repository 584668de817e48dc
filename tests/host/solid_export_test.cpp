// Which solids of a drawing are exported, how they are measured, and what the files say.

#include <cstring>
#include <map>
#include <sstream>

#include "host/api/face.h"
#include "host/graphics/solid_export.h"
#include "tests/host/drum_entity.h"

using namespace drafthost;
using exchange::ShownSolid;
using graphics::collectSolids;

namespace {

class SolidExport : public DrumTest {
protected:
    std::vector<ShownSolid> solids() { return collectSolids(db()); }
    static double volumeOfBodies(const ShownSolid& solid) {
        double sum = 0;
        for (const Shell& body : solid.bodies)
            sum += volumeOf(body);
        return sum;
    }
};

// Reads a binary STL file: its number of facets, the volume that they enclose, and whether every edge is run
// along as often in one direction as in the other.
struct StlContents {
    std::uint32_t facets = 0;
    double volume = 0;
    bool closed = true;
};
StlContents readStl(const std::string& bytes) {
    StlContents contents;
    std::memcpy(&contents.facets, bytes.data() + 80, 4);
    EXPECT_EQ(bytes.size(), 84 + std::size_t{50} * contents.facets);
    using Point = std::array<float, 3>;
    std::map<std::pair<Point, Point>, int> edges;
    for (std::size_t i = 0; i < contents.facets; ++i) {
        std::array<Point, 4> facet;  // the normal, then the corners
        std::memcpy(&facet, bytes.data() + 84 + 50 * i, 48);
        const auto at = [&](int j) {
            return AcGeVector3d(facet[static_cast<std::size_t>(j)][0], facet[static_cast<std::size_t>(j)][1],
                                facet[static_cast<std::size_t>(j)][2]);
        };
        const AcGeVector3d cross = (at(2) - at(1)).crossProduct(at(3) - at(1));
        EXPECT_GE(cross.dotProduct(at(0)), 0.999 * cross.length());
        contents.volume += at(1).dotProduct(at(2).crossProduct(at(3))) / 6;
        for (std::size_t j = 1; j <= 3; ++j) {
            const Point from = facet[j], to = facet[j == 3 ? 1 : j + 1];
            edges[std::minmax(from, to)] += from < to ? 1 : -1;
        }
    }
    for (const auto& [edge, balance] : edges)
        contents.closed = contents.closed && balance == 0;
    return contents;
}

}  // namespace

TEST_F(SolidExport, MeasuresScaleWithBlockReferencesAndBodiesFaceOutward) {
    const AcDbObjectId block = addBlock(L"DRUM");
    addDrum([](Drum&) {}, block);
    addDrum();
    addReference(block, 2, 2, 2);
    addReference(block, -1, 1, 1);
    addReference(block, 1, 1, 3);
    addReference(block, 2, 1, 1);
    addReference(block, 0, 1, 1);  // squashed flat: no body
    addReference(addBlock(L"EMPTY"), 1, 1, 1);
    const auto found = solids();
    ASSERT_EQ(found.size(), 6u);
    const Drum drum;
    const double volumes[] = {1, 8, 1, 3, 2, 0};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_NEAR(found[i].volume, drum.volume() * volumes[i], 1e-9) << i;
        EXPECT_NEAR(volumeOfBodies(found[i]), found[i].volume, 1e-9) << i;
        EXPECT_EQ(found[i].kind, L"drum, round");
    }
    const double wall = drum.wallArea(), ends = 2 * drum.endArea();
    EXPECT_NEAR(found[1].surfaceArea, 4 * (wall + ends), 1e-9);
    EXPECT_NEAR(found[1].sheetArea.value(), 4 * wall, 1e-9);
    EXPECT_NEAR(found[2].surfaceArea, wall + ends, 1e-9);
    // Three times as high: measured on what is seen. The sheet's share of the surface is kept.
    EXPECT_NEAR(found[3].surfaceArea, 3 * wall + ends, 1e-9);
    EXPECT_NEAR(found[3].sheetArea.value(), (3 * wall + ends) * wall / (wall + ends), 1e-9);
    // Named by the way to them.
    EXPECT_EQ(found[0].handle.find(L'/'), std::wstring::npos);
    EXPECT_EQ(found[1].handle.substr(found[1].handle.find(L'/')),
              found[2].handle.substr(found[2].handle.find(L'/')));
    EXPECT_NE(found[1].handle, found[2].handle);
}

TEST_F(SolidExport, HiddenEndsAreWallsOfTheBodyAndWhatIsNotSeenIsLeftOut) {
    addDrum([](Drum& drum) { drum.isOpen = true; });
    addDrum([](Drum& drum) { drum.isInsideOut = true; });
    addDrum([](Drum& drum) { drum.setVisibility(false); });
    for (const wchar_t* const name : {L"OFF", L"FROZEN"}) {
        const AcDbObjectId layer = addLayer(name);
        addDrum([&](Drum& drum) { drum.setLayer(name); });
        const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForWrite);
        *name == L'O' ? record->setIsOff(true) : record->setIsFrozen(true);
    }
    append(new AcDbFace({0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}));
    addLine();
    const AcDbObjectPointer<AcDbEntity> erased(addDrum(), AcDb::kForWrite);
    erased->erase();
    const auto found = solids();
    ASSERT_EQ(found.size(), 2u);
    for (const ShownSolid& solid : found)
        EXPECT_NEAR(volumeOfBodies(solid), Drum().volume(), 1e-9);
}

TEST_F(SolidExport, BodiesWithoutMeasuresAreMeasuredByTheirShells) {
    addDrum([](Drum& drum) { drum.knowsMeasures = false; });
    removeClass();  // so too for a proxy, which keeps the shell
    const auto found = solids();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].kind, L"TESTDRUM");
    EXPECT_NEAR(found[0].volume, Drum().volume(), 1e-9);
    EXPECT_NEAR(found[0].surfaceArea, Drum().wallArea() + 2 * Drum().endArea(), 1e-9);
    EXPECT_FALSE(found[0].sheetArea) << "nobody knows";
}

TEST_F(SolidExport, StlIsClosedAndEnclosesTheVolumes) {
    addDrum();
    const AcDbObjectId block = addBlock(L"DRUM");
    addDrum([](Drum& drum) { drum.center = {0.3, 0, 0}; }, block);
    addReference(block, -1, 2, 1);
    const StlContents contents = readStl(exchange::stlBytes(solids()));
    EXPECT_EQ(contents.facets, 2u * (24 * 2 + 2 * 22));
    EXPECT_TRUE(contents.closed);
    EXPECT_NEAR(contents.volume, 3 * Drum().volume(), 1e-4);
}

TEST_F(SolidExport, StlStaysClosedWhereSinglePrecisionMergesPoints) {
    addDrum([](Drum& drum) {
        drum.center = {1e6, 1e6, 0};
        drum.sides = 200;
    });
    const StlContents contents = readStl(exchange::stlBytes(solids()));
    EXPECT_LT(contents.facets, 2u * (200 * 2 + 2 * 198) / 2);
    EXPECT_TRUE(contents.closed);
}

TEST_F(SolidExport, ObjKeepsFacesAndSharedPoints) {
    addDrum();
    addDrum([](Drum& drum) { drum.center = {1.0 / 3, 0, 0}; });
    std::istringstream file(exchange::objText(solids()));
    std::vector<std::string> objects;
    std::vector<AcGePoint3d> points;
    std::map<std::size_t, int> corners;
    std::size_t highest = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string word;
        words >> word;
        if (word == "o") {
            words >> word;
            objects.push_back(word);
        } else if (word == "v") {
            AcGePoint3d& p = points.emplace_back();
            words >> p.x >> p.y >> p.z;
        } else if (word == "f") {
            std::size_t count = 0;
            for (std::size_t number; words >> number; ++count)
                highest = std::max(highest, number);
            ++corners[count];
        }
    }
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_TRUE(objects[0].ends_with("_drum,_round"));
    ASSERT_EQ(points.size(), 96u);
    EXPECT_EQ(highest, 96u);
    EXPECT_EQ(points[48].x, 1 + 1.0 / 3) << "to the last digit";
    EXPECT_EQ(corners, (std::map<std::size_t, int>{{4, 48}, {24, 4}}));
}

TEST_F(SolidExport, ListHasOneRowForEachSolid) {
    std::vector<ShownSolid> list(2);
    list[0] = {L"2F/1A", L"M-DUCT", L"radius elbow, rectangular", {}, 1.0 / 3, 1e-7, 0.0};
    list[1] = {L"30", L"M-\"X\"", L"body", {}, 123456789.125, 2, std::nullopt};
    EXPECT_EQ(exchange::solidListText(list),
              "handle,layer,kind,volume,surface area,sheet area\r\n"
              "2F/1A,M-DUCT,\"radius elbow, rectangular\",0.333333333333,1e-07,0\r\n"
              "30,\"M-\"\"X\"\"\",body,123456789.125,2,\r\n");
    list.resize(1);
    list[0].layer = L"L\u00fcftung";
    EXPECT_TRUE(exchange::solidListText(list).starts_with("\xEF\xBB\xBFhandle,"));
    EXPECT_NE(exchange::solidListText(list).find("2F/1A,L\xC3\xBC"
                                                 "ftung,"),
              std::string::npos);
}
