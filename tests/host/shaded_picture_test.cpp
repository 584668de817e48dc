// Shaded pictures: what lies in front, which sides the light falls on, and where lines run.

#include "host/api/face.h"
#include "host/graphics/scene_painter.h"
#include "tests/host/drum_entity.h"

using namespace drafthost;
using namespace drafthost::graphics;

namespace {

bool isRed(Rgb c) {
    return c.red > 60 && c.green < 10 && c.blue < 10;
}
bool isGreen(Rgb c) {
    return c.green > 60 && c.red < 10 && c.blue < 10;
}

class ShadedPicture : public DrumTest {
protected:
    // Paints the drawing; points of the world can then be looked at.
    void paint(const AcGeVector3d& towardsEye, int size = 200) {
        scene_ = buildScene(db(), towardsEye);
        frame_ = fitPicture(boundsInView(scene_), size);
        pixels_ = paintScene(scene_, frame_);
        ASSERT_EQ(pixels_.size(), static_cast<std::size_t>(frame_.width * frame_.height));
    }
    Rgb at(const AcGePoint3d& world) const {
        const AcGePoint2d p = frame_.toPixel(ViewAxes(scene_.towardsEye).toView(world).convert2d());
        return pixels_[static_cast<std::size_t>(static_cast<int>(p.y) * frame_.width +
                                                static_cast<int>(p.x))];
    }
    // A pixel there or beside it is green.
    bool greenNear(const AcGePoint3d& world) const {
        const ViewAxes axes(scene_.towardsEye);
        for (const int x : {-1, 0, 1}) {
            for (const int y : {-1, 0, 1}) {
                const AcGeVector3d aside = (axes.right * x + axes.up * y) / frame_.scale;
                if (isGreen(at(world + aside)))
                    return true;
            }
        }
        return false;
    }
    AcDbObjectId addDrumAt(const AcGePoint3d& center, std::uint16_t color, bool isOpen = false) {
        return addDrum([&](Drum& drum) {
            drum.center = center;
            drum.isOpen = isOpen;
            drum.setColorIndex(color);
        });
    }
    static AcDbEntity* withColor(AcDbEntity* entity, std::uint16_t color) {
        entity->setColorIndex(color);
        return entity;
    }

    Scene scene_;
    PictureFrame frame_;
    std::vector<Rgb> pixels_;
};

}  // namespace

TEST_F(ShadedPicture, FrontHidesBackWhateverTheOrderOfDrawing) {
    addDrumAt({0, -5, 0}, 1);
    addDrumAt({0, 5, 0}, 3);
    addDrumAt({0, 0, 3}, 5);  // above both
    paint({0, -1, 0});
    EXPECT_TRUE(isRed(at({0, 0, 0}))) << "from the south";
    paint({0, 1, 0});
    EXPECT_TRUE(isGreen(at({0, 0, 0}))) << "from the north";
    EXPECT_EQ(at({-0.9, 0, 1.8}), kBackground) << "beside them";
}

TEST_F(ShadedPicture, SurfacesMeetWhereTheyCross) {
    // Two faces that cross along x = 0, seen from above.
    append(withColor(new AcDbFace({-2, -2, -1}, {2, -2, 1}, {2, 2, 1}, {-2, 2, -1}), 1));
    append(withColor(new AcDbFace({-2, -2, 1}, {2, -2, -1}, {2, 2, -1}, {-2, 2, 1}), 3));
    paint({0, 0, 1});
    EXPECT_TRUE(isGreen(at({-0.2, 0, 0})));
    EXPECT_TRUE(isRed(at({0.2, 0, 0})));
}

TEST_F(ShadedPicture, InsideOfAnOpenBodyIsDarkerAndLooseFacesHaveNoInside) {
    addDrumAt({0, 0, 0}, 1, true);
    append(withColor(new AcDbFace({5, 0, 0}, {6, 0, 0}, {6, 1, 0}, {5, 1, 0}), 1));
    append(withColor(new AcDbFace({8, 0, 0}, {8, 1, 0}, {9, 1, 0}, {9, 0, 0}), 1));
    const AcGeVector3d from(0, -1, 1);
    paint(from);
    // The same direction of the surface's normal: the wall's inside at the back, its outside at the front.
    const int outside = at({0, -1, -0.3}).red, inside = at({0, 1, 0.6}).red;
    EXPECT_GT(inside, 30);
    EXPECT_LT(inside, outside - 40);
    EXPECT_EQ(at({5.5, 0.5, 0}), at({8.5, 0.5, 0})) << "whichever way its corners run";
}

