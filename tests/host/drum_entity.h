#pragma once

// An entity that draws a shell: a prism of many sides, which stands for a round duct.

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "host/api/entity.h"
#include "tests/host/database_drawing.h"

namespace drafthost {

// Upright on its centre. The edges along its wall are hidden, those around its ends are shown.
class Drum : public AcDbEntity {
public:
    static inline AcRxClass* registered = nullptr;
    static AcRxClass* desc() { return registered; }
    AcRxClass* isA() const override { return registered; }

    AcGePoint3d center;
    double radius = 1, height = 2;
    int sides = 24;
    bool isOpen = false;  // its ends are not shown
    bool isInsideOut = false;
    bool knowsMeasures = true;

    double endArea() const { return sides * radius * radius * std::sin(2 * std::numbers::pi / sides) / 2; }
    double wallArea() const { return sides * 2 * radius * std::sin(std::numbers::pi / sides) * height; }
    double volume() const { return endArea() * height; }

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override {
        std::vector<AcGePoint3d> points;
        std::vector<std::int32_t> faces;
        std::vector<char> edges;
        for (int i = 0; i < 2 * sides; ++i) {
            const double angle = 2 * std::numbers::pi * (i % sides) / sides;
            points.push_back(center + AcGeVector3d(radius * std::cos(angle), radius * std::sin(angle),
                                                   i < sides ? -height / 2 : height / 2));
        }
        const auto addFace = [&](std::vector<std::int32_t> corners, std::vector<char> visible) {
            if (isInsideOut)
                std::reverse(corners.begin(), corners.end());
            faces.push_back(static_cast<std::int32_t>(corners.size()));
            faces.insert(faces.end(), corners.begin(), corners.end());
            edges.insert(edges.end(), visible.begin(), visible.end());
        };
        std::vector<std::int32_t> top, bottom;
        for (int i = 0; i < sides; ++i) {
            const int next = (i + 1) % sides;
            // Only the ends name their edges as visible; the wall's faces call the same edges hidden.
            addFace({i, next, next + sides, i + sides}, {isOpen, 0, isOpen, 0});
            top.push_back(i + sides);
            bottom.push_back(sides - 1 - i);
        }
        addFace(top, std::vector<char>(top.size(), 1));
        addFace(bottom, std::vector<char>(top.size(), 1));
        const auto visible = std::make_unique<bool[]>(edges.size());
        std::copy(edges.begin(), edges.end(), visible.get());
        const auto shown = std::make_unique<bool[]>(static_cast<std::size_t>(sides) + 2);
        for (int i = 0; i < sides + 2; ++i)
            shown[static_cast<std::size_t>(i)] = i < sides || !isOpen;
        const AcGiEdgeData edgeData{visible.get()};
        const AcGiFaceData faceData{shown.get()};
        worldDraw->geometry().shell(static_cast<std::uint32_t>(points.size()), points.data(),
                                    static_cast<std::uint32_t>(faces.size()), faces.data(), &edgeData,
                                    &faceData);
        return false;
    }
    // One line where the wall turns away, on the side that lies to the left of the view.
    void subViewportDraw(AcGiViewportDraw* viewportDraw) override {
        const AcGeVector3d towardsEye = viewportDraw->viewport().viewDir();
        const AcGeVector3d sideways = towardsEye.crossProduct(AcGeVector3d::kZAxis);
        if (sideways.length() < 1e-6)
            return;
        const AcGePoint3d side = center + sideways.normal() * radius;
        const AcGeVector3d half(0, 0, height / 2);
        const AcGePoint3d line[] = {side - half, side + half};
        viewportDraw->geometry().polyline(2, line);
    }
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override {
        const AcGeVector3d half(radius, radius, height / 2);
        extents.addExt({center - half, center + half});
        return Acad::eOk;
    }
    Acad::ErrorStatus subGetSolidMeasures(AcDbSolidMeasures& measures) const override {
        if (!knowsMeasures)
            return Acad::eNotApplicable;
        measures = {L"drum, round", volume(), wallArea() + 2 * endArea(), wallArea()};
        return Acad::eOk;
    }
};

class DrumTest : public DrawingTest {
protected:
    void SetUp() override {
        Drum::registered = newAcRxClass(
            L"TestDrum", L"AcDbEntity", 1, 1, 1, []() -> AcRxObject* { return new Drum; }, L"TESTDRUM",
            L"\"Drums|Nobody|none\"");
        acrxBuildClassHierarchy();
    }
    void TearDown() override { removeClass(); }
    static void removeClass() {
        if (Drum::registered)
            deleteAcRxClass(Drum::registered);
        Drum::registered = nullptr;
    }

    template <class Change>
    AcDbObjectId addDrum(Change change, AcDbObjectId block = AcDbObjectId()) {
        auto* const drum = new Drum;
        change(*drum);
        return append(drum, block);
    }
    AcDbObjectId addDrum() {
        return addDrum([](Drum&) {});
    }
    AcDbObjectId addReference(AcDbObjectId block, double x, double y, double z) {
        auto* const reference = new AcDbBlockReference(AcGePoint3d(10, 0, 0), block);
        reference->setScaleFactors({x, y, z});
        return append(reference);
    }
};

}  // namespace drafthost
