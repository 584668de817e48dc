// Dimensions and the library's own leaders.

#include "dwgreader/collector.h"

namespace dwgreader {

// own: the groups of the dimension's kind.
void Collector::addDimension(const DRW_Dimension& dimension, const DxfText& own) {
    constexpr int kTypeBits = 0xE7;
    Entity entity = begin(dimension, "DIMENSION");
    entity.before.text(100, "AcDbDimension");
    entity.block = dimension.getBlockHandle();
    DxfText& groups = entity.after;
    groups.point(10, dimension.getDefPoint()).point(11, dimension.getTextPoint());
    groups.integer(70, dimension.type & kTypeBits).integer(71, dimension.getAlign());
    groups.integer(72, dimension.getTextLineStyle()).real(41, dimension.getTextLineFactor());
    groups.text(1, dimension.getText());
    if (dimension.getDir() != 0.0)
        groups.degrees(53, dimension.getDir());
    if (dimension.getHDir() != 0.0)
        groups.degrees(51, dimension.getHDir());
    groups.normal(dimension.getExtrusion()).text(3, dimension.getStyle()).append(own);
    finish(std::move(entity), dimension);
}

namespace {

DxfText alignedGroups(const DRW_DimAligned& dimension) {
    DxfText groups;
    groups.text(100, "AcDbAlignedDimension").point(12, dimension.getClonepoint());
    return groups.point(13, dimension.getDef1Point()).point(14, dimension.getDef2Point());
}

}  // namespace

void Collector::addDimAlign(const DRW_DimAligned* dimension) {
    addDimension(*dimension, alignedGroups(*dimension));
}

void Collector::addDimLinear(const DRW_DimLinear* dimension) {
    DxfText own = alignedGroups(*dimension);
    own.real(50, dimension->getAngle());
    if (dimension->getOblique() != 0.0)
        own.degrees(52, dimension->getOblique());
    addDimension(*dimension, own.text(100, "AcDbRotatedDimension"));
}

void Collector::addDimRadial(const DRW_DimRadial* dimension) {
    DxfText own;
    own.text(100, "AcDbRadialDimension").point(15, dimension->getDiameterPoint());
    addDimension(*dimension, own.real(40, dimension->getLeaderLength()));
}

void Collector::addDimDiametric(const DRW_DimDiametric* dimension) {
    DxfText own;
    own.text(100, "AcDbDiametricDimension").point(15, dimension->getDiameter1Point());
    addDimension(*dimension, own.real(40, dimension->getLeaderLength()));
}

void Collector::addDimAngular(const DRW_DimAngular* dimension) {
    DxfText own;
    own.text(100, "AcDb2LineAngularDimension").point(13, dimension->getFirstLine1());
    own.point(14, dimension->getFirstLine2()).point(15, dimension->getSecondLine1());
    addDimension(*dimension, own.point(16, dimension->getDimPoint()));
}

void Collector::addDimAngular3P(const DRW_DimAngular3p* dimension) {
    DxfText own;
    own.text(100, "AcDb3PointAngularDimension").point(13, dimension->getFirstLine());
    own.point(14, dimension->getSecondLine()).point(15, dimension->getVertexPoint());
    addDimension(*dimension, own);
}

void Collector::addDimOrdinate(const DRW_DimOrdinate* dimension) {
    DxfText own;
    own.text(100, "AcDbOrdinateDimension").point(13, dimension->getFirstLine());
    addDimension(*dimension, own.point(14, dimension->getSecondLine()));
}

void Collector::addLeader(const DRW_Leader* leader) {
    Entity entity = begin(*leader, "LEADER");
    DxfText& groups = entity.after;
    groups.text(100, "AcDbLeader").text(3, leader->style).integer(71, leader->arrow);
    groups.integer(72, leader->leadertype).integer(73, leader->flag).integer(74, leader->hookline);
    groups.integer(75, leader->hookflag).real(40, leader->textheight).real(41, leader->textwidth);
    groups.integer(76, static_cast<std::int64_t>(leader->vertexlist.size()));
    for (const auto& vertex : leader->vertexlist)
        groups.point(10, *vertex);
    if (leader->annotHandle != 0)
        groups.handle(340, leader->annotHandle);
    groups.point(210, leader->extrusionPoint).point(211, leader->horizdir).point(212, leader->offsetblock);
    finish(std::move(entity), *leader);
}

}  // namespace dwgreader