TEST_F(ShadedPicture, CurvedSurfacesAreSmoothAndBodiesMirroredLikeOthers) {
    addDrum([](Drum& drum) { drum.setColorIndex(1); });
    paint({0, -1, 0.2}, 600);
    // Across the front from left to right no step between facets, and darker to the right.
    int last = -1, largest = 0, first = 0;
    for (double x = -0.8; x <= 0.8; x += 0.01) {
        const int red = at({x, -std::sqrt(1 - x * x), 0}).red;
        if (last >= 0)
            largest = std::max(largest, std::abs(red - last));
        else
            first = red;
        last = red;
    }
    EXPECT_LE(largest, 4);
    EXPECT_GT(first, last + 30);
    const Rgb straight = at({0, -1, 0});
    const AcDbObjectId block = addBlock(L"DRUM");
    addDrum([](Drum& drum) { drum.setColorIndex(1); }, block);
    addReference(block, 1, -1, 1);
    paint({0, -1, 0.2}, 600);
    EXPECT_NEAR(at({10, -1, 0}).red, straight.red, 3) << "seen from outside, not from inside";
}

TEST_F(ShadedPicture, LinesAreHiddenBehindSurfacesAndSeenOnThem) {
    addDrumAt({0, 0, 0}, 1);
    append(withColor(new AcDbLine({-3, 2, 0}, {3, 2, 0}), 3));
    append(withColor(new AcDbCircle({0, 0, 1}, AcGeVector3d::kZAxis, 0.5), 3));
    append(withColor(new AcDbCircle({0, 0, -1}, AcGeVector3d::kZAxis, 0.7), 3));
    paint({0, -1, 0.5}, 400);
    EXPECT_TRUE(greenNear({-2, 2, 0}));
    EXPECT_TRUE(isRed(at({0.05, -1, -0.5})));
    EXPECT_FALSE(greenNear({0, 2, 0})) << "behind the drum";
    EXPECT_TRUE(greenNear({0, -0.5, 1})) << "on the lid";
    EXPECT_FALSE(greenNear({0, -0.7, -1})) << "on the bottom";
    // Edges are dark, and so is the silhouette that the drum draws for the view, on its left.
    EXPECT_LT(at({0, -1, 1}).red, 120);
    const auto dark = [](const SceneLine& line) { return line.color == Rgb{56, 0, 0}; };
    EXPECT_EQ(std::ranges::count_if(scene_.lines, dark), 48 + 1);
}

TEST_F(ShadedPicture, AreasAndTextLieInTheirPlanes) {
    auto* const wide = new AcDbPolyline;
    wide->addVertexAt(0, {-1, 0}, 0, 1, 1);
    wide->addVertexAt(1, {1, 0}, 0, 1, 1);
    wide->transformBy(AcGeMatrix3d::translation({0, 0, 2}));
    append(withColor(wide, 3));
    addDrumAt({0, 3, 1}, 1);
    paint({0, -1, 1}, 300);
    EXPECT_TRUE(isGreen(at({0, 0, 2})));
    // The strip's shadow line on the drum: it hides what lies behind it, and not what is above.
    EXPECT_TRUE(isRed(at({0, 2.5, 2})));
    paint({0, 0, -1}, 300);
    EXPECT_TRUE(isGreen(at({0, 0, 2}))) << "from below as well";
}

TEST_F(ShadedPicture, EmptyDrawingAndPicturesOfAnySize) {
    paint(kShadedFrom);
    EXPECT_EQ(pixels_.front(), kBackground);
    addDrumAt({1e6, -1e6, 5e5}, 1);
    paint(kShadedFrom, 1500);  // more than one band of rows
    EXPECT_TRUE(isRed(at({1e6, -1e6, 5e5 + 1})));
    EXPECT_TRUE(isRed(at({1e6 - 0.7, -1e6 - 0.7, 5e5 - 0.5})));
    paint({0, 0, 1}, 16);
    EXPECT_TRUE(isRed(at({1e6, -1e6, 0})));
}
