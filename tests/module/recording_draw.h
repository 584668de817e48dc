#pragma once

// A world draw that writes down what is drawn.

#include "host/api/graphics.h"

#include <string>
#include <vector>

namespace tessary::testing {

class RecordingDraw final : public AcGiWorldDraw, public AcGiWorldGeometry, public AcGiSubEntityTraits {
public:
    // As "polyline (0 0 0) (1 1 1) marker -1", "layer Name", "color 5", "draw"; other things are not written.
    std::vector<std::string> calls;
    // World coordinates of everything drawn; circles by some of their points.
    std::vector<AcGePoint3d> points;
    bool entersDrawables = false;  // what is given to draw() draws itself; otherwise it is only written down
    bool drawsCompletely = true;   // what draw() answers for what it did not enter
    std::uint16_t colorOfDrawables = 0;  // that they leave behind; 0: none

    AcGiWorldGeometry& geometry() const override { return const_cast<RecordingDraw&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<RecordingDraw&>(*this); }
    double deviation() const override { return 0.01; }

    bool polyline(std::uint32_t count, const AcGePoint3d* vertices, const AcGeVector3d* normal,
                  std::int64_t marker) override;
    bool polygon(std::uint32_t count, const AcGePoint3d* vertices) override;
    bool polyPolygon(std::uint32_t, const std::uint32_t*, const AcGePoint3d*) override { return false; }
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override;
    bool circularArc(const AcGePoint3d&, double, const AcGeVector3d&, const AcGeVector3d&, double) override {
        return false;
    }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const ACHAR*, int,
              const AcGiTextStyle&) override {
        return false;
    }
    bool draw(AcGiDrawable* drawable) override;
    void pushModelTransform(const AcGeMatrix3d& matrix) override;
    void popModelTransform() override { transforms_.pop_back(); }

    void setColor(std::uint16_t index) override;
    std::uint16_t color() const override { return color_; }
    void setBackgroundColor() override {}
    void setTrueColor(std::uint32_t) override {}
    void setLayer(AcDbObjectId layer) override;
    AcDbObjectId layerId() const override { return layer_; }
    void setLineType(AcDbObjectId) override {}
    AcDbObjectId lineTypeId() const override { return {}; }
    void setLineTypeScale(double) override {}
    double lineTypeScale() const override { return 1; }
    void setLineWeight(int) override {}
    int lineWeight() const override { return -1; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool) override {}

private:
    void add(const AcGePoint3d& point);

    std::vector<AcGeMatrix3d> transforms_ = {AcGeMatrix3d()};
    std::uint16_t color_ = 256;
    AcDbObjectId layer_;
};

}  // namespace tessary::testing
