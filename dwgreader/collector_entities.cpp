// Entities, without dimensions, leaders and hatches.

#include <algorithm>
#include <cstring>
#include <string_view>

#include "dwgreader/collector.h"
#include "dwgreader/extended_data.h"
#include "dwgreader/type_names.h"

namespace dwgreader {

namespace {

constexpr int kByLayer = 256;

// The number in an enumeration of the library, which sets them to whatever the file holds.
template <class Enumeration>
int number(const Enumeration& value) {
    static_assert(sizeof(Enumeration) == sizeof(int));
    int result = 0;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

bool isOnPaper(const DRW_Entity& entity) {
    return number(entity.space) == DRW::PaperSpace;
}

void thickness(DxfText& groups, double value) {
    if (value != 0.0)
        groups.real(39, value);
}

}  // namespace

DxfText Collector::properties(const DRW_Entity& entity) const {
    DxfText groups;
    groups.text(100, "AcDbEntity");
    if (isOnPaper(entity))
        groups.integer(67, 1);
    groups.text(8, entity.layer);
    if (!entity.lineType.empty() && entity.lineType != "bylayer" && entity.lineType != "BYLAYER")
        groups.text(6, entity.lineType);
    if (entity.color != kByLayer)
        groups.integer(62, entity.color);
    if (entity.color24 >= 0)
        groups.integer(420, entity.color24);
    if (entity.ltypeScale != 1.0)
        groups.real(48, entity.ltypeScale);
    if (!entity.visible)
        groups.integer(60, 1);
    groups.integer(370, DRW_LW_Conv::lineWidth2dxfInt(entity.lWeight));
    return groups;
}

Entity Collector::begin(const DRW_Entity& entity, const char* type) {
    Entity begun;
    begun.handle = entity.handle;
    begun.owner = entity.parentHandle ? entity.parentHandle : currentBlock_;
    begun.paper = isOnPaper(entity);
    begun.before.text(0, type).handle(5, entity.handle).append(properties(entity));
    return begun;
}

DxfText Collector::extendedData(const DRW_Entity& entity) const {
    DxfText groups;
    for (const auto& [application, bytes] : entity.rawExtData) {
        const auto found = drawing_.applications.find(application);
        if (found != drawing_.applications.end())
            groups.text(1001, found->second.name)
                .append(extendedDataGroups(bytes, wideTexts_, drawing_.layers));
    }
    return groups;
}

void Collector::finish(Entity entity, const DRW_Entity& source) {
    entity.after.append(extendedData(source)).append(entity.parts);
    entity.parts = DxfText();
    auto block = drawing_.blocks.find(entity.owner);
    std::vector<Entity>& place = block != drawing_.blocks.end() ? block->second.entities
                                 : entity.paper                 ? drawing_.paperSpace
                                                                : drawing_.modelSpace;
    place.push_back(std::move(entity));
}

void Collector::addPoint(const DRW_Point& point) {
    Entity entity = begin(point, "POINT");
    entity.after.text(100, "AcDbPoint").point(10, point.basePoint);
    thickness(entity.after, point.thickness);
    entity.after.normal(point.extPoint);
    finish(std::move(entity), point);
}

void Collector::addLine(const DRW_Line& line) {
    Entity entity = begin(line, "LINE");
    entity.after.text(100, "AcDbLine");
    thickness(entity.after, line.thickness);
    entity.after.point(10, line.basePoint).point(11, line.secPoint).normal(line.extPoint);
    finish(std::move(entity), line);
}

void Collector::addInfinite(const DRW_Ray& line, const char* type, const char* subclass) {
    Entity entity = begin(line, type);
    entity.after.text(100, subclass).point(10, line.basePoint).point(11, line.secPoint);
    finish(std::move(entity), line);
}

void Collector::addRay(const DRW_Ray& entity) {
    addInfinite(entity, "RAY", "AcDbRay");
}

void Collector::addXline(const DRW_Xline& entity) {
    addInfinite(entity, "XLINE", "AcDbXline");
}

namespace {

void circleGroups(DxfText& groups, const DRW_Circle& circle) {
    groups.text(100, "AcDbCircle");
    thickness(groups, circle.thickness);
    groups.point(10, circle.basePoint).real(40, circle.radious).normal(circle.extPoint);
}

}  // namespace

void Collector::addCircle(const DRW_Circle& circle) {
    Entity entity = begin(circle, "CIRCLE");
    circleGroups(entity.after, circle);
    finish(std::move(entity), circle);
}

void Collector::addArc(const DRW_Arc& arc) {
    Entity entity = begin(arc, "ARC");
    circleGroups(entity.after, arc);
    entity.after.text(100, "AcDbArc").degrees(50, arc.staangle).degrees(51, arc.endangle);
    finish(std::move(entity), arc);
}

void Collector::addEllipse(const DRW_Ellipse& ellipse) {
    Entity entity = begin(ellipse, "ELLIPSE");
    entity.after.text(100, "AcDbEllipse").point(10, ellipse.basePoint).point(11, ellipse.secPoint);
    entity.after.normal(ellipse.extPoint).real(40, ellipse.ratio);
    entity.after.real(41, ellipse.staparam).real(42, ellipse.endparam);
    finish(std::move(entity), ellipse);
}

void Collector::addLWPolyline(const DRW_LWPolyline& polyline) {
    Entity entity = begin(polyline, "LWPOLYLINE");
    DxfText& groups = entity.after;
    groups.text(100, "AcDbPolyline").integer(90, static_cast<std::int64_t>(polyline.vertlist.size()));
    groups.integer(70, polyline.flags);
    const bool widths =
        std::any_of(polyline.vertlist.begin(), polyline.vertlist.end(),
                    [](const auto& vertex) { return vertex->stawidth != 0.0 || vertex->endwidth != 0.0; });
    if (!widths)
        groups.real(43, polyline.width);
    if (polyline.elevation != 0.0)
        groups.real(38, polyline.elevation);
    thickness(groups, polyline.thickness);
    for (const auto& vertex : polyline.vertlist) {
        groups.point2d(10, vertex->x, vertex->y);
        if (widths)
            groups.real(40, vertex->stawidth).real(41, vertex->endwidth);
        if (vertex->bulge != 0.0)
            groups.real(42, vertex->bulge);
    }
    groups.normal(polyline.extPoint);
    finish(std::move(entity), polyline);
}

namespace {

constexpr int k3dPolyline = 8, kPolyfaceMesh = 64;
constexpr int k3dVertex = 32, kMeshVertex = 64, kMeshFace = 128;

const char* polylineSubclass(const DRW_Polyline& polyline) {
    if (polyline.flags & kPolyfaceMesh)
        return "AcDbPolyFaceMesh";
    return polyline.flags & k3dPolyline ? "AcDb3dPolyline" : "AcDb2dPolyline";
}

void vertexGroups(DxfText& groups, const DRW_Polyline& polyline, const DRW_Vertex& vertex) {
    if (polyline.flags & kPolyfaceMesh && vertex.vindex1 != 0) {
        groups.text(100, "AcDbFaceRecord").point(10, DRW_Coord()).integer(70, kMeshFace);
        // Edges that are not seen have a negative index.
        groups.integer(71, static_cast<std::int16_t>(vertex.vindex1));
        groups.integer(72, static_cast<std::int16_t>(vertex.vindex2));
        groups.integer(73, static_cast<std::int16_t>(vertex.vindex3));
        groups.integer(74, static_cast<std::int16_t>(vertex.vindex4));
        return;
    }
    groups.text(100, "AcDbVertex");
    if (polyline.flags & kPolyfaceMesh) {
        groups.text(100, "AcDbPolyFaceMeshVertex").point(10, vertex.basePoint);
        groups.integer(70, kMeshVertex | kMeshFace);
    } else if (polyline.flags & k3dPolyline) {
        groups.text(100, "AcDb3dPolylineVertex").point(10, vertex.basePoint);
        groups.integer(70, vertex.flags | k3dVertex);
    } else {
        groups.text(100, "AcDb2dVertex").point(10, vertex.basePoint);
        groups.real(40, vertex.stawidth).real(41, vertex.endwidth).real(42, vertex.bulge);
        groups.integer(70, vertex.flags).degrees(50, vertex.tgdir);
    }
}

}  // namespace

void Collector::addPolyline(const DRW_Polyline& polyline) {
    Entity entity = begin(polyline, "POLYLINE");
    entity.after.text(100, polylineSubclass(polyline)).integer(66, 1).point(10, polyline.basePoint);
    thickness(entity.after, polyline.thickness);
    entity.after.integer(70, polyline.flags);
    if (polyline.defstawidth != 0.0 || polyline.defendwidth != 0.0)
        entity.after.real(40, polyline.defstawidth).real(41, polyline.defendwidth);
    if (polyline.flags & kPolyfaceMesh)
        entity.after.integer(71, polyline.vertexcount).integer(72, polyline.facecount);
    if (polyline.curvetype != 0)
        entity.after.integer(75, polyline.curvetype);
    entity.after.normal(polyline.extPoint);
    for (const auto& vertex : polyline.vertlist) {
        entity.parts.text(0, "VERTEX").handle(5, vertex->handle).append(properties(*vertex));
        vertexGroups(entity.parts, polyline, *vertex);
        entity.parts.append(extendedData(*vertex));
    }
    entity.parts.text(0, "SEQEND").append(properties(polyline));
    finish(std::move(entity), polyline);
}

void Collector::addSpline(const DRW_Spline* spline) {
    constexpr int kRational = 4, kPlanar = 8;
    Entity entity = begin(*spline, "SPLINE");
    DxfText& groups = entity.after;
    const bool weighted = !spline->weightlist.empty();
    // Whether it is planar is not in the file.
    groups.text(100, "AcDbSpline");
    groups.integer(70, (spline->flags & ~(kPlanar | kRational)) | (weighted ? kRational : 0));
    groups.integer(71, spline->degree).integer(72, static_cast<std::int64_t>(spline->knotslist.size()));
    groups.integer(73, static_cast<std::int64_t>(spline->controllist.size()));
    groups.integer(74, static_cast<std::int64_t>(spline->fitlist.size()));
    groups.real(42, spline->tolknot).real(43, spline->tolcontrol).real(44, spline->tolfit);
    if (!spline->fitlist.empty())
        groups.point(12, spline->tgStart).point(13, spline->tgEnd);
    for (const double knot : spline->knotslist)
        groups.real(40, knot);
    for (const double weight : spline->weightlist)
        groups.real(41, weight);
    for (const auto& point : spline->controllist)
        groups.point(10, *point);
    for (const auto& point : spline->fitlist)
        groups.point(11, *point);
    finish(std::move(entity), *spline);
}

void Collector::addInsert(const DRW_Insert& insert) {
    const bool grid = insert.colcount > 1 || insert.rowcount > 1;
    Entity entity = begin(insert, "INSERT");
    entity.before.text(100, grid ? "AcDbMInsertBlock" : "AcDbBlockReference");
    entity.block = insert.blockRecH.ref;
    entity.isInsertion = true;
    DxfText& groups = entity.after;
    groups.point(10, insert.basePoint);
    groups.real(41, insert.xscale).real(42, insert.yscale).real(43, insert.zscale).degrees(50, insert.angle);
    if (grid) {
        groups.integer(70, insert.colcount).integer(71, insert.rowcount);
        groups.real(44, insert.colspace).real(45, insert.rowspace);
    }
    groups.normal(insert.extPoint);
    entity.sequenceEnd.text(0, "SEQEND").append(properties(insert));
    finish(std::move(entity), insert);
}

void Collector::addCorners(const DRW_Trace& trace, const char* type, const char* subclass) {
    Entity entity = begin(trace, type);
    entity.after.text(100, subclass).point(10, trace.basePoint).point(11, trace.secPoint);
    entity.after.point(12, trace.thirdPoint).point(13, trace.fourPoint);
    if (const auto* const face = dynamic_cast<const DRW_3Dface*>(&trace)) {
        entity.after.integer(70, face->invisibleflag);
    } else {
        thickness(entity.after, trace.thickness);
        entity.after.normal(trace.extPoint);
    }
    finish(std::move(entity), trace);
}

void Collector::addTrace(const DRW_Trace& entity) {
    addCorners(entity, "TRACE", "AcDbTrace");
}

void Collector::addSolid(const DRW_Solid& entity) {
    addCorners(entity, "SOLID", "AcDbTrace");
}

void Collector::add3dFace(const DRW_3Dface& entity) {
    addCorners(entity, "3DFACE", "AcDbFace");
}

// What texts and attributes share: up to and including the alignment point. The vertical alignment follows in
// a subclass of its own.
DxfText Collector::textGroups(const DRW_Text& text) const {
    DxfText groups;
    groups.text(100, "AcDbText");
    thickness(groups, text.thickness);
    groups.point(10, text.basePoint).real(40, text.height).text(1, text.text);
    groups.real(50, text.angle).real(41, text.widthscale).degrees(51, text.oblique);
    groups.text(7, text.style).integer(71, text.textgen).integer(72, number(text.alignH));
    if (number(text.alignH) != DRW_Text::HLeft || number(text.alignV) != DRW_Text::VBaseLine)
        groups.point(11, text.secPoint);
    return groups.normal(text.extPoint);
}

void Collector::addText(const DRW_Text& text) {
    Entity entity = begin(text, "TEXT");
    entity.after.append(textGroups(text)).text(100, "AcDbText").integer(73, number(text.alignV));
    finish(std::move(entity), text);
}

Entity Collector::attribute(const DRW_Attribute& source, bool definition) {
    Entity entity = begin(source, definition ? "ATTDEF" : "ATTRIB");
    entity.after.append(textGroups(source));
    entity.after.text(100, definition ? "AcDbAttributeDefinition" : "AcDbAttribute");
    if (definition)
        entity.after.text(3, source.prompt);
    entity.after.text(2, source.tag).integer(70, source.attFlags).integer(73, source.fieldLength);
    entity.after.integer(74, number(source.alignV));
    return entity;
}

void Collector::addAttribute(const DRW_Attribute& source) {
    Entity entity = attribute(source, false);
    entity.after.append(extendedData(source));
    drawing_.attributes.push_back(std::move(entity));
}

void Collector::addAttributeDefinition(const DRW_Attribute& source) {
    finish(attribute(source, true), source);
}

void Collector::addMText(const DRW_MText& text) {
    Entity entity = begin(text, "MTEXT");
    entity.after.text(100, "AcDbMText").point(10, text.basePoint).real(40, text.height);
    entity.after.real(41, text.widthscale).integer(71, text.textgen);
    entity.after.integer(72, text.direction).longText(text.text);
    entity.after.text(7, text.style).normal(text.extPoint).point(11, text.secPoint);
    entity.after.integer(73, text.spacingStyle).real(44, text.interlin);
    finish(std::move(entity), text);
}

void Collector::addViewport(const DRW_Viewport& viewport) {
    Entity entity = begin(viewport, "VIEWPORT");
    DxfText& groups = entity.after;
    ++viewports_;
    groups.text(100, "AcDbViewport").point(10, viewport.basePoint);
    groups.real(40, viewport.pswidth)
        .real(41, viewport.psheight)
        .integer(68, viewports_)
        .integer(69, viewports_);
    groups.point2d(12, viewport.centerPX, viewport.centerPY).point2d(13, viewport.snapPX, viewport.snapPY);
    groups.point2d(14, viewport.snapSpPX, viewport.snapSpPY);
    groups.point(16, viewport.viewDir).point(17, viewport.viewTarget);
    groups.real(42, viewport.viewLength).real(43, viewport.frontClip).real(44, viewport.backClip);
    groups.real(45, viewport.viewHeight).degrees(50, viewport.snapAngle).degrees(51, viewport.twistAngle);
    finish(std::move(entity), viewport);
}

void Collector::addImage(const DRW_Image* image) {
    Entity entity = begin(*image, "IMAGE");
    DxfText& groups = entity.after;
    groups.text(100, "AcDbRasterImage").integer(90, 0).point(10, image->basePoint).point(11, image->secPoint);
    groups.point(12, image->vVector).point2d(13, image->sizeu, image->sizev).handle(340, image->ref);
    groups.integer(70, 7).integer(280, 0).integer(281, image->brightness);
    groups.integer(282, image->contrast).integer(283, image->fade);
    // The library skips the clipping boundary: the whole image is shown.
    groups.integer(71, 1).integer(91, 2).point2d(14, -0.5, -0.5);
    groups.point2d(14, image->sizeu - 0.5, image->sizev - 0.5);
    finish(std::move(entity), *image);
}

void Collector::linkImage(const DRW_ImageDef* definition) {
    DxfText groups;
    groups.text(100, "AcDbRasterImageDef").integer(90, 0).text(1, definition->name);
    groups.point2d(10, definition->u, definition->v).point2d(11, definition->up, definition->vp);
    groups.integer(280, definition->loaded ? 1 : 0).integer(281, definition->resolution);
    drawing_.imageDefinitions[definition->handle] = groups;
}

void Collector::addUnread(int type, const std::string& className, bool isEntity) {
    const UnreadType unread = unreadType(type, className, isEntity);
    if (unread.kind == UnreadType::Kind::Entity)
        ++drawing_.unreadEntities[unread.name];
    else if (unread.kind == UnreadType::Kind::Object)
        ++drawing_.unreadObjects;
}

}  // namespace dwgreader
