// Header variables and table records.

#include <algorithm>
#include <array>
#include <string_view>

#include "dwgreader/collector.h"

namespace dwgreader {
namespace {

// What the library hands on with the group code and in the unit of DXF files. The rest is either not a
// variable of DXF files or converted wrongly (times).
constexpr auto kVariables = std::to_array<std::string_view>(
    {"ANGDIR",     "ATTMODE",   "AUNITS",    "AUPREC",     "CECOLOR",   "CELTSCALE", "CHAMFERA", "CHAMFERB",
     "CHAMFERC",   "CHAMFERD",  "CMLJUST",   "CMLSCALE",   "DIMALT",    "DIMALTD",   "DIMALTF",  "DIMALTRND",
     "DIMALTTD",   "DIMALTTZ",  "DIMALTU",   "DIMALTZ",    "DIMAPOST",  "DIMASO",    "DIMASSOC", "DIMASZ",
     "DIMATFIT",   "DIMAUNIT",  "DIMAZIN",   "DIMCEN",     "DIMCLRD",   "DIMCLRE",   "DIMCLRT",  "DIMDEC",
     "DIMDLE",     "DIMDLI",    "DIMDSEP",   "DIMEXE",     "DIMEXO",    "DIMGAP",    "DIMJUST",  "DIMLFAC",
     "DIMLIM",     "DIMLUNIT",  "DIMLWD",    "DIMLWE",     "DIMPOST",   "DIMRND",    "DIMSAH",   "DIMSCALE",
     "DIMSD1",     "DIMSD2",    "DIMSE1",    "DIMSE2",     "DIMSHO",    "DIMSOXD",   "DIMTAD",   "DIMTDEC",
     "DIMTFAC",    "DIMTIH",    "DIMTIX",    "DIMTM",      "DIMTMOVE",  "DIMTOFL",   "DIMTOH",   "DIMTOL",
     "DIMTOLJ",    "DIMTP",     "DIMTSZ",    "DIMTVP",     "DIMTXT",    "DIMTZIN",   "DIMUPT",   "DIMZIN",
     "DISPSILH",   "ELEVATION", "EXTMAX",    "EXTMIN",     "FILLETRAD", "FILLMODE",  "INSBASE",  "INSUNITS",
     "LIMCHECK",   "LIMMAX",    "LIMMIN",    "LTSCALE",    "LUNITS",    "LUPREC",    "MAXACTVP", "MIRRTEXT",
     "ORTHOMODE",  "PDMODE",    "PDSIZE",    "PELEVATION", "PEXTMAX",   "PEXTMIN",   "PINSBASE", "PLIMCHECK",
     "PLIMMAX",    "PLIMMIN",   "PLINEGEN",  "PLINEWID",   "PSLTSCALE", "PUCSORG",   "PUCSXDIR", "PUCSYDIR",
     "QTEXTMODE",  "REGENMODE", "SHADEDGE",  "SHADEDIF",   "SKETCHINC", "SKPOLY",    "SPLFRAME", "SPLINESEGS",
     "SPLINETYPE", "SURFTAB1",  "SURFTAB2",  "SURFTYPE",   "SURFU",     "SURFV",     "TEXTSIZE", "THICKNESS",
     "TILEMODE",   "TRACEWID",  "TREEDEPTH", "UCSORG",     "UCSXDIR",   "UCSYDIR",   "UNITMODE", "USERI1",
     "USERI2",     "USERI3",    "USERI4",    "USERI5",     "USERR1",    "USERR2",    "USERR3",   "USERR4",
     "USERR5",     "USRTIMER",  "VISRETAIN", "WORLDVIEW"});
constexpr auto kPlanePoints = std::to_array<std::string_view>({"LIMMAX", "LIMMIN", "PLIMMAX", "PLIMMIN"});

void addVariable(DxfText& header, std::string_view name, DRW_Variant& value) {
    const bool plane = std::find(kPlanePoints.begin(), kPlanePoints.end(), name) != kPlanePoints.end();
    header.text(9, "$" + std::string(name));
    switch (value.type()) {
        case DRW_Variant::STRING: header.text(value.code(), *value.content.s); break;
        case DRW_Variant::INTEGER:
            // Whole numbers are handed on without their sign.
            header.integer(value.code(), static_cast<std::int16_t>(value.content.i));
            break;
        case DRW_Variant::DOUBLE: header.real(value.code(), value.content.d); break;
        case DRW_Variant::COORD:
            if (plane)
                header.point2d(value.code(), value.content.v->x, value.content.v->y);
            else
                header.point(value.code(), *value.content.v);
            break;
        case DRW_Variant::INVALID: break;
    }
}

std::string nameOf(const Records& records, Handle handle) {
    const auto found = records.find(handle);
    return found == records.end() ? std::string() : found->second.name;
}

DxfText beginRecord(const char* type, const DRW_TableEntry& entry, const char* subclass) {
    DxfText groups;
    groups.text(0, type).handle(std::string_view(type) == "DIMSTYLE" ? 105 : 5, entry.handle);
    groups.text(100, "AcDbSymbolTableRecord").text(100, subclass).text(2, entry.name);
    return groups;
}

}  // namespace

void Collector::addHeader(const DRW_Header* header) {
    for (const std::string_view name : kVariables) {
        const auto found = header->vars.find(std::string(name));
        if (found != header->vars.end())
            addVariable(drawing_.header, name, *found->second);
    }
    if (const auto base = header->vars.find("ANGBASE"); base != header->vars.end())
        drawing_.header.text(9, "$ANGBASE").degrees(50, base->second->content.d);
    // The tables come behind the header.
    currentLayer_ = header->currentLayer;
    currentTextStyle_ = header->currentTextStyle;
    currentLinetype_ = header->currentLineType;
    currentDimensionStyle_ = header->currentDimStyle;
}

void Collector::finishHeader() {
    const auto add = [&](const char* variable, int code, const Records& records, Handle handle) {
        const std::string name = nameOf(records, handle);
        if (!name.empty())
            drawing_.header.text(9, variable).text(code, name);
    };
    add("$CLAYER", 8, drawing_.layers, currentLayer_);
    add("$TEXTSTYLE", 7, drawing_.textStyles, currentTextStyle_);
    add("$CELTYPE", 6, drawing_.linetypes, currentLinetype_);
    add("$DIMSTYLE", 2, drawing_.dimensionStyles, currentDimensionStyle_);
}

void Collector::addLType(const DRW_LType& linetype) {
    DxfText groups = beginRecord("LTYPE", linetype, "AcDbLinetypeTableRecord");
    groups.integer(70, linetype.flags & 0xFF).text(3, linetype.desc).integer(72, 'A');
    groups.integer(73, static_cast<std::int64_t>(linetype.path.size())).real(40, linetype.length);
    for (const double dash : linetype.path)
        groups.real(49, dash).integer(74, 0);
    drawing_.linetypes[linetype.handle] = {linetype.name, groups};
}

void Collector::addLayer(const DRW_Layer& layer) {
    DxfText groups = beginRecord("LAYER", layer, "AcDbLayerTableRecord");
    groups.integer(70, layer.flags & 0xFF).integer(62, layer.color);
    if (layer.color24 >= 0)
        groups.integer(420, layer.color24);
    groups.text(6, layer.lineType).integer(290, layer.plotF ? 1 : 0);
    groups.integer(370, DRW_LW_Conv::lineWidth2dxfInt(layer.lWeight));
    drawing_.layers[layer.handle] = {layer.name, groups};
}

// The library reads no more of dimension styles than their names.
void Collector::addDimStyle(const DRW_Dimstyle& style) {
    DxfText groups = beginRecord("DIMSTYLE", style, "AcDbDimStyleTableRecord");
    groups.integer(70, 0);
    drawing_.dimensionStyles[style.handle] = {style.name, groups};
}

void Collector::addVport(const DRW_Vport& viewport) {
    DxfText groups = beginRecord("VPORT", viewport, "AcDbViewportTableRecord");
    const auto plane = [&](int code, const DRW_Coord& point) { groups.point2d(code, point.x, point.y); };
    groups.integer(70, viewport.flags & 0xFF);
    plane(10, viewport.lowerLeft);
    plane(11, viewport.UpperRight);
    plane(12, viewport.center);
    plane(13, viewport.snapBase);
    plane(14, viewport.snapSpacing);
    plane(15, viewport.gridSpacing);
    groups.point(16, viewport.viewDir).point(17, viewport.viewTarget);
    // The file holds the width of the view where DXF has width by height.
    const double width = viewport.ratio;
    groups.real(40, viewport.height).real(41, viewport.height > 0 ? width / viewport.height : 1.0);
    groups.real(42, viewport.lensHeight).real(43, viewport.frontClip).real(44, viewport.backClip);
    groups.degrees(50, viewport.snapAngle).degrees(51, viewport.twistAngle);
    groups.integer(71, viewport.viewMode).integer(72, viewport.circleZoom).integer(73, viewport.fastZoom);
    groups.integer(74, viewport.ucsIcon).integer(75, viewport.snap).integer(76, viewport.grid);
    groups.integer(77, viewport.snapStyle).integer(78, viewport.snapIsopair);
    drawing_.viewports[viewport.handle] = {viewport.name, groups};
}

void Collector::addTextStyle(const DRW_Textstyle& style) {
    DxfText groups = beginRecord("STYLE", style, "AcDbTextStyleTableRecord");
    groups.integer(70, style.flags & 0xFF).real(40, style.height).real(41, style.width);
    groups.degrees(50, style.oblique).integer(71, style.genFlag).real(42, style.lastHeight);
    groups.text(3, style.font).text(4, style.bigFont);
    drawing_.textStyles[style.handle] = {style.name, groups};
}

void Collector::addAppId(const DRW_AppId& application) {
    DxfText groups = beginRecord("APPID", application, "AcDbRegAppTableRecord");
    groups.integer(70, application.flags & 0xFF);
    drawing_.applications[application.handle] = {application.name, groups};
}

void Collector::addBlock(const DRW_Block& block) {
    currentBlock_ = block.parentHandle;
    Block& added = drawing_.blocks[currentBlock_];
    added.name = block.name;
    added.flags = block.flags;
    added.layer = block.layer;
    added.path = block.path;
    added.base = block.basePoint;
}

}  // namespace dwgreader
