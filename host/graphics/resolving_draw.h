#pragma once

// What world draws that show a drawing have in common: they resolve layers, colours, linetypes and weights
// (by layer and by block), keep the transforms of blocks, draw drawables within each other and ask them for
// what depends on the view. Derived classes take the shapes.

#include <unordered_map>
#include <vector>

#include "host/api/block_reference.h"
#include "host/api/database.h"
#include "host/graphics/layer_looks.h"

namespace drafthost::graphics {

// Size of what the model space shows, its box's diagonal; 1 when it shows nothing.
double sizeOfDrawing(const AcDbDatabase& database);
// How far chords may lie from their curves in pictures of a drawing of that size.
double deviationFor(double sizeOfDrawing);

class ResolvingDraw : public AcGiWorldDraw, public AcGiWorldGeometry, public AcGiSubEntityTraits {
public:
    // towardsEye: unit vector, world.
    ResolvingDraw(const AcDbDatabase& database, double deviation, const AcGeVector3d& towardsEye);

    // The model space, in drawing order. Entities that somebody has open for writing are left out.
    void drawModelSpace();

    AcGiWorldGeometry& geometry() const override { return const_cast<ResolvingDraw&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<ResolvingDraw&>(*this); }
    double deviation() const override { return deviation_; }

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

protected:
    // An entity that is shown begins to draw itself, within others that have begun; and has done so, or
    // failed.
    virtual void beginEntity(AcDbEntity&) {}
    virtual void endEntity(AcDbEntity&) {}

    AcDbObjectId effectiveLayer() const;
    bool hidden() { return layerLook().hidden(); }
    Rgb effectiveColor();
    float effectiveMillimetres();  // line weight, the default one for what leaves it open
    // Dashes of the present linetype in drawing units; empty for continuous lines.
    std::vector<double> currentPattern();
    bool fills() const { return traits_.fill; }
    bool isDrawingForView() const { return viewDepth_ > 0; }
    const AcGeMatrix3d& transform() const { return transform_; }
    const AcDbDatabase& database() const { return database_; }

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

    const LayerLook& layerLook() { return layers_.of(effectiveLayer()); }
    AcDbObjectId effectiveLinetype();
    int effectiveWeight();
    const std::vector<double>& pattern(AcDbObjectId linetype);
    void takeTraits(const AcDbEntity& entity);
    void drawEntity(AcDbEntity& entity);

    const AcDbDatabase& database_;
    double deviation_;
    AcGeVector3d towardsEye_;
    Traits traits_;
    BlockLook block_;
    AcGeMatrix3d transform_;
    std::vector<AcGeMatrix3d> transforms_;
    LayerLooks layers_;
    std::unordered_map<AcDbObjectId, std::vector<double>> patterns_;
    int depth_ = 0, viewDepth_ = 0;
};

}  // namespace drafthost::graphics
