#pragma once

// Turns the drawing calls of entities into a display list: resolves layers, colours, linetypes and weights
// (by layer and by block), applies block transforms, cuts linetypes into dashes, and turns text into
// outlines.

#include <unordered_map>

#include "host/api/block_reference.h"
#include "host/api/database.h"
#include "host/graphics/dasher.h"
#include "host/graphics/display_list.h"
#include "host/graphics/layer_looks.h"

namespace drafthost::graphics {

// The model space of a drawing, in drawing order. Entities that somebody has open for writing are left out.
DisplayList buildDisplayList(const AcDbDatabase& database);

class DisplayBuilder final : public AcGiWorldDraw, public AcGiWorldGeometry, public AcGiSubEntityTraits {
public:
    DisplayBuilder(const AcDbDatabase& database, double deviation);
    DisplayList take() { return std::move(list_); }

    AcGiWorldGeometry& geometry() const override { return const_cast<DisplayBuilder&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<DisplayBuilder&>(*this); }
    double deviation() const override { return deviation_; }

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  std::int64_t marker) override;
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override;
    bool polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                     const AcGePoint3d* points) override;
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override;
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& startDirection, double sweepAngle) override;
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
              const ACHAR* message, int length, const AcGiTextStyle& style) override;
    bool draw(AcGiDrawable* drawable) override;
    void pushModelTransform(const AcGeMatrix3d& matrix) override;
    void popModelTransform() override;

    void setColor(std::uint16_t index) override;
    std::uint16_t color() const override { return traits_.color; }
    void setBackgroundColor() override { traits_.background = true; }
    void setTrueColor(std::uint32_t rgb) override { traits_.trueColor = static_cast<std::int32_t>(rgb); }
    void setLayer(AcDbObjectId layer) override { traits_.layer = layer; }
    AcDbObjectId layerId() const override { return traits_.layer; }
    void setLineType(AcDbObjectId linetype) override { traits_.linetype = linetype; }
    AcDbObjectId lineTypeId() const override { return traits_.linetype; }
    void setLineTypeScale(double scale) override { traits_.linetypeScale = scale; }
    double lineTypeScale() const override { return traits_.linetypeScale; }
    void setLineWeight(int weight) override { traits_.lineWeight = weight; }
    int lineWeight() const override { return traits_.lineWeight; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool filled) override { traits_.fill = filled; }

private:
    struct Traits {
        AcDbObjectId layer;     // null: layer "0"
        AcDbObjectId linetype;  // null: by layer
        double linetypeScale = 1.0;
        std::int32_t trueColor = -1;
        int lineWeight = AcDb::kLnWtByLayer;
        std::uint16_t color = 256;
        bool fill = true;
        bool background = false;
    };
    // What by-block means inside the block being drawn; and the layer that layer "0" stands for there.
    struct BlockLook {
        AcDbObjectId layer;
        Rgb color{255, 255, 255};
        AcDbObjectId linetype;
        int lineWeight = AcDb::kLnWtByLwDefault;
    };

    AcDbObjectId effectiveLayer() const;
    const LayerLook& layerLook() { return layers_.of(effectiveLayer()); }
    bool hidden() { return layerLook().hidden(); }
    Rgb effectiveColor();
    AcDbObjectId effectiveLinetype();
    int effectiveWeight();
    const std::vector<double>& pattern(AcDbObjectId linetype);
    std::vector<double> currentPattern();
    void takeTraits(const AcDbEntity& entity);
    bool drawEntity(AcDbEntity& entity);
    AcGePoint2d toPlan(const AcGePoint3d& point) const { return (transform_ * point).convert2d(); }
    bool addArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                const AcGeVector3d& start, double sweep);
    void addLine(Polyline2d line);
    template <class Shape>
    void add(Shape shape);

    const AcDbDatabase& database_;
    double deviation_;
    DisplayList list_;
    Traits traits_;
    BlockLook block_;
    AcGeMatrix3d transform_;
    std::vector<AcGeMatrix3d> transforms_;
    LayerLooks layers_;
    std::unordered_map<AcDbObjectId, std::vector<double>> patterns_;
    int depth_ = 0;
};

}  // namespace drafthost::graphics
