#pragma once

// A world draw and a view that keep what is drawn.

#include "host/api/graphics.h"

#include <vector>

class RecordingGeometry final : public AcGiWorldGeometry, public AcGiSubEntityTraits {
public:
    struct Shell {
        std::vector<AcGePoint3d> points;
        std::vector<std::int32_t> faceList;
        std::vector<bool> shownEdges, shownFaces;
    };
    struct Line {
        std::vector<AcGePoint3d> points;
        AcDbObjectId linetype;
    };
    std::vector<Shell> shells;
    std::vector<Line> lines;

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                  std::int64_t) override {
        lines.push_back({{points, points + count}, linetype_});
        return false;
    }
    bool shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t size,
               const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces) override {
        Shell shell{{points, points + pointCount}, {faceList, faceList + size}, {}, {}};
        for (std::uint32_t i = 0; i < size; i += static_cast<std::uint32_t>(faceList[i]) + 1) {
            shell.shownFaces.push_back(faces->visibility[shell.shownFaces.size()]);
            for (std::int32_t side = 0; side < faceList[i]; ++side) {
                shell.shownEdges.push_back(edges->visibility[shell.shownEdges.size()]);
            }
        }
        shells.push_back(shell);
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
    bool draw(AcGiDrawable*) override { return false; }
    void pushModelTransform(const AcGeMatrix3d&) override {}
    void popModelTransform() override {}

    void setColor(std::uint16_t) override {}
    std::uint16_t color() const override { return 256; }
    void setBackgroundColor() override {}
    void setTrueColor(std::uint32_t) override {}
    void setLayer(AcDbObjectId) override {}
    AcDbObjectId layerId() const override { return {}; }
    void setLineType(AcDbObjectId linetype) override { linetype_ = linetype; }
    AcDbObjectId lineTypeId() const override { return linetype_; }
    void setLineTypeScale(double) override {}
    double lineTypeScale() const override { return 1; }
    void setLineWeight(int weight) override { weight_ = weight; }
    int lineWeight() const override { return weight_; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool) override {}

private:
    AcDbObjectId linetype_;
    int weight_ = -1;
};

class RecordingDraw final : public AcGiWorldDraw {
public:
    RecordingGeometry drawn;
    AcGiWorldGeometry& geometry() const override { return const_cast<RecordingGeometry&>(drawn); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<RecordingGeometry&>(drawn); }
    double deviation() const override { return 0.01; }
};

class RecordingView final : public AcGiViewportDraw, public AcGiViewport {
public:
    explicit RecordingView(const AcGeVector3d& toEye) : toEye_(toEye) {}
    RecordingGeometry drawn;
    AcGiWorldGeometry& geometry() const override { return const_cast<RecordingGeometry&>(drawn); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<RecordingGeometry&>(drawn); }
    const AcGiViewport& viewport() const override { return *this; }
    double deviation() const override { return 0.01; }
    AcGeVector3d viewDir() const override { return toEye_; }

private:
    AcGeVector3d toEye_;
};
