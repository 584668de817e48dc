#pragma once

// Takes a drawing from the library, object by object.

#include "drw_interface.h"
#include "dwgreader/drawing.h"

namespace dwgreader {

class Collector final : public DRW_Interface {
public:
    // wideTexts: extended data holds UTF-16, as in files of 2007 and later.
    Collector(Drawing& drawing, bool wideTexts) : drawing_(drawing), wideTexts_(wideTexts) {}

    // After the last table.
    void finishHeader();

    void addHeader(const DRW_Header* header) override;
    void addLType(const DRW_LType& linetype) override;
    void addLayer(const DRW_Layer& layer) override;
    void addDimStyle(const DRW_Dimstyle& style) override;
    void addVport(const DRW_Vport& viewport) override;
    void addTextStyle(const DRW_Textstyle& style) override;
    void addAppId(const DRW_AppId& application) override;

    void addBlock(const DRW_Block& block) override;
    void setBlock(int) override {}  // only called for DXF files
    void endBlock() override { currentBlock_ = 0; }

    void addPoint(const DRW_Point& entity) override;
    void addLine(const DRW_Line& entity) override;
    void addRay(const DRW_Ray& entity) override;
    void addXline(const DRW_Xline& entity) override;
    void addArc(const DRW_Arc& entity) override;
    void addCircle(const DRW_Circle& entity) override;
    void addEllipse(const DRW_Ellipse& entity) override;
    void addLWPolyline(const DRW_LWPolyline& entity) override;
    void addPolyline(const DRW_Polyline& entity) override;
    void addSpline(const DRW_Spline* entity) override;
    void addKnot(const DRW_Entity&) override {}
    void addInsert(const DRW_Insert& entity) override;
    void addTrace(const DRW_Trace& entity) override;
    void add3dFace(const DRW_3Dface& entity) override;
    void addSolid(const DRW_Solid& entity) override;
    void addMText(const DRW_MText& entity) override;
    void addText(const DRW_Text& entity) override;
    void addAttribute(const DRW_Attribute& entity) override;
    void addAttributeDefinition(const DRW_Attribute& entity) override;
    void addDimAlign(const DRW_DimAligned* entity) override;
    void addDimLinear(const DRW_DimLinear* entity) override;
    void addDimRadial(const DRW_DimRadial* entity) override;
    void addDimDiametric(const DRW_DimDiametric* entity) override;
    void addDimAngular(const DRW_DimAngular* entity) override;
    void addDimAngular3P(const DRW_DimAngular3p* entity) override;
    void addDimOrdinate(const DRW_DimOrdinate* entity) override;
    void addLeader(const DRW_Leader* entity) override;
    void addHatch(const DRW_Hatch* entity) override;
    void addViewport(const DRW_Viewport& entity) override;
    void addImage(const DRW_Image* entity) override;
    void linkImage(const DRW_ImageDef* definition) override;
    void addUnread(int type, const std::string& className, bool isEntity) override;
    void addComment(const char*) override {}
    void addPlotSettings(const DRW_PlotSettings*) override {}

    // The library's way to write files.
    void writeHeader(DRW_Header&) override {}
    void writeBlocks() override {}
    void writeBlockRecords() override {}
    void writeEntities() override {}
    void writeLTypes() override {}
    void writeLayers() override {}
    void writeTextstyles() override {}
    void writeVports() override {}
    void writeDimstyles() override {}
    void writeObjects() override {}
    void writeAppId() override {}

private:
    // The entity with its type and properties; the groups of its own go to after.
    Entity begin(const DRW_Entity& entity, const char* type);
    DxfText properties(const DRW_Entity& entity) const;
    // With its extended data, into its block.
    void finish(Entity entity, const DRW_Entity& source);
    DxfText extendedData(const DRW_Entity& entity) const;
    DxfText textGroups(const DRW_Text& text) const;
    Entity attribute(const DRW_Attribute& entity, bool definition);
    void addDimension(const DRW_Dimension& dimension, const DxfText& own);
    void addCorners(const DRW_Trace& entity, const char* type, const char* subclass);
    void addInfinite(const DRW_Ray& entity, const char* type, const char* subclass);

    Drawing& drawing_;
    const bool wideTexts_;
    Handle currentBlock_ = 0;  // record of the block that is being read; 0: none
    Handle currentLayer_ = 0, currentTextStyle_ = 0, currentLinetype_ = 0, currentDimensionStyle_ = 0;
    int viewports_ = 0;
};

}  // namespace dwgreader
